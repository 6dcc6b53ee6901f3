#include "sonavit/graph.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <sstream>

using namespace sonavit;
using testing::ElementsAre;
using testing::IsEmpty;

namespace
{
using Kind = Graph::Device::Kind;

std::size_t addDevice(Graph& graph, Kind kind, const std::string& id, std::optional<Flow> flow = std::nullopt)
{
    Graph::Device device;
    device.kind = kind;
    device.id = id;
    device.flow = flow;
    graph.devices.push_back(device);
    return graph.devices.size() - 1;
}

std::size_t addPart(Graph& graph, std::size_t device, const std::string& id)
{
    Graph::Part part;
    part.device = device;
    part.id = id;
    graph.parts.push_back(part);
    graph.devices[device].parts.push_back(graph.parts.size() - 1);
    return graph.parts.size() - 1;
}

void connect(Graph& graph, Graph::Edge::Kind kind, std::size_t from, std::size_t to)
{
    graph.edges.push_back({kind, from, to, std::nullopt});
}

/// An output and an input on one adapter: stream -> volume -> jack, and microphone jack -> gain -> stream. The output
/// is device 0 with part 0, the input device 1 with part 1, the adapter device 2 with parts 2 to 7.
Graph cardGraph()
{
    Graph graph;
    addDevice(graph, Kind::endpoint, "{out}", Flow::output);
    addDevice(graph, Kind::endpoint, "{in}", Flow::input);
    addDevice(graph, Kind::adapter, "adapter");
    addPart(graph, 0, "endpoint out");
    addPart(graph, 1, "endpoint in");
    for (const char* const id : {"jack", "volume", "stream out", "microphone", "gain", "stream in"})
        addPart(graph, 2, id);
    connect(graph, Graph::Edge::Kind::join, 2, 0);
    connect(graph, Graph::Edge::Kind::wire, 4, 3);
    connect(graph, Graph::Edge::Kind::wire, 3, 2);
    connect(graph, Graph::Edge::Kind::join, 1, 5);
    connect(graph, Graph::Edge::Kind::wire, 5, 6);
    connect(graph, Graph::Edge::Kind::wire, 6, 7);
    connect(graph, Graph::Edge::Kind::path, 4, 2);
    return graph;
}

std::vector<std::string> idsOf(const Graph& graph, const std::vector<std::size_t>& parts)
{
    std::vector<std::string> ids;
    for (const std::size_t part : parts)
        ids.push_back(graph.parts[part].id);
    return ids;
}

std::vector<std::string> pathIds(const Graph& graph, const std::string& endpoint)
{
    return idsOf(graph, graph.pathOf(EndpointId(endpoint)));
}
}

TEST(GraphSources, AreThePartsWhoseWiresEndAtAPart)
{
    Graph graph = cardGraph();
    connect(graph, Graph::Edge::Kind::wire, 6, 3);

    EXPECT_THAT(idsOf(graph, graph.sourcesOf(3)), ElementsAre("stream out", "gain"));
    EXPECT_THAT(graph.sourcesOf(2), ElementsAre(3)); // neither joins nor paths
    EXPECT_THAT(graph.sourcesOf(4), IsEmpty());
    EXPECT_THAT(graph.sourcesOf(1000), IsEmpty());
}

TEST(GraphPath, GoesAgainstTheWiresOfAnOutputAndAlongThoseOfAnInput)
{
    const Graph graph = cardGraph();

    EXPECT_THAT(pathIds(graph, "{OUT}"), ElementsAre("endpoint out", "jack", "volume", "stream out"));
    EXPECT_THAT(pathIds(graph, "{in}"), ElementsAre("endpoint in", "microphone", "gain", "stream in"));
}

TEST(GraphPath, BranchesWhereTheSoundDoes)
{
    Graph graph = cardGraph();
    connect(graph, Graph::Edge::Kind::wire, 6, 3); // the microphone is heard on the output

    EXPECT_THAT(pathIds(graph, "{out}"),
                ElementsAre("endpoint out", "jack", "volume", "stream out", "gain", "microphone"));
}

TEST(GraphPath, CrossesJoinsBetweenAdaptersButNotIntoOtherEndpoints)
{
    Graph graph = cardGraph();
    const std::size_t adapter = addDevice(graph, Kind::adapter, "second");
    const std::size_t bridge = addPart(graph, adapter, "bridge");
    connect(graph, Graph::Edge::Kind::join, 4, bridge);
    connect(graph, Graph::Edge::Kind::join, 2, 1); // as if the jack led to the input's endpoint, too

    EXPECT_THAT(pathIds(graph, "{out}"), ElementsAre("endpoint out", "jack", "volume", "stream out", "bridge"));
}

