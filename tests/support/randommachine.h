#pragma once

#include "simulator/machine/machine.h"

#include <cstdint>
#include <vector>

namespace support
{
/// A machine with up to six cards of up to eight endpoints, such as drivers could make it: both flows, all states,
/// jacks with and without descriptions, nodes for volume, mute and selection on the way, some of them shared;
/// properties that are missing, empty, of another type or of an odd size; endpoints without an instance path, or with
/// one that differs from another in case alone; wave ids, defaults, and joins that lead nowhere. A third of the
/// machines have the hardware of randomConnections() instead.
///
/// Equal seeds give equal machines on every system. Every machine can be written to a file and read again.
/// @param first what is chosen first, as a fuzzer does it: a byte for each choice; the seed decides about the others
sim::Machine randomMachine(std::uint32_t seed, std::vector<std::uint8_t> first = {});

/// Gives some levels of @p machine an empty range, and some of its volumes no channel. Drivers can report that, and a
/// machine file may contain it.
sim::Machine withOddLevels(sim::Machine machine, std::uint32_t seed);
}
