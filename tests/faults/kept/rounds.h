/// @file
/// Many rounds of what keeps nothing, and what grows meanwhile.
#pragma once

#include "simulator/machine/machine.h"
#include "tests/faults/kept/row.h"
#include "tests/faults/memory/clientsubject.h"

#include <string>
#include <vector>

namespace faults::kept
{
/// What has grown, as text for people: references, task memory, registrations, handles, threads, memory. Empty if
/// nothing has.
using Growth = std::string;

/// Performs the operation of @p row so often, after a few rounds in which caches fill. The row must keep nothing.
Growth growthOf(const Row& row, const sim::Machine& machine, unsigned rounds);

/// Does the work of all @p cases, in turn, so often with one System that lives throughout.
Growth growthOf(const std::vector<memory::ClientCase>& cases, const sim::Machine& machine, unsigned rounds);

/// Begins and ends a System so often.
Growth growthOfSystems(const sim::Machine& machine, unsigned rounds);
}
