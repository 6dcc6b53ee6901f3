#pragma once

#include "tools/sonavit/output/graphview.h"
#include "tools/sonavit/output/json.h"

#include <optional>
#include <string>

namespace sonavit::program
{
/// The graph as `graph --json` prints it. Parts have a number each, as ids may be missing.
Json graphJson(const GraphView& view, const std::optional<std::string>& machine);
}
