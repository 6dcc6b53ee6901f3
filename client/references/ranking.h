/// @file
/// Which endpoints of a snapshot a reference may mean.
#pragma once

#include "client/references/traits.h"
#include "sonavit/reference.h"
#include "sonavit/snapshot.h"

#include <vector>

namespace sonavit::references
{
/// The candidates with their ranks, in the order of Resolution::candidates.
std::vector<Candidate> candidatesIn(const Snapshot& snapshot, const Traits& kept);

/// Whether the device of an endpoint is there; so is one whose state cannot be read.
bool isPresent(const Endpoint& endpoint) noexcept;
}