TEST(GraphPath, ReachesAPartThatItsEndpointDoesNotList)
{
    Graph graph = cardGraph();
    const std::size_t unlisted = addPart(graph, 0, "unlisted");
    graph.devices[0].parts.pop_back();
    connect(graph, Graph::Edge::Kind::join, 2, unlisted);

    EXPECT_THAT(pathIds(graph, "{out}"), ElementsAre("endpoint out", "jack", "volume", "unlisted", "stream out"));
}

TEST(GraphPath, EndsOnACircle)
{
    Graph graph = cardGraph();
    connect(graph, Graph::Edge::Kind::wire, 2, 4);
    connect(graph, Graph::Edge::Kind::wire, 3, 3);

    EXPECT_THAT(pathIds(graph, "{out}"), ElementsAre("endpoint out", "jack", "volume", "stream out"));
}

TEST(GraphPath, IsEmptyForAnEndpointThatTheGraphDoesNotContain)
{
    const Graph graph = cardGraph();

    EXPECT_THAT(graph.pathOf(EndpointId("{other}")), IsEmpty());
    EXPECT_THAT(graph.pathOf(EndpointId("adapter")), IsEmpty());
    EXPECT_THAT(graph.pathOf(EndpointId()), IsEmpty());
    EXPECT_THAT(Graph().pathOf(EndpointId("{out}")), IsEmpty());
}

TEST(GraphPath, IgnoresEdgesToPartsThatTheGraphDoesNotHave)
{
    Graph graph = cardGraph();
    connect(graph, Graph::Edge::Kind::wire, 1000, 2);
    connect(graph, Graph::Edge::Kind::join, 2, 1000);
    graph.edges.push_back({Graph::Edge::Kind::join, 2, std::nullopt, 1});
    graph.devices[0].parts.push_back(1000);
    graph.parts[3].device = 1000;

    EXPECT_THAT(pathIds(graph, "{out}"), ElementsAre("endpoint out", "jack", "volume", "stream out"));
    EXPECT_EQ(4u, graph.restrictedTo(EndpointId("{out}")).parts.size());
}

TEST(GraphRestriction, KeepsDevicesPartsAndEdgesOfThePath)
{
    const Graph graph = cardGraph();

    const Graph path = graph.restrictedTo(EndpointId("{in}"));

    ASSERT_EQ(2u, path.devices.size());
    EXPECT_EQ("{in}", path.devices[0].id);
    EXPECT_EQ("adapter", path.devices[1].id);
    EXPECT_THAT(idsOf(path, path.devices[1].parts), ElementsAre("microphone", "gain", "stream in"));
    EXPECT_THAT(idsOf(path, {0, 1, 2, 3}), ElementsAre("endpoint in", "microphone", "gain", "stream in"));
    for (const std::size_t part : path.devices[1].parts)
        EXPECT_EQ(1u, path.parts[part].device);
    ASSERT_EQ(3u, path.edges.size());
    EXPECT_EQ((Graph::Edge{Graph::Edge::Kind::join, 0, 1, std::nullopt}), path.edges[0]);
    EXPECT_EQ((Graph::Edge{Graph::Edge::Kind::wire, 1, 2, std::nullopt}), path.edges[1]);
    EXPECT_EQ((Graph::Edge{Graph::Edge::Kind::wire, 2, 3, std::nullopt}), path.edges[2]);
}

TEST(GraphRestriction, LeavesOutSignalPathsAndLooseJoins)
{
    Graph graph = cardGraph();
    graph.edges.push_back({Graph::Edge::Kind::join, 4, std::nullopt, 1});

    const Graph path = graph.restrictedTo(EndpointId("{out}"));

    for (const Graph::Edge& edge : path.edges)
        EXPECT_TRUE(edge.kind != Graph::Edge::Kind::path && edge.to.has_value()) << edge;
    EXPECT_EQ(3u, path.edges.size());
}

TEST(GraphRestriction, KeepsAnEndpointWithoutParts)
{
    Graph graph = cardGraph();
    addDevice(graph, Kind::endpoint, "{lonely}", Flow::output);

    const Graph path = graph.restrictedTo(EndpointId("{lonely}"));

    ASSERT_EQ(1u, path.devices.size());
    EXPECT_EQ("{lonely}", path.devices[0].id);
    EXPECT_THAT(path.parts, IsEmpty());
}

TEST(GraphRestriction, IsEmptyForAnEndpointThatTheGraphDoesNotContain)
{
    EXPECT_EQ(Graph(), cardGraph().restrictedTo(EndpointId("{other}")));
}

