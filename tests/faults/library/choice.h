/// Which objects of a machine the operations use.
#pragma once

#include "COM/comptr.h"
#include "qor/string.h"
#include "simulator/simulation.h"

#include <string>
#include <vector>

namespace faults::library
{
qor::String text(const std::string& utf8);

/// The first endpoint of each flow.
std::vector<std::string> endpointIds(const sim::Machine& machine);
/// These, and the first adapter.
std::vector<std::string> deviceIds(const sim::Machine& machine);
/// The first endpoint that is active and has a volume; empty if there is none.
std::string endpointWithVolume(const sim::Machine& machine);
/// The first part that has a volume, and the first that has a mute; empty if there is none.
std::string partWithVolume(const sim::Machine& machine);
std::string partWithMute(const sim::Machine& machine);
/// Connectors of the first device whose topology has any: at most three.
std::vector<std::string> connectorIds(const sim::Machine& machine);
/// A subunit of the first device that has any.
std::string subunitId(const sim::Machine& machine);

/// An object that Simulation hands out, with the reference on it.
template<class I>
typename COMPtr<I>::pointer owned(I* object)
{
    return typename COMPtr<I>::pointer(object);
}
}
