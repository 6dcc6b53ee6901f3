#include "tools/sonavit/output/table.h"

#include "tools/sonavit/output/text.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

using namespace sonavit::program;
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
    EXPECT_THAT(sample().lines(8, false), ElementsAre("Speakers", "Mic"));
    EXPECT_THAT(sample().lines(7, false), ElementsAre("Speake\xE2\x80\xA6", "Mic"));
}

TEST(ProgramTable, NarrowsGapsAndShortensIdsBeforeItLeavesOutDecoration)
{
    Table table({{Align::left, 0, Table::decoration, 0, 0, ""}, {}, {}});
    table.add({{"+-", Paint::none}, {"name", Paint::none}, {"abcdef", Paint::none, "abc"}});
    table.add({{"+-", Paint::none}, {"n", Paint::none}, {"whole", Paint::none}});

    EXPECT_THAT(table.lines(16, false), ElementsAre("+-  name  abcdef", "+-  n     whole"));
    EXPECT_THAT(table.lines(15, false), ElementsAre("+-  name  abc", "+-  n     whole"));
    EXPECT_THAT(table.lines(14, false), ElementsAre("+- name abc", "+- n    whole"));
    EXPECT_THAT(table.lines(12, false), ElementsAre("name abc", "n    whole"));
    EXPECT_THAT(table.lines(1, false), ElementsAre("name abc", "n    whole")) << "rank 0 is never left out";
}

TEST(ProgramTable, GivesAShortenedColumnTheRoomOfOneThatIsLeftOut)
{
    Table table({{Align::left, 0, 0, 4, 2, ""}, {Align::left, 1, 1, 0, 0, "level"}});
    table.add({{"Speakers", Paint::none}, {"100%", Paint::none}});

    EXPECT_THAT(table.lines(9, false), ElementsAre("Spe\xE2\x80\xA6 100%"));
    EXPECT_THAT(table.lines(8, false), ElementsAre("Speakers"));
    EXPECT_THAT(table.lines(3, false), ElementsAre("Sp\xE2\x80\xA6"));
    EXPECT_THAT(table.lines(1, false), ElementsAre("S\xE2\x80\xA6")) << "its least width";
}

TEST(ProgramTable, NamesTheColumnsThatItLeavesOut)
{
    Table table(
        {{}, {Align::left, 2, 1, 0, 0, "jack"}, {Align::left, 2, 2, 0, 0, "flow"}, {Align::left, 2, 3, 0, 0, ""}});
    table.add({{"name", Paint::none}, {"Line", Paint::none}, {"input", Paint::none}, {"bar", Paint::none}});

    EXPECT_THAT(table.leftOut(0), ElementsAre());
    EXPECT_THAT(table.leftOut(12), ElementsAre("flow"));
    EXPECT_THAT(table.leftOut(5), ElementsAre("jack", "flow"));
}

TEST(ProgramTable, SaysInLinesOfTheSameWidthWhatIsLeftOut)
{
    EXPECT_THAT(leftOutNote({}, 40), ElementsAre());
    EXPECT_THAT(leftOutNote({"jack", "flow"}, 40), ElementsAre("Left out at 40 columns: jack and flow"));
    EXPECT_THAT(leftOutNote({"jack", "flow"}, 24), ElementsAre("Left out at 24 columns:", "jack and flow"));
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
