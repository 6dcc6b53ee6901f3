#include "tests/program/programtest.h"

#include <chrono>
#include <sstream>
#include <string>

namespace
{
class ProgramMonitorEnd : public support::ProgramTest
{
};
}

TEST_F(ProgramMonitorEnd, IsTheEndOfItsLines)
{
    run(support::smallMachine());
    std::ostringstream out;
    std::ostringstream err;
    sonavit::program::Environment own = environment(out, err);
    own.pause = [](std::chrono::milliseconds) { return true; };
    ASSERT_EQ(0, sonavit::program::run({"monitor"}, own));
    support::Observer observer(simulation());

    simulation().events().setState(support::headphonesId(), sim::stateActive);
    simulation().events().setVolume(support::speakerId(), -3.0f);
    simulation().events().waitForClients();
    observer.wait(std::chrono::seconds(10));

    EXPECT_EQ("", out.str());
}

TEST_F(ProgramMonitorEnd, IsExplainedBeforeAnythingIsSaidOfTheMachinesEvents)
{
    isTerminal = true;

    const std::string said = call({"monitor", "--machine", "virtual"}).err;

    EXPECT_THAT(said, testing::EndsWith("; Ctrl-C ends it.\nThis machine has no events.\n"));
}
