/// @file
/// Strings between the machine's UTF-8 and the platform's 16-bit units.
///
/// What is malformed becomes the replacement character U+FFFD in both directions, so a machine always holds valid
/// UTF-8: one for each byte that is no part of a character, and one for a surrogate without its partner.
#pragma once

#include "platform/coreaudio.h"

#include <string>
#include <vector>

namespace sim
{
/// The units of @p text and a terminating zero.
std::vector<WCHAR> utf16(const std::string& text);

/// The string up to its terminating zero; empty for a null pointer.
std::string utf8(const WCHAR* text);
}
