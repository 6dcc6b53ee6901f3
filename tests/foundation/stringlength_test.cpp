#include "qor/string.h"

#include <gtest/gtest.h>

#include <vector>

using qor::String;

namespace
{
/// A text of @p length units, @p offset units into a buffer that begins at an aligned address.
String textOf(std::size_t length, std::size_t offset, unsigned short unit)
{
    std::vector<unsigned short> units(offset, 0);
    units.insert(units.end(), length, unit);
    units.push_back(0);
    return String(units.data() + offset);
}

TEST(StringLength, EndsAtTheZeroUnitAtEveryLengthAndAlignment)
{
    for (const unsigned short unit : {0x0001, 0x0041, 0x0100, 0x7FFF, 0x8000, 0x8001, 0xFF00, 0xFFFF})
    {
        for (std::size_t offset = 0; offset < 8; ++offset)
        {
            for (std::size_t length = 0; length < 40; ++length)
                ASSERT_EQ(length, textOf(length, offset, unit).size()) << unit << ' ' << offset << ' ' << length;
        }
    }
}

TEST(StringLength, IgnoresWhatFollowsTheZeroUnit)
{
    for (const unsigned short later : {0x0001, 0x8000, 0xFFFF})
    {
        for (std::size_t length = 0; length < 12; ++length)
        {
            std::vector<unsigned short> units(24, later);
            units[length] = 0;

            EXPECT_EQ(length, String(units.data()).size()) << later;
        }
    }
}

TEST(StringLength, OfAUnitAboveAZeroUnitOfTheSameWordCounts)
{
    const unsigned short units[] = {0x8001, 0xFFFF, 0x8000, 'a', 'b', 0x8000, 0, 'c'};

    EXPECT_EQ(6u, String(units).size());
}

TEST(StringReserve, LeavesTheTextAndMakesRoomThatAppendUses)
{
    String text("Speaker");

    text.reserve(100);
    const unsigned short* const buffer = text.getUCS2Buffer();
    for (int i = 0; i < 31; ++i)
        text.append("abc");

    EXPECT_EQ(buffer, text.getUCS2Buffer());
    EXPECT_EQ(100u, text.size());
    EXPECT_EQ(String("Speakerabc"), text.subString(0, 10));
}

TEST(StringReserve, OfAnEmptyTextLeavesItEmpty)
{
    String text;

    text.reserve(10);

    EXPECT_EQ(0u, text.size());
    EXPECT_EQ(0, text.getUCS2Buffer()[0]);
    EXPECT_TRUE(text == String());
    EXPECT_TRUE(String() == text);
    EXPECT_EQ(0, String::compareNoCase(text, String()));
    EXPECT_EQ(String::hashNoCase(String()), String::hashNoCase(text));
}

TEST(StringReserve, WithoutNeedKeepsTheBuffer)
{
    String text("Speaker");
    text.reserve(50);
    const unsigned short* const buffer = text.getUCS2Buffer();

    text.reserve(50);
    text.reserve(3);

    EXPECT_EQ(buffer, text.getUCS2Buffer());
    EXPECT_EQ(String("Speaker"), text);
}

TEST(StringReserve, PartsFromCopiesWhichKeepTheirText)
{
    String text("Speaker");
    const String copy(text);

    text.reserve(3);
    text.append(" 2");

    EXPECT_EQ(String("Speaker"), copy);
    EXPECT_EQ(String("Speaker 2"), text);
}
}
