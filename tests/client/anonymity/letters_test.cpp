#include "client/anonymity/letters.h"

#include <gtest/gtest.h>

#include <set>
#include <string>
#include <vector>

namespace
{
using sonavit::anonymity::isDigit;
using sonavit::anonymity::isLetter;
using sonavit::anonymity::ofCharacters;
using sonavit::anonymity::otherOfItsKind;

/// The characters that come for some numbers, small and large ones.
std::set<char32_t> othersOf(char32_t character, bool isHex = false)
{
    std::set<char32_t> others;
    for (std::uint32_t number = 0; number < 0x18000; number += number < 100 ? 1 : 97)
        others.insert(otherOfItsKind(character, number, isHex));
    return others;
}

struct LetterKind
{
    char32_t character;
    char32_t first;
    char32_t last;
};

TEST(OtherLetter, IsOfTheSameKindAndSize)
{
    for (const LetterKind& kind :
         {LetterKind{U'7', U'0', U'9'}, LetterKind{U'q', U'a', U'z'}, LetterKind{U'Q', U'a', U'z'},
          LetterKind{0xFC, 0xE0, 0xF6}, LetterKind{0x416, 0xE0, 0xF6}, LetterKind{0x97F3, 0x4E00, 0x9DFF},
          LetterKind{0xAC00, 0x4E00, 0x9DFF}, LetterKind{0x2070E, 0x20000, 0x29FFF}})
    {
        const std::set<char32_t> others = othersOf(kind.character);
        EXPECT_EQ(kind.first, *others.begin()) << static_cast<std::uint32_t>(kind.character);
        EXPECT_GE(kind.last, *others.rbegin()) << static_cast<std::uint32_t>(kind.character);
        EXPECT_LE(10u, others.size());
        const std::size_t size = ofCharacters({kind.character}).size();
        for (const char32_t other : others)
        {
            EXPECT_EQ(size, ofCharacters({other}).size());
            EXPECT_TRUE(isDigit(other) || isLetter(other)) << static_cast<std::uint32_t>(other);
        }
    }
}

TEST(OtherLetter, OfAHexNumberGoesToF)
{
    EXPECT_EQ((std::set<char32_t>{U'a', U'b', U'c', U'd', U'e', U'f'}), othersOf(U'B', true));
}

TEST(OtherLetter, OfASignIsTheSignItself)
{
    for (const char32_t sign : {U' ', U'-', U'\\', U'{', char32_t(0xB0), char32_t(0x2026), char32_t(0x3001)})
        EXPECT_EQ(std::set<char32_t>{sign}, othersOf(sign)) << static_cast<std::uint32_t>(sign);
}
}
