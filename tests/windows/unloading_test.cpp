// The end of the library, in every order that a process can cause; each order in a process of its own.

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <windows.h>

#include <algorithm>
#include <string>
#include <vector>

using testing::Contains;
using testing::ElementsAre;

namespace
{
constexpr DWORD patience = 60000; // milliseconds; a process that takes longer counts as hanging

struct Outcome
{
    DWORD code = ~DWORD{0};
    std::vector<std::string> lines;
};

std::vector<std::string> linesOf(const std::string& text)
{
    std::vector<std::string> lines;
    std::size_t start = 0;
    for (std::size_t end = text.find('\n'); end != std::string::npos; end = text.find('\n', start))
    {
        lines.push_back(text.substr(start, end - start));
        start = end + 1;
    }
    return lines;
}

/// Reads to the end; the output is small enough for the buffer of a pipe.
std::string contents(HANDLE pipe)
{
    std::string text;
    char buffer[4096];
    for (DWORD size = 0; ReadFile(pipe, buffer, sizeof buffer, &size, nullptr) && size > 0;)
        text.append(buffer, size);
    return text;
}

class Unloading : public testing::Test
{
protected:
    /// Runs the host to its end. A host that hangs is terminated with the exit code WAIT_TIMEOUT.
    static Outcome run(const std::string& machine, const std::string& end)
    {
        SECURITY_ATTRIBUTES inherited = {sizeof(SECURITY_ATTRIBUTES), nullptr, TRUE};
        HANDLE readEnd = nullptr;
        HANDLE writeEnd = nullptr;
        EXPECT_TRUE(CreatePipe(&readEnd, &writeEnd, &inherited, 0));
        STARTUPINFOA startup = {};
        startup.cb = sizeof startup;
        startup.dwFlags = STARTF_USESTDHANDLES;
        startup.hStdInput = GetStdHandle(STD_INPUT_HANDLE);
        startup.hStdOutput = writeEnd;
        startup.hStdError = GetStdHandle(STD_ERROR_HANDLE);
        std::string command = "\"" SONAVIT_UNLOADING_HOST "\" " + machine + " " + end;
        PROCESS_INFORMATION process = {};
        const BOOL isStarted =
            CreateProcessA(nullptr, command.data(), nullptr, nullptr, TRUE, 0, nullptr, nullptr, &startup, &process);
        CloseHandle(writeEnd);
        Outcome outcome;
        if (!isStarted)
        {
            ADD_FAILURE() << command << " does not start: " << GetLastError();
            CloseHandle(readEnd);
            return outcome;
        }
        if (WaitForSingleObject(process.hProcess, patience) != WAIT_OBJECT_0)
            TerminateProcess(process.hProcess, WAIT_TIMEOUT);
        GetExitCodeProcess(process.hProcess, &outcome.code);
        CloseHandle(process.hThread);
        CloseHandle(process.hProcess);
        outcome.lines = linesOf(contents(readEnd));
        CloseHandle(readEnd);
        return outcome;
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
