/// @file
/// The platform's codes for failures, with their names and in words. Not a public header.
#pragma once

#include <cstdint>

namespace sonavit
{
struct KnownCode
{
    std::uint32_t code = 0;
    const char* name = "";  ///< in the SDK's headers: "E_ACCESSDENIED"
    const char* words = ""; ///< "access denied"
};

/// Codes up to this one are results of the wave functions.
inline constexpr std::uint32_t lastWaveCode = 21;

/// Null for a code that has no words.
const KnownCode* knownCode(std::uint32_t code) noexcept;
}
