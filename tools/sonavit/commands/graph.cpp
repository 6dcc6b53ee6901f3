#include "tools/sonavit/accountrights.h"
#include "tools/sonavit/cardgraph.h"
#include "tools/sonavit/commands/commands.h"
#include "tools/sonavit/endpointname.h"
#include "tools/sonavit/failure.h"
#include "tools/sonavit/output/dot.h"
#include "tools/sonavit/output/json.h"
#include "tools/sonavit/output/text.h"

#include <filesystem>
#include <fstream>

namespace sonavit::program
{
namespace
{
const char* kindText(CardGraph::Device::Kind kind)
{
    if (kind == CardGraph::Device::Kind::endpoint)
        return "endpoint";
    return kind == CardGraph::Device::Kind::adapter ? "adapter" : "closed";
}

const char* kindText(CardGraph::Edge::Kind kind)
{
    if (kind == CardGraph::Edge::Kind::join)
        return "join";
    return kind == CardGraph::Edge::Kind::path ? "signalPath" : "wire";
}

Json directionJson(const std::optional<DataFlow>& direction)
{
    if (!direction)
        return {};
    return *direction == In ? "in" : "out";
}

/// Parts have a number each, as ids may be missing.
Json partJson(const CardGraph::Part& part, std::size_t index)
{
    return Json::object({{"number", index},
                         {"id", textOrNothing(part.part.globalId())},
                         {"name", part.name},
                         {"kind", part.isConnector ? "connector" : "subunit"},
                         {"type", kindKey(part.type)},
                         {"nodeType", typeText(part.type)},
                         {"direction", directionJson(part.direction)},
                         {"onPath", part.isOnPath}});
}

Json deviceJson(const CardGraph& graph, const CardGraph::Device& device)
{
    Json parts = Json::array();
    for (const std::size_t part : device.parts)
        parts.append(partJson(graph.parts()[part], part));
    const Json id = device.id.empty() ? Json() : Json(device.id);
    return Json::object({{"id", id}, {"name", device.name}, {"kind", kindText(device.kind)}, {"parts", parts}});
}

Json graphJson(const Context& context, const CardGraph& graph)
{
    Json devices = Json::array();
    for (const CardGraph::Device& device : graph.devices())
        devices.append(deviceJson(graph, device));
    Json edges = Json::array();
    for (const CardGraph::Edge& edge : graph.edges())
    {
        const bool hasNoPart = edge.to == CardGraph::none;
        edges.append(Json::object({{"kind", kindText(edge.kind)},
                                   {"from", edge.from},
                                   {"to", hasNoPart ? Json() : Json(edge.to)},
                                   {"toDevice", hasNoPart ? Json(graph.devices()[edge.toDevice].id) : Json()},
                                   {"onPath", edge.isOnPath}}));
    }
    return Json::document({{"machine", context.session.machineName()}, {"devices", devices}, {"edges", edges}});
}

std::string titleOf(const Context& context, const std::vector<Card>& cards)
{
    if (!context.arguments.card.empty())
        return printable(cards.front().name);
    return printable(context.session.machineName().value_or("sound cards"));
}

void writeFile(const std::string& path, const std::string& text)
{
    std::ofstream file(std::filesystem::u8path(path), std::ios::binary);
    file << text << std::flush;
    if (!file)
        throw OperationFailure("the file " + inQuotes(path) + " cannot be written");
}
}

void runGraph(Context& context)
{
    std::vector<Card> cards = readCards();
    reportUnreadable(context, cards);
    keepCardsWith(cards, context.arguments.card, context.arguments.endpoint);
    CardGraph graph(cards);
    if (!context.arguments.endpoint.empty())
        graph.showPath(findEndpoint(cards, context.arguments.endpoint).endpoint);
    const bool isJson = context.arguments.isJson;
    const std::string text = isJson ? graphJson(context, graph).text() + "\n" : dotText(graph, titleOf(context, cards));
    if (context.arguments.outputFile.empty())
        context.environment.out << text;
    else
        writeFile(context.arguments.outputFile, text);
}
}
