/// What the program shows on a terminal, and how the environment changes that.
#include "tests/program/portable/programprocess.h"
#include "tools/sonavit/output/text.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <regex>
#include <sstream>

using testing::HasSubstr;
using testing::Not;

namespace
{
constexpr const char* escape = "\x1B[";
constexpr const char* bar = "\xE2\x96\xAE";

/// `list` on the machine `studio`, whose table is wide.
class ProgramTerminal : public testing::Test
{
protected:
    ProgramTerminal()
    {
        start.words = {"--machine", "studio", "list"};
        start.isOnTerminal = true;
        start.columns = 100;
        start.environment["TERM"] = "xterm";
    }

    std::string list() const
    {
        support::ProgramProcess program(start);
        EXPECT_EQ(0, program.end());
        return program.output();
    }

    static std::size_t widest(const std::string& text)
    {
        std::istringstream lines(std::regex_replace(text, std::regex("\x1B\\[[0-9;]*m"), ""));
        std::size_t width = 0;
        for (std::string line; std::getline(lines, line);)
            width = std::max(width, sonavit::program::displayWidth(line));
        return width;
    }

    support::ProgramStart start;
};
}

TEST_F(ProgramTerminal, ShowsColoursAndBars)
{
    const std::string text = list();

    EXPECT_THAT(text, HasSubstr(escape));
    EXPECT_THAT(text, HasSubstr(bar));
}

TEST_F(ProgramTerminal, LimitsTheWidthOfLines)
{
    start.columns = 300;
    const std::size_t natural = widest(list());
    ASSERT_GT(natural, 80u);

    for (const unsigned short columns : {100, 80, 60})
    {
        start.columns = columns;
        EXPECT_LE(widest(list()), columns);
    }
}

TEST_F(ProgramTerminal, OfUnknownWidthHasThatOfCOLUMNS)
{
    start.columns = 0;
    start.environment["COLUMNS"] = "60";

    EXPECT_LE(widest(list()), 60u);
}

TEST_F(ProgramTerminal, KnowsItsWidthBetterThanCOLUMNS)
{
    start.columns = 60;
    start.environment["COLUMNS"] = "300";

    EXPECT_LE(widest(list()), 60u);
}

TEST_F(ProgramTerminal, ShowsNoColoursIfItIsDumb)
{
    start.environment["TERM"] = "dumb";

    EXPECT_THAT(list(), Not(HasSubstr(escape)));
}

TEST_F(ProgramTerminal, ShowsNoColoursWithoutTERM)
{
    start.environment.erase("TERM");

    EXPECT_THAT(list(), Not(HasSubstr(escape)));
}

TEST_F(ProgramTerminal, ShowsNoColoursWithNO_COLOR)
{
    start.environment["NO_COLOR"] = "1";

    EXPECT_THAT(list(), Not(HasSubstr(escape)));
}

TEST_F(ProgramTerminal, ShowsColoursWithAnEmptyNO_COLOR)
{
    start.environment["NO_COLOR"] = "";

    EXPECT_THAT(list(), HasSubstr(escape));
}

TEST_F(ProgramTerminal, IsNotSomethingThatAPipeIs)
{
    start.isOnTerminal = false;
    const std::string text = list();

    EXPECT_THAT(text, Not(HasSubstr(escape)));
    EXPECT_THAT(text, Not(HasSubstr(bar)));
}

TEST_F(ProgramTerminal, LeavesTheWidthOfAPipeToCOLUMNS)
{
    start.isOnTerminal = false;
    const std::size_t natural = widest(list());

    start.environment["COLUMNS"] = "60";
    EXPECT_LE(widest(list()), 60u);
    for (const char* const invalid : {"", "-60", "60x", "10001", "0"})
    {
        start.environment["COLUMNS"] = invalid;
        EXPECT_EQ(natural, widest(list())) << invalid;
    }
}

TEST_F(ProgramTerminal, RunsOnTheDesktopIfNoMachineIsNamed)
{
    start.words = {"list"};
    const std::string withoutName = list();
    start.words = {"--machine", "desktop", "list"};

    EXPECT_EQ(list(), withoutName);
}
