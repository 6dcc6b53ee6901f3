// Levels between nodes of random machines.
#include "tests/client/reading/hardwaretest.h"
#include "tests/support/randommachine.h"

#include <algorithm>
#include <cstddef>
#include <map>
#include <set>
#include <string>
#include <utility>
#include <vector>

namespace
{
/// What the wires of a graph say about levels between connectors, found part by part.
class WiresOf
{
public:
    explicit WiresOf(const sonavit::Graph& graph) : m_graph(graph) {}

    /// The ids of the volume nodes with a level between the connectors that joins and signal paths connect with those
    /// of the endpoint.
    std::set<std::string> levelsOf(const sonavit::EndpointId& endpoint) const
    {
        using Kind = sonavit::Graph::Edge::Kind;
        std::set<std::size_t> connectors;
        for (std::size_t part = 0; part < m_graph.parts.size(); ++part)
        {
            const bool isOwn = sonavit::EndpointId(m_graph.devices[m_graph.parts[part].device].id) == endpoint;
            if (isOwn && m_graph.parts[part].isConnector)
                connectors.insert(part);
        }
        connectors = spread(connectors, {Kind::join, Kind::path}, true, true);
        const std::set<std::size_t> fed = spread(connectors, {Kind::wire}, true, false);
        const std::set<std::size_t> feeding = spread(connectors, {Kind::wire}, false, true);
        std::set<std::string> levels;
        for (const std::size_t part : fed)
        {
            if (feeding.count(part) != 0 && isLevel(m_graph.parts[part]) && !isNextToConnector(part))
                levels.insert(m_graph.parts[part].id);
        }
        return levels;
    }

    /// Whether a wire connects the part with a connector; the same of a part that is named by its id.
    bool isNextToConnector(const std::string& id) const
    {
        for (std::size_t part = 0; part < m_graph.parts.size(); ++part)
        {
            if (m_graph.parts[part].id == id)
                return isNextToConnector(part);
        }
        return true;
    }

    bool isNextToConnector(std::size_t part) const
    {
        const auto isWireTo = [&](const sonavit::Graph::Edge& edge)
        {
            const bool isFrom = edge.from == part && m_graph.parts[edge.to.value_or(part)].isConnector;
            const bool isTo = edge.to == part && m_graph.parts[edge.from].isConnector;
            return edge.kind == sonavit::Graph::Edge::Kind::wire && (isFrom || isTo);
        };
        return std::any_of(m_graph.edges.begin(), m_graph.edges.end(), isWireTo);
    }

private:
    static bool isLevel(const sonavit::Graph::Part& part)
    {
        return !part.isConnector && part.channels && part.type &&
               sonavit::kindOf(*part.type) == sonavit::NodeKind::volume;
    }

    /// All parts that edges of the @p kinds lead to, forwards or backwards.
    std::set<std::size_t> spread(std::set<std::size_t> parts, const std::set<sonavit::Graph::Edge::Kind>& kinds,
                                 bool isForwards, bool isBackwards) const
    {
        std::size_t before = 0;
        while (std::exchange(before, parts.size()) != parts.size())
        {
            for (const sonavit::Graph::Edge& edge : m_graph.edges)
            {
                if (kinds.count(edge.kind) == 0 || !edge.to)
                    continue;
                if (isForwards && parts.count(edge.from) != 0)
                    parts.insert(*edge.to);
                if (isBackwards && parts.count(*edge.to) != 0)
                    parts.insert(edge.from);
            }
        }
        return parts;
    }

    const sonavit::Graph& m_graph;
};

/// Adds @p id unless the list contains it.
void addOnce(std::vector<std::string>& ids, const std::string& id)
{
    if (std::find(ids.begin(), ids.end(), id) == ids.end())
        ids.push_back(id);
}

/// Adds what only one of two neighbours reports of the wire between them to the other one.
void completeWires(sim::Device& device)
{
    std::map<std::string, sim::Part*> parts;
    for (sim::Connector& connector : device.topology.value().connectors)
        parts.emplace(connector.id, &connector);
    for (sim::Subunit& subunit : device.topology->subunits)
        parts.emplace(subunit.id, &subunit);
    for (const auto& [id, part] : parts)
    {
        for (const std::string& fed : part->outgoing)
            addOnce(parts.at(fed)->incoming, id);
        for (const std::string& source : part->incoming)
            addOnce(parts.at(source)->outgoing, id);
    }
}

/// Leaves each connector its first join, which both ends report: a graph does not say which end has reported a join.
void completeJoins(sim::Machine& machine)
{
    std::set<sonavit::EndpointId> joined;
    std::vector<sim::Join> joins;
    for (sim::Join join : machine.joins)
    {
        if (joined.count(sonavit::EndpointId(join.from)) != 0 || joined.count(sonavit::EndpointId(join.to)) != 0)
            continue;
        joined.insert({sonavit::EndpointId(join.from), sonavit::EndpointId(join.to)});
        join.bothWays = true;
        joins.push_back(join);
    }
    machine.joins = joins;
}

sim::Machine withCompleteWires(sim::Machine machine)
{
    completeJoins(machine);
    for (sim::Endpoint& endpoint : machine.endpoints)
    {
        if (endpoint.topology)
            completeWires(endpoint);
    }
    for (sim::Adapter& adapter : machine.adapters)
    {
        if (adapter.topology)
            completeWires(adapter);
    }
    return machine;
}

class HardwareWalkOfRandomMachines : public HardwareTest, public testing::WithParamInterface<std::uint32_t>
{
protected:
    static constexpr std::uint32_t machinesInATest = 20;
};
}

TEST_P(HardwareWalkOfRandomMachines, FindsTheLevelsThatTheWiresShowBetweenConnectors)
{
    start(sim::Machine());
    std::size_t count = 0;
    for (std::uint32_t seed = GetParam(); seed < GetParam() + machinesInATest && !HasFailure(); ++seed)
    {
        SCOPED_TRACE("seed " + std::to_string(seed));
        simulation().change([&](sim::Machine& machine) { machine = withCompleteWires(support::randomMachine(seed)); });
        const std::vector<sonavit::Card> all = cards();
        const reading::HardwareWalk walk(enumerator(), all);
        const sonavit::Graph graph = walk.graph();
        const WiresOf wires(graph);
        for (const sonavit::Card& card : all)
        {
            for (const sonavit::Endpoint& endpoint : card.endpoints())
            {
                std::set<std::string> found;
                for (const sonavit::Control& control : walk.controls(endpoint.id()))
                {
                    const bool isBetween = !wires.isNextToConnector(control.id.text());
                    EXPECT_TRUE(!isBetween || found.insert(control.id.text()).second) << control;
                }
                EXPECT_EQ(wires.levelsOf(endpoint.id()), found) << endpoint.id();
                count += found.size();
            }
        }
    }
    EXPECT_GT(count, 0u);
}

INSTANTIATE_TEST_SUITE_P(Seeds, HardwareWalkOfRandomMachines, testing::Values(0u, 20u, 40u, 60u, 80u));
