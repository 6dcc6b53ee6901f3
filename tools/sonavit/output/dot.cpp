#include "tools/sonavit/output/dot.h"

#include "sonavit/nodekind.h"
#include "tools/sonavit/output/modelwords.h"
#include "tools/sonavit/output/text.h"

#include <algorithm>
#include <sstream>

namespace sonavit::program
{
namespace
{
constexpr const char* pathColour = "#D9480F";
constexpr const char* chosenStyle = "label=\"chosen\", arrowhead=\"dot\"";

/// How a kind of node looks.
struct Look
{
    const char* shape;
    const char* fill;
};

constexpr Look connectorLook = {"box", "#FFFFFF"};
constexpr Look volumeLook = {"invtrapezium", "#BFDBFE"};
constexpr Look muteLook = {"octagon", "#FECACA"};
constexpr Look selectorLook = {"house", "#FDE68A"};
constexpr Look otherLook = {"ellipse", "#F1F3F5"};
constexpr Look endpointLook = {"box", "#E6FCF5"};

Look lookOf(const Graph::Part& part)
{
    if (part.isConnector)
        return connectorLook;
    switch (part.type ? kindOf(*part.type) : NodeKind::other)
    {
    case NodeKind::volume:
        return volumeLook;
    case NodeKind::mute:
        return muteLook;
    case NodeKind::selector:
        return selectorLook;
    default:
        return otherLook;
    }
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

/// "-12.00 dB", once where all channels are alike.
std::string levelsWords(const std::vector<ControlChannel>& channels)
{
    std::string words;
    for (const ControlChannel& channel : channels)
    {
        const std::string own = decibelWords(channel.level.decibels);
        if (words.empty())
            words = own;
        else if (words != own)
            return words + " \xE2\x80\xA6";
    }
    return words;
}

/// The chosen input of a selector, by the name that its node has in the graph.
std::string selectionWords(const Graph& graph, std::size_t index)
{
    const std::uint32_t selection = *graph.parts[index].selection;
    for (const std::size_t source : graph.sourcesOf(index))
    {
        if (graph.parts[source].number == selection)
            return printable(graph.parts[source].name.value_or("input " + std::to_string(selection)));
    }
    return "input " + std::to_string(selection);
}

/// What a node is set to, on a line of its own; empty for one that cannot be set.
std::string settingOf(const Graph& graph, std::size_t index)
{
    const Graph::Part& part = graph.parts[index];
    if (part.channels && !part.channels->empty())
        return levelsWords(*part.channels);
    if (part.isMuted)
        return *part.isMuted ? "muted" : "not muted";
    if (part.selection)
        return selectionWords(graph, index);
    return {};
}

/// The kind above the name, unless they are equal, and the setting below.
std::string labelOf(const Graph& graph, std::size_t index)
{
    const Graph::Part& part = graph.parts[index];
    const std::string kind = part.type ? kindWords(part.type) : part.isConnector ? "Connector" : "Node";
    const std::string name = printable(part.name.value_or(""));
    const std::string setting = settingOf(graph, index);
    return kind + (name.empty() || equalNoCase(name, kind) ? "" : "\n" + name) +
           (setting.empty() ? "" : "\n" + setting);
}

void writeNode(std::ostream& out, const GraphView& view, std::size_t index)
{
    const Graph::Part& part = view.graph.parts[index];
    const Look look = lookOf(part);
    out << "    " << nodeName(index) << " [label=" << dotQuoted(labelOf(view.graph, index))
        << ", shape=" << dotQuoted(look.shape) << ", fillcolor=" << dotQuoted(look.fill)
        << ", tooltip=" << dotQuoted(printable(part.id));
    if (view.isOnPath(index))
        out << ", color=" << dotQuoted(pathColour) << ", penwidth=\"3\"";
    out << "];\n";
}

/// Endpoints are filled, devices that cannot be opened are dashed, and so are endpoints that are not listed.
std::string clusterStyle(const Graph::Device& device)
{
    if (device.kind == Graph::Device::Kind::closed)
        return "style=\"rounded,dashed\"";
    if (device.kind != Graph::Device::Kind::endpoint)
        return "style=\"rounded\"";
    return device.isListed ? "style=\"rounded,filled\", fillcolor=" + dotQuoted(endpointLook.fill)
                           : "style=\"rounded,filled,dashed\", fillcolor=\"#F8F9FA\"";
}

/// What distinguishes an adapter from others of the same name: the last element of its id.
std::string lastElement(const std::string& id)
{
    const std::size_t separator = id.rfind('\\');
    return separator == std::string::npos ? std::string() : printable(id.substr(separator + 1));
}

/// Whether another adapter of @p graph has the same name.
bool sharesName(const Graph& graph, const Graph::Device& adapter)
{
    return std::any_of(graph.devices.begin(), graph.devices.end(),
                       [&](const Graph::Device& other)
                       { return &other != &adapter && other.kind == adapter.kind && other.name == adapter.name; });
}

/// The name; of an endpoint its flow and, if it cannot be used now, its state.
std::string clusterLabel(const Graph& graph, const Graph::Device& device)
{
    const std::string name = printable(device.name);
    if (device.flow)
    {
        const bool isActive = device.state == State::active;
        return name + "\n" + wordsOf(*device.flow) +
               (isActive || !device.state ? "" : ", " + stateWords(device.state)) +
               (device.isListed ? "" : "\nnot listed");
    }
    const bool isAmbiguous = device.kind == Graph::Device::Kind::adapter && sharesName(graph, device);
    const std::string element = isAmbiguous ? lastElement(device.id) : std::string();
    return element.empty() ? name : name + "\n" + element;
}

bool hasLooseJoin(const Graph& graph, std::size_t device)
{
    return std::any_of(graph.edges.begin(), graph.edges.end(),
                       [&](const Graph::Edge& edge) { return edge.toDevice == device; });
}

void writeDevice(std::ostream& out, const GraphView& view, std::size_t index)
{
    const Graph::Device& device = view.graph.devices[index];
    out << "  subgraph " << dotQuoted("cluster" + std::to_string(index)) << " {\n"
        << "    graph [label=" << dotQuoted(clusterLabel(view.graph, device))
        << ", tooltip=" << dotQuoted(printable(device.id)) << ", " << clusterStyle(device);
    if (view.isOnPath(device))
        out << ", color=" << dotQuoted(pathColour) << ", penwidth=\"3\"";
    out << "];\n";
    for (const std::size_t part : device.parts)
        writeNode(out, view, part);
    if (device.parts.empty() || hasLooseJoin(view.graph, index))
        out << "    " << deviceNodeName(index) << " [label=\""
            << (device.hasTopology ? "connectors unknown" : "no hardware graph") << "\", style=\"dashed\"];\n";
    out << "  }\n";
}

/// How an edge looks: what it is by its line, whether it is on the marked path by its colour.
std::string edgeStyle(Graph::Edge::Kind kind, bool isOnPath)
{
    const std::string path = std::string("color=") + dotQuoted(pathColour) + ", penwidth=\"3\"";
    switch (kind)
    {
    case Graph::Edge::Kind::join:
        return (isOnPath ? path : "penwidth=\"2\"") + ", arrowhead=\"none\", tooltip=\"join\"";
    case Graph::Edge::Kind::path:
        return (isOnPath ? path : "color=\"#868E96\"") +
               ", style=\"dashed\", arrowhead=\"none\", tooltip=\"signal path\"";
    case Graph::Edge::Kind::wire:
        break;
    }
    return (isOnPath ? path + ", " : "") + "tooltip=\"wire\"";
}

/// Whether the edge leads from the chosen input into its selector.
bool isChosen(const Graph& graph, const Graph::Edge& edge)
{
    if (edge.kind != Graph::Edge::Kind::wire || !edge.to)
        return false;
    const std::optional<std::uint32_t>& selection = graph.parts[*edge.to].selection;
    return selection && graph.parts[edge.from].number == selection;
}

void writeEdge(std::ostream& out, const GraphView& view, const Graph::Edge& edge)
{
    const std::string to = edge.to ? nodeName(*edge.to) : deviceNodeName(edge.toDevice.value_or(0));
    out << "  " << nodeName(edge.from) << " -> " << to << " [" << edgeStyle(edge.kind, view.isOnPath(edge));
    if (edge.kind == Graph::Edge::Kind::path) // wires alone decide where nodes are
        out << ", constraint=\"false\"";
    if (isChosen(view.graph, edge))
        out << ", " << chosenStyle;
    out << "];\n";
}

void writeSample(std::ostream& out, const char* name, const Look& look)
{
    out << "    " << dotQuoted(std::string("legend ") + name) << " [label=" << dotQuoted(name)
        << ", shape=" << dotQuoted(look.shape) << ", fillcolor=" << dotQuoted(look.fill) << "];\n";
}

/// A line between two points, with its meaning on it.
void writeSample(std::ostream& out, const char* name, const std::string& style)
{
    const std::string from = dotQuoted(std::string("legend from ") + name);
    const std::string to = dotQuoted(std::string("legend to ") + name);
    out << "    " << from << " [shape=\"point\"];\n    " << to << " [shape=\"point\"];\n    " << from << " -> " << to
        << " [" << style << ", label=" << dotQuoted(name) << "];\n";
}

/// What the shapes and lines mean, as a cluster of its own.
void writeLegend(std::ostream& out, const GraphView& view)
{
    out << "  subgraph \"clusterLegend\" {\n    graph [label=\"legend\", style=\"dotted\"];\n";
    writeSample(out, "connector", connectorLook);
    writeSample(out, "volume and its level", volumeLook);
    writeSample(out, "mute", muteLook);
    writeSample(out, "selector and its chosen input", selectorLook);
    writeSample(out, "other node", otherLook);
    writeSample(out, "endpoint", endpointLook);
    writeSample(out, "wire within a device", edgeStyle(Graph::Edge::Kind::wire, false));
    writeSample(out, "wire of the chosen input", edgeStyle(Graph::Edge::Kind::wire, false) + ", arrowhead=\"dot\"");
    writeSample(out, "join between devices", edgeStyle(Graph::Edge::Kind::join, false));
    writeSample(out, "signal path within a device", edgeStyle(Graph::Edge::Kind::path, false));
    if (!view.path.empty())
        writeSample(out, "path of the marked endpoint", edgeStyle(Graph::Edge::Kind::wire, true));
    out << "  }\n";
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

std::string dotText(const GraphView& view, const std::string& title)
{
    std::ostringstream out;
    out << "// Thick lines join devices, arrows are wires within a device, dashed lines are signal paths.\n"
        << "digraph " << dotQuoted(title) << " {\n"
        << "  graph [rankdir=\"LR\", fontname=\"Helvetica\", compound=\"true\", ranksep=\"0.6\"];\n"
        << "  node [fontname=\"Helvetica\", fontsize=\"10\", style=\"rounded,filled\"];\n"
        << "  edge [fontname=\"Helvetica\", fontsize=\"9\"];\n";
    for (std::size_t i = 0; i < view.graph.devices.size(); ++i)
        writeDevice(out, view, i);
    for (const Graph::Edge& edge : view.graph.edges)
        writeEdge(out, view, edge);
    writeLegend(out, view);
    out << "}\n";
    return out.str();
}
}
