#include "sonavit/text.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <locale>
#include <sstream>

using namespace sonavit;

namespace
{
constexpr const char* replacement = "\xEF\xBF\xBD";

/// Writes 48000 as 4,8,0,0,0 and 0.5 as 0;5.
class OtherNumbers : public std::numpunct<char>
{
protected:
    char do_decimal_point() const override { return ';'; }
    char do_thousands_sep() const override { return ','; }
    std::string do_grouping() const override { return "\1"; }
};
}

TEST(ClientTextDecimal, IsRoundedAndHasNoSignOfZero)
{
    EXPECT_EQ("-18.00", text::decimal(-18, 2));
    EXPECT_EQ("0.00", text::decimal(-0.004, 2));
    EXPECT_EQ("0", text::decimal(-0.0, 0));
    EXPECT_EQ("-0.50", text::decimal(-0.5, 2));
    EXPECT_EQ("-inf", text::decimal(-std::numeric_limits<double>::infinity(), 2));
    EXPECT_EQ(309u + 3u, text::decimal(std::numeric_limits<double>::max(), 2).size());
}

TEST(ClientTextHexCode, HasEightDigits)
{
    EXPECT_EQ("0x80070005", text::hexCode(0x80070005));
    EXPECT_EQ("0x00000000", text::hexCode(0));
}

TEST(ClientTextCounted, UsesThePlural)
{
    EXPECT_EQ("0 cards", text::counted(0, "card"));
    EXPECT_EQ("1 card", text::counted(1, "card"));
    EXPECT_EQ("2 cards", text::counted(2, "card"));
}

TEST(ClientTextEnumeration, JoinsTheLastTwoWithAnd)
{
    EXPECT_EQ("", text::enumeration({}));
    EXPECT_EQ("a", text::enumeration({"a"}));
    EXPECT_EQ("a and b", text::enumeration({"a", "b"}));
    EXPECT_EQ("a, b and c", text::enumeration({"a", "b", "c"}));
}

TEST(ClientTextPrintable, ReplacesWhatControlsATerminalOrIsNoUtf8)
{
    EXPECT_EQ(std::string("a") + replacement + "[2Jb", text::printable("a\x1B[2Jb"));
    EXPECT_EQ(std::string(replacement) + "x", text::printable("\xE2\x80\xAEx")); // turns the direction
    EXPECT_EQ(std::string(replacement) + replacement, text::printable("\xC0\x80"));
    EXPECT_EQ(std::string("\xC3\xA4") + replacement, text::printable("\xC3\xA4\xC3"));
    EXPECT_EQ("\xF0\x9F\x8E\xA7", text::printable("\xF0\x9F\x8E\xA7"));
}

TEST(ClientTextQuoted, EscapesAndCuts)
{
    EXPECT_EQ("\"a\\n\\t\\x1B\\u202E\\xFF\\b\"", text::quoted("a\n\t\x1B\xE2\x80\xAE\xFF\\b"));
    EXPECT_EQ("\"" + std::string(99, 'x') + "\xE2\x80\xA6\"", text::quoted(std::string(101, 'x')));
}

TEST(ClientTextEscaped, IsNeitherCutNorQuoted)
{
    EXPECT_EQ("a\\n\\x7F\\u2028" + std::string(200, 'x'), text::escaped("a\n\x7F\xE2\x80\xA8" + std::string(200, 'x')));
}

TEST(ClientTextDisplayWidth, IsThatOfATerminal)
{
    EXPECT_EQ(0u, text::displayWidth(""));
    EXPECT_EQ(3u, text::displayWidth("abc"));
    EXPECT_EQ(5u, text::displayWidth("a\xE9\x9F\xB3\xE9\x9F\xB3")); // two columns each
    EXPECT_EQ(1u, text::displayWidth("e\xCC\x81"));                 // combined
    EXPECT_EQ(2u, text::displayWidth("a\xFF"));                     // no UTF-8
}

TEST(ClientTextShortened, CountsTheColumnsOfATerminal)
{
    EXPECT_EQ("abc", text::shortened("abc", 3));
    EXPECT_EQ("ab\xE2\x80\xA6", text::shortened("abcd", 3));
    EXPECT_EQ("\xE9\x9F\xB3\xE2\x80\xA6", text::shortened("\xE9\x9F\xB3\xE9\x9F\xB3", 3)); // two columns each
    EXPECT_EQ("e\xCC\x81", text::shortened("e\xCC\x81", 1));                               // one column
    EXPECT_EQ("a\xE2\x80\xA6", text::shortened("a bcd", 3));
    EXPECT_EQ("", text::shortened("a", 0));
}

TEST(ClientTextEqualNoCase, FoldsTheLettersAToZAlone)
{
    EXPECT_TRUE(text::equalNoCase("aBz", "AbZ"));
    EXPECT_FALSE(text::equalNoCase("ab", "abc"));
    EXPECT_FALSE(text::equalNoCase("\xC3\x84", "\xC3\xA4"));
    EXPECT_EQ("az\xC3\x84[@", text::lowerCase("AZ\xC3\x84[@"));
}

TEST(ClientTextFields, PrintWhatHasAValueWithoutRegardToTheLocale)
{
    std::ostringstream out;
    out.imbue(std::locale(std::locale::classic(), new OtherNumbers));
    text::Fields(out, "Thing")
        .add("number", 48000)
        .add("none", std::optional<int>())
        .add("flag", true)
        .add("name", std::string("a\nb"))
        .add("list", std::vector<unsigned>{1, 20000})
        .add("empty", std::vector<int>());

    EXPECT_EQ(std::string("Thing(number: 48000, flag: yes, name: \"a") + replacement + "b\", list: [1, 20000])",
              out.str());
}
