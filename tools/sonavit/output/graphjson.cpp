#include "tools/sonavit/output/graphjson.h"

#include "tools/sonavit/output/modeljson.h"

namespace sonavit::program
{
namespace
{
Json textOrNull(const std::string& text)
{
    return text.empty() ? Json() : Json(text);
}

Json partJson(const GraphView& view, std::size_t index)
{
    const Graph::Part& part = view.graph.parts[index];
    return Json::object({{"number", index},
                         {"id", textOrNull(part.id)},
                         {"name", part.name},
                         {"kind", part.isConnector ? "connector" : "subunit"},
                         {"type", kindJson(part.type)},
                         {"nodeType", guidJson(part.type)},
                         {"direction", part.direction ? Json(keyOf(*part.direction)) : Json()},
                         {"channels", channelsJson(part.channels)},
                         {"muted", part.isMuted},
                         {"selection", part.selection},
                         {"onPath", view.isOnPath(index)}});
}

Json deviceJson(const GraphView& view, const Graph::Device& device)
{
    Json parts = Json::array();
    for (const std::size_t part : device.parts)
        parts.append(partJson(view, part));
    return Json::object({{"id", textOrNull(device.id)},
                         {"name", device.name},
                         {"kind", keyOf(device.kind)},
                         {"flow", device.flow ? flowJson(*device.flow) : Json()},
                         {"state", stateJson(device.state)},
                         {"listed", device.isListed},
                         {"parts", parts}});
}

Json edgeJson(const GraphView& view, const Graph::Edge& edge)
{
    return Json::object({{"kind", keyOf(edge.kind)},
                         {"from", edge.from},
                         {"to", edge.to},
                         {"toDevice", edge.toDevice ? textOrNull(view.graph.devices[*edge.toDevice].id) : Json()},
                         {"onPath", view.isOnPath(edge)}});
}
}

Json graphJson(const GraphView& view, const std::optional<std::string>& machine)
{
    Json devices = Json::array();
    for (const Graph::Device& device : view.graph.devices)
        devices.append(deviceJson(view, device));
    Json edges = Json::array();
    for (const Graph::Edge& edge : view.graph.edges)
        edges.append(edgeJson(view, edge));
    return machineDocument(machine)
        .set("devices", devices)
        .set("edges", edges)
        .set("problems", problemsJson(view.graph.problems));
}
}
