// The checks of hardware graphs.
#include "simulator/machine/file/machinecheck.h"

#include <algorithm>
#include <functional>
#include <type_traits>
#include <utility>

namespace sim
{
namespace
{
using PartPair = std::pair<std::string_view, std::string_view>;

struct PartPairHash
{
    std::size_t operator()(const PartPair& pair) const
    {
        const std::hash<std::string_view> hash;
        return hash(pair.first) * 31 + hash(pair.second);
    }
};

PartsById partsOf(const Topology& topology)
{
    PartsById parts(topology.connectors.size() + topology.subunits.size());
    for (const Connector& connector : topology.connectors)
        parts.emplace(connector.id, &connector);
    for (const Subunit& subunit : topology.subunits)
        parts.emplace(subunit.id, &subunit);
    return parts;
}
}

void MachineCheck::topology(const Topology& topology, const FilePlace& place)
{
    const PartsById known = partsOf(topology);
    std::unordered_set<std::uint32_t> localIds(known.size());
    for (const Connector& connector : topology.connectors)
        m_connectorIds.insert(connector.id);
    partList(topology.connectors, localIds, known, place, "connectors");
    partList(topology.subunits, localIds, known, place, "subunits");
    signalPaths(topology, known, place);
}

template<class AnyPart>
void MachineCheck::partList(const std::vector<AnyPart>& parts, std::unordered_set<std::uint32_t>& localIds,
                            const PartsById& known, const FilePlace& place, const char* list)
{
    for (std::size_t index = 0; index < parts.size(); ++index)
    {
        const FilePlace partPlace(place, list, index);
        const Part& anyPart = parts[index];
        requireNewId(m_parts, anyPart, partPlace);
        if (anyPart.id.compare(0, 1, "/") == 0) // in a file it would be taken for a short one
            report(FilePlace(partPlace, "id"), "an id that does not begin with /", inQuotes(anyPart.id));
        if (!localIds.insert(anyPart.localId).second)
            report(FilePlace(partPlace, "localId"), "a local id that is unique in the topology",
                   "duplicate " + std::to_string(anyPart.localId));
        if constexpr (std::is_same_v<AnyPart, Connector>)
            requireName(directionNames, parts[index].direction, FilePlace(partPlace, "direction"));
        part(anyPart, known, partPlace);
    }
}

void MachineCheck::part(const Part& part, const PartsById& known, const FilePlace& place)
{
    partIds(part.incoming, known, place, "incoming");
    partIds(part.outgoing, known, place, "outgoing");
    if (part.volume)
        levels(part.volume->channels, FilePlace(place, "volume"));
    if (part.selector && part.selector->selection != 0)
        selection(part, known, FilePlace(place, "selector"));
}

void MachineCheck::levels(const std::vector<ChannelLevel>& channels, const FilePlace& place)
{
    channelCount(channels.size(), FilePlace(place, "channels"));
    for (std::size_t index = 0; index < channels.size(); ++index)
    {
        const ChannelLevel& channel = channels[index];
        const FilePlace channelPlace(place, "channels", index);
        range(channel.minimum, channel.maximum, channel.step, channelPlace);
        decibels(channel.level, FilePlace(channelPlace, "level"));
    }
}

void MachineCheck::selection(const Part& part, const PartsById& known, const FilePlace& place)
{
    const auto isSelected = [&](const std::string& id)
    {
        const auto neighbour = known.find(id);
        return neighbour != known.end() && neighbour->second->localId == part.selector->selection;
    };
    if (std::none_of(part.incoming.begin(), part.incoming.end(), isSelected))
        report(FilePlace(place, "selection"), "the local id of an incoming part, or 0",
               std::to_string(part.selector->selection));
}

void MachineCheck::partIds(const std::vector<std::string>& ids, const PartsById& known, const FilePlace& place,
                           const char* list)
{
    for (std::size_t index = 0; index < ids.size(); ++index)
        partId(ids[index], known, FilePlace(place, list, index));
}

void MachineCheck::partId(const std::string& id, const PartsById& known, const FilePlace& place)
{
    if (known.count(id) == 0)
        report(place, "the id of a part of this topology", inQuotes(id));
}

/// Behind a mixed path there may be another one, for callers that reject mixed ones.
void MachineCheck::signalPaths(const Topology& topology, const PartsById& known, const FilePlace& place)
{
    std::unordered_map<PartPair, bool, PartPairHash> taken(topology.signalPaths.size()); // whether the path is mixed
    for (std::size_t index = 0; index < topology.signalPaths.size(); ++index)
    {
        const SignalPath& path = topology.signalPaths[index];
        const FilePlace pathPlace(place, "signalPaths", index);
        partId(path.from, known, FilePlace(pathPlace, "from"));
        partId(path.to, known, FilePlace(pathPlace, "to"));
        partIds(path.through, known, pathPlace, "through");
        const auto [other, isNew] = taken.insert({{path.from, path.to}, path.mixed});
        const bool isOtherWay = other->second && !path.mixed;
        other->second = path.mixed;
        if (!isNew && !isOtherWay)
            report(pathPlace, "each pair of parts once",
                   "duplicate " + inQuotes(path.from) + " to " + inQuotes(path.to));
    }
}
}
