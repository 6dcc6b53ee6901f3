#pragma once

#include "sonavit/change.h"
#include "tools/sonavit/output/json.h"

#include <chrono>
#include <optional>
#include <string>

namespace sonavit::program
{
/// One event as a line of `monitor --json`.
/// @param card that it is about; without an id and endpoints for none
Json eventJson(const Event& event, const Card& card, const std::optional<std::string>& machine,
               std::chrono::system_clock::time_point time);
}
