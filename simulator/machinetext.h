/// How values are shown in messages and written to machine files.
#pragma once

#include <string>

namespace sim
{
/// The shortest decimal text that reads back as exactly this value.
std::string decimal(float value);

/// @p text between double quotes, shortened where it is long.
std::string quoted(const std::string& text);
}
