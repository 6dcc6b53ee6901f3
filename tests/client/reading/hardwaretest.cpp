#include "tests/client/reading/hardwaretest.h"

std::vector<sonavit::Card> HardwareTest::cards()
{
    reading::Listing listing = reading::listEndpoints(enumerator());
    for (reading::EndpointReading& endpoint : listing.endpoints)
    {
        reading::readState(endpoint);
        reading::readProperties(endpoint);
    }
    reading::Parents parents;
    return reading::groupIntoCards(listing.endpoints, {}, parents);
}

sonavit::Card HardwareTest::cardOf(const std::string& endpointId)
{
    for (const sonavit::Card& card : cards())
    {
        for (const sonavit::Endpoint& endpoint : card.endpoints())
        {
            if (endpoint.id() == sonavit::EndpointId(endpointId))
                return card;
        }
    }
    ADD_FAILURE() << "no card has the endpoint " << endpointId;
    return {};
}

std::vector<sonavit::Control> HardwareTest::controls(const std::string& endpointId)
{
    return reading::HardwareWalk(enumerator(), {cardOf(endpointId)}).controls(sonavit::EndpointId(endpointId));
}

std::vector<sonavit::Selector> HardwareTest::selectors(const std::string& endpointId)
{
    const sonavit::Card card = cardOf(endpointId);
    return reading::HardwareWalk(enumerator(), {card}).selectors(card.id());
}

std::vector<sonavit::Problem> problemsOf(const sonavit::Hardware& hardware)
{
    std::vector<sonavit::Problem> problems = hardware.problems;
    for (const sonavit::Hardware::EndpointControls& each : hardware.controls)
    {
        for (const sonavit::Control& control : each.controls)
            problems.insert(problems.end(), control.problems.begin(), control.problems.end());
    }
    for (const sonavit::Selector& selector : hardware.selectors)
        problems.insert(problems.end(), selector.problems.begin(), selector.problems.end());
    return problems;
}

std::vector<std::string> namesOf(const std::vector<sonavit::Control>& controls)
{
    std::vector<std::string> names;
    for (const sonavit::Control& control : controls)
        names.push_back(control.name.value_or("-"));
    return names;
}

std::vector<std::string> namesOf(const std::vector<sonavit::SelectorInput>& inputs)
{
    std::vector<std::string> names;
    for (const sonavit::SelectorInput& input : inputs)
        names.push_back(input.name.value_or("-"));
    return names;
}

std::vector<std::string> edgesOf(const sonavit::Graph& graph)
{
    const auto nameOf = [&](std::size_t part)
    { return graph.parts.at(part).name.value_or("#" + std::to_string(graph.parts.at(part).number.value_or(0))); };
    std::vector<std::string> edges;
    for (const sonavit::Graph::Edge& edge : graph.edges)
    {
        using Kind = sonavit::Graph::Edge::Kind;
        const char* const arrow = edge.kind == Kind::wire ? " -> " : edge.kind == Kind::join ? " = " : " ~ ";
        edges.push_back(nameOf(edge.from) + arrow +
                        (edge.to ? nameOf(*edge.to) : graph.devices.at(edge.toDevice.value()).name));
    }
    return edges;
}

const sonavit::Graph::Part& partNamed(const sonavit::Graph& graph, const std::string& name)
{
    static const sonavit::Graph::Part noPart;
    for (const sonavit::Graph::Part& part : graph.parts)
    {
        if (part.name == name)
            return part;
    }
    ADD_FAILURE() << "the graph has no part named " << name;
    return noPart;
}

std::size_t costOf(const sim::Journal& journal)
{
    return journal.entries().without("CoTaskMemFree").without("PropVariantClear").size();
}
