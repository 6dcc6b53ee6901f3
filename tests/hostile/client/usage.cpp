#include "tests/hostile/client/usage.h"

#include "simulator/machine/propertykeys.h"
#include "sonavit/capture.h"
#include "sonavit/diagnosis.h"
#include "tests/hostile/texts.h"

#include <gtest/gtest.h>

#include <optional>
#include <set>
#include <sstream>
#include <string>
#include <vector>

namespace hostile
{
namespace
{
using namespace sonavit;

template<class Value>
void expectPrinted(const Value& value)
{
    std::ostringstream out;
    out << value;
    expectPrintable(out.str(), false);
}

void expectProblems(const std::vector<Problem>& problems)
{
    for (const Problem& problem : problems)
    {
        EXPECT_NE("", problem.operation());
        expectSaid(problem.sentence());
    }
}

/// A value, or a problem that says something.
template<class Value>
bool isThere(const Result<Value>& result)
{
    if (!result)
        expectProblems({result.problem()});
    return static_cast<bool>(result);
}

void expectLevel(const Level& level)
{
    if (level.percent)
    {
        EXPECT_GE(level.percent->value(), 0.0);
        EXPECT_LE(level.percent->value(), 100.0);
    }
}

void expectEndpoint(const Endpoint& endpoint)
{
    EXPECT_FALSE(endpoint.id().isEmpty());
    expectSaid(endpoint.title());
    expectUtf8(endpoint.id().text());
    if (endpoint.volume())
    {
        expectLevel(endpoint.volume()->master);
        if (endpoint.volume()->channels)
        {
            for (const Level& level : *endpoint.volume()->channels)
                expectLevel(level);
        }
    }
    for (const EndpointProblem& problem : endpoint.problems())
        expectProblems({problem.problem});
}

void expectSnapshot(const Snapshot& snapshot)
{
    std::set<EndpointId> endpoints;
    std::set<CardId> cards;
    for (const Card& card : snapshot.cards())
    {
        EXPECT_TRUE(cards.insert(card.id()).second) << card.id();
        EXPECT_FALSE(card.endpoints().empty());
        expectSaid(card.title());
        for (const Endpoint& endpoint : card.endpoints())
        {
            EXPECT_TRUE(endpoints.insert(endpoint.id()).second) << endpoint.id();
            expectEndpoint(endpoint);
        }
    }
    expectProblems(snapshot.problems());
    expectPrinted(snapshot);
}

void expectGraph(const Graph& graph)
{
    for (const Graph::Edge& edge : graph.edges)
    {
        EXPECT_LT(edge.from, graph.parts.size());
        EXPECT_TRUE(edge.to.has_value() != edge.toDevice.has_value());
        EXPECT_LT(edge.to.value_or(0), graph.parts.size());
        EXPECT_LT(edge.toDevice.value_or(0), graph.devices.size());
    }
    for (const Graph::Device& device : graph.devices)
    {
        for (const std::size_t part : device.parts)
            EXPECT_LT(part, graph.parts.size());
    }
    expectProblems(graph.problems);
    expectPrinted(graph);
}

void expectControls(const std::vector<Control>& controls)
{
    for (const Control& control : controls)
    {
        expectSaid(control.title());
        expectProblems(control.problems);
        expectPrinted(control);
    }
}

void expectSelectors(const std::vector<Selector>& selectors)
{
    for (const Selector& selector : selectors)
    {
        expectSaid(selector.title());
        for (const SelectorInput& input : selector.inputs)
            expectSaid(input.title());
        expectProblems(selector.problems);
        expectPrinted(selector);
    }
}

void expectReference(System& audio, const EndpointId& endpoint)
{
    const Result<Reference> reference = audio.refer(endpoint);
    if (!isThere(reference))
        return;
    constexpr std::size_t longest = 512;
    EXPECT_LE(reference->text().size(), longest);
    const Result<Reference> parsed = Reference::parse(reference->text());
    ASSERT_TRUE(parsed) << parsed.problem();
    EXPECT_EQ(*reference, *parsed);
    expectSaid(audio.resolve(*parsed).sentence());
}

/// Sets the level of a control to what it is.
void setControl(System& audio, const EndpointId& endpoint, const Control& control)
{
    if (!control.channels || control.channels->empty() || !control.channels->front().level.decibels)
        return;
    isThere(audio.setControl(endpoint, control.id, LevelChange(*control.channels->front().level.decibels)));
    isThere(audio.setControlMute(endpoint, control.id, control.isMuted.value_or(false)));
}
}

void readEverything(System& audio)
{
    const Snapshot snapshot = audio.snapshot();
    expectSnapshot(snapshot);
    for (const Endpoint& endpoint : snapshot.endpoints())
    {
        if (const auto controls = audio.controls(endpoint.id()); isThere(controls))
            expectControls(*controls);
        expectReference(audio, endpoint.id());
        EXPECT_FALSE(audio.find(endpoint.id().text()).empty());
    }
    for (const Card& card : snapshot.cards())
    {
        if (const auto selectors = audio.selectors(card.id()); isThere(selectors))
            expectSelectors(*selectors);
    }
    if (const auto graph = audio.graph(); isThere(graph))
        expectGraph(*graph);
}

void changeEverything(System& audio)
{
    const Snapshot snapshot = audio.snapshot();
    for (const Endpoint& endpoint : snapshot.endpoints())
    {
        isThere(audio.setVolume(endpoint.id(), Percent(50)));
        isThere(audio.toggleMute(endpoint.id()));
        if (const auto controls = audio.controls(endpoint.id()))
        {
            for (const Control& control : *controls)
                setControl(audio, endpoint.id(), control);
        }
        if (endpoint.format())
            isThere(audio.holdFormat(endpoint.id(), *endpoint.format()));
    }
    const Result<Settings> settings = audio.settings();
    if (!isThere(settings))
        return;
    const Result<Settings> parsed = Settings::parse(settings->text());
    ASSERT_TRUE(parsed) << parsed.problem();
    EXPECT_EQ(*settings, *parsed);
    if (const auto report = audio.restore(*parsed); isThere(report))
        expectSaid(report->sentence());
}

void describeEverything(System& audio)
{
    if (const Result<Capture> captured = capture(audio); isThere(captured))
        expectProblems(captured->problems);
    if (const auto findings = diagnose(audio); isThere(findings))
    {
        for (const Finding& finding : *findings)
        {
            expectSaid(finding.sentence);
            expectSaid(finding.subject);
        }
    }
    for (const Endpoint& endpoint : audio.snapshot().endpoints())
    {
        const auto reasons = explain(audio, endpoint.id());
        if (!isThere(reasons))
            continue;
        for (const Reason& reason : *reasons)
        {
            expectSaid(reason.conclusion);
            expectPrinted(reason);
        }
    }
}

void announceEverything(System& audio, sim::Simulation& simulation)
{
    std::vector<sim::Text> ids = {std::nullopt, "", "{unknown}", std::string(0x10000, 'x'), "\xF0\x90\x80\x80"};
    for (const sim::Endpoint& endpoint : simulation.machine().endpoints)
        ids.emplace_back(endpoint.id);
    std::vector<Watch> watches;
    for (const Card& card : audio.snapshot().cards())
    {
        if (auto watch = audio.watch(card.id()); isThere(watch))
            watches.push_back(std::move(*watch));
    }
    const Subscription subscription = audio.subscribe([](const Change& change) { expectPrinted(change); });
    for (const sim::Text& id : ids)
    {
        simulation.events().announceAdded(id);
        simulation.events().announceState(id, 0xFFFFFFFF);
        simulation.events().announceProperty(id, sim::keys::friendlyName);
        simulation.events().announceDefault(static_cast<EDataFlow>(77), static_cast<ERole>(77), id);
        simulation.events().announceRemoved(id);
    }
    simulation.events().waitForClients();
    isThere(audio.refresh());
    audio.poll();
    expectSnapshot(audio.snapshot());
}
}
