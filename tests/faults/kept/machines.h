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
/// Those that ship, without `broken`: an operation of the table needs what that one refuses, such as a card with an
/// endpoint whose volume can be read.
std::vector<std::string> shippedMachines();
}
