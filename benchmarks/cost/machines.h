/// @file
/// Machines by name, and machines of any size.
#pragma once

#include "simulator/machine/machine.h"

#include <string>

namespace bench
{
/// A shipped machine by its name, or a built one with hardware as in the shipped ones: a volume and a mute on each way
/// through an adapter.
///
///     cards:100         cards of ten endpoints, five outputs and five inputs, each with a jack and a stream
///     endpoints:100     one card with that many endpoints, half of them outputs; twice as many connectors on its
///     adapter connectors:500    one card with an adapter of that many connectors, each a jack with an endpoint: from
///     each input
///                       a way leads to an output, as in a mixer
///     adapters:80       one card with that many adapters, each with one endpoint, a jack and a stream
///     chain:80          one card with one output and one input. Both ways lead through that many adapters in turn,
///     each
///                       with four connectors
///
/// @exception std::invalid_argument for any other kind, and for a number that is none or zero
sim::Machine machineOfSize(const std::string& name);
}
