/// @file
/// Strings of any content in messages.
#pragma once

#include <cstddef>
#include <string>

namespace sim
{
/// @p text for a message: on one line, in UTF-8 and without anything that steers a terminal. Control characters,
/// characters that change the direction of writing and surrogates are written `\n`, `\t`, `\u001B`, bytes that are not
/// UTF-8 `\xC3`. A result of more than @p longest bytes is cut after a whole
/// character and ends in `...`.
std::string printable(const std::string& text, std::size_t longest = 100);

/// printable() between double quotes.
std::string inQuotes(const std::string& text, std::size_t longest = 100);
}
