/// How the program ends when the user, the system or the reader of its output wants it.
#include "tools/sonavit/interruption.h"

#include "tests/program/portable/programprocess.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <csignal>
#include <filesystem>
#include <fstream>
#include <map>

using testing::HasSubstr;
using testing::Not;

namespace
{
/// A request to end.
class ProgramInterruption : public testing::TestWithParam<int>
{
protected:
    static support::ProgramStart holding()
    {
        support::ProgramStart start;
        start.words = {"--machine", "desktop", "format", "Speakers", "--set", "16/44100/2", "--hold", "600"};
        return start;
    }

    static support::ProgramStart monitoring()
    {
        support::ProgramStart start;
        start.words = {"--machine", "laptop", "monitor"};
        return start;
    }
};

std::string signalName(const testing::TestParamInfo<int>& signal)
{
    const std::map<int, std::string> names = {{SIGINT, "INT"}, {SIGTERM, "TERM"}, {SIGHUP, "HUP"}, {SIGQUIT, "QUIT"}};
    return names.at(signal.param);
}

/// A machine file in which each call takes half a second; removed at the end.
class SlowMachine
{
public:
    SlowMachine() : m_path(std::filesystem::temp_directory_path() / ("slow" + std::to_string(getpid()) + ".json"))
    {
        std::ofstream(m_path) << R"({"name": "slow", "latency": [{"operation": "*", "microseconds": 500000}]})";
    }

    ~SlowMachine() { std::filesystem::remove(m_path); }

    std::string path() const { return m_path.string(); }

private:
    std::filesystem::path m_path;
};
}

TEST_P(ProgramInterruption, EndsACommandAtOnceThatHasNothingToPutBack)
{
    const SlowMachine machine;
    support::ProgramStart start;
    start.words = {"--machine", machine.path(), "list"};
    support::ProgramProcess program(start);
    ASSERT_TRUE(program.errorsShow("Simulated machine slow"));

    program.send(GetParam());

    EXPECT_EQ(-GetParam(), program.end());
    EXPECT_EQ("", program.output());
}

TEST_P(ProgramInterruption, PutsAHeldFormatBackBeforeTheProgramEnds)
{
    support::ProgramProcess program(holding());
    ASSERT_TRUE(program.outputShows("during  44100 Hz"));

    program.send(GetParam());

    EXPECT_EQ(-GetParam(), program.end());
    EXPECT_THAT(program.output(), HasSubstr("\nafter   48000 Hz, 24 bit, 2 channels (stereo)\n"));
    EXPECT_THAT(program.errors(), Not(HasSubstr("sonavit: ")));
}

TEST_P(ProgramInterruption, IsTheNormalEndOfTheMonitor)
{
    support::ProgramProcess program(monitoring());
    ASSERT_TRUE(program.outputShows("\n"));

    program.send(GetParam());

    EXPECT_EQ(0, program.end());
    EXPECT_THAT(program.errors(), Not(HasSubstr("sonavit: ")));
}

TEST_P(ProgramInterruption, IsIgnoredIfTheParentProcessIgnoresTheSignal)
{
    support::ProgramStart start = holding();
    start.words.back() = "0.3";
    start.ignoredSignals = {GetParam()};
    support::ProgramProcess program(start);
    ASSERT_TRUE(program.outputShows("during "));

    program.send(GetParam());

    EXPECT_EQ(0, program.end());
    EXPECT_THAT(program.output(), HasSubstr("\nafter "));
}

INSTANTIATE_TEST_SUITE_P(Signals, ProgramInterruption, testing::Values(SIGINT, SIGTERM, SIGHUP, SIGQUIT), signalName);

namespace
{
using ProgramWithoutReader = ProgramInterruption;
}

TEST_F(ProgramWithoutReader, EndsACommandThatHoldsAFormat)
{
    support::ProgramProcess program(holding());
    ASSERT_TRUE(program.outputShows("during "));

    program.closeOutput();

    EXPECT_EQ(-SIGPIPE, program.end());
    EXPECT_THAT(program.errors(), Not(HasSubstr("sonavit: ")));
}

TEST_F(ProgramWithoutReader, EndsTheMonitorEvenIfNothingHappens)
{
    support::ProgramStart start = monitoring();
    start.words = {"--machine", "empty", "monitor"};
    support::ProgramProcess program(start);
    ASSERT_TRUE(program.errorsShow("This machine has no events."));

    program.closeOutput();

    EXPECT_EQ(-SIGPIPE, program.end());
}

TEST_F(ProgramWithoutReader, EndsTheMonitorWhileEventsArrive)
{
    support::ProgramProcess program(monitoring());
    ASSERT_TRUE(program.outputShows("\n"));

    program.closeOutput();

    EXPECT_EQ(-SIGPIPE, program.end());
    EXPECT_THAT(program.errors(), Not(HasSubstr("sonavit: ")));
}

TEST_F(ProgramWithoutReader, EndsTheMonitorEvenIfTheParentProcessIgnoresSIGPIPE)
{
    support::ProgramStart start = monitoring();
    start.ignoredSignals = {SIGPIPE};
    support::ProgramProcess program(start);
    ASSERT_TRUE(program.outputShows("\n"));

    program.closeOutput();

    EXPECT_NE(0, program.end());
}

TEST(ProgramInterruptionEnd, LeavesNoFileOpen)
{
    const auto nextFile = []
    {
        const int file = dup(STDERR_FILENO);
        close(file);
        return file;
    };
    const int before = nextFile();

    for (int time = 0; time < 2; ++time)
        const sonavit::program::Interruption interruption;

    EXPECT_EQ(before, nextFile());
}

TEST(ProgramInterruptionEnd, PutsTheActionsOfSignalsBack)
{
    const auto action = [](int signal)
    {
        struct sigaction now = {};
        sigaction(signal, nullptr, &now);
        return now.sa_handler;
    };
    for (const int signal : {SIGINT, SIGTERM, SIGHUP, SIGQUIT, SIGPIPE})
    {
        const auto before = action(signal);
        {
            const sonavit::program::Interruption interruption;
            if (before != SIG_IGN)
            {
                EXPECT_NE(before, action(signal)) << signal;
                std::raise(signal);
                EXPECT_TRUE(sonavit::program::Interruption::wait(std::chrono::minutes(10))) << signal;
            }
        }

        EXPECT_EQ(before, action(signal)) << signal;
    }
}
