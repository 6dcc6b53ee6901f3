/// @file
/// In what the two readers differ on purpose.
#pragma once

#include "simulator/machine/machine.h"
#include "tests/client/model/supportanswers.h"

#include <vector>

namespace support
{
/// A wanted difference. docs/client-differences.md has a row of the same name.
struct Difference
{
    const char* name;
    const char* reason;
    /// Makes both answers alike in this point, and in no other.
    void (*settle)(Answers& client, Answers& model, const sim::Machine& machine);
};

/// In the order in which they must be settled.
const std::vector<Difference>& wantedDifferences();
}
