// What the client layer makes of hardware graphs that no hardware has.
#include "tests/hostile/client/hostileclienttest.h"

#include <algorithm>
#include <string>

namespace
{
using namespace sonavit;
using hostile::honest;
using testing::IsEmpty;
using testing::SizeIs;

class ClientHardware : public hostile::HostileClientTest
{
protected:
    /// Starts the platform of that name.
    void beginWith(const std::string& name)
    {
        for (const hostile::Topic& topic : hostile::topics())
        {
            for (const hostile::Platform& platform : topic.platforms())
            {
                if (platform.name == name)
                {
                    begin(platform);
                    return;
                }
            }
        }
        FAIL() << "there is no platform " << name;
    }

    std::vector<Control> controlsOfSpeaker()
    {
        const Result<std::vector<Control>> controls = audio().controls(EndpointId(honest().speaker));
        return controls ? *controls : std::vector<Control>();
    }
};

std::size_t joinsIn(const Graph& graph)
{
    return static_cast<std::size_t>(std::count_if(graph.edges.begin(), graph.edges.end(),
                                                  [](const Graph::Edge& edge)
                                                  { return edge.kind == Graph::Edge::Kind::join; }));
}
}

TEST_F(ClientHardware, OfConnectorsInARingIsWalkedOnce)
{
    beginWith("ConnectorsInARing");

    const Graph graph = audio().graph().value();

    const auto connectors =
        std::count_if(graph.parts.begin(), graph.parts.end(), [](const Graph::Part& part) { return part.isConnector; });
    EXPECT_EQ(static_cast<std::size_t>(connectors), joinsIn(graph));
    EXPECT_THAT(controlsOfSpeaker(), SizeIs(1));
}

TEST_F(ClientHardware, OfConnectorsJoinedToThemselvesHasNoControls)
{
    beginWith("ConnectorsJoinedToThemselves");

    for (const Graph::Edge& edge : audio().graph().value().edges)
    {
        if (edge.kind == Graph::Edge::Kind::join)
        {
            EXPECT_EQ(edge.from, edge.to);
        }
    }
    EXPECT_THAT(controlsOfSpeaker(), IsEmpty());
}

TEST_F(ClientHardware, InWhichAllPartsAreConnectedHasEachControlOnce)
{
    beginWith("AllPartsConnectedWithAll");

    EXPECT_THAT(controlsOfSpeaker(), SizeIs(1));
}

TEST_F(ClientHardware, OfTenThousandSubunitsHasThoseUpToTheLimitAndAProblem)
{
    sim::Machine machine = honest().machine;
    hostile::addSubunits(machine, 10000);
    begin(machine);

    const Graph graph = audio().graph().value();

    const auto isAboutCount = [](const Problem& problem)
    { return problem.operation() == "IDeviceTopology::GetSubunitCount"; };
    EXPECT_EQ(1, std::count_if(graph.problems.begin(), graph.problems.end(), isAboutCount));
    EXPECT_LT(4096u, graph.parts.size());
    EXPECT_GT(10000u, graph.parts.size());
    EXPECT_THAT(controlsOfSpeaker(), SizeIs(1));
}

TEST_F(ClientHardware, OfAThousandVolumesAroundOneMuteHasThemAll)
{
    beginWith("AThousandVolumesAroundOneMute");

    EXPECT_LE(1000u, controlsOfSpeaker().size());
}
