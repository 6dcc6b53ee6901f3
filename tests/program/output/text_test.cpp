#include "tools/sonavit/output/text.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

using namespace sonavit::program;
using testing::ElementsAre;

TEST(ProgramText, ShowsControlCharactersAsReplacements)
{
    EXPECT_EQ("a\xEF\xBF\xBD[2Jb", printable("a\x1B[2Jb"));
    EXPECT_EQ("a\xEF\xBF\xBD"
              "b",
              printable("a\nb"));
    EXPECT_EQ("\xC3\xA4", printable("\xC3\xA4"));
}

TEST(ProgramText, ShowsWhatIsNoUtf8AsReplacements)
{
    constexpr const char* replacement = "\xEF\xBF\xBD";

    EXPECT_EQ(std::string("a") + replacement + "b", printable("a\xFF"
                                                              "b"));
    EXPECT_EQ(std::string("\xC3\xA4") + replacement, printable("\xC3\xA4\xC3"));                // cut short
    EXPECT_EQ(std::string(replacement) + replacement, printable("\xC0\x80"));                   // a longer form of zero
    EXPECT_EQ(std::string(replacement) + replacement + replacement, printable("\xED\xA0\x80")); // a surrogate
    EXPECT_EQ("\xF0\x9F\x8E\xA7", printable("\xF0\x9F\x8E\xA7"));
    EXPECT_EQ(std::string(replacement) + replacement + replacement + replacement,
              printable("\xF4\x90\x80\x80")); // beyond the last character
    EXPECT_EQ(std::string(replacement) + "x", printable("\xE9x"));
}

TEST(ProgramText, ShowsCharactersThatReverseTheTextAsReplacements)
{
    EXPECT_EQ("a\xEF\xBF\xBD"
              "b",
              printable("a\xE2\x80\xAE"
                        "b"));
    EXPECT_EQ("a\xEF\xBF\xBD"
              "b",
              printable("a\xC2\x9B"
                        "b")); // a control character beyond ASCII
}

TEST(ProgramText, EscapesWhatIsNotPrintable)
{
    EXPECT_EQ("a\\n\\t\\x1B\\xFF\\u202Eb", escaped("a\n\t\x1B\xFF\xE2\x80\xAE"
                                                   "b"));
    EXPECT_EQ("USB\\VID \xC3\xA4", escaped("USB\\VID \xC3\xA4"));
    EXPECT_EQ("\\x7F", escaped("\x7F"));
    EXPECT_EQ("\\u0085", escaped("\xC2\x85"));
}

TEST(ProgramText, CutsWhatItQuotes)
{
    EXPECT_EQ("\"\"", inQuotes(""));
    EXPECT_EQ("\"" + std::string(100, 'x') + "\"", inQuotes(std::string(100, 'x')));
    EXPECT_EQ("\"" + std::string(99, 'x') + "\xE2\x80\xA6\"", inQuotes(std::string(101, 'x')));
}

TEST(ProgramText, WrapsAtBlanks)
{
    EXPECT_THAT(wrapped("one two three", 7), ElementsAre("one two", "three"));
    EXPECT_THAT(wrapped("one two three", 6), ElementsAre("one", "two", "three"));
    EXPECT_THAT(wrapped("one two three", 0), ElementsAre("one two three"));
    EXPECT_THAT(wrapped("extraordinary one", 4), ElementsAre("extraordinary", "one"));
    EXPECT_THAT(wrapped("", 4), ElementsAre(""));
}

TEST(ProgramText, CountsTheColumnsThatCharactersTake)
{
    EXPECT_EQ(5u, displayWidth("Jack\xC3\xA9"));
    EXPECT_EQ(4u, displayWidth("\xE9\x9F\xB3\xE9\x9F\xB3")); // two East Asian characters
    EXPECT_EQ(1u, displayWidth("e\xCC\x81"));                // with a combining accent
    EXPECT_EQ(0u, displayWidth(""));
}

TEST(ProgramText, ShortensToAWidthWithAnEllipsis)
{
    EXPECT_EQ("Speakers", shortened("Speakers", 8));
    EXPECT_EQ("Speake\xE2\x80\xA6", shortened("Speakers", 7));
    EXPECT_EQ("Line\xE2\x80\xA6", shortened("Line In", 6)); // no blank before the ellipsis
    EXPECT_EQ("\xE2\x80\xA6", shortened("Speakers", 1));
    EXPECT_EQ("", shortened("Speakers", 0));
}

TEST(ProgramText, DoesNotCutACharacterInTwo)
{
    EXPECT_EQ("\xC3\xA4\xE2\x80\xA6", shortened("\xC3\xA4\xC3\xB6\xC3\xBC", 2));
    EXPECT_EQ("\xE2\x80\xA6", shortened("\xE9\x9F\xB3\xE9\x9F\xB3", 2)); // the wide one has no room beside the ellipsis
}

TEST(ProgramText, PadsToAWidthOnEitherSide)
{
    EXPECT_EQ("ab  ", padded("ab", 4));
    EXPECT_EQ("  ab", paddedLeft("ab", 4));
    EXPECT_EQ("abcde", padded("abcde", 4));
}

TEST(ProgramText, ComparesWithoutRegardToTheCaseOfAToZ)
{
    EXPECT_TRUE(equalNoCase("Speakers", "sPEAKERS"));
    EXPECT_FALSE(equalNoCase("\xC3\x84", "\xC3\xA4"));
    EXPECT_TRUE(containsNoCase("Headset Microphone", "MICRO"));
    EXPECT_FALSE(containsNoCase("Headset", "phone"));
}

TEST(ProgramText, ShowsADashForWhatCouldNotBeRead)
{
    EXPECT_EQ("-", percentText(std::nullopt));
    EXPECT_EQ("-", decibelText(std::nullopt));
    EXPECT_EQ("0%", percentText(0u));
    EXPECT_EQ("-18.00 dB", decibelText(-18.0f));
}

TEST(ProgramText, ShowsNoNegativeZero)
{
    EXPECT_EQ("0.00", decimalText(-0.001f, 2));
    EXPECT_EQ("0.00", decimalText(-0.0f, 2));
    EXPECT_EQ("-0.01", decimalText(-0.01f, 2));
}

TEST(ProgramText, CountsAndEnumerates)
{
    EXPECT_EQ("1 card", counted(1, "card"));
    EXPECT_EQ("0 cards", counted(0, "card"));
    EXPECT_EQ("", enumeration(std::vector<std::string>{}));
    EXPECT_EQ("a", enumeration(std::vector<std::string>{"a"}));
    EXPECT_EQ("a and b", enumeration(std::vector<std::string>{"a", "b"}));
    EXPECT_EQ("a, b and c", enumeration(std::vector<std::string>{"a", "b", "c"}));
}
