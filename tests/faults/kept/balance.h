/// @file
/// What an operation has left, and what it has left on purpose.
#pragma once

#include "simulator/simulation.h"
#include "tests/faults/kept/row.h"

#include <map>
#include <set>
#include <string>

namespace faults::kept
{
/// References by interface, blocks of task memory ("task memory"), and registrations by interface with "client of "
/// before it. No zeros.
using Counts = std::map<std::string, long>;

Counts countsOf(const sim::Census& census);
/// "IPartsList 3, task memory 2"; "nothing".
std::string textOf(const Counts& counts);

/// An operation's balance.
struct Balance
{
    Counts left;                      ///< after its objects were gone
    std::map<Kind, Counts> explained; ///< by the calls that it made, and by what the registered cards contain
};

/// Performs the operation of @p row on @p machine, once, in a module of its own.
Balance balanceOf(const Row& row, const sim::Machine& machine);

/// The sum of those kinds.
Counts sumOf(const std::map<Kind, Counts>& explained, const std::set<Kind>& kinds);
}
