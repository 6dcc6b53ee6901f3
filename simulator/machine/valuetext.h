/// How values are shown in messages and written to machine files.
#pragma once

#include <optional>
#include <string>

namespace sim
{
/// The shortest decimal text that reads back as exactly this value.
std::string decimal(float value);

/// The value of such a text; no value where it is not one, or too large.
std::optional<float> fromDecimal(const std::string& text);

/// The value of a hexadecimal digit in either case; -1 for any other character.
int hexDigit(char character);

/// @p character with A to Z turned into a to z.
char lowerCase(char character);

/// @p text between double quotes, shortened where it is long.
std::string inQuotes(const std::string& text);
}
