// The checks of hardware graphs.
#include "simulator/machine/file/machinecheck.h"

#include <type_traits>
#include <utility>

namespace sim
{
namespace
{
PartsById partsOf(const Topology& topology)
{
    PartsById parts;
    for (const Connector& connector : topology.connectors)
        parts.emplace(connector.id, &connector);
    for (const Subunit& subunit : topology.subunits)
        parts.emplace(subunit.id, &subunit);
    return parts;
}
}

void MachineCheck::topology(const Topology& topology, const std::string& place)
{
    const PartsById known = partsOf(topology);
    std::set<std::uint32_t> localIds;
    for (const Connector& connector : topology.connectors)
        m_connectorIds.insert(connector.id);
    partList(topology.connectors, localIds, known, inner(place, "connectors"));
    partList(topology.subunits, localIds, known, inner(place, "subunits"));
    signalPaths(topology, known, inner(place, "signalPaths"));
}

template<class AnyPart>
void MachineCheck::partList(const std::vector<AnyPart>& parts, std::set<std::uint32_t>& localIds,
                            const PartsById& known, const std::string& place)
{
    for (std::size_t index = 0; index < parts.size(); ++index)
    {
        const std::string partPlace = inner(place, index);
        const std::string& id = parts[index].id;
        requireNew(m_partIds, id, inner(partPlace, "id"));
        // In a file such an id would be taken for a short one.
        require(id.compare(0, 1, "/") != 0, inner(partPlace, "id"), "an id that does not begin with /", inQuotes(id));
        require(localIds.insert(parts[index].localId).second, inner(partPlace, "localId"),
                "a local id that is unique in the topology", "duplicate " + std::to_string(parts[index].localId));
        if constexpr (std::is_same_v<AnyPart, Connector>)
        {
            requireName(connectorTypeNames, parts[index].type, inner(partPlace, "kind"));
            for (std::size_t jack = 0; jack < parts[index].jacks.size(); ++jack)
                jackNames(parts[index].jacks[jack], inner(inner(partPlace, "jacks"), jack));
        }
        part(parts[index], known, partPlace);
    }
}

void MachineCheck::jackNames(const Jack& jack, const std::string& place)
{
    requireName(jackConnectionNames, jack.connection, inner(place, "connection"));
    requireName(geometricLocationNames, jack.geometricLocation, inner(place, "geometricLocation"));
    requireName(generalLocationNames, jack.generalLocation, inner(place, "generalLocation"));
    requireName(portConnectionNames, jack.portConnection, inner(place, "portConnection"));
}

void MachineCheck::part(const Part& part, const PartsById& known, const std::string& place)
{
    partIds(part.incoming, known, inner(place, "incoming"));
    partIds(part.outgoing, known, inner(place, "outgoing"));
    if (part.volume)
    {
        const std::string channels = inner(inner(place, "volume"), "channels");
        channelCount(part.volume->channels.size(), channels);
        for (std::size_t index = 0; index < part.volume->channels.size(); ++index)
        {
            const ChannelLevel& channel = part.volume->channels[index];
            range(channel.minimum, channel.maximum, channel.step, inner(channels, index));
            level(channel.level, channel.minimum, channel.maximum, inner(inner(channels, index), "level"));
        }
    }
    if (part.selector && part.selector->selection != 0)
    {
        bool isIncoming = false;
        for (const std::string& id : part.incoming)
        {
            const auto neighbour = known.find(id);
            isIncoming =
                isIncoming || (neighbour != known.end() && neighbour->second->localId == part.selector->selection);
        }
        require(isIncoming, inner(inner(place, "selector"), "selection"), "the local id of an incoming part, or 0",
                std::to_string(part.selector->selection));
    }
}

void MachineCheck::partIds(const std::vector<std::string>& ids, const PartsById& known, const std::string& place)
{
    for (std::size_t index = 0; index < ids.size(); ++index)
        require(known.count(ids[index]) != 0, inner(place, index), "the id of a part of this topology",
                inQuotes(ids[index]));
}

void MachineCheck::signalPaths(const Topology& topology, const PartsById& known, const std::string& place)
{
    std::set<std::pair<std::string, std::string>> taken;
    for (std::size_t index = 0; index < topology.signalPaths.size(); ++index)
    {
        const SignalPath& path = topology.signalPaths[index];
        const std::string pathPlace = inner(place, index);
        require(known.count(path.from) != 0, inner(pathPlace, "from"), "the id of a part of this topology",
                inQuotes(path.from));
        require(known.count(path.to) != 0, inner(pathPlace, "to"), "the id of a part of this topology",
                inQuotes(path.to));
        partIds(path.through, known, inner(pathPlace, "through"));
        require(taken.insert({path.from, path.to}).second, pathPlace, "each pair of parts once",
                "duplicate " + inQuotes(path.from) + " to " + inQuotes(path.to));
    }
}
}
