/// @file
/// A machine of the sweep's own.
#pragma once

#include "simulator/machine/machine.h"

#include <string>
#include <vector>

namespace faults
{
/// The name of a small machine with all that operations control: volumes, mutes and a selector in the hardware, jacks,
/// inputs and outputs. On it each kind of call fails, which would take hours on a machine of usual size.
inline constexpr const char* controlled = "controlled";

/// The machines that ship, and that one.
std::vector<std::string> sweptMachines();

/// The machine of that name.
sim::Machine sweptMachine(const std::string& name);
}
