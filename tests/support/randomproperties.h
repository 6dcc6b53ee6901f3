#pragma once

#include "simulator/machine/machine.h"
#include "tests/support/randomchoice.h"

namespace support
{
/// Changes some properties of @p endpoint: removed, empty, of another type, of an odd size, or simply others.
void changeProperties(RandomChoice& choice, const sim::Machine& machine, sim::Endpoint& endpoint);
}
