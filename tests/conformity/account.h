/// @file
/// The account under which the program runs.
#pragma once

#include <optional>

namespace conformity
{
/// Whether the process has the rights of an administrator; no value off Windows, where there is no such account.
std::optional<bool> isAdministrator();
}
