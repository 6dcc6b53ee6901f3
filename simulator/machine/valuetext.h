/// @file
/// Values as strings, in messages and in machine files.
#pragma once

#include "platform/coreaudio.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>

namespace sim
{
/// The shortest decimal string that reads back as exactly @p value.
std::string decimal(float value);

/// The value of such a string; no value for any other string, and if the number is too large.
std::optional<float> fromDecimal(const std::string& text);

/// The same for double precision.
std::string longDecimal(double value);
std::optional<double> doubleFromDecimal(const std::string& text);

/// The value of a hexadecimal digit in either case; -1 for any other character.
int hexDigit(char character);

/// "{XXXXXXXX-XXXX-XXXX-XXXX-XXXXXXXXXXXX}" in upper case.
std::string guidText(const GUID& guid);

/// The GUID of such a string, in either case; no value for any other string.
std::optional<GUID> guidFromText(const std::string& text);

/// The value of a decimal number without sign, blanks or leading zeros; no value for any other string, and if the
/// number does not fit into 32 bits.
std::optional<std::uint32_t> numberFromText(const std::string& text);

/// The same for 64 bits.
std::optional<std::uint64_t> largeNumberFromText(const std::string& text);

/// The value of "0x" and @p digits hexadecimal digits in either case, at most 16; no value for any other string.
std::optional<std::uint64_t> fromHexText(const std::string& text, std::size_t digits);
std::string hexText(std::uint64_t value, std::size_t digits);

/// The value of "0x80004005", eight digits; no value for any other string.
std::optional<HRESULT> resultFromText(const std::string& text);
std::string resultText(HRESULT result);
}
