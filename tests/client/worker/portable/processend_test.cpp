#include "simulator/machine/file/machinefile.h"
#include "sonavit/system.h"
#include "tests/support/clienttest.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include <cstdlib>
#include <optional>

using namespace sonavit;

namespace
{
/// A process that ends in one way or another. Each runs in a process of its own, which begins at main().
class ProcessEnd : public testing::Test
{
protected:
    void SetUp() override { GTEST_FLAG_SET(death_test_style, "threadsafe"); }

    /// Uses the System as a program does.
    static bool use(System& audio)
    {
        const Snapshot snapshot = audio.snapshot();
        const std::optional<Endpoint> speakers = snapshot.defaultEndpoint(Flow::output);
        return speakers && audio.setMute(speakers->id(), true) && audio.graph() &&
               audio.watch(snapshot.cardOf(speakers->id())->id());
    }
};

/// Is destroyed after the static System, and ends the process with 3 if that has left something.
struct Judge
{
    sim::Simulation simulation{sim::findMachine("desktop")};

    ~Judge()
    {
        if (!simulation.census().empty() || simulation.journal().count("CoUninitialize") != 1)
            _exit(3);
    }
};

[[noreturn]] void endWithAStaticSystem(bool (*use)(System&))
{
    static Judge judge;
    static System audio;
    static const Subscription heard = audio.subscribe([](const Change&) {});
    std::exit(use(audio) ? 0 : 1);
}

[[noreturn]] void endWithALivingSystem(bool (*use)(System&))
{
    const sim::Simulation simulation(sim::findMachine("desktop"));
    System audio;
    const Subscription heard = audio.subscribe([](const Change&) {});
    std::exit(use(audio) ? 0 : 1);
}

/// The worker reads while the static objects of the program end.
[[noreturn]] void endInTheMiddleOfAReading()
{
    static sim::Simulation& simulation = *new sim::Simulation(sim::findMachine("crowded"));
    System::Options options;
    options.patience = std::chrono::milliseconds(0);
    static System& audio = *new System(options);
    static_cast<void>(audio.snapshot());
    for (int round = 0; round < 20; ++round)
        static_cast<void>(audio.refresh(Depth::everything));
    std::exit(simulation.journal().size() < 100000 ? 0 : 1);
}

using ProcessEndDeathTest = ProcessEnd;

TEST_F(ProcessEndDeathTest, EndsAStaticSystemAsAnyOther)
{
    EXPECT_EXIT(endWithAStaticSystem(&use), testing::ExitedWithCode(0), "");
}

TEST_F(ProcessEndDeathTest, DoesNotWaitForASystemThatLives)
{
    EXPECT_EXIT(endWithALivingSystem(&use), testing::ExitedWithCode(0), "");
}

TEST_F(ProcessEndDeathTest, MayComeInTheMiddleOfAReading)
{
    EXPECT_EXIT(endInTheMiddleOfAReading(), testing::ExitedWithCode(0), "");
}
}
