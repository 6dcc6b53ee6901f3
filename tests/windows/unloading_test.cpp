// The end of the library, in every order that a process can cause; each order in a process of its own.

#include "tests/windows/hostprocess.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <string>

using hostprocess::Outcome;
using testing::Contains;
using testing::ElementsAre;

namespace
{
class Unloading : public testing::Test
{
protected:
    static Outcome run(const std::string& machine, const std::string& end)
    {
        return hostprocess::run(SONAVIT_UNLOADING_HOST, machine, end);
    }

    static constexpr const char* takesOff = "IMMDeviceEnumerator::UnregisterEndpointNotificationCallback";
    static constexpr const char* letsGo = "IMMDeviceEnumerator::Release";
};
}

TEST_F(Unloading, AtTheEndOfTheProcessDestroysTheSharedEnumeratorInOrder)
{
    for (const char* const end : {"drop", "keep"})
    {
        const Outcome outcome = run("simulated", end);

        EXPECT_EQ(0u, outcome.code) << end;
        EXPECT_THAT(outcome.lines, ElementsAre("used", "ends", takesOff, takesOff, takesOff, letsGo, "CoUninitialize"))
            << end;
    }
}

TEST_F(Unloading, WithoutAReturnFromMainDoesTheSame)
{
    const Outcome outcome = run("simulated", "exit");

    EXPECT_EQ(0u, outcome.code);
    EXPECT_THAT(outcome.lines, ElementsAre("used", takesOff, takesOff, takesOff, letsGo, "CoUninitialize"));
}

TEST_F(Unloading, ByFreeLibraryEndsTheSharedEnumeratorBeforeTheProcessGoesOn)
{
    for (const char* const end : {"free", "free-keeping"})
    {
        const Outcome outcome = run("simulated", end);

        EXPECT_EQ(0u, outcome.code) << end;
        EXPECT_THAT(outcome.lines,
                    ElementsAre("used", takesOff, takesOff, takesOff, letsGo, "CoUninitialize", "freed", "ends"))
            << end;
    }
}

TEST_F(Unloading, OnAnotherThreadUninitialisesComThere)
{
    const Outcome outcome = run("simulated", "free-aside");

    EXPECT_EQ(0u, outcome.code);
    EXPECT_THAT(outcome.lines, ElementsAre("used", takesOff, takesOff, takesOff, letsGo, "freed", "ends"));
}

TEST_F(Unloading, OfAnUnusedLibraryCallsNoPlatformFunction)
{
    for (const char* const machine : {"simulated", "system"})
    {
        const Outcome outcome = run(machine, "unused");

        EXPECT_EQ(0u, outcome.code) << machine;
        EXPECT_THAT(outcome.lines, ElementsAre("freed", "ends")) << machine;
    }
}

TEST_F(Unloading, WhileEventsArriveNeitherCrashesNorHangs)
{
    for (const char* const end : {"free", "free-keeping", "free-aside"})
    {
        const Outcome outcome = run("busy", end);

        EXPECT_EQ(0u, outcome.code) << end;
        EXPECT_EQ(3, std::count(outcome.lines.begin(), outcome.lines.end(), takesOff)) << end;
        EXPECT_EQ(1, std::count(outcome.lines.begin(), outcome.lines.end(), letsGo)) << end;
        EXPECT_THAT(outcome.lines, Contains("ends")) << end;
    }
    // The end of the process terminates the other threads at any point, even while they hold a lock of the system. The
    // system then ends the process at once, and the remaining lines are missing.
    for (const char* const end : {"drop", "keep", "exit"})
    {
        const Outcome outcome = run("busy", end);

        EXPECT_EQ(0u, outcome.code) << end;
        EXPECT_THAT(outcome.lines, Contains("used")) << end;
    }
}

TEST_F(Unloading, OnTheSystemsOwnCoreAudioNeitherCrashesNorHangs)
{
    for (const char* const end : {"drop", "keep", "exit"})
    {
        const Outcome outcome = run("system", end);

        EXPECT_EQ(0u, outcome.code) << end;
        ASSERT_FALSE(outcome.lines.empty()) << end;
        EXPECT_EQ("CoUninitialize", outcome.lines.back()) << end << ": all before it has passed";
    }
    for (const char* const end : {"free", "free-keeping", "free-aside"})
    {
        const Outcome outcome = run("system", end);

        EXPECT_EQ(0u, outcome.code) << end;
        EXPECT_THAT(outcome.lines, Contains("freed")) << end;
        EXPECT_THAT(outcome.lines, Contains("ends")) << end;
    }
}
