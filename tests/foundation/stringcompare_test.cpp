#include "qor/array.h"
#include "qor/string.h"
#include "tests/support/printers.h"

#include <gtest/gtest.h>

#include <string>

using qor::String;

namespace
{
TEST(StringEquality, HoldsForTheSameUnits)
{
    EXPECT_TRUE(String("{0.0.0}.card") == String("{0.0.0}.card"));
    EXPECT_FALSE(String("{0.0.0}.card") != String("{0.0.0}.card"));
}

TEST(StringEquality, RegardsCase)
{
    EXPECT_FALSE(String("card") == String("Card"));
    EXPECT_TRUE(String("card") != String("Card"));
}

TEST(StringEquality, RegardsLength)
{
    EXPECT_FALSE(String("card") == String("card 1"));
    EXPECT_FALSE(String("card") == String());
    EXPECT_FALSE(String() == String("card"));
}

TEST(StringEquality, HoldsForTwoEmptyTexts)
{
    String cleared("x");
    cleared.clear();

    EXPECT_TRUE(String() == String(""));
    EXPECT_TRUE(cleared == String());
}

TEST(StringCompareNoCase, OfTwoTextsThatDifferOnlyInCaseGives0WhileEqualityIsFalse)
{
    const String left("{2}.\\\\?\\HDAUDIO#abc");
    const String right("{2}.\\\\?\\hdaudio#ABC");

    EXPECT_EQ(0, String::compareNoCase(left, right));
    EXPECT_FALSE(left == right);
}

TEST(StringCompareNoCase, GivesNot0ForDifferentTexts)
{
    EXPECT_GT(0, String::compareNoCase("abc", "ABD"));
    EXPECT_LT(0, String::compareNoCase("ABD", "abc"));
}

TEST(StringCompareNoCase, PutsTheStartOfATextBeforeTheText)
{
    EXPECT_GT(0, String::compareNoCase("abc", "ABCD"));
    EXPECT_LT(0, String::compareNoCase("ABCD", "abc"));
    EXPECT_EQ(0, String::compareNoCase(String(), ""));
}

TEST(StringCompareNoCase, FoldsNothingButTheLettersAToZ)
{
    EXPECT_NE(0, String::compareNoCase("@", "`"));
    EXPECT_NE(0, String::compareNoCase("[", "{"));
    EXPECT_NE(0, String::compareNoCase("\xC0", "\xE0"));
}

TEST(StringCompareNoCase, FindsADifferenceAtEveryPlaceOfEveryLength)
{
    const std::string lower = "abcdefghijklmnopqrst";
    const std::string upper = "ABCDEFGHIJKLMNOPQRST";
    for (std::size_t length = 1; length <= lower.size(); ++length)
    {
        const std::string folded = lower.substr(0, length);
        EXPECT_EQ(0, String::compareNoCase(folded.c_str(), upper.substr(0, length).c_str()));
        for (std::size_t place = 0; place < length; ++place)
        {
            std::string other = upper.substr(0, length);
            other[place] = '~';
            EXPECT_GT(0, String::compareNoCase(folded.c_str(), other.c_str())) << length << ' ' << place;
            EXPECT_LT(0, String::compareNoCase(other.c_str(), folded.c_str())) << length << ' ' << place;
        }
    }
}

TEST(StringCompareNoCase, FoldsTheSameUnitsAtEveryPlaceOfALongText)
{
    for (unsigned int unit = 1; unit <= 0xFFFF; ++unit)
    {
        const unsigned int partner = unit ^ 0x20; // the other case, where the unit is a letter from A to Z
        const bool letter = (unit >= 'A' && unit <= 'Z') || (unit >= 'a' && unit <= 'z');
        if (partner == 0)
            continue;
        for (unsigned int place = 0; place < 5; ++place)
        {
            unsigned short left[] = {'x', 0xFFFF, 'Y', 0x8041, 'z', 0};
            unsigned short right[] = {'X', 0xFFFF, 'y', 0x8041, 'Z', 0};
            left[place] = static_cast<unsigned short>(unit);
            right[place] = static_cast<unsigned short>(partner);
            ASSERT_EQ(letter, String::compareNoCase(left, right) == 0) << unit << ' ' << place;
        }
    }
}

TEST(StringCompareNoCase, FoldsEachUnitAlikeAtEveryPlace)
{
    for (unsigned int unit = 1; unit < 0x10000; ++unit)
    {
        const bool letter = (unit >= 'A' && unit <= 'Z') || (unit >= 'a' && unit <= 'z');
        for (std::size_t place = 0; place < 5; ++place) // four units are compared at a time, then single ones
        {
            unsigned short left[] = {'-', '-', '-', '-', '-', 0};
            unsigned short right[] = {'-', '-', '-', '-', '-', 0};
            left[place] = static_cast<unsigned short>(unit);
            right[place] = static_cast<unsigned short>(unit ^ 0x20);
            ASSERT_EQ(letter, String::compareNoCase(left, right) == 0) << unit << ' ' << place;
        }
    }
}

unsigned int foldedUnit(unsigned int unit)
{
    return unit >= 'A' && unit <= 'Z' ? unit + ('a' - 'A') : unit;
}

TEST(StringCompareNoCase, ComparesAWholeGroupOfFourUnitsAsItComparesThemOneByOne)
{
    for (unsigned int left = 1; left <= 0xFF; ++left)
    {
        const String leftGroup(std::string(4, static_cast<char>(left)).c_str());
        for (unsigned int right = 1; right <= 0xFF; ++right)
        {
            const String rightGroup(std::string(4, static_cast<char>(right)).c_str());
            const int result = String::compareNoCase(leftGroup, rightGroup);
            ASSERT_EQ(foldedUnit(left) < foldedUnit(right), result < 0) << left << ' ' << right;
            ASSERT_EQ(foldedUnit(left) > foldedUnit(right), result > 0) << left << ' ' << right;
        }
    }
}

TEST(StringCompareNoCase, FindsADifferentLetterAmongEqualOnesOfAGroupOfFour)
{
    EXPECT_NE(0, String::compareNoCase("AAAA", "QQQQ"));
    EXPECT_NE(0, String::compareNoCase("AAAA", "AAQA"));
    EXPECT_NE(0, String::compareNoCase("aQAA", "aAaa"));
    EXPECT_EQ(0, String::compareNoCase("aQAa", "AqaA"));
}

TEST(StringSubString, CopiesThatManyUnitsFromTheStart)
{
    EXPECT_EQ(String("String"), String("A(String)").subString(2, 6));
    EXPECT_EQ(String("A("), String("A(String)").subString(0, 2));
}

TEST(StringSubString, CutsTheFirstTwoUnitsAndTheLastOneOffAClassName)
{
    const String name("ArrayOfOthers");

    EXPECT_EQ(String("rayOfOther"), name.subString(2, name.size() - 3));
}

TEST(StringSubString, LeavesOutWhatLiesOutsideTheText)
{
    EXPECT_EQ(String("ing"), String("String").subString(3, 100));
    EXPECT_EQ(String("ing"), String("String").subString(3, 0xFFFFFFFFu));
    EXPECT_EQ(String(), String("String").subString(6, 1));
    EXPECT_EQ(String(), String("String").subString(0xFFFFFFFFu, 1));
    EXPECT_EQ(String(), String("String").subString(1, 0));
    EXPECT_EQ(String(), String().subString(0, 1));
}

TEST(StringTokenize, GivesThePiecesBetweenTheDelimiters)
{
    const qor::Array<String> pieces = String("{1}.HDAUDIO\\FUNC_01.tail").tokenize(".");

    ASSERT_EQ(3u, pieces.size());
    EXPECT_EQ(String("{1}"), pieces[0]);
    EXPECT_EQ(String("HDAUDIO\\FUNC_01"), pieces[1]);
    EXPECT_EQ(String("tail"), pieces[2]);
}

TEST(StringTokenize, OfATextWithoutADelimiterGivesFewerThanTwoPieces)
{
    const qor::Array<String> pieces = String("HDAUDIO").tokenize(".");

    ASSERT_EQ(1u, pieces.size());
    EXPECT_EQ(String("HDAUDIO"), pieces[0]);
}

TEST(StringTokenize, OfTheEmptyTextGivesNoPiece)
{
    EXPECT_EQ(0u, String().tokenize(".").size());
}

TEST(StringTokenize, PartsAtEachOfSeveralDelimiters)
{
    const qor::Array<String> pieces = String("a.b#c").tokenize("#.");

    ASSERT_EQ(3u, pieces.size());
    EXPECT_EQ(String("a"), pieces[0]);
    EXPECT_EQ(String("b"), pieces[1]);
    EXPECT_EQ(String("c"), pieces[2]);
}

TEST(StringTokenize, LeavesOutEmptyPieces)
{
    const qor::Array<String> pieces = String("..a..b.").tokenize(".");

    ASSERT_EQ(2u, pieces.size());
    EXPECT_EQ(String("a"), pieces[0]);
    EXPECT_EQ(String("b"), pieces[1]);
    EXPECT_EQ(0u, String("...").tokenize(".").size());
}

TEST(StringTokenize, WithoutDelimitersGivesTheWholeText)
{
    const qor::Array<String> pieces = String("a.b").tokenize("");

    ASSERT_EQ(1u, pieces.size());
    EXPECT_EQ(String("a.b"), pieces[0]);
}
}
