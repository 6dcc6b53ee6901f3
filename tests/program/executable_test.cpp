#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cstdio>
#include <string>
#include <utility>

using testing::HasSubstr;
using testing::Not;
using testing::StartsWith;

namespace
{
#if defined(_WIN32)
FILE* start(const std::string& command)
{
    return _popen(("\"" + command + "\"").c_str(), "rb"); // the command interpreter takes the outer quotes away
}

int finish(FILE* pipe)
{
    return _pclose(pipe);
}
#else
FILE* start(const std::string& command)
{
    return popen(command.c_str(), "r");
}

int finish(FILE* pipe)
{
    const int status = pclose(pipe);
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}
#endif

struct Outcome
{
    int code = -1;
    std::string out;
};

/// Windows ends the lines of its standard streams in two characters.
std::string withPlainLineEnds(std::string text)
{
    text.erase(std::remove(text.begin(), text.end(), '\r'), text.end());
    return text;
}

/// Runs the program as a process of its own; what it says on standard error comes along.
Outcome execute(const std::string& words)
{
    Outcome outcome;
    FILE* const pipe = start("\"" SONAVIT_PROGRAM_PATH "\" " + words + " 2>&1");
    if (pipe == nullptr)
        return outcome;
    std::array<char, 4096> buffer{};
    for (std::size_t size = 1; size > 0;)
    {
        size = std::fread(buffer.data(), 1, buffer.size(), pipe);
        outcome.out.append(buffer.data(), size);
    }
    outcome.code = finish(pipe);
    outcome.out = withPlainLineEnds(std::move(outcome.out));
    return outcome;
}
}

TEST(ProgramExecutable, ListsASimulatedMachine)
{
    const Outcome outcome = execute("--machine desktop");

    EXPECT_EQ(0, outcome.code);
    EXPECT_THAT(outcome.out, StartsWith("Simulated machine desktop: "));
    EXPECT_THAT(outcome.out, HasSubstr("\n\xE2\x94\x9C\xE2\x94\x80 *m Speakers "));
    EXPECT_EQ(std::string::npos, outcome.out.find('\x1B')) << "a pipe is no terminal";
}

TEST(ProgramExecutable, TellsByItsExitCodeHowItWent)
{
    EXPECT_EQ(0, execute("--version").code);
    EXPECT_EQ(1, execute("--machine desktop get-volume Projector").code);
    EXPECT_EQ(2, execute("--machine nosuch").code);
}

TEST(ProgramExecutable, SaysOneSentenceAboutAFailure)
{
    EXPECT_EQ("sonavit: unknown command \"frobnicate\"; see sonavit --help\n", execute("frobnicate").out);
}

TEST(ProgramExecutable, WritesTheLogOnStandardErrorFromTheLevelThatIsAskedFor)
{
    const std::string debug = execute("--machine desktop --log debug ask none").out;
    const std::string fatal = execute("--machine desktop --log fatal ask none").out;

    EXPECT_THAT(debug, HasSubstr("debug libSonavit."));
    EXPECT_THAT(debug, HasSubstr(": > "));
    EXPECT_THAT(fatal, HasSubstr("fatal libSonavit."));
    EXPECT_THAT(fatal, Not(HasSubstr("debug ")));
}

TEST(ProgramExecutable, PlaysTheScriptOfAMachineWhileItListens)
{
    const Outcome outcome = execute("--machine laptop monitor --for 1.2");

    EXPECT_EQ(0, outcome.code);
    EXPECT_THAT(outcome.out, HasSubstr("Headset Jack "));
    EXPECT_THAT(outcome.out, HasSubstr("unplugged \xE2\x86\x92 active\n"));
}
