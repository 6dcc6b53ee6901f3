// The monitor while many things happen on several threads.
#include "tests/program/programtest.h"
#include "tests/support/storm.h"

#include <atomic>
#include <chrono>
#include <sstream>
#include <thread>

namespace
{
class ProgramMonitorInAStorm : public support::ProgramTest
{
};
}

TEST_F(ProgramMonitorInAStorm, ShowsWholeLinesAndTheLastState)
{
    run(support::smallMachine());
    simulation().deliverAtOnce(false);
    std::atomic<bool> isOver{false};
    std::atomic<bool> isListening{false};
    std::ostringstream out;
    std::ostringstream err;
    sonavit::program::Environment own = environment(out, err);
    own.pause = [&](std::chrono::milliseconds)
    {
        isListening = true;
        std::this_thread::yield();
        return isOver.load();
    };
    const unsigned events = support::stormEvents(500);
    std::thread happening(
        [&]
        {
            while (!isListening)
                std::this_thread::yield();
            for (unsigned event = 0; event < events; ++event)
                simulation().events().setVolume(support::speakerId(), -static_cast<float>(event % 60), event % 2 == 0);
        });
    std::thread plugging(
        [&]
        {
            while (!isListening)
                std::this_thread::yield();
            for (unsigned event = 0; event < events; ++event)
                simulation().events().setState(support::headphonesId(),
                                               event % 2 == 0 ? sim::stateActive : sim::stateUnplugged);
            happening.join();
            simulation().events().setState(support::headphonesId(), sim::stateDisabled);
            simulation().events().waitForClients();
            isOver = true;
        });

    const int code = sonavit::program::run({"monitor"}, own);
    plugging.join();

    EXPECT_EQ(0, code);
    EXPECT_EQ("", err.str());
    support::Answer answer;
    answer.out = out.str();
    std::string last;
    for (const std::string& line : answer.lines())
    {
        EXPECT_THAT(line, testing::AnyOf(testing::MatchesRegex("..:..:......  .*Speakers  .*"),
                                         testing::MatchesRegex("..:..:......  .*Headphones  .*")));
        if (line.find("Headphones") != std::string::npos)
            last = line;
    }
    EXPECT_THAT(last, testing::EndsWith("disabled"));
}
