#pragma once

#include "qor/logstatement.h"

/// Log channel of topologies.
namespace topologylog
{
inline constexpr const char* channel = "libSonavit.audioDeviceTopology";
inline qor::LoggerSlot logger;
}
