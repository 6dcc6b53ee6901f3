#include "simulator/machine/utf8.h"

#include <gtest/gtest.h>

namespace
{
void expectCharacter(std::uint32_t code, std::string_view bytes)
{
    const sim::Utf8Character character = sim::characterAt(bytes, 0);

    EXPECT_FALSE(character.isBroken) << code;
    EXPECT_EQ(code, character.code);
    EXPECT_EQ(bytes.size(), character.size) << code;
}

void expectBroken(std::string_view bytes)
{
    const sim::Utf8Character character = sim::characterAt(bytes, 0);

    EXPECT_TRUE(character.isBroken) << testing::PrintToString(bytes);
    EXPECT_EQ(static_cast<unsigned char>(bytes.front()), character.code);
    EXPECT_EQ(1u, character.size);
}

TEST(Utf8Character, IsReadAtBothEndsOfEachLength)
{
    expectCharacter(0x00, std::string_view("\0", 1));
    expectCharacter(0x7F, "\x7F");
    expectCharacter(0x80, "\xC2\x80");
    expectCharacter(0x7FF, "\xDF\xBF");
    expectCharacter(0x800, "\xE0\xA0\x80");
    expectCharacter(0xFFFF, "\xEF\xBF\xBF");
    expectCharacter(0x10000, "\xF0\x90\x80\x80");
    expectCharacter(0x10FFFF, "\xF4\x8F\xBF\xBF");
}

TEST(Utf8Character, MayBeASurrogate)
{
    expectCharacter(0xD800, "\xED\xA0\x80");
    expectCharacter(0xDFFF, "\xED\xBF\xBF");
}

TEST(Utf8Character, DoesNotBeginWithAContinuationOrAnUnusedByte)
{
    for (const char* bytes : {"\x80", "\xBF", "\xC0\x80", "\xC1\xBF", "\xF5\x80\x80\x80", "\xFE", "\xFF"})
        expectBroken(bytes);
}

TEST(Utf8Character, IsBrokenWhenItsBytesAreMissingOrOfAnotherKind)
{
    for (const char* bytes :
         {"\xC2", "\xE2\x82", "\xF0\x9F\x94", "\xC2\x41", "\xE2\x41\xAC", "\xE2\x82\x41", "\xF0\x9F\x94\xC2"})
        expectBroken(bytes);
}

TEST(Utf8Character, IsBrokenWhenItIsTooLongOrTooLarge)
{
    for (const char* bytes : {"\xE0\x9F\xBF", "\xF0\x8F\xBF\xBF", "\xF4\x90\x80\x80"})
        expectBroken(bytes);
}

TEST(Utf8Character, IsReadWhereverItBegins)
{
    const std::string_view text = "a\xE2\x82\xAC\x80z";

    EXPECT_EQ(0x20ACu, sim::characterAt(text, 1).code);
    EXPECT_TRUE(sim::characterAt(text, 2).isBroken);
    EXPECT_TRUE(sim::characterAt(text, 4).isBroken);
    EXPECT_EQ(static_cast<std::uint32_t>('z'), sim::characterAt(text, 5).code);
}
}
