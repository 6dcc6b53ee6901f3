/// @file
/// What operations on strings mean, said with std::u16string as plainly as possible.
#pragma once

#include "qor/string.h"

#include <string>
#include <string_view>
#include <vector>

namespace fuzz
{
/// The letters A to Z as a to z, all else as it is.
char16_t folded(char16_t unit);

/// -1, 0 or 1.
int comparedNoCase(const std::u16string& left, const std::u16string& right);

/// Split at each unit of @p delimiters, without empty pieces.
std::vector<std::u16string> piecesOf(const std::u16string& text, const std::u16string& delimiters);

/// Each byte as the unit of that number.
std::u16string widened(std::string_view latin1);

/// Each byte that does not begin a character, and each one of a character that is not complete, is U+FFFD.
std::u16string unitsOfUtf8(std::string_view utf8);

/// Each surrogate without its partner is U+FFFD.
std::string utf8Of(const std::u16string& units);

std::u16string unitsOf(const qor::String& text);
}
