#pragma once

#include <chrono>
#include <string>

namespace sonavit::program
{
/// For people: the local time of day, "17:04:59.250".
std::string localTimeText(std::chrono::system_clock::time_point time);

/// For programs: date and time in UTC, "2026-01-31T17:04:59.250Z".
std::string universalTimeText(std::chrono::system_clock::time_point time);
}
