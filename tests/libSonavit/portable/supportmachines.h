/// The machines on which transcripts are made.
#pragma once

#include "simulator/machine/machine.h"

#include <string>
#include <vector>

namespace support
{
/// All machines that ship, machines of the random generators, and machines that are extreme in one respect: many
/// adapters, many connectors, a long chain, far devices that cannot be opened, ids in other case, without a value or
/// twice.
std::vector<std::string> transcriptMachines();

/// A few of them whose operations make few calls, so that each call can fail by itself.
std::vector<std::string> smallMachines();

/// The machine of that name.
sim::Machine transcriptMachine(const std::string& name);
}
