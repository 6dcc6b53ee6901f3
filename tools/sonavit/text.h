/// Texts as the program shows them: UTF-8, one line each, and numbers with their units.
#pragma once

#include "qor/string.h"

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

namespace sonavit
{
/// What stands where nothing could be read.
inline constexpr const char* nothing = "-";

/// No value for the empty text, which is what the library keeps where the platform told nothing.
std::optional<std::string> textOrNothing(const qor::String& text);

/// @p text with U+FFFD for each control character, so that a name can neither break a line nor steer a terminal.
std::string printable(std::string_view text);

/// The columns that @p text takes on a terminal: two for wide East Asian characters, none for combining ones.
std::size_t displayWidth(std::string_view text);

/// @p text where it fits into @p width columns, otherwise its beginning and an ellipsis.
std::string shortened(const std::string& text, std::size_t width);

/// @p text with blanks up to @p width columns, behind it or before it.
std::string padded(const std::string& text, std::size_t width);
std::string paddedLeft(const std::string& text, std::size_t width);

/// These look at the letters A to Z alone, as the platform does with ids.
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
template<class Texts>
std::string enumeration(const Texts& texts)
{
    std::string result;
    std::size_t position = 0;
    for (const std::string& text : texts)
    {
        if (position > 0)
            result += ++position == texts.size() ? " and " : ", ";
        else
            ++position;
        result += text;
    }
    return result;
}
}
