/// @file
/// Base64url without padding.
#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace sonavit::references
{
std::string base64urlOf(std::string_view bytes);

/// Whether all characters are those of the alphabet.
bool isBase64url(std::string_view text) noexcept;

/// The bytes; no value for characters that are none of the alphabet, for a length that no bytes have, and for unused
/// bits that are not 0: one sequence of bytes has one text.
std::optional<std::string> bytesInBase64url(std::string_view text);
}
