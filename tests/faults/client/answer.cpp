#include "tests/faults/client/answer.h"

using namespace sonavit;

namespace faults::client
{
namespace
{
/// Ids are equal whatever their case.
std::string nameOf(const EndpointId& endpoint)
{
    std::string text = endpoint.text();
    for (char& letter : text)
        letter = letter >= 'A' && letter <= 'Z' ? static_cast<char>(letter - 'A' + 'a') : letter;
    return "endpoint " + text;
}

template<class Values>
std::string listText(const Values& values)
{
    std::ostringstream out;
    for (const auto& value : values)
        out << value << "; ";
    return out.str();
}
}

void Answer::add(const std::string& prefix, const Level& level)
{
    facts.add(prefix + " percent", level.percent ? std::optional<double>(level.percent->value()) : std::nullopt);
    facts.add(prefix + " decibels", level.decibels);
}

void Answer::add(const EndpointId& endpoint, const Volume& volume)
{
    const std::string prefix = nameOf(endpoint) + ": volume";
    add(prefix, volume.master);
    facts.add(prefix + " range", volume.range);
    facts.add(prefix + " mute", volume.isMuted);
    facts.add(prefix + " in hardware", volume.isInHardware);
    if (!volume.channels)
        return;
    facts.add(prefix + " channels", volume.channels->size());
    for (std::size_t channel = 0; channel < volume.channels->size(); ++channel)
        add(prefix + " channel " + std::to_string(channel), (*volume.channels)[channel]);
}

/// Jacks come from the properties where the hardware does not tell, the card from the container or the adapter where
/// there is no instance path.
void Answer::add(const Endpoint& endpoint)
{
    const std::string prefix = nameOf(endpoint.id()) + ": ";
    facts.add(prefix + "description", endpoint.description());
    facts.add(prefix + "interface name", endpoint.interfaceName());
    facts.add(prefix + "flow", endpoint.flow());
    facts.add(prefix + "state", endpoint.state());
    facts.add(prefix + "format", endpoint.format());
    facts.add(prefix + "speakers", endpoint.speakers());
    facts.addDerived(prefix + "wave id", endpoint.waveId()); // two numbers can be those of one endpoint
    facts.add(prefix + "DirectSound id", endpoint.directSoundId());
    facts.add(prefix + "driver node", endpoint.driverNode());
    facts.add(prefix + "container", endpoint.container());
    facts.add(prefix + "instance path", endpoint.instancePath());
    facts.addDerived(prefix + "jacks", listText(endpoint.jacks()));
    if (endpoint.volume())
        add(endpoint.id(), *endpoint.volume());
    for (const EndpointProblem& each : endpoint.problems())
        problems.push_back(each.problem);
    if (endpoint.title().empty())
        complaints.push_back(prefix + "it has no title");
}

void Answer::add(const Card& card)
{
    const std::string prefix = "card " + card.id().text() + ": ";
    facts.addDerived(prefix + "instance id", card.instanceId());
    facts.addDerived(prefix + "parent", card.parent());
    facts.addDerived(prefix + "container", card.container());
    facts.addDerived(prefix + "bus", card.bus());
    facts.addDerived(prefix + "title", card.title());
    for (const Endpoint& endpoint : card.endpoints())
    {
        facts.addDerived(nameOf(endpoint.id()) + ": card", card.id());
        add(endpoint);
    }
    add(card.problems());
    if (card.title().empty())
        complaints.push_back(prefix + "it has no title");
    if (card.endpoints().empty())
        complaints.push_back(prefix + "it has no endpoints");
}

void Answer::add(const Snapshot& snapshot)
{
    add(snapshot.cards());
    add(snapshot.content().hardware);
    add(snapshot.problems());
    facts.add("service", snapshot.service());
    for (const Flow flow : allFlows)
    {
        for (const Role role : allRoles)
        {
            const std::optional<Endpoint> endpoint = snapshot.defaultEndpoint(flow, role);
            facts.add(std::string("default ") + wordsOf(flow) + " for " + wordsOf(role),
                      endpoint ? std::optional<EndpointId>(endpoint->id()) : std::nullopt);
        }
    }
}

void Answer::addProblems(const Snapshot& snapshot)
{
    Answer whole;
    whole.add(snapshot);
    add(whole.problems);
}

/// The owner depends on the way on which a walk has met the control.
void Answer::add(const Control& control)
{
    const std::string prefix = "control " + control.id.text() + ": ";
    facts.add(prefix + "name", control.name);
    facts.addDerived(prefix + "owner", control.ownerName);
    facts.addDerived(prefix + "owner's type", control.ownerType);
    facts.addDerived(prefix + "mute there", control.hasMute);
    facts.add(prefix + "mute", control.isMuted);
    if (control.channels)
    {
        facts.add(prefix + "channels", control.channels->size());
        for (std::size_t channel = 0; channel < control.channels->size(); ++channel)
        {
            const std::string name = prefix + "channel " + std::to_string(channel);
            add(name, (*control.channels)[channel].level);
            facts.add(name + " range", (*control.channels)[channel].range);
        }
    }
    add(control.problems);
    if (control.title().empty())
        complaints.push_back(prefix + "it has no title");
}

void Answer::add(const Selector& selector)
{
    const std::string prefix = "selector " + selector.id.text() + ": ";
    facts.add(prefix + "name", selector.name);
    facts.add(prefix + "device", selector.deviceId);
    facts.addDerived(prefix + "device's name", selector.deviceName);
    facts.add(prefix + "selection", selector.selection);
    for (const SelectorInput& input : selector.inputs)
    {
        if (!input.number)
            continue;
        const std::string name = prefix + "input " + std::to_string(*input.number);
        facts.add(name, input.name);
        facts.addDerived(name + " connector", input.connectorName);
        facts.addDerived(name + " connector's type", input.connectorType);
    }
    add(selector.problems);
    if (selector.title().empty())
        complaints.push_back(prefix + "it has no title");
}

void Answer::add(const Hardware& hardware)
{
    for (const Hardware::EndpointControls& each : hardware.controls)
        add(each.controls);
    add(hardware.selectors);
    add(hardware.problems);
}

namespace
{
/// The name of a part in the pieces of an answer; empty for one without an id.
std::string nameOf(const Graph& graph, std::size_t part)
{
    return part < graph.parts.size() ? graph.parts[part].id : std::string();
}

void addEdge(Facts& facts, const Graph& graph, const Graph::Edge& edge)
{
    std::string from = nameOf(graph, edge.from);
    std::string to = edge.to ? nameOf(graph, *edge.to) : std::string();
    if (from.empty() || to.empty())
        return;
    if (to < from && edge.kind != Graph::Edge::Kind::wire) // the direction of the sound may not be known
        std::swap(from, to);
    facts.addDerived("edge from " + from + " to " + to, edge.kind);
}

void addPart(Answer& answer, const Graph::Part& part)
{
    if (part.id.empty())
        return;
    const std::string prefix = "part " + part.id + ": ";
    answer.facts.add(prefix + "number", part.number);
    answer.facts.addDerived(prefix + "connector", part.isConnector);
    answer.facts.add(prefix + "name", part.name);
    answer.facts.add(prefix + "type", part.type);
    answer.facts.add(prefix + "direction", part.direction);
    answer.facts.add(prefix + "joined", part.isJoined);
    answer.facts.add(prefix + "mute", part.isMuted);
    answer.facts.add(prefix + "selection", part.selection);
    const std::vector<ControlChannel> channels = part.channels.value_or(std::vector<ControlChannel>());
    for (std::size_t channel = 0; channel < channels.size(); ++channel)
        answer.facts.add(prefix + "channel " + std::to_string(channel), channels[channel].level.decibels);
}
}

void Answer::add(const Graph& graph)
{
    for (const Graph::Device& device : graph.devices)
    {
        const std::string prefix = "device " + device.id + ": ";
        facts.addDerived(prefix + "kind", device.kind);
        facts.addDerived(prefix + "name", device.name);
        facts.add(prefix + "flow", device.flow);
        facts.add(prefix + "state", device.state);
        facts.addDerived(prefix + "topology", device.hasTopology);
        if (device.name.empty())
            complaints.push_back(prefix + "it has no name");
    }
    for (const Graph::Part& part : graph.parts)
        addPart(*this, part);
    for (const Graph::Edge& edge : graph.edges)
    {
        if (edge.from >= graph.parts.size() || (edge.to && *edge.to >= graph.parts.size()))
            complaints.push_back("an edge leads to a part that is not in the graph");
        addEdge(facts, graph, edge);
    }
    add(graph.problems);
}
}
