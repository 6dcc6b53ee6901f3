/// The strings of the benchmarks, for this library and for the standard library.
#pragma once

#include "qor/string.h"

#include <string>
#include <vector>

namespace bench
{
/// An endpoint id as long as those of the platform: 55 units. Numbers from 0 to 65535 give ids that differ in their
/// last four units.
std::u16string endpointId(unsigned int number);

/// A path of a device interface, 141 units long. Different numbers give paths that differ in their middle.
std::u16string devicePath(unsigned int number);

/// endpointId(0) to endpointId(count - 1); devicePath() likewise.
std::vector<std::u16string> endpointIds(unsigned int count);
std::vector<std::u16string> devicePaths(unsigned int count);

/// The same string in another buffer.
qor::String ownText(const std::u16string& text);
std::vector<qor::String> ownTexts(const std::vector<std::u16string>& texts);

/// @p text with its letters a to z in upper case.
std::u16string capitals(std::u16string text);
}
