#include "tests/client/model/supporthardwaredifferences.h"

#include <algorithm>
#include <iterator>
#include <optional>
#include <set>
#include <string>
#include <utility>
#include <vector>

namespace support
{
namespace
{
using sonavit::Control;
using sonavit::Graph;
using OfEndpoint = Answers::OfEndpoint;

/// The ids of the graph's parts that wires connect with a connector.
std::set<std::string> partsNextToConnectors(const Graph& graph)
{
    std::set<std::string> ids;
    for (const Graph::Edge& edge : graph.edges)
    {
        if (edge.kind != Graph::Edge::Kind::wire || !edge.to)
            continue;
        const Graph::Part& from = graph.parts[edge.from];
        const Graph::Part& to = graph.parts[*edge.to];
        if (from.isConnector)
            ids.insert(to.id);
        if (to.isConnector)
            ids.insert(from.id);
    }
    return ids;
}

/// What a control is apart from the connector next to it.
bool isSameControl(const Control& left, const Control& right)
{
    return left.channels == right.channels && left.hasMute == right.hasMute && left.isMuted == right.isMuted;
}

/// Whether the ids of two connectors differ in case alone.
bool hasTwinConnectors(const sim::Machine& machine)
{
    std::set<sonavit::EndpointId> known;
    bool hasTwins = false;
    const auto collect = [&](const sim::Device& device)
    {
        for (const sim::Connector& connector : device.topology.value_or(sim::Topology()).connectors)
            hasTwins = !known.insert(sonavit::EndpointId(connector.id)).second || hasTwins;
    };
    std::for_each(machine.endpoints.begin(), machine.endpoints.end(), collect);
    std::for_each(machine.adapters.begin(), machine.adapters.end(), collect);
    return hasTwins;
}

/// Whether the card's walk passes a device that cannot be opened: its connector is known, and so is what it leads to.
bool passesClosedDevice(const Answers::OfCard& card)
{
    return std::any_of(card.graph.devices.begin(), card.graph.devices.end(),
                       [](const Graph::Device& device)
                       { return device.kind == Graph::Device::Kind::closed && !device.parts.empty(); });
}
}

void settleLevelsBetweenNodes(Answers& client, Answers&, const sim::Machine&)
{
    for (Answers::OfCard& card : client.cards)
    {
        const std::set<std::string> nextToConnectors = partsNextToConnectors(card.graph);
        const auto isBetweenNodes = [&](const Control& control)
        { return !control.ownerName && !control.ownerType && nextToConnectors.count(control.id.text()) == 0; };
        for (OfEndpoint& endpoint : card.endpoints)
        {
            if (endpoint.controls)
                endpoint.controls->erase(
                    std::remove_if(endpoint.controls->begin(), endpoint.controls->end(), isBetweenNodes),
                    endpoint.controls->end());
        }
    }
}

void settleControlNames(Answers& client, Answers&, const sim::Machine&)
{
    const auto settle = [](OfEndpoint& endpoint)
    {
        if (!endpoint.controls)
            return;
        for (Control& control : *endpoint.controls)
        {
            control.id = {};
            control.name.reset();
        }
    };
    client.forEach(settle);
}

/// Removes each control of the object model that the client does not have at that place, if an earlier one is the same
/// but for its owner.
void settleTwiceMetControls(Answers& client, Answers& model, const sim::Machine&)
{
    const auto settle = [](OfEndpoint& clients, OfEndpoint& models)
    {
        if (!clients.controls || !models.controls)
            return;
        std::vector<Control> kept;
        for (const Control& control : *models.controls)
        {
            const bool isExpected =
                kept.size() < clients.controls->size() && (*clients.controls)[kept.size()] == control;
            const auto isSame = [&](const Control& earlier) { return isSameControl(earlier, control); };
            if (isExpected || std::none_of(kept.begin(), kept.end(), isSame))
                kept.push_back(control);
        }
        models.controls = std::move(kept);
    };
    forEachPair(client, model, settle);
}

void settleSelectorsOfEndpoints(Answers&, Answers& model, const sim::Machine& machine)
{
    for (Answers::OfCard& card : model.cards)
    {
        const auto isOfEndpoint = [&](const sonavit::Selector& selector)
        { return selector.deviceId && machine.endpoint(*selector.deviceId) != nullptr; };
        std::vector<sonavit::Selector>& all = card.selectors;
        all.erase(std::remove_if(all.begin(), all.end(), isOfEndpoint), all.end());
    }
}

/// Nothing of the hardware of such machines can be compared.
void settleTwinConnectors(Answers& client, Answers& model, const sim::Machine& machine)
{
    if (!hasTwinConnectors(machine))
        return;
    for (Answers* const answers : {&client, &model})
    {
        answers->forEach([](OfEndpoint& endpoint) { endpoint.controls.reset(); });
        for (Answers::OfCard& card : answers->cards)
        {
            card.graph = {};
            card.selectors.clear();
        }
    }
}

void settleUnreachableHardware(Answers& client, Answers& model, const sim::Machine&)
{
    const auto settle = [](OfEndpoint& clients, OfEndpoint& models)
    {
        if (!models.controls)
            clients.controls.reset();
    };
    forEachPair(client, model, settle);
    for (Answers* const answers : {&client, &model})
    {
        for (Answers::OfCard& card : answers->cards)
        {
            if (passesClosedDevice(card))
                card.selectors.clear();
        }
    }
}
}
