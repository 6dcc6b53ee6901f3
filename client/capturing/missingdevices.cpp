#include "client/capturing/missingdevices.h"

#include <algorithm>
#include <array>
#include <deque>
#include <limits>
#include <unordered_map>

namespace sonavit::capturing
{
namespace
{
constexpr std::array<EDataFlow, 2> flows = {eRender, eCapture};

/// What one flow has and the list of all flows does not give.
struct Missing
{
    OrderedDevice device;
    /// The place in the list of all flows before which it belongs: that of its successor.
    std::size_t before = std::numeric_limits<std::size_t>::max();
};

/// Finds what is missing, and fills gaps with it.
class GapFiller
{
public:
    GapFiller(const DeviceList& all, DeviceLists& lists)
    {
        for (std::size_t place = 0; place < all.items.size(); ++place)
        {
            if (all.items[place].id)
                m_places.emplace(*all.items[place].id, place);
        }
        for (std::size_t flow = 0; flow < flows.size(); ++flow)
            findMissing(lists.list(flows[flow], DEVICE_STATEMASK_ALL), flow);
    }

    /// The one that has to come first; no value if nothing is missing any more.
    std::optional<OrderedDevice> next()
    {
        std::deque<Missing>* first = nullptr;
        for (std::deque<Missing>& missing : m_missing)
        {
            if (!missing.empty() && (first == nullptr || missing.front().before < first->front().before))
                first = &missing;
        }
        if (first == nullptr)
            return lostDevice();
        OrderedDevice device = std::move(first->front().device);
        first->pop_front();
        return device;
    }

private:
    void findMissing(const DeviceList& list, std::size_t flow)
    {
        if (!list.isThere)
            m_unlistedFlow = m_unlistedFlow.value_or(flows[flow]);
        std::size_t before = std::numeric_limits<std::size_t>::max();
        for (auto item = list.items.rbegin(); item != list.items.rend(); ++item)
        {
            const auto known = item->id ? m_places.find(*item->id) : m_places.end();
            if (known != m_places.end())
                before = known->second;
            else if (item->id || item->device.get() == nullptr)
                m_missing[flow].push_front({{*item, flows[flow]}, before});
        }
    }

    /// An endpoint of a flow that has no list.
    std::optional<OrderedDevice> lostDevice() const
    {
        return m_unlistedFlow ? std::optional<OrderedDevice>(OrderedDevice{{}, *m_unlistedFlow}) : std::nullopt;
    }

    std::unordered_map<std::string, std::size_t> m_places; ///< in the list of all flows, by id
    std::array<std::deque<Missing>, 2> m_missing;          ///< by flow, in the flow's order
    std::optional<EDataFlow> m_unlistedFlow;
};

std::vector<OrderedDevice> oneFlowAfterTheOther(DeviceLists& lists)
{
    std::vector<OrderedDevice> devices;
    for (const EDataFlow flow : flows)
    {
        for (const ListedDevice& item : lists.list(flow, DEVICE_STATEMASK_ALL).items)
            devices.push_back({item, flow});
    }
    return devices;
}
}

std::vector<OrderedDevice> orderedDevices(DeviceLists& lists, Recorder& recorder)
{
    const DeviceList& all = lists.list(eAll, DEVICE_STATEMASK_ALL);
    if (!all.isThere)
        return oneFlowAfterTheOther(lists);
    std::vector<OrderedDevice> devices;
    std::optional<GapFiller> filler;
    for (const ListedDevice& item : all.items)
    {
        if (item.device.get() != nullptr)
        {
            devices.push_back({item});
            continue;
        }
        if (!filler)
            filler.emplace(all, lists);
        if (std::optional<OrderedDevice> missing = filler->next())
            devices.push_back(std::move(*missing));
        else
            recorder.note("The list of all endpoints has more items than the lists of outputs and inputs.");
    }
    return devices;
}
}
