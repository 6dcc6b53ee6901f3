#include "client/changing/savedsettings.h"

#include "client/reading/hardwarewalk.h"
#include "sonavit/reference.h"

#include <utility>

namespace sonavit::changing
{
namespace
{
void saveVolume(const Endpoint& endpoint, Settings::EndpointSetting& setting)
{
    const std::optional<Volume>& volume = endpoint.volume();
    if (!volume)
        return;
    setting.master = volume->master.decibels;
    setting.isMuted = volume->isMuted;
    if (!volume->channels)
        return;
    for (const Level& channel : *volume->channels)
        setting.channels.push_back(channel.decibels);
}

Settings::ControlSetting saved(const Control& control)
{
    Settings::ControlSetting setting;
    setting.id = control.id.text();
    setting.name = control.title();
    setting.isMuted = control.isMuted;
    if (!control.channels)
        return setting;
    for (const ControlChannel& channel : *control.channels)
        setting.channels.push_back(channel.level.decibels);
    return setting;
}

Settings::SelectorSetting saved(const Selector& selector)
{
    Settings::SelectorSetting setting;
    setting.id = selector.id.text();
    setting.name = selector.title();
    setting.input = selector.selection;
    if (const SelectorInput* const input = selector.selected())
        setting.inputName = input->title();
    return setting;
}

bool isEmpty(const Settings::EndpointSetting& setting)
{
    return setting.channels.empty() && !setting.master && !setting.isMuted && setting.controls.empty() &&
           setting.selectors.empty();
}
}

Settings savedSettings(const Snapshot& snapshot, const reading::HardwareWalk& walk)
{
    Settings settings;
    for (const Card& card : snapshot.cards())
    {
        bool isFirst = true;
        for (const Endpoint& endpoint : card.endpoints())
        {
            Settings::EndpointSetting setting;
            setting.name = endpoint.title();
            const Result<Reference> reference = refer(snapshot, endpoint.id());
            if (!reference)
                continue;
            setting.reference = reference->text();
            saveVolume(endpoint, setting);
            for (const Control& control : walk.controls(endpoint.id()))
                setting.controls.push_back(saved(control));
            if (std::exchange(isFirst, false))
            {
                for (const Selector& selector : walk.selectors(card.id()))
                    setting.selectors.push_back(saved(selector));
            }
            if (!isEmpty(setting))
                settings.endpoints.push_back(std::move(setting));
        }
    }
    return settings;
}
}
