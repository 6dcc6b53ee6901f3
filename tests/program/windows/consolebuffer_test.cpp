#include "tools/sonavit/windows/consolebuffer.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <ostream>
#include <vector>

using testing::ElementsAre;
using testing::IsEmpty;

namespace
{
class ConsoleBufferWrite : public testing::Test
{
protected:
    std::vector<std::wstring> written;
    bool isWriting = true;
    sonavit::program::ConsoleBuffer buffer{[this](std::wstring_view units)
                                           {
                                               written.emplace_back(units);
                                               return isWriting;
                                           }};
    std::ostream stream{&buffer};
};
}

TEST_F(ConsoleBufferWrite, WaitsForAFlush)
{
    stream << "card" << ' ' << 7;
    const std::vector<std::wstring> before = written;
    stream << std::flush;

    EXPECT_THAT(before, IsEmpty());
    EXPECT_THAT(written, ElementsAre(L"card 7"));
}

TEST_F(ConsoleBufferWrite, PassesCharactersOfEachLength)
{
    stream << "a\xC3\xA4\xE2\x94\x94\xF0\x9F\x8E\xA7" << std::flush;

    EXPECT_THAT(written, ElementsAre(L"a\u00E4\u2514\xD83C\xDFA7"));
}

TEST_F(ConsoleBufferWrite, KeepsTheBeginningOfACharacterForTheNextFlush)
{
    stream << "a\xE2\x94" << std::flush << "\x94" << std::flush;

    EXPECT_THAT(written, ElementsAre(L"a", L"\u2514"));
}

TEST_F(ConsoleBufferWrite, ShowsInvalidBytesAsReplacementCharacters)
{
    stream << "a\xFFz" << std::flush;

    EXPECT_THAT(written, ElementsAre(L"a\uFFFDz"));
}

TEST_F(ConsoleBufferWrite, SplitsLongTextBetweenCharacters)
{
    constexpr std::size_t characters = 5000; // two units each
    std::string text = "a";
    for (std::size_t i = 0; i < characters; ++i)
        text += "\xF0\x9F\x8E\xA7";
    stream << text << std::flush;

    ASSERT_EQ(2u, written.size());
    EXPECT_EQ(8191u, written[0].size());
    EXPECT_EQ(1 + 2 * characters, written[0].size() + written[1].size());
    EXPECT_EQ(L'\xD83C', written[1].front());
}

TEST_F(ConsoleBufferWrite, ThatFailsFailsTheStream)
{
    isWriting = false;

    stream << "card" << std::flush;

    EXPECT_FALSE(stream);
}

TEST(ConsoleBufferDestruction, WritesWhatIsLeft)
{
    std::vector<std::wstring> written;
    {
        sonavit::program::ConsoleBuffer buffer(
            [&](std::wstring_view units)
            {
                written.emplace_back(units);
                return true;
            });
        std::ostream(&buffer) << "card\xE2";
    }

    EXPECT_THAT(written, ElementsAre(L"card\uFFFD"));
}
