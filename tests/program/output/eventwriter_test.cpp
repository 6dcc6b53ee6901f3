#include "tests/program/programtest.h"

#include <chrono>
#include <functional>
#include <sstream>
#include <string>
#include <utility>

namespace
{
class ProgramEventWriter : public support::ProgramTest
{
protected:
    /// The line of the monitor after @p action.
    std::string lineAfter(const std::function<void()>& action)
    {
        std::ostringstream out;
        std::ostringstream err;
        sonavit::program::Environment own = environment(out, err);
        support::Observer observer(simulation());
        bool hasHappened = false;
        const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(30);
        own.pause = [&](std::chrono::milliseconds longest)
        {
            if (!std::exchange(hasHappened, true))
                action();
            else
                observer.wait(longest);
            return !out.str().empty() || std::chrono::steady_clock::now() > deadline;
        };
        sonavit::program::run({"monitor"}, own);
        return out.str();
    }
};
}

TEST_F(ProgramEventWriter, TellsTheVolumeIfOnlyTheBalanceChanges)
{
    run(support::smallMachine());

    const std::string line = lineAfter(
        [this]
        {
            IAudioEndpointVolume* const volume = simulation().endpointVolume(support::speakerId());
            EXPECT_EQ(S_OK, volume->SetChannelVolumeLevel(1, -30.0f, nullptr));
            volume->Release();
        });

    EXPECT_THAT(line, testing::EndsWith("Analog Audio  Speakers    volume 72% (-18.00 dB)\n"));
}
