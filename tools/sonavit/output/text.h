/// Strings as the program shows them: UTF-8, one line each, and numbers with their units.
#pragma once

#include "qor/string.h"

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace sonavit::program
{
/// Shown in place of a value that cannot be read.
inline constexpr const char* nothing = "-";

/// Columns that inQuotes() gives a string at most.
inline constexpr std::size_t longestQuote = 100;

/// No value for the empty string, which is what the library keeps if the platform has no such string.
std::optional<std::string> textOrNothing(const qor::String& text);

/// @p text with U+FFFD for each byte that is not UTF-8 and for each control character, so that a name can neither break
/// a line nor control a terminal.
std::string printable(std::string_view text);

/// @p text with an escape sequence (\n, \x1B, \u202E) for what printable() replaces. A backslash in @p text stays as it
/// is.
std::string escaped(std::string_view text);

/// escaped() between quotation marks, cut after longestQuote columns: for messages that repeat what the user wrote.
std::string inQuotes(std::string_view text);

/// The columns that @p text takes on a terminal: two for wide East Asian characters, none for combining ones.
std::size_t displayWidth(std::string_view text);

/// @p text if it fits into @p width columns, otherwise its beginning and an ellipsis.
std::string shortened(const std::string& text, std::size_t width);

/// @p text in lines of at most @p width columns, broken at blanks; a longer word gets a line of its own. 0 for no
/// limit.
std::vector<std::string> wrapped(const std::string& text, std::size_t width);

/// @p text with blanks up to @p width columns, after it or before it.
std::string padded(const std::string& text, std::size_t width);
std::string paddedLeft(const std::string& text, std::size_t width);

/// These fold the letters A to Z alone, as the platform does with ids.
std::string lowerCase(std::string_view text);
bool equalNoCase(std::string_view left, std::string_view right);
bool containsNoCase(std::string_view text, std::string_view piece);

/// "72%", "-18.00 dB", or "-".
std::string percentText(const std::optional<unsigned>& percent);
std::string decibelText(const std::optional<float>& decibels);

/// "-18.00", and never "-0.00".
std::string decimalText(float value, int decimals);

/// "1 card", "3 cards".
std::string counted(std::size_t count, const std::string& noun);

/// "a, b and c".
std::string enumeration(const std::vector<std::string>& texts);
}
