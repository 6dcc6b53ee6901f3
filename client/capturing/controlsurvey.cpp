#include "client/capturing/controlsurvey.h"

#include "client/capturing/listitems.h"
#include "client/capturing/taken.h"
#include "client/capturing/textanswer.h"
#include "simulator/machine/file/check.h"
#include "simulator/machine/namedvalues.h"

#include <algorithm>
#include <cmath>
#include <string>

namespace sonavit::capturing
{
using reading::Handle;

Question activation(const char* interfaceName)
{
    return {"IPart::Activate", {interfaceName, argument(static_cast<DWORD>(CLSCTX_ALL))}};
}

void ControlSurvey::askControls()
{
    bool isComplete = true;
    const std::vector<Item> items = listedControls(isComplete);
    const auto isWorthAsking = [&](const IID& iid)
    {
        const auto isIt = [&](const Item& item)
        { return item.isKnown() && IsEqualGUID(item.control.interfaceId, iid); };
        return !isComplete || std::any_of(items.begin(), items.end(), isIt);
    };
    std::vector<OwnControl> own = {{IID_IAudioVolumeLevel, "IAudioVolumeLevel", false},
                                   {IID_IAudioMute, "IAudioMute", false},
                                   {IID_IAudioInputSelector, "IAudioInputSelector", false}};
    own[0].isThere = isWorthAsking(own[0].iid) && askVolume();
    own[1].isThere = isWorthAsking(own[1].iid) && askMute();
    own[2].isThere = isWorthAsking(own[2].iid) && askSelector();
    place(items, own);
}

std::vector<ControlSurvey::Item> ControlSurvey::listedControls(bool& isComplete)
{
    UINT count = 0;
    isComplete = m_failures.passes(m_part.GetControlInterfaceCount(&count), {"IPart::GetControlInterfaceCount"});
    if (!isComplete)
        return {};
    if (count > mostItems)
        m_recorder.note("A part counts more controls than it can have.");
    std::vector<Item> items;
    const auto read = [&](UINT index)
    {
        items.push_back(listedControl(index));
        isComplete = isComplete && items.back().isKnown();
        return items.back().isThere;
    };
    readItems(count, read, [&] { items.emplace_back(); });
    return items;
}

ControlSurvey::Item ControlSurvey::listedControl(UINT index)
{
    Item item;
    IControlInterface* object = nullptr;
    item.result = m_part.GetControlInterface(index, &object);
    item.isThere = SUCCEEDED(item.result) && object != nullptr;
    if (!item.isThere)
        return item;
    const Handle<IControlInterface> control(object);
    item.nameResult = readText([&](LPWSTR* text) { return control->GetName(text); }, item.control.name);
    GUID id = {};
    item.idResult = control->GetIID(&id);
    if (SUCCEEDED(item.idResult))
        item.control.interfaceId = id;
    return item;
}

/// A control that the part has although it does not list it takes the first place whose control is unknown.
void ControlSurvey::place(const std::vector<Item>& items, const std::vector<OwnControl>& controls)
{
    std::vector<bool> isPlaced(items.size(), false);
    std::vector<std::size_t> order;
    std::size_t index = 0;
    for (const OwnControl& own : controls)
    {
        if (!own.isThere)
            continue;
        std::size_t found = items.size();
        for (std::size_t i = items.size(); i-- > 0;)
        {
            if (items[i].isKnown() && IsEqualGUID(items[i].control.interfaceId, own.iid))
                found = i;
        }
        for (std::size_t i = 0; i < items.size() && found == items.size(); ++i)
        {
            if (!items[i].isKnown() && !isPlaced[i])
                found = i;
        }
        if (found != items.size())
        {
            isPlaced[found] = true;
            judge(items[found], index, &own);
            order.push_back(found);
        }
        ++index;
    }
    for (std::size_t i = 0; i < items.size(); ++i)
    {
        if (isPlaced[i])
            continue;
        m_record.furtherControls.push_back(items[i].control);
        judge(items[i], index++, nullptr);
        order.push_back(i);
    }
    if (!std::is_sorted(order.begin(), order.end()))
        m_recorder.note("A part lists its controls in an order that a machine file does not keep.");
}

/// Keeps the failures of an item that has a place in the machine's list.
void ControlSurvey::judge(const Item& item, std::size_t index, const OwnControl* own)
{
    const Question place = {"IPart::GetControlInterface", {argument(index)}};
    const std::string list = " control " + argument(index);
    if (!item.isThere)
    {
        if (m_failures.passes(item.result, place))
            m_failures.givesNull(place);
        return;
    }
    const bool hasName = m_failures.passes(item.nameResult, {"IControlInterface::GetName", {}, list});
    if (hasName && own != nullptr && !item.control.name)
        m_failures.givesNull({"IControlInterface::GetName", {}, list});
    else if (hasName && own != nullptr && *item.control.name != own->name)
        m_recorder.note("A machine file does not keep how drivers name levels, mutes and selectors.");
    m_failures.passes(item.idResult, {"IControlInterface::GetIID", {}, list});
}

template<class I>
Handle<I> ControlSurvey::activated(const IID& iid, const char* name)
{
    void* object = nullptr;
    const HRESULT result = m_part.Activate(CLSCTX_ALL, iid, &object);
    Handle<I> control = taken(result, static_cast<I*>(object));
    m_failures.gives(result, control.get(), activation(name), {E_NOINTERFACE});
    return control;
}

bool ControlSurvey::askVolume()
{
    const auto level = activated<IAudioVolumeLevel>(IID_IAudioVolumeLevel, "IAudioVolumeLevel");
    if (level.get() == nullptr)
        return false;
    std::vector<sim::ChannelLevel>& channels = m_record.volume.emplace().channels;
    UINT count = 0;
    if (!m_failures.passes(level->GetChannelCount(&count), {"IAudioVolumeLevel::GetChannelCount"}))
        count = 0;
    if (count > sim::maximumChannels)
        m_recorder.note("A level has " + argument(count) + " channels; a machine file contains at most " +
                        argument(sim::maximumChannels) + ".");
    const UINT last = static_cast<UINT>(std::min(std::size_t{count}, sim::maximumChannels));
    for (UINT channel = 0; channel < last; ++channel)
        channels.push_back(channelLevel(*level, channel));
    return true;
}

/// What cannot be read, or cannot be in a machine file, is as in other parts.
sim::ChannelLevel ControlSurvey::channelLevel(IAudioVolumeLevel& level, UINT channel)
{
    sim::ChannelLevel record;
    sim::ChannelLevel found;
    const HRESULT rangeResult = level.GetLevelRange(channel, &found.minimum, &found.maximum, &found.step);
    if (m_failures.passes(rangeResult, {"IAudioVolumeLevel::GetLevelRange", {argument(channel)}}))
    {
        const bool isRange = std::isfinite(found.minimum) && std::isfinite(found.maximum) &&
                             std::isfinite(found.step) && found.minimum <= found.maximum && found.step >= 0;
        if (isRange)
            record = found;
        else
            m_recorder.note("A level has a range that is none; a machine file has another one.");
    }
    found.level = record.level;
    const HRESULT result = level.GetLevel(channel, &found.level);
    if (!m_failures.passes(result, {"IAudioVolumeLevel::GetLevel", {argument(channel)}}))
        return record;
    if (std::isfinite(found.level))
        record.level = found.level;
    else
        m_recorder.note("A level is no finite number; a machine file has another one.");
    return record;
}

bool ControlSurvey::askMute()
{
    const auto mute = activated<IAudioMute>(IID_IAudioMute, "IAudioMute");
    if (mute.get() == nullptr)
        return false;
    BOOL isMuted = FALSE;
    m_record.mute.emplace();
    if (m_failures.passes(mute->GetMute(&isMuted), {"IAudioMute::GetMute"}))
        m_record.mute->muted = isMuted != FALSE;
    return true;
}

/// Whether the selection is an incoming part is judged when the parts are complete.
bool ControlSurvey::askSelector()
{
    const auto selector = activated<IAudioInputSelector>(IID_IAudioInputSelector, "IAudioInputSelector");
    if (selector.get() == nullptr)
        return false;
    UINT selection = 0;
    m_record.selector.emplace();
    if (m_failures.passes(selector->GetSelection(&selection), {"IAudioInputSelector::GetSelection"}))
        m_record.selector->selection = static_cast<std::uint32_t>(selection);
    return true;
}

void ControlSurvey::askConnector(IConnector& connector)
{
    ConnectorType type = m_record.type;
    if (m_failures.passes(connector.GetType(&type), {"IConnector::GetType"}))
        m_record.type = type;
    DataFlow direction = m_record.direction;
    if (m_failures.passes(connector.GetDataFlow(&direction), {"IConnector::GetDataFlow"}))
    {
        if (sim::hasName(sim::directionNames, direction))
            m_record.direction = direction;
        else
            m_recorder.note("A connector has a direction that a machine file cannot contain.");
    }
    if (m_record.type == Physical_External || m_record.type == Physical_Internal)
        m_record.jacks = surveyJacks(m_part, m_failures, m_recorder);
}
}
