/// How values are shown in messages and written to machine files.
#pragma once

#include "platform/coreaudio.h"

#include <cstdint>
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

/// "{XXXXXXXX-XXXX-XXXX-XXXX-XXXXXXXXXXXX}" in upper case.
std::string guidText(const GUID& guid);

/// The GUID written that way, in either case; no value for any other text.
std::optional<GUID> guidFromText(const std::string& text);

/// A decimal number without sign, blanks or leading zeros that fits into 32 bits.
std::optional<std::uint32_t> numberFromText(const std::string& text);

/// "0x80004005", eight digits; no value for any other text.
std::optional<HRESULT> resultFromText(const std::string& text);
std::string resultText(HRESULT result);

/// @p text between double quotes, shortened where it is long.
std::string inQuotes(const std::string& text);
}
