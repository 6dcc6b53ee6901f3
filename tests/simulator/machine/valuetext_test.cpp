#include "simulator/machine/valuetext.h"

#include <gtest/gtest.h>

#include <limits>

namespace
{
TEST(ValueTextPrintable, KeepsCharactersOfOneToFourBytes)
{
    const std::string text = "A \xC3\xA4 \xE2\x82\xAC \xE4\xB8\xAD \xF0\x9F\x94\x8A \xF4\x8F\xBF\xBF";

    EXPECT_EQ(text, sim::printable(text));
}

TEST(ValueTextPrintable, EscapesControlCharacters)
{
    EXPECT_EQ("a\\nb\\tc\\u000Dd\\u001B[31me\\u007Ff", sim::printable("a\nb\tc\rd\x1B[31me\x7F"
                                                                      "f"));
    EXPECT_EQ("\\u0000", sim::printable(std::string(1, '\0')));
    EXPECT_EQ("\\u009B1m", sim::printable("\xC2\x9B"
                                          "1m"));
    EXPECT_EQ("\xC2\xA0", sim::printable("\xC2\xA0"));
}

TEST(ValueTextPrintable, EscapesWhatBreaksALineOrTurnsTheDirection)
{
    EXPECT_EQ("\\u2028\\u2029\\u202E\\u2066\\u200F",
              sim::printable("\xE2\x80\xA8\xE2\x80\xA9\xE2\x80\xAE\xE2\x81\xA6\xE2\x80\x8F"));
}

TEST(ValueTextPrintable, EscapesSurrogates)
{
    EXPECT_EQ("\\uD83D\\uDD0A", sim::printable("\xED\xA0\xBD\xED\xB4\x8A"));
}

TEST(ValueTextPrintable, EscapesEachByteThatIsNotUtf8)
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

TEST(ValueTextPrintable, CutsBehindAWholeCharacter)
{
    EXPECT_EQ("abcd", sim::printable("abcd", 4));
    EXPECT_EQ("abcd...", sim::printable("abcde", 4));
    EXPECT_EQ("ab\xC3\xA4...", sim::printable("ab\xC3\xA4z", 4));
    EXPECT_EQ("abc...", sim::printable("abc\xC3\xA4", 4));
    EXPECT_EQ("a...", sim::printable("a\x1B", 4));
}

TEST(ValueTextQuotes, StandAroundAtMostAHundredBytes)
{
    EXPECT_EQ("\"\"", sim::inQuotes(""));
    EXPECT_EQ("\"" + std::string(100, 'x') + "\"", sim::inQuotes(std::string(100, 'x')));
    EXPECT_EQ("\"" + std::string(100, 'x') + "...\"", sim::inQuotes(std::string(1 << 20, 'x')));
}

TEST(ValueTextNumber, ReadsDecimalDigitsOnly)
{
    EXPECT_EQ(0u, sim::numberFromText("0"));
    EXPECT_EQ(4294967295u, sim::numberFromText("4294967295"));
    for (const char* wrong : {"", "01", "-1", "+1", " 1", "1.0", "4294967296", "12345678901", "0x1"})
        EXPECT_FALSE(sim::numberFromText(wrong)) << wrong;
}

TEST(ValueTextGuid, ReadsBothCasesAndWritesUpperCase)
{
    const auto guid = sim::guidFromText("{0a1b2c3D-4e5F-6071-8293-a4b5c6d7e8f9}");

    ASSERT_TRUE(guid);
    EXPECT_EQ("{0A1B2C3D-4E5F-6071-8293-A4B5C6D7E8F9}", sim::guidText(*guid));
    for (const char* wrong : {"", "{}", "0A1B2C3D-4E5F-6071-8293-A4B5C6D7E8F9",
                              "{0A1B2C3D-4E5F-6071-8293-A4B5C6D7E8FG}", "{0A1B2C3D-4E5F-6071-8293-A4B5C6D7E8F9} "})
        EXPECT_FALSE(sim::guidFromText(wrong)) << wrong;
}

TEST(ValueTextResult, IsAHexadecimalNumberOfEightDigits)
{
    EXPECT_EQ(E_FAIL, sim::resultFromText("0x80004005"));
    EXPECT_EQ(E_FAIL, sim::resultFromText(sim::resultText(E_FAIL)));
    EXPECT_EQ("0x00000001", sim::resultText(S_FALSE));
    for (const char* wrong : {"", "0x8000400", "80004005", "0X80004005", "0x8000400G", "0x800040055"})
        EXPECT_FALSE(sim::resultFromText(wrong)) << wrong;
}

TEST(ValueTextDecimal, ReadsBackAsTheSameNumber)
{
    for (const float value : {0.0f, -0.1f, 1e-3f, -65.25f, 3.4e38f, std::numeric_limits<float>::denorm_min()})
        EXPECT_EQ(value, sim::fromDecimal(sim::decimal(value)));
    for (const char* wrong : {"", "-", "1x", "inf", "nan", "1e300"})
        EXPECT_FALSE(sim::fromDecimal(wrong)) << wrong;
}
}
