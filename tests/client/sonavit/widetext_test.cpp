#include "sonavit/ids.h"

#include <gtest/gtest.h>

#include <string>

namespace
{
using namespace sonavit;

TEST(WideText, KeepsAnEndpointId)
{
    EXPECT_EQ(wideText("{0.0.0.00000000}.{a-b}"), L"{0.0.0.00000000}.{a-b}");
    EXPECT_EQ(utf8Text(L"{0.0.0.00000000}.{a-b}"), "{0.0.0.00000000}.{a-b}");
}

TEST(WideText, GivesEveryCharacterBack)
{
    for (char32_t value = 0; value <= 0x10FFFF; ++value)
    {
        if (value >= 0xD800 && value <= 0xDFFF)
            continue;
        std::wstring wide;
        if (sizeof(wchar_t) == 2 && value > 0xFFFF)
        {
            wide.push_back(static_cast<wchar_t>(0xD800 + ((value - 0x10000) >> 10)));
            wide.push_back(static_cast<wchar_t>(0xDC00 + ((value - 0x10000) & 0x3FF)));
        }
        else
            wide.push_back(static_cast<wchar_t>(value));

        ASSERT_EQ(wideText(utf8Text(wide)), wide) << value;
    }
}

TEST(WideText, WritesTheShortestUtf8)
{
    EXPECT_EQ(utf8Text(L"\x7F\x80"), "\x7F\xC2\x80");
    EXPECT_EQ(utf8Text(L"\x7FF\x800"), "\xDF\xBF\xE0\xA0\x80");
    EXPECT_EQ(utf8Text(L"\U0001F3A7"), "\xF0\x9F\x8E\xA7");
}

TEST(WideText, ReplacesIllFormedSequences)
{
    EXPECT_EQ(wideText("a\x80z"), L"a\uFFFDz");
    EXPECT_EQ(wideText("a\xC0\xAFz"), L"a\uFFFD\uFFFDz"); // longer than needed
    EXPECT_EQ(wideText("a\xE2\x82"), L"a\uFFFD");         // ends too early
    EXPECT_EQ(wideText("\xE2\x82z"), L"\uFFFDz");
    EXPECT_EQ(wideText("\xE0\x80\x80"), L"\uFFFD");
    EXPECT_EQ(wideText("\xED\xA0\x80"), L"\uFFFD"); // a surrogate
    EXPECT_EQ(wideText("\xF4\x90\x80\x80"), L"\uFFFD");
    EXPECT_EQ(wideText("\xFF"), L"\uFFFD");
}

TEST(WideText, ReplacesLoneSurrogates)
{
    const wchar_t high = static_cast<wchar_t>(0xD83C);
    const wchar_t low = static_cast<wchar_t>(0xDFA7);

    EXPECT_EQ(utf8Text(std::wstring{high}), "\xEF\xBF\xBD");
    EXPECT_EQ(utf8Text(std::wstring{low, L'x'}), "\xEF\xBF\xBDx");
    EXPECT_EQ(utf8Text(std::wstring{high, L'x'}), "\xEF\xBF\xBDx");
}
}
