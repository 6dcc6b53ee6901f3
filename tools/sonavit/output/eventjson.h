#pragma once

#include "sonavit/change.h"
#include "tools/sonavit/output/json.h"

#include <optional>
#include <string>

namespace sonavit::program
{
/// One event of @p change as a line of `monitor --json`.
/// @param card that it is about; without an id and endpoints for none
Json eventJson(const Event& event, const Change& change, const Card& card, const std::optional<std::string>& machine);
}
