/// @file
/// The text of a reference.
///
/// "snv1:", then base64url (RFC 4648, section 5) without padding of a sequence of fields and a checksum. A field is a
/// byte with its tag, a byte with its length, and so many bytes. The checksum is the FNV-1a hash of 32 bits of all
/// fields, little-endian.
#pragma once

#include "client/references/traits.h"
#include "sonavit/result.h"

#include <cstddef>
#include <string>
#include <string_view>

namespace sonavit::references
{
/// Of a whole text.
inline constexpr std::size_t textLimit = 512;

/// The text for @p traits, of at most textLimit characters; empty traits are left out.
std::string textOf(const Traits& traits);

/// Reads a text. Fields with other tags are skipped.
/// @return Problem::Kind::unreadable with a sentence that says why it is none; never throws but for lack of memory
Result<Traits> traitsIn(std::string_view text);
}