TEST(Graph, IsEqualIfEachMemberIs)
{
    const auto differs = [](auto change)
    {
        Graph graph = cardGraph();
        change(graph);
        return graph != cardGraph() && graph == Graph(graph);
    };

    EXPECT_TRUE(differs([](Graph& graph) { graph.devices[0].kind = Kind::closed; }));
    EXPECT_TRUE(differs([](Graph& graph) { graph.devices[0].id = ""; }));
    EXPECT_TRUE(differs([](Graph& graph) { graph.devices[0].name = "x"; }));
    EXPECT_TRUE(differs([](Graph& graph) { graph.devices[0].flow.reset(); }));
    EXPECT_TRUE(differs([](Graph& graph) { graph.devices[0].state.emplace(); }));
    EXPECT_TRUE(differs([](Graph& graph) { graph.devices[0].isListed = false; }));
    EXPECT_TRUE(differs([](Graph& graph) { graph.devices[0].hasTopology = false; }));
    EXPECT_TRUE(differs([](Graph& graph) { graph.devices[0].parts.clear(); }));
    EXPECT_TRUE(differs([](Graph& graph) { graph.parts[0].device = 1; }));
    EXPECT_TRUE(differs([](Graph& graph) { graph.parts[0].id = ""; }));
    EXPECT_TRUE(differs([](Graph& graph) { graph.parts[0].number = 0; }));
    EXPECT_TRUE(differs([](Graph& graph) { graph.parts[0].isConnector = true; }));
    EXPECT_TRUE(differs([](Graph& graph) { graph.parts[0].name = ""; }));
    EXPECT_TRUE(differs([](Graph& graph) { graph.parts[0].type.emplace(); }));
    EXPECT_TRUE(differs([](Graph& graph) { graph.parts[0].direction.emplace(); }));
    EXPECT_TRUE(differs([](Graph& graph) { graph.parts[0].isJoined = false; }));
    EXPECT_TRUE(differs([](Graph& graph) { graph.parts[0].channels.emplace(); }));
    EXPECT_TRUE(differs([](Graph& graph) { graph.parts[0].isMuted = false; }));
    EXPECT_TRUE(differs([](Graph& graph) { graph.parts[0].selection = 0; }));
    EXPECT_TRUE(differs([](Graph& graph) { graph.edges[0].kind = Graph::Edge::Kind::path; }));
    EXPECT_TRUE(differs([](Graph& graph) { graph.edges[0].from = 7; }));
    EXPECT_TRUE(differs([](Graph& graph) { graph.edges[0].to.reset(); }));
    EXPECT_TRUE(differs([](Graph& graph) { graph.edges[0].toDevice = 0; }));
    EXPECT_TRUE(differs([](Graph& graph) { graph.problems.emplace_back(Problem::Kind::internal, "", "", ""); }));
    const Graph graph = cardGraph();
    EXPECT_NE(graph.devices[0], Graph::Device());
    EXPECT_NE(graph.parts[0], Graph::Part());
    EXPECT_NE(graph.edges[0], graph.edges[1]);
    EXPECT_FALSE(graph.devices[0] != graph.devices[0] || graph.parts[0] != graph.parts[0] ||
                 graph.edges[0] != graph.edges[0]);
}

TEST(Graph, IsPrintedWithDevicesPartsAndEdges)
{
    Graph graph;
    addDevice(graph, Kind::endpoint, "{out}", Flow::output);
    addPart(graph, 0, "part");
    graph.parts[0].isConnector = true;
    graph.parts[0].direction = Graph::Direction::in;
    connect(graph, Graph::Edge::Kind::wire, 0, 0);
    std::ostringstream out;
    out << graph;

    EXPECT_EQ("Graph(devices: [Device(kind: endpoint, id: \"{out}\", name: \"\", flow: output, isListed: yes, "
              "hasTopology: yes, parts: [0])], parts: [Connector(device: 0, id: \"part\", direction: in)], "
              "edges: [Edge(kind: wire, from: 0, to: 0)])",
              out.str());
}

TEST(GraphEnumerations, HaveKeys)
{
    EXPECT_STREQ("endpoint", keyOf(Kind::endpoint));
    EXPECT_STREQ("adapter", keyOf(Kind::adapter));
    EXPECT_STREQ("closed", keyOf(Kind::closed));
    EXPECT_STREQ("unknown", keyOf(static_cast<Kind>(3)));
    EXPECT_STREQ("wire", keyOf(Graph::Edge::Kind::wire));
    EXPECT_STREQ("signalPath", keyOf(Graph::Edge::Kind::path));
    EXPECT_STREQ("join", keyOf(Graph::Edge::Kind::join));
    EXPECT_STREQ("unknown", keyOf(static_cast<Graph::Edge::Kind>(-1)));
    EXPECT_STREQ("in", keyOf(Graph::Direction::in));
    EXPECT_STREQ("out", keyOf(Graph::Direction::out));
    EXPECT_STREQ("unknown", keyOf(static_cast<Graph::Direction>(2)));
}

TEST(GraphEnumerations, ArePrintedAsTheirKeys)
{
    std::ostringstream out;
    out << Graph::Device::Kind::closed << ' ' << Graph::Edge::Kind::path << ' ' << Graph::Direction::out << ' '
        << static_cast<Graph::Direction>(2);

    EXPECT_EQ("closed signalPath out unknown", out.str());
}
