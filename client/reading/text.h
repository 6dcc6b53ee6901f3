/// @file
/// The platform's strings as UTF-8.
#pragma once

#include "platform/coreaudio.h"
#include "sonavit/ids.h"

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

namespace sonavit::reading
{
/// Converts a zero-terminated string; null gives the empty string. Surrogates without a partner become U+FFFD.
std::string utf8(const WCHAR* text);
/// Converts @p length units.
std::string utf8(const WCHAR* text, std::size_t length);

/// The reverse: UTF-16 with a final zero. Each malformed byte becomes U+FFFD.
std::vector<WCHAR> wide(const std::string& utf8);

/// The GUID that a zero-terminated string contains in the form of Guid::parse(); no value for any other text.
std::optional<Guid> writtenGuid(const WCHAR* text);

Guid guidOf(const GUID& guid) noexcept;
}
