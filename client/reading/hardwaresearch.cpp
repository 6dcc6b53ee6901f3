#include "client/reading/hardwaresearch.h"

#include <algorithm>
#include <iterator>
#include <unordered_set>

namespace sonavit::reading
{
namespace
{
/// Positions in the order in which they were added, each once. What is added while the list is walked is met, too.
class Queue
{
public:
    /// Whether it is new.
    bool add(std::size_t position)
    {
        if (position == HardwarePart::none || !m_added.insert(position).second)
            return false;
        m_positions.push_back(position);
        return true;
    }

    bool contains(std::size_t position) const { return m_added.count(position) != 0; }
    std::size_t size() const { return m_positions.size(); }
    std::size_t operator[](std::size_t index) const { return m_positions[index]; }
    const std::vector<std::size_t>& positions() const { return m_positions; }

private:
    std::unordered_set<std::size_t> m_added;
    std::vector<std::size_t> m_positions;
};

/// Adds the connectors of the same device that a signal path links with this one.
void addLinked(HardwareMap& map, std::size_t part, Queue& queue)
{
    const HardwarePart& connector = map.parts[part];
    if (connector.position == HardwarePart::none)
        return;
    const std::vector<std::size_t>& all = map.devices[connector.device].connectors;
    for (std::size_t i = 0; i < all.size(); ++i)
    {
        if (!queue.contains(all[i]) && map.areLinked(connector.device, connector.position, i))
            queue.add(all[i]);
    }
}

std::vector<std::size_t> ofType(const HardwareMap& map, const std::vector<std::size_t>& parts, const GUID& type)
{
    std::vector<std::size_t> result;
    std::copy_if(parts.begin(), parts.end(), std::back_inserter(result),
                 [&](std::size_t part) { return isOfType(map.parts[part], type); });
    return result;
}

/// The parts of a type that feed @p part; if there are none, those that it feeds.
std::vector<std::size_t> neighbours(const HardwareMap& map, std::size_t part, const GUID& type)
{
    const std::vector<std::size_t> incoming = ofType(map, map.parts[part].incoming.parts, type);
    return incoming.empty() ? ofType(map, map.parts[part].outgoing.parts, type) : incoming;
}
}

std::size_t muteNodeNextTo(const HardwareMap& map, std::size_t volume)
{
    const std::vector<std::size_t> mutes = neighbours(map, volume, KSNODETYPE_MUTE);
    return mutes.empty() ? HardwarePart::none : mutes.front();
}

std::size_t muteNextTo(HardwareMap& map, std::size_t volume)
{
    const std::size_t mute = muteNodeNextTo(map, volume);
    return mute == HardwarePart::none || map.mute(mute) == nullptr ? HardwarePart::none : mute;
}

std::vector<ControlPlace> controlsOf(HardwareMap& map, const EndpointId& endpoint)
{
    std::vector<ControlPlace> controls;
    const auto device = map.deviceIndexes.find(endpoint);
    if (device == map.deviceIndexes.end() || !map.hasVolumes[map.devices[device->second].island])
        return controls;
    Queue connectors;
    Queue volumes;
    for (const std::size_t connector : map.devices[device->second].connectors)
        connectors.add(connector);
    for (std::size_t i = 0; i < connectors.size(); ++i)
    {
        const std::size_t connector = connectors[i];
        for (const std::size_t volume : neighbours(map, connector, KSNODETYPE_VOLUME))
        {
            if (volumes.add(volume) && map.level(volume) != nullptr)
                controls.push_back({volume, muteNextTo(map, volume), connector});
        }
        connectors.add(map.parts[connector].peer);
        addLinked(map, connector, connectors);
    }
    return controls;
}

std::vector<std::size_t> devicesOf(const HardwareMap& map, const std::vector<EndpointId>& endpoints)
{
    Queue devices;
    for (const EndpointId& endpoint : endpoints)
    {
        const auto device = map.deviceIndexes.find(endpoint);
        if (device != map.deviceIndexes.end())
            devices.add(device->second);
    }
    for (std::size_t i = 0; i < devices.size(); ++i)
    {
        for (const std::size_t device : map.devices[devices[i]].leadsTo)
            devices.add(device);
    }
    return devices.positions();
}

std::vector<SelectorPlace> selectorsOf(HardwareMap& map, const std::vector<EndpointId>& endpoints)
{
    std::vector<SelectorPlace> selectors;
    Queue parts;
    for (const std::size_t device : devicesOf(map, endpoints))
    {
        if (map.devices[device].facts.kind != Graph::Device::Kind::adapter)
            continue;
        for (const std::size_t part : map.devices[device].subunits)
        {
            if (parts.add(part) && map.selector(part) != nullptr)
                selectors.push_back({part, device});
        }
    }
    return selectors;
}
}
