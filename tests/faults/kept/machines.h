/// @file
/// The machines of the table.
#pragma once

#include "simulator/machine/machine.h"

#include <string>
#include <vector>

namespace faults::kept
{
/// Level, mute and selector in hardware, an unplugged jack, and a second card.
sim::Machine deskMachine();
/// Those that ship.
std::vector<std::string> shippedMachines();
}
