/// @file
/// The system on which the program runs.
#pragma once

#include <optional>
#include <string>

namespace conformity
{
/// Its kind, its version and the rights of the process: "Windows 10.0.19045, run as an administrator".
std::string hostName();

/// Whether the process runs as an administrator; no value off Windows, where there is no such account.
std::optional<bool> isAdministrator();
}
