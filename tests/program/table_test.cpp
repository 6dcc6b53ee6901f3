#include "tools/sonavit/table.h"

#include "tools/sonavit/text.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

using namespace sonavit;
using testing::ElementsAre;

namespace
{
using Align = Table::Column::Align;

/// A name that may be shortened, a level, and a column that is only good to have.
Table sample()
{
    Table table({{Align::left, 0, 0, 4}, {Align::right, 1, 2, 0}, {Align::left, 1, Table::goodToHave, 0}});
    table.add({{"Speakers", Paint::none}, {"5%", Paint::none}, {"extra", Paint::none}});
    table.add({{"Mic", Paint::none}, {"100%", Paint::none}, {"x", Paint::none}});
    return table;
}
}

TEST(ProgramTable, AlignsColumnsWithoutBlanksAtTheEnd)
{
    EXPECT_THAT(sample().lines(0, false), ElementsAre("Speakers   5% extra", "Mic      100% x"));
}

TEST(ProgramTable, LeavesOutFirstWhatIsOnlyGoodToHave)
{
    EXPECT_THAT(sample().lines(19, false), ElementsAre("Speakers   5% extra", "Mic      100% x"));
    EXPECT_THAT(sample().lines(18, false), ElementsAre("Speakers   5%", "Mic      100%"));
}

TEST(ProgramTable, ShortensBeforeItLeavesOutMore)
{
    EXPECT_THAT(sample().lines(10, false), ElementsAre("Spea\xE2\x80\xA6   5%", "Mic   100%"));
    EXPECT_THAT(sample().lines(9, false), ElementsAre("Spe\xE2\x80\xA6   5%", "Mic  100%"));
    EXPECT_THAT(sample().lines(8, false), ElementsAre("Spe\xE2\x80\xA6", "Mic"));
}

TEST(ProgramTable, LeavesBlankWhatARowDoesNotHave)
{
    Table table({{Align::left, 0, 0, 0}, {}, {}});
    table.add({{"a", Paint::none}, {"", Paint::none}, {"c", Paint::none}});
    table.add({{"a", Paint::none}, {"bb", Paint::none}});
    table.add({});

    EXPECT_THAT(table.lines(0, false), ElementsAre("a      c", "a  bb", ""));
}

TEST(ProgramTable, PaintsTextAndNotTheBlanksAroundIt)
{
    Table table({{Align::right, 0, 0, 0}});
    table.add({{"a", Paint::red}});
    table.add({{"bb", Paint::none}});

    EXPECT_THAT(table.lines(0, true), ElementsAre(" \x1B[31ma\x1B[0m", "bb"));
}

TEST(ProgramTable, PaintsNothingWithoutColoursOrText)
{
    EXPECT_EQ("a", painted("a", Paint::bold, false));
    EXPECT_EQ("  ", painted("  ", Paint::bold, true));
    EXPECT_EQ("a", painted("a", Paint::none, true));
    EXPECT_EQ("\x1B[1ma\x1B[0m", painted("a", Paint::bold, true));
}
