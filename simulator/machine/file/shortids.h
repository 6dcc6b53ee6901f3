/// @file
/// Short ids: in a machine file, "/jack" within the topology of the device "{2}.x" is short for the part "{2}.x/jack".
#pragma once

#include "simulator/machine/topology.h"

#include <string>

namespace sim
{
/// The topology of the device @p deviceId with all ids of parts in full, or as short as they can be.
Topology withFullIds(Topology topology, const std::string& deviceId);
Topology withShortIds(Topology topology, const std::string& deviceId);
}
