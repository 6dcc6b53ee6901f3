#include "client/references/base64url.h"

#include <cstddef>
#include <cstdint>

namespace sonavit::references
{
namespace
{
constexpr std::string_view alphabet = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789-_";
}

std::string base64urlOf(std::string_view bytes)
{
    std::string text;
    std::uint32_t bits = 0;
    unsigned count = 0;
    for (const char byte : bytes)
    {
        bits = (bits << 8U) | static_cast<unsigned char>(byte);
        for (count += 8; count >= 6; count -= 6)
            text.push_back(alphabet[(bits >> (count - 6)) & 0x3FU]);
    }
    if (count != 0)
        text.push_back(alphabet[(bits << (6 - count)) & 0x3FU]);
    return text;
}

bool isBase64url(std::string_view text) noexcept
{
    return text.find_first_not_of(alphabet) == std::string_view::npos;
}

std::optional<std::string> bytesInBase64url(std::string_view text)
{
    if (text.size() % 4 == 1)
        return std::nullopt;
    std::string bytes;
    std::uint32_t bits = 0;
    unsigned count = 0;
    for (const char character : text)
    {
        const std::size_t value = alphabet.find(character);
        if (value == std::string_view::npos)
            return std::nullopt;
        bits = (bits << 6U) | static_cast<std::uint32_t>(value);
        count += 6;
        if (count < 8)
            continue;
        count -= 8;
        bytes.push_back(static_cast<char>(static_cast<unsigned char>((bits >> count) & 0xFFU)));
    }
    if ((bits & ((1U << count) - 1)) != 0)
        return std::nullopt;
    return bytes;
}
}
