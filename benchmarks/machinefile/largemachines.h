/// @file
/// Large machines of a given size, as builders of machines make them.
#pragma once

#include "simulator/machine/machine.h"

#include <cstddef>
#include <string>

namespace bench
{
/// Active outputs, @p onEachAdapter on each adapter. Each has a volume and a mute in the hardware.
sim::Machine machineOfEndpoints(std::size_t endpoints, std::size_t onEachAdapter = 10);

/// As machineOfEndpoints(), with an event for each endpoint: the odd ones are unplugged, the others get a new level.
sim::Machine machineOfEvents(std::size_t endpoints);

/// An output whose signal comes from the last of @p adapters: each is joined to the next. Each has a volume.
sim::Machine machineOfChain(std::size_t adapters);

/// One of the above: `endpoints:10000`, `adapters:1000` (one output on each), `connectors:1000` (outputs on one
/// adapter), `events:1000` or `chain:1600`. Throws std::invalid_argument for another name.
sim::Machine largeMachine(const std::string& name);
}
