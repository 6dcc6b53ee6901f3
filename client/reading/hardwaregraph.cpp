#include "client/reading/hardwarelevels.h"
#include "client/reading/hardwarevalues.h"

#include <set>
#include <utility>

namespace sonavit::reading
{
/// The signal paths between the connectors of each device, in the direction of the sound as far as it is known.
std::vector<Graph::Edge> HardwareValues::paths()
{
    std::vector<Graph::Edge> edges;
    std::set<std::pair<std::size_t, std::size_t>> known;
    for (std::size_t device = 0; device < m_map.devices.size(); ++device)
    {
        if (m_map.devices[device].facts.kind == Graph::Device::Kind::closed)
            continue;
        const std::vector<std::size_t>& connectors = m_map.devices[device].connectors;
        for (std::size_t i = 0; i < connectors.size(); ++i)
        {
            for (std::size_t j = i + 1; j < connectors.size(); ++j)
            {
                if (!m_map.areLinked(device, i, j))
                    continue;
                const bool isBackwards = m_map.parts[connectors[i]].direction == Graph::Direction::out;
                const std::size_t from = connectors[isBackwards ? j : i];
                const std::size_t to = connectors[isBackwards ? i : j];
                if (known.insert(std::minmax(from, to)).second)
                    edges.push_back({Graph::Edge::Kind::path, from, to, std::nullopt});
            }
        }
    }
    return edges;
}

Graph::Part HardwareValues::graphPart(std::size_t part, std::vector<Problem>& problems)
{
    const HardwarePart& known = m_map.parts[part];
    Graph::Part result;
    result.device = known.device;
    result.id = known.id;
    result.number = known.number;
    result.isConnector = known.isConnector;
    result.name = known.name;
    result.type = known.type;
    result.direction = known.direction;
    result.isJoined = known.isJoined;
    const bool isAdapters = m_map.devices[known.device].facts.kind == Graph::Device::Kind::adapter;
    const Judge judge(m_map.objectOf(part), problems);
    if (isOfType(known, KSNODETYPE_VOLUME) && m_map.level(part) != nullptr)
        result.channels = readChannels(*m_map.level(part), judge);
    else if (isOfType(known, KSNODETYPE_MUTE) && m_map.mute(part) != nullptr)
        result.isMuted = readMute(*m_map.mute(part), judge);
    else if (!known.isConnector && isAdapters && m_map.selector(part) != nullptr)
        result.selection = readSelection(*m_map.selector(part), judge);
    return result;
}

Graph HardwareValues::graph()
{
    Graph graph;
    std::vector<Problem> live;
    for (const std::size_t part : m_map.graphParts)
        graph.parts.push_back(graphPart(part, live));
    graph.edges = m_map.edges;
    const std::vector<Graph::Edge> signalPaths = paths();
    graph.edges.insert(graph.edges.end(), signalPaths.begin(), signalPaths.end());
    for (Graph::Edge& edge : graph.edges)
    {
        edge.from = m_map.parts[edge.from].graphPosition;
        if (edge.to)
            edge.to = m_map.parts[*edge.to].graphPosition;
    }
    for (const HardwareDevice& device : m_map.devices)
    {
        graph.devices.push_back(device.facts);
        for (std::size_t& part : graph.devices.back().parts)
            part = m_map.parts[part].graphPosition;
        graph.problems.insert(graph.problems.end(), device.problems.begin(), device.problems.end());
    }
    for (const HardwarePart& part : m_map.parts)
        graph.problems.insert(graph.problems.end(), part.problems.begin(), part.problems.end());
    graph.problems.insert(graph.problems.end(), live.begin(), live.end());
    graph.problems = withoutRepeats(graph.problems);
    return graph;
}
}
