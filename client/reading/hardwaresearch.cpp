#include "client/reading/hardwaresearch.h"

#include <algorithm>
#include <iterator>
#include <unordered_map>
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

/// The parts that wires connect with @p part, those that feed it first.
std::vector<std::size_t> wired(const HardwareMap& map, std::size_t part)
{
    std::vector<std::size_t> parts = map.parts[part].sources;
    const std::vector<std::size_t>& fed = map.parts[part].outgoing.parts;
    parts.insert(parts.end(), fed.begin(), fed.end());
    return parts;
}

/// The walk reads both sides of the volume nodes next to connectors, and of no other subunit.
bool isNextToConnector(const HardwarePart& volume)
{
    return volume.incoming.isRead;
}

/// The mute node of a volume node next to a connector.
std::size_t firstMute(const HardwareMap& map, std::size_t volume)
{
    const std::vector<std::size_t> mutes = neighbours(map, volume, KSNODETYPE_MUTE);
    return mutes.empty() ? HardwarePart::none : mutes.front();
}

/// Whether neither side of the volume node reports a connector as its neighbour.
bool isBetweenNodes(const HardwareMap& map, std::size_t volume)
{
    const auto isConnector = [&](std::size_t part) { return map.parts[part].isConnector; };
    const HardwarePart& known = map.parts[volume];
    return !isNextToConnector(known) && std::none_of(known.sources.begin(), known.sources.end(), isConnector) &&
           std::none_of(known.outgoing.parts.begin(), known.outgoing.parts.end(), isConnector);
}

/// Whether the mute node is that of @p volume, which is between two nodes, and not that of another one next to it.
bool isMuteOf(const HardwareMap& map, std::size_t mute, std::size_t volume)
{
    const std::vector<std::size_t> around = wired(map, mute);
    const auto mayBeVolume = [&](std::size_t part) { return isTypeUnknown(map.parts[part]); };
    if (std::any_of(around.begin(), around.end(), mayBeVolume))
        return false;
    const std::vector<std::size_t> volumes = ofType(map, around, KSNODETYPE_VOLUME);
    const auto isNextToOne = [&](std::size_t each) { return isNextToConnector(map.parts[each]); };
    const auto hasIt = [&](std::size_t each) { return isNextToOne(each) && firstMute(map, each) == mute; };
    if (std::any_of(volumes.begin(), volumes.end(), hasIt))
        return false;
    const auto owner = std::find_if_not(volumes.begin(), volumes.end(), isNextToOne);
    return owner != volumes.end() && *owner == volume;
}

/// Parts that wires lead to, or come from, with the position of the first connector from which they do.
using Distances = std::unordered_map<std::size_t, std::size_t>;

template<class Next>
Distances distancesFrom(const std::vector<std::size_t>& connectors, const Next& next)
{
    Distances distances;
    std::vector<std::size_t> reached;
    for (std::size_t position = 0; position < connectors.size(); ++position)
    {
        const auto add = [&](std::size_t part)
        {
            if (distances.emplace(part, position).second)
                reached.push_back(part);
        };
        const std::size_t first = reached.size();
        add(connectors[position]);
        for (std::size_t i = first; i < reached.size(); ++i)
        {
            for (const std::size_t part : next(reached[i]))
                add(part);
        }
    }
    return distances;
}
}

std::vector<VolumeBetween> volumesBetween(const HardwareMap& map, const std::vector<std::size_t>& connectors)
{
    using Parts = const std::vector<std::size_t>&;
    const Distances fed =
        distancesFrom(connectors, [&](std::size_t part) -> Parts { return map.parts[part].outgoing.parts; });
    const Distances feeding =
        distancesFrom(connectors, [&](std::size_t part) -> Parts { return map.parts[part].sources; });
    Queue devices;
    for (const std::size_t connector : connectors)
        devices.add(map.parts[connector].device);
    std::vector<VolumeBetween> volumes;
    for (const std::size_t device : devices.positions())
    {
        for (const std::size_t part : ofType(map, map.devices[device].facts.parts, KSNODETYPE_VOLUME))
        {
            const auto from = fed.find(part);
            const auto to = feeding.find(part);
            if (from != fed.end() && to != feeding.end() && isBetweenNodes(map, part))
                volumes.push_back({part, std::min(from->second, to->second)});
        }
    }
    std::stable_sort(volumes.begin(), volumes.end(),
                     [](const VolumeBetween& left, const VolumeBetween& right)
                     { return left.distance < right.distance; });
    return volumes;
}

bool isTypeUnknown(const HardwarePart& part)
{
    return std::any_of(part.problems.begin(), part.problems.end(),
                       [](const Problem& problem) { return problem.operation() == "IPart::GetSubType"; });
}

std::vector<std::size_t> possibleMuteParts(const HardwareMap& map, std::size_t volume)
{
    const HardwarePart& known = map.parts[volume];
    Queue parts;
    for (const std::size_t part : isNextToConnector(known) ? known.incoming.parts : known.sources)
        parts.add(part);
    for (const std::size_t part : known.outgoing.parts)
        parts.add(part);
    if (isNextToConnector(known))
        return parts.positions();
    for (const std::size_t mute : ofType(map, parts.positions(), KSNODETYPE_MUTE))
    {
        for (const std::size_t part : wired(map, mute))
            parts.add(part);
    }
    return parts.positions();
}

std::size_t muteNodeNextTo(const HardwareMap& map, std::size_t volume)
{
    if (isNextToConnector(map.parts[volume]))
        return firstMute(map, volume);
    const std::vector<std::size_t> mutes = ofType(map, wired(map, volume), KSNODETYPE_MUTE);
    const auto own =
        std::find_if(mutes.begin(), mutes.end(), [&](std::size_t mute) { return isMuteOf(map, mute, volume); });
    return own == mutes.end() ? HardwarePart::none : *own;
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
                controls.push_back({volume, muteNextTo(map, volume), connector, i});
        }
        connectors.add(map.parts[connector].peer);
        addLinked(map, connector, connectors);
    }
    for (const auto& [volume, distance] : volumesBetween(map, connectors.positions()))
    {
        if (map.level(volume) != nullptr)
            controls.push_back({volume, muteNextTo(map, volume), HardwarePart::none, distance});
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
