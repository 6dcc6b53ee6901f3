/// @file
/// Text between the machine's UTF-8 and the platform's 16-bit units.
#pragma once

#include <string>
#include <vector>

#include "platform/coreaudio.h"

namespace sim
{
/// The units of @p text and a terminating zero. A byte that is no UTF-8 becomes the replacement character.
std::vector<WCHAR> utf16(const std::string& text);

/// The text up to its zero; a null pointer reads as empty. A surrogate that stands alone is kept in three bytes, which
/// utf16() reads back.
std::string utf8(const WCHAR* text);
}
