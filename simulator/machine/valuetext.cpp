#include "simulator/machine/valuetext.h"

#include <charconv>
#include <cmath>

namespace sim
{
std::string decimal(float value)
{
    char text[32] = {};
    return std::string(text, std::to_chars(text, text + sizeof text, value).ptr);
}

std::optional<float> fromDecimal(const std::string& text)
{
    float value = 0.0f;
    const char* const end = text.data() + text.size();
    const std::from_chars_result result = std::from_chars(text.data(), end, value);
    const bool isNumber = result.ec == std::errc() && result.ptr == end && std::isfinite(value);
    return isNumber ? std::optional<float>(value) : std::nullopt;
}

int hexDigit(char character)
{
    if (character >= '0' && character <= '9')
        return character - '0';
    if (character >= 'A' && character <= 'F')
        return character - 'A' + 10;
    if (character >= 'a' && character <= 'f')
        return character - 'a' + 10;
    return -1;
}

char lowerCase(char character)
{
    return character >= 'A' && character <= 'Z' ? static_cast<char>(character - 'A' + 'a') : character;
}

std::string inQuotes(const std::string& text)
{
    constexpr std::size_t longest = 100;
    if (text.size() <= longest)
        return "\"" + text + "\"";

    // A cut inside a character would not be UTF-8 any more.
    std::size_t end = longest;
    while (end > 0 && (static_cast<unsigned char>(text[end]) & 0xC0) == 0x80)
        --end;
    return "\"" + text.substr(0, end) + "...\"";
}
}
