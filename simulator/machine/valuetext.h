/// How values are shown in messages and written to machine files.
#pragma once

#include "platform/coreaudio.h"

#include <cstddef>
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

/// @p text for a message: on one line, in UTF-8 and without anything that steers a terminal. Control characters,
/// characters that change the direction of writing and surrogates are written `\n`, `\t`, `\u001B`, bytes that are not
/// UTF-8 `\xC3`. More than @p longest bytes are cut behind a whole character and end in `...`.
std::string printable(const std::string& text, std::size_t longest = 100);

/// printable() between double quotes.
std::string inQuotes(const std::string& text, std::size_t longest = 100);
}
