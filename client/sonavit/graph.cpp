#include "sonavit/graph.h"

#include "sonavit/enumnames.h"
#include "sonavit/text.h"

#include <algorithm>
#include <array>
#include <ostream>

namespace sonavit
{
inline namespace v1
{
namespace
{
constexpr std::size_t none = static_cast<std::size_t>(-1);

constexpr std::array<const char*, 3> deviceKinds = {"endpoint", "adapter", "closed"};
constexpr std::array<const char*, 3> edgeKinds = {"wire", "signalPath", "join"};
constexpr std::array<const char*, 2> directions = {"in", "out"};

/// The parts that follow each part on the way between an endpoint and the software: along the wires (against them for
/// an output) and across joins, but not into another endpoint. Edges to parts that the graph does not have count for
/// nothing.
class Ways
{
public:
    Ways(const Graph& graph, std::size_t start) : m_graph(graph), m_start(start), m_next(graph.parts.size())
    {
        const bool isOutput = graph.devices[start].flow.value_or(Flow::output) == Flow::output;
        for (const Graph::Edge& edge : graph.edges)
        {
            const std::size_t to = edge.to.value_or(none);
            if (edge.from >= m_next.size() || to >= m_next.size())
                continue;
            if (edge.kind == Graph::Edge::Kind::wire)
                m_next[isOutput ? to : edge.from].push_back(isOutput ? edge.from : to);
            else if (edge.kind == Graph::Edge::Kind::join)
                addJoin(edge.from, to);
        }
    }

    const std::vector<std::size_t>& from(std::size_t part) const { return m_next[part]; }

private:
    void addJoin(std::size_t one, std::size_t other)
    {
        if (isOpen(other))
            m_next[one].push_back(other);
        if (isOpen(one))
            m_next[other].push_back(one);
    }

    bool isOpen(std::size_t part) const
    {
        const std::size_t device = m_graph.parts[part].device;
        return device == m_start || device >= m_graph.devices.size() ||
               m_graph.devices[device].kind != Graph::Device::Kind::endpoint;
    }

    const Graph& m_graph;
    std::size_t m_start;
    std::vector<std::vector<std::size_t>> m_next;
};

std::size_t deviceOf(const Graph& graph, const EndpointId& endpoint)
{
    for (std::size_t i = 0; i < graph.devices.size(); ++i)
    {
        const Graph::Device& device = graph.devices[i];
        const bool isEndpoint = device.kind == Graph::Device::Kind::endpoint && !device.id.empty();
        if (isEndpoint && compareIds(device.id, endpoint.text()) == 0)
            return i;
    }
    return none;
}

/// The new places of what is kept, in the old order; `none` for what is not.
std::vector<std::size_t> newPlaces(const std::vector<bool>& isKept)
{
    std::vector<std::size_t> places(isKept.size(), none);
    std::size_t count = 0;
    for (std::size_t i = 0; i < isKept.size(); ++i)
    {
        if (isKept[i])
            places[i] = count++;
    }
    return places;
}

std::optional<std::size_t> newPlace(const std::vector<std::size_t>& places, std::size_t old)
{
    return old < places.size() && places[old] != none ? std::optional<std::size_t>(places[old]) : std::nullopt;
}

/// A device with those of its parts that have a new place.
Graph::Device keptDevice(Graph::Device device, const std::vector<std::size_t>& partPlaces)
{
    std::vector<std::size_t> parts;
    for (const std::size_t part : device.parts)
    {
        if (const std::optional<std::size_t> place = newPlace(partPlaces, part))
            parts.push_back(*place);
    }
    device.parts = parts;
    return device;
}
}

std::vector<std::size_t> Graph::sourcesOf(std::size_t part) const
{
    std::vector<std::size_t> sources;
    for (const Edge& edge : edges)
    {
        if (edge.kind == Edge::Kind::wire && edge.to == part)
            sources.push_back(edge.from);
    }
    return sources;
}

std::vector<std::size_t> Graph::pathOf(const EndpointId& endpoint) const
{
    const std::size_t start = deviceOf(*this, endpoint);
    if (start == none)
        return {};
    const Ways ways(*this, start);
    std::vector<std::size_t> reached;
    std::vector<bool> isReached(parts.size(), false);
    const auto reach = [&](const std::vector<std::size_t>& next)
    {
        for (const std::size_t part : next)
        {
            if (part < parts.size() && !isReached[part])
            {
                isReached[part] = true;
                reached.push_back(part);
            }
        }
    };
    reach(devices[start].parts);
    for (std::size_t i = 0; i < reached.size(); ++i)
        reach(ways.from(reached[i]));
    return reached;
}

Graph Graph::restrictedTo(const EndpointId& endpoint) const
{
    Graph result;
    const std::size_t start = deviceOf(*this, endpoint);
    if (start == none)
        return result;
    std::vector<bool> isDeviceKept(devices.size(), false);
    std::vector<bool> isPartKept(parts.size(), false);
    isDeviceKept[start] = true;
    for (const std::size_t part : pathOf(endpoint))
    {
        isPartKept[part] = true;
        if (parts[part].device < devices.size())
            isDeviceKept[parts[part].device] = true;
    }
    const std::vector<std::size_t> devicePlaces = newPlaces(isDeviceKept);
    const std::vector<std::size_t> partPlaces = newPlaces(isPartKept);
    for (std::size_t i = 0; i < devices.size(); ++i)
    {
        if (isDeviceKept[i])
            result.devices.push_back(keptDevice(devices[i], partPlaces));
    }
    for (std::size_t i = 0; i < parts.size(); ++i)
    {
        if (!isPartKept[i])
            continue;
        result.parts.push_back(parts[i]);
        result.parts.back().device = newPlace(devicePlaces, parts[i].device).value_or(parts[i].device);
    }
    for (const Edge& edge : edges)
    {
        const std::optional<std::size_t> from = newPlace(partPlaces, edge.from);
        const std::optional<std::size_t> to = newPlace(partPlaces, edge.to.value_or(none));
        if (edge.kind != Edge::Kind::path && from && to)
            result.edges.push_back({edge.kind, *from, to, std::nullopt});
    }
    result.problems = problems;
    return result;
}

bool operator==(const Graph::Part& left, const Graph::Part& right)
{
    return left.device == right.device && left.id == right.id && left.number == right.number &&
           left.isConnector == right.isConnector && left.name == right.name && left.type == right.type &&
           left.direction == right.direction && left.isJoined == right.isJoined && left.channels == right.channels &&
           left.isMuted == right.isMuted && left.selection == right.selection;
}

bool operator==(const Graph::Device& left, const Graph::Device& right)
{
    return left.kind == right.kind && left.id == right.id && left.name == right.name && left.flow == right.flow &&
           left.state == right.state && left.isListed == right.isListed && left.hasTopology == right.hasTopology &&
           left.parts == right.parts;
}

bool operator==(const Graph::Edge& left, const Graph::Edge& right) noexcept
{
    return left.kind == right.kind && left.from == right.from && left.to == right.to && left.toDevice == right.toDevice;
}

bool operator==(const Graph& left, const Graph& right)
{
    return left.devices == right.devices && left.parts == right.parts && left.edges == right.edges &&
           left.problems == right.problems;
}

std::ostream& operator<<(std::ostream& out, const Graph::Part& part)
{
    text::Fields fields(out, part.isConnector ? "Connector" : "Node");
    fields.add("device", part.device).add("id", part.id).add("number", part.number).add("name", part.name);
    fields.add("type", part.type);
    fields.add("direction", part.direction).add("isJoined", part.isJoined);
    if (part.channels)
        fields.add("channels", *part.channels);
    fields.add("isMuted", part.isMuted).add("selection", part.selection);
    return out;
}

std::ostream& operator<<(std::ostream& out, const Graph::Device& device)
{
    text::Fields(out, "Device")
        .add("kind", keyOf(device.kind))
        .add("id", device.id)
        .add("name", device.name)
        .add("flow", device.flow)
        .add("state", device.state)
        .add("isListed", device.isListed)
        .add("hasTopology", device.hasTopology)
        .add("parts", device.parts);
    return out;
}

std::ostream& operator<<(std::ostream& out, const Graph::Edge& edge)
{
    text::Fields(out, "Edge")
        .add("kind", keyOf(edge.kind))
        .add("from", edge.from)
        .add("to", edge.to)
        .add("toDevice", edge.toDevice);
    return out;
}

std::ostream& operator<<(std::ostream& out, const Graph& graph)
{
    text::Fields(out, "Graph")
        .add("devices", graph.devices)
        .add("parts", graph.parts)
        .add("edges", graph.edges)
        .add("problems", graph.problems);
    return out;
}

const char* keyOf(Graph::Device::Kind kind) noexcept
{
    return nameOf(deviceKinds, kind, unknownKey);
}

const char* keyOf(Graph::Edge::Kind kind) noexcept
{
    return nameOf(edgeKinds, kind, unknownKey);
}

const char* keyOf(Graph::Direction direction) noexcept
{
    return nameOf(directions, direction, unknownKey);
}

std::ostream& operator<<(std::ostream& out, Graph::Device::Kind kind)
{
    return out << keyOf(kind);
}

std::ostream& operator<<(std::ostream& out, Graph::Edge::Kind kind)
{
    return out << keyOf(kind);
}

std::ostream& operator<<(std::ostream& out, Graph::Direction direction)
{
    return out << keyOf(direction);
}
}
}
