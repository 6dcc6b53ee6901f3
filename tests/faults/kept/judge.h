/// @file
/// Judges balances by the table.
#pragma once

#include "tests/faults/kept/balance.h"

#include <string>
#include <vector>

namespace faults::kept
{
/// What the operation of @p row leaves on @p machine that its row does not have, or does not leave although its row has
/// it; empty if nothing is wrong.
std::string errorOf(const Row& row, const sim::Machine& machine);

/// Kinds of rows of which nothing was left on any of @p machines: "OPERATION: KIND", a line each.
std::string needlessKinds(const std::vector<Row>& rows, const std::vector<sim::Machine>& machines);
}
