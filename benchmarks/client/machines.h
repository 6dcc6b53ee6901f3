/// @file
/// Machines by name, and machines of any size.
#pragma once

#include "simulator/machine/machine.h"

#include <string>

namespace bench
{
/// A shipped machine by its name, or a built one:
///
///     endpoints:400     active outputs, ten on each adapter
///     adapters:400      one active output on each
///     connectors:400    active outputs on one adapter
///
/// Each output has a volume and a mute in the hardware.
sim::Machine machineNamed(const std::string& name);
}
