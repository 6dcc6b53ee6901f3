/// @file
/// One operation of one client on a simulated machine.
#pragma once

#include "simulator/simulation.h"

#include <functional>
#include <memory>
#include <string>

namespace bench
{
/// The measured operation, with what it needs: what the operation is about has been found before.
using Operation = std::function<void()>;

/// @param side
///     "library"           the library
///     "direct"            the plain client
///     "direct-wholelist"  the same, but it registers the connectors of all devices again for each new one
/// @param work
///     "discovery"  all sound cards are found
///     "lists"      the four lists of each flow
///     "controls"   the hardware controls of all endpoints of all cards
///     "event"      one change of a state reaches all cards
/// @param simulation the machine, which delivers its events at once
/// @exception std::invalid_argument if there is no such operation
Operation prepareOperation(const std::string& side, const std::string& work, sim::Simulation& simulation);
}
