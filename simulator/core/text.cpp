#include "simulator/core/text.h"

#include <cstdint>

namespace sim
{
namespace
{
constexpr std::uint32_t replacementCharacter = 0xFFFD;

/// How many bytes follow the leading byte @p lead; -1 where it leads nothing.
int followers(unsigned char lead)
{
    if (lead < 0x80)
        return 0;
    if (lead >= 0xC2 && lead <= 0xDF)
        return 1;
    if (lead >= 0xE0 && lead <= 0xEF)
        return 2;
    return lead >= 0xF0 && lead <= 0xF4 ? 3 : -1;
}

/// Reads one character at @p position and moves it on; a wrong byte is passed over alone.
std::uint32_t nextCharacter(const std::string& text, std::size_t& position)
{
    const auto lead = static_cast<unsigned char>(text[position++]);
    const int count = followers(lead);
    if (count <= 0)
        return count == 0 ? lead : replacementCharacter;

    static constexpr std::uint32_t leadMasks[] = {0x7F, 0x1F, 0x0F, 0x07};
    static constexpr std::uint32_t smallest[] = {0, 0x80, 0x800, 0x10000};
    std::uint32_t character = lead & leadMasks[count];
    std::size_t ahead = position;
    for (int index = 0; index < count; ++index, ++ahead)
    {
        if (ahead >= text.size() || (static_cast<unsigned char>(text[ahead]) & 0xC0) != 0x80)
            return replacementCharacter;
        character = (character << 6) | (static_cast<unsigned char>(text[ahead]) & 0x3F);
    }
    if (character < smallest[count] || character > 0x10FFFF)
        return replacementCharacter;
    position = ahead;
    return character;
}

void appendUtf8(std::string& text, std::uint32_t character)
{
    const auto add = [&](std::uint32_t byte) { text.push_back(static_cast<char>(byte)); };
    if (character < 0x80)
    {
        add(character);
    }
    else if (character < 0x800)
    {
        add(0xC0 | (character >> 6));
        add(0x80 | (character & 0x3F));
    }
    else if (character < 0x10000)
    {
        add(0xE0 | (character >> 12));
        add(0x80 | ((character >> 6) & 0x3F));
        add(0x80 | (character & 0x3F));
    }
    else
    {
        add(0xF0 | (character >> 18));
        add(0x80 | ((character >> 12) & 0x3F));
        add(0x80 | ((character >> 6) & 0x3F));
        add(0x80 | (character & 0x3F));
    }
}

bool isHighSurrogate(WCHAR unit)
{
    return unit >= 0xD800 && unit <= 0xDBFF;
}

bool isLowSurrogate(WCHAR unit)
{
    return unit >= 0xDC00 && unit <= 0xDFFF;
}
}

std::vector<WCHAR> utf16(const std::string& text)
{
    std::vector<WCHAR> units;
    units.reserve(text.size() + 1);
    for (std::size_t position = 0; position < text.size();)
    {
        const std::uint32_t character = nextCharacter(text, position);
        if (character < 0x10000)
        {
            units.push_back(static_cast<WCHAR>(character));
        }
        else
        {
            units.push_back(static_cast<WCHAR>(0xD800 + ((character - 0x10000) >> 10)));
            units.push_back(static_cast<WCHAR>(0xDC00 + ((character - 0x10000) & 0x3FF)));
        }
    }
    units.push_back(0);
    return units;
}

std::string utf8(const WCHAR* text)
{
    std::string result;
    for (; text != nullptr && *text != 0; ++text)
    {
        std::uint32_t character = *text;
        if (isHighSurrogate(*text) && isLowSurrogate(text[1]))
        {
            character = 0x10000 + ((character - 0xD800) << 10) + (static_cast<std::uint32_t>(text[1]) - 0xDC00);
            ++text;
        }
        appendUtf8(result, character);
    }
    return result;
}
}
