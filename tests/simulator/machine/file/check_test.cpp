#include "simulator/machine/file/check.h"

#include "tests/simulator/machine/file/machinesample.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <functional>

namespace
{
using testing::ElementsAre;

/// What the check says about the sample after @p change, as "place: expected ..., found ...".
std::vector<std::string> problemsAfter(const std::function<void(sim::Machine&)>& change)
{
    sim::Machine machine = sample::machine();
    change(machine);
    std::vector<std::string> result;
    for (const sim::MachineProblem& problem : sim::checkMachine(machine))
        result.push_back(problem.place + ": expected " + problem.expected + ", found " + problem.found);
    return result;
}

TEST(MachineCheck, FindsNothingInTheSample)
{
    EXPECT_THAT(problemsAfter([](sim::Machine&) {}), testing::IsEmpty());
}

TEST(MachineCheck, FindsBitsOfHardwareSupportWithoutAName)
{
    EXPECT_THAT(problemsAfter([](sim::Machine& machine) { machine.endpoints[0].volume->hardwareSupport = 9; }),
                ElementsAre("/endpoints/0/volume/hardwareSupport: expected a sum of 1, 2 and 4, found 9"));
}

TEST(MachineCheck, FindsPeriodsThatNoStreamCouldHave)
{
    const auto after = [](std::uint32_t usual, std::uint32_t minimum)
    {
        return problemsAfter(
            [&](sim::Machine& machine) {
                machine.endpoints[0].periods = sim::DevicePeriods{usual, minimum};
            });
    };

    EXPECT_THAT(after(50000000, 50000000), testing::IsEmpty());
    EXPECT_THAT(after(0, 1),
                ElementsAre("/endpoints/0/periods/default: expected a period from 1 to 50000000, found 0",
                            "/endpoints/0/periods/minimum: expected a period from 1 to the default, found 1"));
    EXPECT_THAT(after(50000001, 0),
                ElementsAre("/endpoints/0/periods/default: expected a period from 1 to 50000000, found 50000001",
                            "/endpoints/0/periods/minimum: expected a period from 1 to the default, found 0"));
}

TEST(MachineCheck, FindsOptionsWithoutAName)
{
    const auto change = [](sim::Machine& machine)
    {
        machine.removedEndpoints = static_cast<sim::RemovedEndpoints>(2);
        machine.callbackThread = static_cast<sim::CallbackThread>(3);
        machine.captureAccess = static_cast<sim::CaptureAccess>(4);
    };

    EXPECT_THAT(problemsAfter(change), ElementsAre("/removedEndpoints: expected \"open\" or \"unknown\", found 2",
                                                   "/callbackThread: expected \"com\" or \"bare\", found 3",
                                                   "/captureAccess: expected \"allowed\" or \"denied\", found 4"));
}

TEST(MachineCheck, FindsAnAccountAFlowARoleAndAKindOfConnectorWithoutAName)
{
    const auto change = [](sim::Machine& machine)
    {
        machine.account = static_cast<sim::Account>(2);
        machine.endpoints[0].topology->connectors[0].type = static_cast<ConnectorType>(7);
        machine.endpoints[0].defaultFor = {ERole_enum_count};
        machine.script[8].flow = eAll;
        machine.script[8].role = ERole_enum_count;
    };

    EXPECT_THAT(problemsAfter(change),
                ElementsAre("/account: expected \"administrator\" or \"ordinary\", found 2",
                            "/endpoints/0/topology/connectors/0/kind: expected \"unknown\", \"physicalInternal\", "
                            "\"physicalExternal\", \"softwareIo\", \"softwareFixed\" or \"network\", found 7",
                            "/endpoints/0/defaultFor/0: expected \"console\", \"multimedia\" or \"communications\", "
                            "found 3",
                            "/script/8/flow: expected \"render\" or \"capture\", found 2",
                            "/script/8/role: expected \"console\", \"multimedia\" or \"communications\", found 3"));
}
}
