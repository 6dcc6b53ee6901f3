#include "client/reading/text.h"

#include <gtest/gtest.h>

#include <initializer_list>
#include <vector>

namespace reading = sonavit::reading;

namespace
{
std::string convert(std::initializer_list<unsigned> units)
{
    std::vector<WCHAR> text;
    for (const unsigned unit : units)
        text.push_back(static_cast<WCHAR>(unit));
    text.push_back(0);
    return reading::utf8(text.data());
}

TEST(ReadingText, OfNullIsEmpty)
{
    EXPECT_EQ("", reading::utf8(nullptr));
    EXPECT_EQ("", convert({}));
}

TEST(ReadingText, BecomesUtf8AtEachLength)
{
    EXPECT_EQ("a\x7F", convert({'a', 0x7F}));
    EXPECT_EQ("\xC2\x80\xDF\xBF", convert({0x80, 0x7FF}));
    EXPECT_EQ("\xE0\xA0\x80\xEF\xBF\xBF", convert({0x800, 0xFFFF}));
    EXPECT_EQ("\xF0\x90\x80\x80\xF4\x8F\xBF\xBF", convert({0xD800, 0xDC00, 0xDBFF, 0xDFFF}));
    EXPECT_EQ("a\xC3\xA4z", convert({'a', 0xE4, 'z'}));
}

TEST(ReadingText, ReplacesSurrogatesWithoutAPartner)
{
    EXPECT_EQ("\xEF\xBF\xBD", convert({0xD800}));
    EXPECT_EQ("\xEF\xBF\xBDz", convert({0xDC00, 'z'}));
    EXPECT_EQ("\xEF\xBF\xBD\xF0\x90\x80\x80", convert({0xD800, 0xD800, 0xDC00}));
    EXPECT_EQ("\xEF\xBF\xBDz", convert({0xD83C, 'z'}));
}

TEST(ReadingText, EndsAtTheGivenLength)
{
    const std::vector<WCHAR> text = {'a', 0xD800, 0xDC00, 'b'};

    EXPECT_EQ("a\xEF\xBF\xBD", reading::utf8(text.data(), 2));
    EXPECT_EQ("", reading::utf8(text.data(), 0));
}

std::vector<WCHAR> units(std::initializer_list<unsigned> text)
{
    return {text.begin(), text.end()};
}

TEST(ReadingWide, EndsWithAZero)
{
    EXPECT_EQ(units({0}), reading::wide(""));
    EXPECT_EQ(units({'a', 0x7F, 0}), reading::wide("a\x7F"));
}

TEST(ReadingWide, BecomesUtf16)
{
    EXPECT_EQ(units({'a', 0xE4, 0x20AC, 0xD83D, 0xDD0A, 'z', 0}),
              reading::wide("a\xC3\xA4\xE2\x82\xAC\xF0\x9F\x94\x8Az"));
    EXPECT_EQ(units({0xFFFD, 'z', 0}), reading::wide("\xFFz"));
}

std::optional<sonavit::Guid> writtenGuid(const std::string& text)
{
    std::vector<WCHAR> units;
    for (const char character : text)
        units.push_back(static_cast<WCHAR>(static_cast<unsigned char>(character)));
    units.push_back(0);
    return reading::writtenGuid(units.data());
}

TEST(ReadingWrittenGuid, IsReadWithAndWithoutBraces)
{
    const sonavit::Guid guid = {0x8C7ED206, 0x3F8A, 0x4827, {0xB3, 0xAB, 0xAE, 0x9E, 0x1F, 0xAE, 0xFC, 0x6C}};

    EXPECT_EQ(guid, writtenGuid("{8C7ED206-3F8A-4827-B3AB-AE9E1FAEFC6C}"));
    EXPECT_EQ(guid, writtenGuid("8c7ed206-3f8a-4827-b3ab-ae9e1faefc6c"));
}

TEST(ReadingWrittenGuid, OfAnyOtherTextIsNone)
{
    EXPECT_FALSE(writtenGuid(""));
    EXPECT_FALSE(writtenGuid("{8C7ED206-3F8A-4827-B3AB-AE9E1FAEFC6C} "));
    EXPECT_FALSE(writtenGuid("{8C7ED206-3F8A-4827-B3AB-AE9E1FAEFC6\xC3}"));
    EXPECT_FALSE(writtenGuid(std::string(100000, '{')));
    EXPECT_FALSE(writtenGuid("{8C7ED206-3F8A-4827-B3AB-AE9E1FAEFC6C"));
    EXPECT_FALSE(writtenGuid("8C7ED206-3F8A-4827-B3AB-AE9E1FAEFC6C}"));
}

/// The text ends where its memory ends, which a sanitizer watches.
TEST(ReadingWrittenGuid, OfATextThatBreaksOffIsNone)
{
    const std::string whole = "{8C7ED206-3F8A-4827-B3AB-AE9E1FAEFC6C}";
    for (std::size_t length = 0; length < whole.size(); ++length)
        EXPECT_FALSE(writtenGuid(whole.substr(0, length))) << length;
}

TEST(ReadingWrittenGuid, OfATextWithOneOtherCharacterIsNone)
{
    const std::string whole = "{8C7ED206-3F8A-4827-B3AB-AE9E1FAEFC6C}";
    for (std::size_t place = 0; place < whole.size(); ++place)
    {
        std::string text = whole;
        text[place] = 'g';
        EXPECT_FALSE(writtenGuid(text)) << text;
    }
}

TEST(ReadingWrittenGuid, OfUnitsBeyondAsciiIsNone)
{
    const std::string whole = "8C7ED206-3F8A-4827-B3AB-AE9E1FAEFC6C";
    std::vector<WCHAR> text(whole.begin(), whole.end());
    text.push_back(0);
    text[0] = 0x0138; // '8' in its lower byte

    EXPECT_FALSE(reading::writtenGuid(text.data()));
}
}
