#include "tools/sonavit/text.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdio>

namespace sonavit
{
namespace
{
constexpr const char* replacement = "\xEF\xBF\xBD";
constexpr const char* ellipsis = "\xE2\x80\xA6";

struct Range
{
    char32_t first;
    char32_t last;
};

constexpr std::array<Range, 9> wideCharacters = {{{0x1100, 0x115F},
                                                  {0x2E80, 0x303E},
                                                  {0x3041, 0xA4CF},
                                                  {0xAC00, 0xD7A3},
                                                  {0xF900, 0xFAFF},
                                                  {0xFE30, 0xFE6F},
                                                  {0xFF00, 0xFF60},
                                                  {0xFFE0, 0xFFE6},
                                                  {0x1F300, 0x1FAFF}}};
constexpr std::array<Range, 3> combiningCharacters = {{{0x0300, 0x036F}, {0x200B, 0x200F}, {0xFE00, 0xFE0F}}};

template<std::size_t Size>
bool isIn(const std::array<Range, Size>& ranges, char32_t character)
{
    return std::any_of(ranges.begin(), ranges.end(),
                       [&](const Range& range) { return character >= range.first && character <= range.last; });
}

/// Bytes of the character that begins with @p first; a stray byte counts as one character.
std::size_t characterLength(unsigned char first)
{
    if (first >= 0xF0)
        return 4;
    if (first >= 0xE0)
        return 3;
    return first >= 0xC0 ? 2 : 1;
}

/// The piece of @p text that is the character at @p position.
std::string_view characterAt(std::string_view text, std::size_t position)
{
    return text.substr(position, characterLength(static_cast<unsigned char>(text[position])));
}

std::size_t characterWidth(std::string_view character)
{
    const auto first = static_cast<unsigned char>(character[0]);
    char32_t value = character.size() == 1 ? first : first & (0xFFu >> (character.size() + 1));
    for (std::size_t i = 1; i < character.size(); ++i)
        value = (value << 6) | (static_cast<unsigned char>(character[i]) & 0x3Fu);
    if (isIn(combiningCharacters, value))
        return 0;
    return isIn(wideCharacters, value) ? 2 : 1;
}

char lowerCaseOf(char character)
{
    return character >= 'A' && character <= 'Z' ? static_cast<char>(character - 'A' + 'a') : character;
}
}

std::optional<std::string> textOrNothing(const qor::String& text)
{
    if (text.size() == 0)
        return std::nullopt;
    return text.toUtf8();
}

std::string printable(std::string_view text)
{
    std::string result;
    for (const char character : text)
    {
        const auto unit = static_cast<unsigned char>(character);
        if (unit < 0x20 || unit == 0x7F)
            result += replacement;
        else
            result += character;
    }
    return result;
}

std::size_t displayWidth(std::string_view text)
{
    std::size_t width = 0;
    for (std::size_t position = 0; position < text.size();)
    {
        const std::string_view character = characterAt(text, position);
        width += characterWidth(character);
        position += character.size();
    }
    return width;
}

std::string shortened(const std::string& text, std::size_t width)
{
    if (displayWidth(text) <= width)
        return text;
    if (width == 0)
        return {};
    std::size_t taken = 1; // the ellipsis
    std::size_t position = 0;
    while (position < text.size())
    {
        const std::string_view character = characterAt(text, position);
        taken += characterWidth(character);
        if (taken > width)
            break;
        position += character.size();
    }
    std::string start = text.substr(0, position);
    while (!start.empty() && start.back() == ' ')
        start.pop_back();
    return start + ellipsis;
}

std::string padded(const std::string& text, std::size_t width)
{
    const std::size_t own = displayWidth(text);
    return own < width ? text + std::string(width - own, ' ') : text;
}

std::string paddedLeft(const std::string& text, std::size_t width)
{
    const std::size_t own = displayWidth(text);
    return own < width ? std::string(width - own, ' ') + text : text;
}

std::string lowerCase(std::string_view text)
{
    std::string result(text);
    std::transform(result.begin(), result.end(), result.begin(), lowerCaseOf);
    return result;
}

bool equalNoCase(std::string_view left, std::string_view right)
{
    return lowerCase(left) == lowerCase(right);
}

bool containsNoCase(std::string_view text, std::string_view piece)
{
    return lowerCase(text).find(lowerCase(piece)) != std::string::npos;
}

std::string percentText(const std::optional<unsigned>& percent)
{
    return percent ? std::to_string(*percent) + "%" : nothing;
}

std::string decibelText(const std::optional<float>& decibels)
{
    return decibels ? decimalText(*decibels, 2) + " dB" : nothing;
}

std::string decimalText(float value, int decimals)
{
    std::array<char, 64> buffer{};
    std::snprintf(buffer.data(), buffer.size(), "%.*f", decimals, static_cast<double>(value));
    const std::string text = buffer.data();
    const bool isZero = text.find_first_not_of("-0.") == std::string::npos;
    return isZero && text[0] == '-' ? text.substr(1) : text;
}

std::string counted(std::size_t count, const std::string& noun)
{
    return std::to_string(count) + " " + noun + (count == 1 ? "" : "s");
}
}
