// The end of the client layer's DLL, in every order that a process can cause; each order in a process of its own.

#include "tests/windows/hostprocess.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>

using hostprocess::Outcome;
using testing::Contains;
using testing::Each;
using testing::ElementsAre;

namespace
{
class ClientUnloading : public testing::Test
{
protected:
    static Outcome run(const std::string& machine, const std::string& end)
    {
        return hostprocess::run(SONAVIT_CLIENT_HOST, machine, end);
    }
};
}

TEST_F(ClientUnloading, AtTheEndOfTheProcessWaitsForNothingOfALivingSystem)
{
    for (const char* const machine : {"quiet", "hanging"})
    {
        const Outcome kept = run(machine, "keep");
        const Outcome left = run(machine, "static");
        const Outcome exited = run(machine, "exit");

        EXPECT_EQ(0u, kept.code) << machine;
        EXPECT_THAT(kept.lines, ElementsAre("used", "ends")) << machine;
        EXPECT_EQ(0u, left.code) << machine;
        EXPECT_THAT(left.lines, ElementsAre("used", "ends")) << machine;
        EXPECT_EQ(0u, exited.code) << machine;
        EXPECT_THAT(exited.lines, ElementsAre("used")) << machine;
    }
}

TEST_F(ClientUnloading, AfterTheEndOfTheSystemUnloadsTheLibrary)
{
    const Outcome outcome = run("quiet", "free");

    EXPECT_EQ(0u, outcome.code);
    EXPECT_THAT(outcome.lines, ElementsAre("used", "freed", "ends"));
}

TEST_F(ClientUnloading, WithALivingSystemKeepsTheLibraryForItsThreads)
{
    for (const char* const machine : {"quiet", "busy"})
    {
        const Outcome outcome = run(machine, "free-keeping");

        EXPECT_EQ(0u, outcome.code) << machine;
        EXPECT_THAT(outcome.lines, ElementsAre("used", "the library is still there", "ends")) << machine;
    }
}

TEST_F(ClientUnloading, WhileThePlatformDoesNotAnswerKeepsTheLibraryUntilItDoes)
{
    const Outcome outcome = run("hanging", "free");

    EXPECT_EQ(0u, outcome.code);
    EXPECT_THAT(outcome.lines, ElementsAre("used", "the library is still there", "freed", "ends"));
}

TEST_F(ClientUnloading, ManyTimesOnManyThreadsUnloadsTheLibraryEachTime)
{
    for (const char* const machine : {"quiet", "busy"})
    {
        const Outcome outcome = run(machine, "in-turn");

        EXPECT_EQ(0u, outcome.code) << machine;
        ASSERT_EQ(21u, outcome.lines.size()) << machine;
        EXPECT_EQ("ends", outcome.lines.back()) << machine;
        EXPECT_THAT(std::vector<std::string>(outcome.lines.begin(), outcome.lines.end() - 1), Each("freed")) << machine;
    }
}

TEST_F(ClientUnloading, WhileEventsArriveNeitherCrashesNorHangs)
{
    const Outcome outcome = run("busy", "free");

    EXPECT_EQ(0u, outcome.code);
    EXPECT_THAT(outcome.lines, ElementsAre("used", "freed", "ends"));
    // The end of the process terminates the other threads at any point, even while they hold a lock of the system. The
    // system then ends the process at once, and the last line is missing.
    for (const char* const end : {"keep", "static", "exit"})
    {
        const Outcome ended = run("busy", end);

        EXPECT_EQ(0u, ended.code) << end;
        EXPECT_THAT(ended.lines, Contains("used")) << end;
    }
}

TEST_F(ClientUnloading, OfAnUnusedLibraryIsImmediate)
{
    const Outcome outcome = run("quiet", "unused");

    EXPECT_EQ(0u, outcome.code);
    EXPECT_THAT(outcome.lines, ElementsAre("freed", "ends"));
}
