#include "client/changing/savedsettings.h"

#include "client/reading/hardwarewalk.h"
#include "sonavit/reference.h"

#include <algorithm>
#include <cstddef>
#include <map>
#include <utility>
#include <vector>

namespace sonavit::changing
{
namespace
{
void saveVolume(const Endpoint& endpoint, Settings::EndpointSetting& setting)
{
    const std::optional<Volume>& volume = endpoint.volume();
    if (!volume)
        return;
    setting.isMuted = volume->isMuted;
    if (volume->channels)
        for (const Level& channel : *volume->channels)
            setting.channels.push_back(channel.decibels);
    // The levels of the channels go before the master's, so that a person who changes the latter would change nothing.
    const auto highest = std::max_element(setting.channels.begin(), setting.channels.end());
    if (highest == setting.channels.end() || *highest != volume->master.decibels)
        setting.master = volume->master.decibels;
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

/// The controls of each endpoint. One that acts on several is with the one to whose jack it is nearest.
class Controls
{
public:
    Controls(const Snapshot& snapshot, const reading::HardwareWalk& walk)
    {
        for (const Endpoint& endpoint : snapshot.endpoints())
        {
            std::vector<Control>& controls = m_controls[endpoint.id()];
            controls = walk.controls(endpoint.id());
            const std::vector<std::size_t> distances = walk.distances(endpoint.id());
            for (std::size_t place = 0; place < controls.size(); ++place)
                add(controls[place].id, Owner{{place, distances[place]}, endpoint.id()});
        }
    }

    std::vector<Control> of(const EndpointId& endpoint) const
    {
        std::vector<Control> own;
        for (const Control& control : m_controls.at(endpoint))
            if (m_owners.at(control.id).endpoint == endpoint)
                own.push_back(control);
        return own;
    }

private:
    struct Owner
    {
        /// Among the controls of the endpoint, those next to its jack first, and the distance from the endpoint.
        std::pair<std::size_t, std::size_t> place;
        EndpointId endpoint;
    };

    void add(const ControlId& control, const Owner& owner)
    {
        const auto [known, isNew] = m_owners.emplace(control, owner);
        if (!isNew && owner.place < known->second.place)
            known->second = owner;
    }

    std::map<EndpointId, std::vector<Control>> m_controls;
    std::map<ControlId, Owner> m_owners;
};

bool isEmpty(const Settings::EndpointSetting& setting)
{
    return setting.channels.empty() && !setting.master && !setting.isMuted && setting.controls.empty() &&
           setting.selectors.empty();
}
}

Settings savedSettings(const Snapshot& snapshot, const reading::HardwareWalk& walk)
{
    Settings settings;
    const Controls controls(snapshot, walk);
    for (const Card& card : snapshot.cards())
    {
        bool isFirst = true;
        for (const Endpoint& endpoint : card.endpoints())
        {
            Settings::EndpointSetting setting;
            setting.name = endpoint.title();
            setting.flow = endpoint.flow();
            const Result<Reference> reference = refer(snapshot, endpoint.id());
            if (!reference)
                continue;
            setting.reference = reference->text();
            saveVolume(endpoint, setting);
            for (const Control& control : controls.of(endpoint.id()))
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
