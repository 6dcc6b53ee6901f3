/// Strings as the program shows them: UTF-8, one line each, and numbers with their units. What the client layer's
/// messages need too is that layer's.
#pragma once

#include "qor/string.h"
#include "sonavit/text.h"

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace sonavit::program
{
using text::counted;
using text::displayWidth;
using text::enumeration;
using text::equalNoCase;
using text::escaped;
using text::longestQuote;
using text::lowerCase;
using text::nothing;
using text::printable;
using text::shortened;

/// No value for the empty string, which is what the library keeps if the platform has no such string.
std::optional<std::string> textOrNothing(const qor::String& text);

/// text::quoted(), under the name that sets it apart from the quotation marks of JSON.
std::string inQuotes(std::string_view text);

/// @p text in lines of at most @p width columns, broken at blanks; a longer word gets a line of its own. 0 for no
/// limit.
std::vector<std::string> wrapped(const std::string& text, std::size_t width);

/// @p text with blanks up to @p width columns, after it or before it.
std::string padded(const std::string& text, std::size_t width);
std::string paddedLeft(const std::string& text, std::size_t width);

/// Folds the letters A to Z alone, as the platform does with ids.
bool containsNoCase(std::string_view text, std::string_view piece);

/// "72%", "-18.00 dB", or "-".
std::string percentText(const std::optional<unsigned>& percent);
std::string decibelText(const std::optional<float>& decibels);

/// "-18.00", and never "-0.00".
std::string decimalText(float value, int decimals);
}
