#include "simulator/machine/printable.h"

#include <gtest/gtest.h>

namespace
{
TEST(Printable, KeepsCharactersOfOneToFourBytes)
{
    const std::string text = "A \xC3\xA4 \xE2\x82\xAC \xE4\xB8\xAD \xF0\x9F\x94\x8A \xF4\x8F\xBF\xBF";

    EXPECT_EQ(text, sim::printable(text));
}

TEST(Printable, EscapesControlCharacters)
{
    EXPECT_EQ("a\\nb\\tc\\u000Dd\\u001B[31me\\u007Ff", sim::printable("a\nb\tc\rd\x1B[31me\x7F"
                                                                      "f"));
    EXPECT_EQ("\\u0000", sim::printable(std::string(1, '\0')));
    EXPECT_EQ("\\u009B1m", sim::printable("\xC2\x9B"
                                          "1m"));
    EXPECT_EQ("\xC2\xA0", sim::printable("\xC2\xA0"));
}

TEST(Printable, EscapesWhatBreaksALineOrTurnsTheDirection)
{
    EXPECT_EQ("\\u2028\\u2029\\u202E\\u2066\\u200F",
              sim::printable("\xE2\x80\xA8\xE2\x80\xA9\xE2\x80\xAE\xE2\x81\xA6\xE2\x80\x8F"));
}

TEST(Printable, EscapesSurrogates)
{
    EXPECT_EQ("\\uD83D\\uDD0A", sim::printable("\xED\xA0\xBD\xED\xB4\x8A"));
}

TEST(Printable, EscapesEachByteThatIsNotUtf8)
{
    EXPECT_EQ("\\x80", sim::printable("\x80"));
    EXPECT_EQ("\\xC3a", sim::printable("\xC3"
                                       "a"));
    EXPECT_EQ("\\xC0\\xAF", sim::printable("\xC0\xAF"));
    EXPECT_EQ("\\xE0\\x80\\x80", sim::printable("\xE0\x80\x80"));
    EXPECT_EQ("\\xF4\\x90\\x80\\x80", sim::printable("\xF4\x90\x80\x80"));
    EXPECT_EQ("\\xE2\\x82", sim::printable("\xE2\x82"));
    EXPECT_EQ("\\xF0\\x9F\\x94", sim::printable("\xF0\x9F\x94"));
    EXPECT_EQ("\\xFF", sim::printable("\xFF"));
}

TEST(Printable, CutsBehindAWholeCharacter)
{
    EXPECT_EQ("abcd", sim::printable("abcd", 4));
    EXPECT_EQ("abcd...", sim::printable("abcde", 4));
    EXPECT_EQ("ab\xC3\xA4...", sim::printable("ab\xC3\xA4z", 4));
    EXPECT_EQ("abc...", sim::printable("abc\xC3\xA4", 4));
    EXPECT_EQ("a...", sim::printable("a\x1B", 4));
}

TEST(InQuotes, StandAroundAtMostAHundredBytes)
{
    EXPECT_EQ("\"\"", sim::inQuotes(""));
    EXPECT_EQ("\"" + std::string(100, 'x') + "\"", sim::inQuotes(std::string(100, 'x')));
    EXPECT_EQ("\"" + std::string(100, 'x') + "...\"", sim::inQuotes(std::string(1 << 20, 'x')));
}
}
