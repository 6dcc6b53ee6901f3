/// @file
/// Hashes that references contain: they never change.
#pragma once

#include <cstdint>
#include <string_view>

namespace sonavit::references
{
/// FNV-1a of 32 bits.
constexpr std::uint32_t hash32(std::string_view bytes) noexcept
{
    std::uint32_t hash = 0x811C9DC5U;
    for (const char byte : bytes)
        hash = (hash ^ static_cast<unsigned char>(byte)) * 0x01000193U;
    return hash;
}

/// FNV-1a of 64 bits, over the letters A to Z as a to z.
constexpr std::uint64_t foldedHash64(std::string_view text) noexcept
{
    std::uint64_t hash = 0xCBF29CE484222325U;
    for (const char character : text)
    {
        const char folded = character >= 'A' && character <= 'Z' ? static_cast<char>(character - 'A' + 'a') : character;
        hash = (hash ^ static_cast<unsigned char>(folded)) * 0x00000100000001B3U;
    }
    return hash;
}
}
