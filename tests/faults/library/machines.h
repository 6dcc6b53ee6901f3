/// The machines on which operations of the object model fail.
#pragma once

#include "simulator/machine/machine.h"
#include "tests/faults/engine/faultedruns.h"

#include <functional>
#include <string>
#include <vector>

namespace faults::library
{
struct MachineChoice
{
    std::string name;
    std::function<sim::Machine()> build;
    Extent extent;
};

/// All machines that ship, and built ones that are small: on these, pairs of calls fail as well.
std::vector<MachineChoice> machines();
}
