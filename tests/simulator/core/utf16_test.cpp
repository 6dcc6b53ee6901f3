#include "simulator/core/utf16.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace
{
using testing::ElementsAre;

constexpr WCHAR replacement = 0xFFFD;
const std::string replacementUtf8 = "\xEF\xBF\xBD";

/// @p text in 16-bit units without the terminating zero, which is checked.
std::vector<unsigned> unitsOf(const std::string& text)
{
    const std::vector<WCHAR> units = sim::utf16(text);
    EXPECT_FALSE(units.empty());
    EXPECT_EQ(0, units.back());
    return std::vector<unsigned>(units.begin(), units.end() - 1);
}

std::string textOf(std::vector<WCHAR> units)
{
    units.push_back(0);
    return sim::utf8(units.data());
}

struct Sample
{
    std::string text;
    std::vector<WCHAR> units;
};

/// The first and the last character of each length in UTF-8.
const std::vector<Sample> samples = {
    {"\x01", {0x01}},
    {"\x7F", {0x7F}},
    {"\xC2\x80", {0x80}},
    {"\xDF\xBF", {0x7FF}},
    {"\xE0\xA0\x80", {0x800}},
    {"\xE2\x82\xAC", {0x20AC}},
    {"\xED\x9F\xBF", {0xD7FF}},
    {"\xEE\x80\x80", {0xE000}},
    {"\xEF\xBF\xBF", {0xFFFF}},
    {"\xF0\x90\x80\x80", {0xD800, 0xDC00}},
    {"\xF0\x9F\x98\x80", {0xD83D, 0xDE00}},
    {"\xF4\x8F\xBF\xBF", {0xDBFF, 0xDFFF}},
};

TEST(Utf16, ReadsCharactersOfEveryLength)
{
    for (const Sample& sample : samples)
    {
        const std::vector<WCHAR> units = sim::utf16("a" + sample.text + "z");
        std::vector<WCHAR> expected = {'a'};
        expected.insert(expected.end(), sample.units.begin(), sample.units.end());
        expected.insert(expected.end(), {'z', 0});
        EXPECT_EQ(expected, units) << testing::PrintToString(sample.text);
    }
}

TEST(Utf16, IsATerminatingZeroForAnEmptyString)
{
    EXPECT_THAT(sim::utf16(""), ElementsAre(0));
}

TEST(Utf16, ReplacesEachByteThatLeadsNoCharacter)
{
    for (const char* const byte : {"\x80", "\xBF", "\xC0", "\xC1", "\xF5", "\xFF"})
        EXPECT_THAT(unitsOf(std::string("a") + byte + "z"), ElementsAre('a', replacement, 'z'));
}

TEST(Utf16, ReplacesEachByteOfACharacterThatIsCutShort)
{
    EXPECT_THAT(unitsOf("\xC3"), ElementsAre(replacement));
    EXPECT_THAT(unitsOf("\xE2\x82"), ElementsAre(replacement, replacement));
    EXPECT_THAT(unitsOf("\xF0\x9F\x98"), ElementsAre(replacement, replacement, replacement));
    EXPECT_THAT(unitsOf("\xC3z"), ElementsAre(replacement, 'z'));
    EXPECT_THAT(unitsOf("\xE2\x82z"), ElementsAre(replacement, replacement, 'z'));
    EXPECT_THAT(unitsOf("\xE2z\x82"), ElementsAre(replacement, 'z', replacement));
    EXPECT_THAT(unitsOf("\xF0\x9F\x98z"), ElementsAre(replacement, replacement, replacement, 'z'));
}

TEST(Utf16, ReplacesCharactersThatAreWrittenTooLongOrTooLarge)
{
    EXPECT_THAT(unitsOf("\xC1\xBF"), ElementsAre(replacement, replacement));
    EXPECT_THAT(unitsOf("\xE0\x9F\xBF"), ElementsAre(replacement, replacement, replacement));
    EXPECT_THAT(unitsOf("\xF0\x8F\xBF\xBF"), ElementsAre(replacement, replacement, replacement, replacement));
    EXPECT_THAT(unitsOf("\xF4\x90\x80\x80"), ElementsAre(replacement, replacement, replacement, replacement));
}

TEST(Utf16, ReplacesSurrogatesThatAreWrittenAsCharacters)
{
    EXPECT_THAT(unitsOf("\xED\xA0\x80"), ElementsAre(replacement, replacement, replacement));
    EXPECT_THAT(unitsOf("\xED\xBF\xBF"), ElementsAre(replacement, replacement, replacement));
}

TEST(Utf8, WritesCharactersOfEveryLength)
{
    for (const Sample& sample : samples)
        EXPECT_EQ(sample.text, textOf(sample.units));
}

TEST(Utf8, ReplacesASurrogateWithoutItsPartner)
{
    EXPECT_EQ(replacementUtf8, textOf({0xD83D}));
    EXPECT_EQ(replacementUtf8, textOf({0xDE00}));
    EXPECT_EQ(replacementUtf8 + "z", textOf({0xDBFF, 'z'}));
    EXPECT_EQ(replacementUtf8 + replacementUtf8, textOf({0xDE00, 0xD83D}));
    EXPECT_EQ(replacementUtf8 + "\xF0\x9F\x98\x80", textOf({0xD83D, 0xD83D, 0xDE00}));
}

TEST(Utf8, EndsAtTheTerminatingZeroAndIsEmptyForANullPointer)
{
    const WCHAR units[] = {'a', 0, 'b', 0};

    EXPECT_EQ("a", sim::utf8(units));
    EXPECT_EQ("", sim::utf8(nullptr));
}
}
