#include "client/anonymity/letters.h"

#include "simulator/machine/utf8.h"

namespace sonavit::anonymity
{
namespace
{
constexpr char32_t brokenByte = 0x200000; ///< and the byte: beyond all characters

/// Capital letters whose small ones are at a fixed distance.
struct Alphabet
{
    char32_t first;
    char32_t last;
    char32_t distance;
};

constexpr Alphabet alphabets[] = {{U'A', U'Z', 0x20},
                                  {0xC0, 0xD6, 0x20}, // Latin-1
                                  {0xD8, 0xDE, 0x20},
                                  {0x391, 0x3A9, 0x20}, // Greek
                                  {0x410, 0x42F, 0x20}, // Cyrillic
                                  {0x400, 0x40F, 0x50}, // Cyrillic, further letters
                                  {brokenByte + 0xC0, brokenByte + 0xD6, 0x20},
                                  {brokenByte + 0xD8, brokenByte + 0xDE, 0x20}};

/// Latin letters with further marks: each capital letter is followed by its small one.
constexpr Alphabet pairs[] = {{0x100, 0x137, 1}, {0x139, 0x148, 1}, {0x14A, 0x177, 1}, {0x179, 0x17E, 1}};

bool isIn(char32_t character, char32_t first, char32_t last)
{
    return character >= first && character <= last;
}

void append(std::string& text, char32_t character)
{
    const auto byte = [](char32_t value) { return static_cast<char>(static_cast<unsigned char>(value)); };
    const auto following = [&](int shift) { return byte(0x80 | ((character >> shift) & 0x3F)); };
    if (character >= brokenByte)
        text += byte(character - brokenByte);
    else if (character < 0x80)
        text += byte(character);
    else if (character < 0x800)
        text.append({byte(0xC0 | (character >> 6)), following(0)});
    else if (character < 0x10000)
        text.append({byte(0xE0 | (character >> 12)), following(6), following(0)});
    else
        text.append({byte(0xF0 | (character >> 18)), following(12), following(6), following(0)});
}

bool isLeading(char32_t unit)
{
    return isIn(unit, 0xD800, 0xDBFF);
}
}

std::u32string charactersOf(std::string_view text)
{
    std::u32string characters;
    characters.reserve(text.size());
    for (std::size_t at = 0; at < text.size();)
    {
        const sim::Utf8Character character = sim::characterAt(text, at);
        characters += character.isBroken ? brokenByte + character.code : char32_t(character.code);
        at += character.size;
    }
    return characters;
}

std::string ofCharacters(const std::u32string& characters)
{
    std::string text;
    text.reserve(characters.size());
    for (const char32_t character : characters)
        append(text, character);
    return text;
}

std::u32string asBytes(std::u32string characters)
{
    for (char32_t& character : characters)
    {
        if (character > 0xFF)
            return {};
        if (character >= 0x80)
            character += brokenByte;
    }
    return characters;
}

std::u32string wideCharactersIn(const std::vector<std::uint8_t>& bytes, std::size_t start)
{
    std::u32string characters;
    for (std::size_t at = start; at + 1 < bytes.size(); at += 2)
    {
        const char32_t unit = static_cast<char32_t>(bytes[at] | (bytes[at + 1] << 8));
        if (!characters.empty() && isLeading(characters.back()) && isIn(unit, 0xDC00, 0xDFFF))
            characters.back() = 0x10000 + ((characters.back() - 0xD800) << 10) + (unit - 0xDC00);
        else
            characters += unit;
    }
    return characters;
}

void storeWide(const std::u32string& characters, std::vector<std::uint8_t>& bytes, std::size_t start)
{
    std::size_t at = start;
    const auto store = [&](char32_t unit)
    {
        bytes[at++] = static_cast<std::uint8_t>(unit & 0xFF);
        bytes[at++] = static_cast<std::uint8_t>(unit >> 8);
    };
    for (const char32_t character : characters)
    {
        if (character >= 0x10000)
            store(0xD800 + ((character - 0x10000) >> 10));
        store(character >= 0x10000 ? 0xDC00 + (character & 0x3FF) : character);
    }
}

char32_t folded(char32_t character)
{
    for (const Alphabet& alphabet : alphabets)
        if (isIn(character, alphabet.first, alphabet.last))
            return character + alphabet.distance;
    for (const Alphabet& pair : pairs)
        if (isIn(character, pair.first, pair.last) && (character - pair.first) % 2 == 0)
            return character + 1;
    return character;
}

std::u32string folded(std::u32string characters)
{
    for (char32_t& character : characters)
        character = folded(character);
    return characters;
}

char32_t capital(char32_t character)
{
    for (const Alphabet& alphabet : alphabets)
        if (isIn(character, alphabet.first + alphabet.distance, alphabet.last + alphabet.distance))
            return character - alphabet.distance;
    for (const Alphabet& pair : pairs)
        if (isIn(character, pair.first, pair.last) && (character - pair.first) % 2 == 1)
            return character - 1;
    return character;
}

bool isDigit(char32_t character)
{
    return isIn(character, U'0', U'9');
}

bool isLetter(char32_t character)
{
    const char32_t small = folded(character);
    const bool isSign = small < 0xC0 || small == 0xD7 || small == 0xF7 || isIn(small, 0x2000, 0x2BFF) ||
                        isIn(small, 0x3000, 0x303F) || isIn(small, 0xD800, 0xF8FF) || isIn(small, 0xFE00, 0xFEFF) ||
                        isIn(small, 0xFF00, 0xFF20) || small > 0x10FFFF;
    return isIn(small, U'a', U'z') || !isSign;
}

bool isHexDigit(char32_t character)
{
    return isDigit(character) || isIn(folded(character), U'a', U'f');
}

char32_t otherOfItsKind(char32_t character, std::uint32_t number, bool isHex)
{
    if (isDigit(character))
        return U'0' + number % 10;
    if (!isLetter(character))
        return character;
    if (character < 0x80)
        return U'a' + number % (isHex ? 6 : 26);
    if (character < 0x800)
        return 0xE0 + number % 23; // to the letter before the sign of division
    if (character < 0x10000)
        return 0x4E00 + number % 0x5000; // a Chinese character
    return 0x20000 + number % 0xA000;
}
}
