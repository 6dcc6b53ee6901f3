/// @file
/// What the fuzz targets say about each input.
#pragma once

#include <cstdio>
#include <cstdlib>
#include <string_view>

namespace fuzz
{
/// Ends the process if the promise does not hold; libFuzzer keeps the input then.
inline void check(bool holds, const char* promise)
{
    if (holds)
        return;
    std::fprintf(stderr, "broken promise: %s\n", promise);
    std::abort();
}

/// Whether a message fits on one line of a terminal: it is there, and nothing in it is a control character.
inline bool isOneLine(std::string_view text)
{
    for (const char character : text)
    {
        const auto byte = static_cast<unsigned char>(character);
        if (byte < 0x20 || byte == 0x7F)
            return false;
    }
    return !text.empty();
}

/// How many lines the text has.
inline std::size_t linesIn(std::string_view text)
{
    std::size_t lines = 1;
    for (const char character : text)
        lines += character == '\n' ? 1 : 0;
    return lines;
}
}
