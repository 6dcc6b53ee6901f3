/// @file
/// Help for a name that does not exist: the name that was probably meant.
#pragma once

#include <string>
#include <vector>

namespace sim
{
/// The one of @p names that differs least from @p name: in the case of its letters, or in few of its characters. Empty
/// if none is near.
std::string nearestName(const std::string& name, const std::vector<std::string>& names);

/// ` (did you mean "nearest"?)`, or ` (what: all, names)` if no name is near; for the end of a message.
std::string suggestion(const std::string& name, const std::vector<std::string>& names, const std::string& what);
}
