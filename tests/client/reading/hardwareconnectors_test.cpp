#include "tests/client/reading/hardwaretest.h"

#include <string>
#include <vector>

namespace
{
using testing::Each;

/// What connectors lead to, on a machine with two adapters that are joined.
class HardwareWalkJoins : public HardwareTest
{
};

TEST_F(HardwareWalkJoins, AreFollowedByTheConnectorBehindThemIfTheyDoNotTellItsDevice)
{
    sim::Simulation& simulation = start("studio");
    const std::vector<std::string> usual = edgesOf(walkAll().graph());
    const sim::PlannedFault fault = simulation.faults().fail("IConnector::GetDeviceIdConnectedTo", E_ACCESSDENIED);

    const sonavit::Graph graph = walkAll().graph();

    EXPECT_GT(fault.fired(), 0u);
    EXPECT_EQ(usual, edgesOf(graph));
    std::vector<std::string> operations;
    for (const sonavit::Problem& problem : graph.problems)
        operations.push_back(problem.operation());
    EXPECT_FALSE(operations.empty());
    EXPECT_THAT(operations, Each("IConnector::GetDeviceIdConnectedTo"));
}
}
