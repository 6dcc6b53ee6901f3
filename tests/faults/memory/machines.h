/// @file
/// The machines on which memory runs out, and how often on each.
#pragma once

#include "simulator/machine/machine.h"

#include <functional>
#include <string>
#include <vector>

namespace faults::memory
{
struct MachineChoice
{
    std::string name;
    std::function<sim::Machine()> build;
    unsigned most; ///< runs for each case, side and extent; a case with more allocations is met at equal distances
};

/// Small ones whole, the larger ones of those that ship by samples.
std::vector<MachineChoice> machines();
}
