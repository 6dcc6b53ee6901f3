#include "qor/string.h"

#include <gtest/gtest.h>

#include <cctype>
#include <iterator>
#include <string>

using qor::String;

namespace
{
TEST(StringEqualNoCase, IsWhatCompareNoCaseSaysForEveryPairOfShortTexts)
{
    const char letters[] = {'a', 'A', 'q', '@'};
    std::string texts[1 + 4 + 16 + 64 + 256 + 1024];
    std::size_t count = 1; // the first one is empty
    for (std::size_t first = 0, last = 1; count < std::size(texts); first = last, last = count)
    {
        for (std::size_t i = first; i < last; ++i)
        {
            for (const char letter : letters)
                texts[count++] = texts[i] + letter;
        }
    }

    for (const std::string& left : texts)
    {
        const String leftText(left.c_str());
        for (const std::string& right : texts)
        {
            const String rightText(right.c_str());
            ASSERT_EQ(String::compareNoCase(leftText, rightText) == 0, String::equalNoCase(leftText, rightText))
                << left << ' ' << right;
        }
    }
}

TEST(StringEqualNoCase, FindsADifferenceAtAnyPlaceOfALongText)
{
    const std::string id = "{2}.\\\\?\\HDAUDIO#func_01&ven_10ec#{6994ad04-93ef-11d0-a3cc-00a0c9223196}/00010001";
    std::string otherCase = id;
    for (char& unit : otherCase)
        unit = static_cast<char>(std::toupper(static_cast<unsigned char>(unit)));
    ASSERT_TRUE(String::equalNoCase(id.c_str(), otherCase.c_str()));
    for (std::size_t place = 0; place < id.size(); ++place)
    {
        std::string other = otherCase;
        other[place] = '!';

        EXPECT_FALSE(String::equalNoCase(id.c_str(), other.c_str())) << place;
        EXPECT_FALSE(String::equalNoCase(id.c_str(), id.substr(0, place).c_str())) << place;
    }
}
}
