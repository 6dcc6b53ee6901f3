#include "simulator/core/utf16.h"

#include "simulator/machine/utf8.h"

#include <cstdint>
#include <string_view>

namespace sim
{
namespace
{
constexpr std::uint32_t replacement = 0xFFFD;
constexpr std::uint32_t firstPair = 0x10000; ///< characters from here on are two units

bool isSurrogate(std::uint32_t code)
{
    return code >= 0xD800 && code <= 0xDFFF;
}

/// Whether the two units are one character.
bool isPair(std::uint32_t first, std::uint32_t second)
{
    return first >= 0xD800 && first < 0xDC00 && second >= 0xDC00 && second <= 0xDFFF;
}

void appendUnits(std::vector<WCHAR>& units, std::uint32_t code)
{
    if (code < firstPair)
    {
        units.push_back(static_cast<WCHAR>(code));
        return;
    }
    units.push_back(static_cast<WCHAR>(0xD800 + ((code - firstPair) >> 10)));
    units.push_back(static_cast<WCHAR>(0xDC00 + ((code - firstPair) & 0x3FF)));
}

void appendBytes(std::string& text, std::uint32_t code)
{
    const auto append = [&](std::uint32_t byte) { text += static_cast<char>(static_cast<unsigned char>(byte)); };
    const auto appendFollower = [&](unsigned shift) { append(0x80 | ((code >> shift) & 0x3F)); };
    if (code < 0x80)
        return append(code);
    if (code < 0x800)
    {
        append(0xC0 | (code >> 6));
        return appendFollower(0);
    }
    if (code < firstPair)
    {
        append(0xE0 | (code >> 12));
    }
    else
    {
        append(0xF0 | (code >> 18));
        appendFollower(12);
    }
    appendFollower(6);
    appendFollower(0);
}
}

std::vector<WCHAR> utf16(const std::string& text)
{
    std::vector<WCHAR> units;
    units.reserve(text.size() + 1);
    for (std::size_t i = 0; i < text.size();)
    {
        const Utf8Character character = characterAt(text, i);
        const bool isBroken = character.isBroken || isSurrogate(character.code);
        appendUnits(units, isBroken ? replacement : character.code);
        i += isBroken ? 1 : character.size;
    }
    units.push_back(0);
    return units;
}

std::string utf8(const WCHAR* text)
{
    std::string bytes;
    for (const WCHAR* unit = text; unit != nullptr && *unit != 0; ++unit)
    {
        std::uint32_t code = *unit;
        if (isPair(unit[0], unit[1]))
        {
            code = firstPair + ((code - 0xD800) << 10) + (static_cast<std::uint32_t>(unit[1]) - 0xDC00);
            ++unit;
        }
        appendBytes(bytes, isSurrogate(code) ? replacement : code);
    }
    return bytes;
}
}
