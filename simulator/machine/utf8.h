/// @file
/// Characters of UTF-8 strings.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>

namespace sim
{
/// A character of a UTF-8 string.
struct Utf8Character
{
    std::uint32_t code = 0; ///< its number, or the byte that is not UTF-8
    std::size_t size = 1;   ///< bytes of the string, at least 1
    bool isBroken = false;  ///< no character begins at this byte
};

/// The character of @p text that begins at @p position, which must be inside of the string. A surrogate in three bytes
/// counts as a character: the platform's strings may contain one alone.
Utf8Character characterAt(std::string_view text, std::size_t position);
}
