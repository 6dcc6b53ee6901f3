#pragma once

#include "simulator/machine/machine.h"

#include <cstdint>

namespace support
{
/// A machine with random connections: a few cards and adapters, up to 60 connectors, with cycles, dead ends, one-sided
/// and repeated joins, far devices that cannot be opened, ids that differ only in case, and volume, mute and selector
/// nodes anywhere. Equal seeds give equal machines on every system. Every machine can be written to a file and read
/// again.
sim::Machine randomConnections(std::uint32_t seed);
}
