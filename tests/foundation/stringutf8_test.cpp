#include "qor/string.h"
#include "tests/support/printers.h"

#include <gtest/gtest.h>

#include <string>
#include <string_view>
#include <vector>

using qor::String;

namespace
{
std::vector<unsigned int> units(const String& text)
{
    return std::vector<unsigned int>(text.getUCS2Buffer(), text.getUCS2Buffer() + text.size());
}

String ucs2(std::vector<unsigned short> content)
{
    content.push_back(0);
    return String(content.data());
}

using Units = std::vector<unsigned int>;

TEST(StringToUtf8, WritesOneToFourBytesForAUnitOrPair)
{
    EXPECT_EQ("a\x7F", ucs2({'a', 0x7F}).toUtf8());
    EXPECT_EQ("\xC2\x80\xDF\xBF", ucs2({0x80, 0x7FF}).toUtf8());
    EXPECT_EQ("\xE0\xA0\x80\xEF\xBF\xBF", ucs2({0x800, 0xFFFF}).toUtf8());
    EXPECT_EQ("\xF0\x90\x80\x80\xF4\x8F\xBF\xBF", ucs2({0xD800, 0xDC00, 0xDBFF, 0xDFFF}).toUtf8());
}

TEST(StringToUtf8, WritesTheReplacementForASurrogateWithoutAPartner)
{
    EXPECT_EQ("\xEF\xBF\xBDz", ucs2({0xD800, 'z'}).toUtf8());
    EXPECT_EQ("\xEF\xBF\xBD", ucs2({0xDC00}).toUtf8());
    EXPECT_EQ("\xEF\xBF\xBD", ucs2({0xDBFF}).toUtf8());
    EXPECT_EQ("\xEF\xBF\xBD\xF0\x90\x80\x80", ucs2({0xD800, 0xD800, 0xDC00}).toUtf8());
}

TEST(StringToUtf8, OfTheEmptyTextIsEmpty)
{
    EXPECT_EQ("", String().toUtf8());
}

TEST(StringFromUtf8, ReadsOneToFourBytes)
{
    EXPECT_EQ((Units{'a', 0x7F}), units(String::fromUtf8("a\x7F")));
    EXPECT_EQ((Units{0x80, 0x7FF}), units(String::fromUtf8("\xC2\x80\xDF\xBF")));
    EXPECT_EQ((Units{0x800, 0xFFFF}), units(String::fromUtf8("\xE0\xA0\x80\xEF\xBF\xBF")));
    EXPECT_EQ((Units{0xD800, 0xDC00, 0xDBFF, 0xDFFF}), units(String::fromUtf8("\xF0\x90\x80\x80\xF4\x8F\xBF\xBF")));
}

TEST(StringFromUtf8, ReadsEachMalformedByteAsTheReplacement)
{
    EXPECT_EQ((Units{0xFFFD, 'a'}), units(String::fromUtf8("\x80"
                                                           "a")));                       // nothing to continue
    EXPECT_EQ((Units{0xFFFD, 0xFFFD}), units(String::fromUtf8("\xC0\x80")));             // longer than needed
    EXPECT_EQ((Units{0xFFFD, 0xFFFD, 0xFFFD}), units(String::fromUtf8("\xE0\x80\x80"))); // longer than needed
    EXPECT_EQ((Units{0xFFFD, 0xFFFD, 0xFFFD}), units(String::fromUtf8("\xED\xA0\x80"))); // a surrogate
    EXPECT_EQ((Units{0xFFFD, 0xFFFD, 0xFFFD, 0xFFFD}), units(String::fromUtf8("\xF4\x90\x80\x80"))); // too large
    EXPECT_EQ((Units{0xFFFD}), units(String::fromUtf8("\xFF")));
}

TEST(StringFromUtf8, ReadsACharacterThatEndsTooSoonAsReplacements)
{
    EXPECT_EQ((Units{'a', 0xFFFD}), units(String::fromUtf8("a\xC3")));
    EXPECT_EQ((Units{0xFFFD, 0xFFFD}), units(String::fromUtf8("\xE2\x82")));
    EXPECT_EQ((Units{0xFFFD, 'z'}), units(String::fromUtf8("\xC3z")));
}

TEST(StringFromUtf8, ReadsNothingBeyondTheEndOfAViewThatCutsACharacter)
{
    for (const std::string character : {"\xC3\xA9", "\xE2\x82\xAC", "\xF0\x9F\x94\x8A"})
    {
        for (std::size_t length = 1; length < character.size(); ++length)
        {
            // The rest follows it in memory.
            const std::string_view cut = std::string_view(character).substr(0, length);

            EXPECT_EQ(Units(length, 0xFFFD), units(String::fromUtf8(cut))) << character << ' ' << length;
        }
        EXPECT_EQ((Units{0xFFFD, 'a'}), units(String::fromUtf8("\xC3" + std::string("a"))))
            << "after a cut, reading goes on";
    }
}

TEST(StringFromUtf8, KeepsAZeroInTheMiddle)
{
    const String text = String::fromUtf8(std::string_view("a\0b", 3));

    EXPECT_EQ((Units{'a', 0, 'b'}), units(text));
    EXPECT_EQ(std::string("a\0b", 3), text.toUtf8());
}

TEST(StringFromUtf8, OfNothingIsTheEmptyText)
{
    EXPECT_EQ(String(), String::fromUtf8(""));
    EXPECT_EQ(String(), String::fromUtf8(std::string_view()));
}

TEST(StringFromUtf8, ReadsWhatToUtf8Wrote)
{
    for (unsigned int unit = 1; unit <= 0xFFFF; ++unit)
    {
        if (unit >= 0xD800 && unit <= 0xDFFF)
            continue;
        const String text = ucs2({static_cast<unsigned short>(unit)});
        ASSERT_EQ(text, String::fromUtf8(text.toUtf8())) << unit;
    }
}
}
