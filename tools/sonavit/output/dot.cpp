#include "tools/sonavit/output/dot.h"

#include "tools/sonavit/output/modelwords.h"
#include "tools/sonavit/output/text.h"

#include <algorithm>
#include <sstream>

namespace sonavit::program
{
namespace
{
constexpr const char* pathColour = "#D9480F";

/// How a kind of node looks.
struct Look
{
    const char* shape;
    const char* fill;
};

Look lookOf(const CardGraph::Part& part)
{
    if (part.isConnector)
        return {"box", "#FFFFFF"};
    if (part.type == KSNODETYPE_VOLUME)
        return {"invtrapezium", "#BFDBFE"};
    if (part.type == KSNODETYPE_MUTE)
        return {"octagon", "#FECACA"};
    if (part.type == KSNODETYPE_MUX)
        return {"house", "#FDE68A"};
    return {"ellipse", "#F1F3F5"};
}

std::string nodeName(std::size_t part)
{
    return dotQuoted("part" + std::to_string(part));
}

/// The node in place of parts that a device does not report. Graphviz does not draw an empty cluster.
std::string deviceNodeName(std::size_t device)
{
    return dotQuoted("device" + std::to_string(device));
}

/// The kind above the name, unless they are equal.
std::string labelOf(const CardGraph::Part& part)
{
    const std::string kind = part.type ? kindWords(part.type) : part.isConnector ? "Connector" : "Node";
    const std::string name = printable(part.name.value_or(""));
    if (name.empty() || equalNoCase(name, kind))
        return kind;
    return kind + "\n" + name;
}

void writeNode(std::ostream& out, const CardGraph::Part& part, std::size_t index)
{
    const Look look = lookOf(part);
    out << "    " << nodeName(index) << " [label=" << dotQuoted(labelOf(part)) << ", shape=" << dotQuoted(look.shape)
        << ", fillcolor=" << dotQuoted(look.fill) << ", tooltip=" << dotQuoted(part.part.globalId().toUtf8());
    if (part.isOnPath)
        out << ", color=" << dotQuoted(pathColour) << ", penwidth=\"3\"";
    out << "];\n";
}

/// Endpoints are filled, devices that cannot be opened are dashed.
const char* clusterStyle(const CardGraph::Device& device)
{
    switch (device.kind)
    {
    case CardGraph::Device::Kind::endpoint:
        return "style=\"rounded,filled\", fillcolor=\"#E6FCF5\"";
    case CardGraph::Device::Kind::closed:
        return "style=\"rounded,dashed\"";
    case CardGraph::Device::Kind::adapter:
        break;
    }
    return "style=\"rounded\"";
}

/// What distinguishes an adapter from others of the same name: the last element of its id.
std::string lastElement(const std::string& id)
{
    const std::size_t separator = id.rfind('\\');
    return separator == std::string::npos ? std::string() : printable(id.substr(separator + 1));
}

/// Whether another adapter of @p graph has the same name.
bool sharesName(const CardGraph& graph, const CardGraph::Device& adapter)
{
    const std::vector<CardGraph::Device>& devices = graph.devices();
    return std::any_of(devices.begin(), devices.end(),
                       [&](const CardGraph::Device& other)
                       { return &other != &adapter && other.kind == adapter.kind && other.name == adapter.name; });
}

std::string clusterLabel(const CardGraph& graph, const CardGraph::Device& device)
{
    if (device.flow)
        return device.name + "\n" + flowWords(*device.flow);
    const bool isAmbiguous = device.kind == CardGraph::Device::Kind::adapter && sharesName(graph, device);
    const std::string element = isAmbiguous ? lastElement(device.id) : std::string();
    return element.empty() ? device.name : device.name + "\n" + element;
}

bool hasLooseJoin(const CardGraph& graph, std::size_t device)
{
    return std::any_of(graph.edges().begin(), graph.edges().end(),
                       [&](const CardGraph::Edge& edge) { return edge.toDevice == device; });
}

void writeDevice(std::ostream& out, const CardGraph& graph, std::size_t index)
{
    const CardGraph::Device& device = graph.devices()[index];
    out << "  subgraph " << dotQuoted("cluster" + std::to_string(index)) << " {\n"
        << "    graph [label=" << dotQuoted(clusterLabel(graph, device)) << ", tooltip=" << dotQuoted(device.id) << ", "
        << clusterStyle(device);
    if (device.isOnPath)
        out << ", color=" << dotQuoted(pathColour) << ", penwidth=\"3\"";
    out << "];\n";
    for (const std::size_t part : device.parts)
        writeNode(out, graph.parts()[part], part);
    if (device.parts.empty() || hasLooseJoin(graph, index))
        out << "    " << deviceNodeName(index) << " [label=\""
            << (device.hasTopology ? "connectors unknown" : "no hardware graph") << "\", style=\"dashed\"];\n";
    out << "  }\n";
}

const char* edgeStyle(CardGraph::Edge::Kind kind)
{
    switch (kind)
    {
    case CardGraph::Edge::Kind::join:
        return "arrowhead=\"none\", penwidth=\"2\", tooltip=\"join\"";
    case CardGraph::Edge::Kind::path:
        return "style=\"dashed\", color=\"#868E96\", arrowhead=\"none\", constraint=\"false\", tooltip=\"signal path\"";
    case CardGraph::Edge::Kind::wire:
        break;
    }
    return "tooltip=\"wire\"";
}

void writeEdge(std::ostream& out, const CardGraph::Edge& edge)
{
    const std::string to = edge.to == CardGraph::none ? deviceNodeName(edge.toDevice) : nodeName(edge.to);
    out << "  " << nodeName(edge.from) << " -> " << to << " [" << edgeStyle(edge.kind);
    if (edge.isOnPath)
        out << ", color=" << dotQuoted(pathColour) << ", penwidth=\"3\"";
    out << "];\n";
}
}

std::string dotQuoted(const std::string& text)
{
    std::string result = "\"";
    for (const char character : text)
    {
        if (character == '"' || character == '\\')
            result += '\\';
        result += character == '\n' ? std::string("\\n") : std::string(1, character);
    }
    return result + "\"";
}

std::string dotText(const CardGraph& graph, const std::string& title)
{
    std::ostringstream out;
    out << "// Thick lines join devices, arrows are wires within a device, dashed lines are signal paths.\n"
        << "digraph " << dotQuoted(title) << " {\n"
        << "  graph [rankdir=\"LR\", fontname=\"Helvetica\", compound=\"true\", ranksep=\"0.6\"];\n"
        << "  node [fontname=\"Helvetica\", fontsize=\"10\", style=\"rounded,filled\"];\n"
        << "  edge [fontname=\"Helvetica\", fontsize=\"9\"];\n";
    for (std::size_t i = 0; i < graph.devices().size(); ++i)
        writeDevice(out, graph, i);
    for (const CardGraph::Edge& edge : graph.edges())
        writeEdge(out, edge);
    out << "}\n";
    return out.str();
}
}
