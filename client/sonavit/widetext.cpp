#include "sonavit/ids.h"

#include <cstddef>
#include <cstdint>

namespace sonavit
{
inline namespace v1
{
namespace
{
constexpr char32_t replacement = 0xFFFD;
constexpr bool isWideUtf16 = sizeof(wchar_t) == 2;

bool isHighSurrogate(char32_t unit) noexcept
{
    return unit >= 0xD800 && unit <= 0xDBFF;
}

bool isLowSurrogate(char32_t unit) noexcept
{
    return unit >= 0xDC00 && unit <= 0xDFFF;
}

bool isCharacter(char32_t value) noexcept
{
    return value <= 0x10FFFF && !isHighSurrogate(value) && !isLowSurrogate(value);
}

/// The bytes that follow a first byte of UTF-8, and the least character that needs them; 0 bytes and the least of 0 for
/// ASCII, and for a byte that begins nothing a least that is no character.
struct Lead
{
    std::size_t following;
    char32_t bits;
    char32_t least;
};

Lead leadOf(unsigned char byte) noexcept
{
    if (byte < 0x80)
        return {0, byte, 0};
    if (byte >= 0xC2 && byte <= 0xDF)
        return {1, byte & 0x1FU, 0x80};
    if (byte >= 0xE0 && byte <= 0xEF)
        return {2, byte & 0x0FU, 0x800};
    if (byte >= 0xF0 && byte <= 0xF4)
        return {3, byte & 0x07U, 0x10000};
    return {0, replacement, 0};
}

/// Takes one character, or the ill-formed sequence in its place, from the front of @p text.
char32_t takeCharacter(std::string_view& text) noexcept
{
    const Lead lead = leadOf(static_cast<unsigned char>(text.front()));
    text.remove_prefix(1);
    char32_t value = lead.bits;
    for (std::size_t i = 0; i < lead.following; ++i)
    {
        if (text.empty() || (static_cast<unsigned char>(text.front()) & 0xC0U) != 0x80)
            return replacement;
        value = (value << 6U) | (static_cast<unsigned char>(text.front()) & 0x3FU);
        text.remove_prefix(1);
    }
    return value >= lead.least && isCharacter(value) ? value : replacement;
}

char32_t takeCharacter(std::wstring_view& text) noexcept
{
    const auto first = static_cast<char32_t>(text.front());
    text.remove_prefix(1);
    if (!isWideUtf16 || !isHighSurrogate(first))
        return isCharacter(first) ? first : replacement;
    if (text.empty() || !isLowSurrogate(static_cast<char32_t>(text.front())))
        return replacement;
    const auto second = static_cast<char32_t>(text.front());
    text.remove_prefix(1);
    return 0x10000 + ((first - 0xD800) << 10U) + (second - 0xDC00);
}

void append(std::wstring& wide, char32_t value)
{
    if (!isWideUtf16 || value < 0x10000)
    {
        wide.push_back(static_cast<wchar_t>(value));
        return;
    }
    wide.push_back(static_cast<wchar_t>(0xD800 + ((value - 0x10000) >> 10U)));
    wide.push_back(static_cast<wchar_t>(0xDC00 + (value & 0x3FFU)));
}

void append(std::string& utf8, char32_t value)
{
    const auto push = [&utf8](char32_t byte) { utf8.push_back(static_cast<char>(static_cast<unsigned char>(byte))); };
    if (value < 0x80)
        return push(value);
    if (value < 0x800)
        push(0xC0U | (value >> 6U));
    else
    {
        if (value < 0x10000)
            push(0xE0U | (value >> 12U));
        else
        {
            push(0xF0U | (value >> 18U));
            push(0x80U | ((value >> 12U) & 0x3FU));
        }
        push(0x80U | ((value >> 6U) & 0x3FU));
    }
    push(0x80U | (value & 0x3FU));
}
}

std::wstring wideText(std::string_view utf8)
{
    std::wstring wide;
    wide.reserve(utf8.size());
    while (!utf8.empty())
        append(wide, takeCharacter(utf8));
    return wide;
}

std::string utf8Text(std::wstring_view wide)
{
    std::string utf8;
    utf8.reserve(wide.size());
    while (!wide.empty())
        append(utf8, takeCharacter(wide));
    return utf8;
}
}
}
