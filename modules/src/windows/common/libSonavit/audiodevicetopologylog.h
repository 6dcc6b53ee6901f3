#pragma once

#include "qor/logstatement.h"

/// Log channel of the topology graph.
namespace topologylog
{
inline constexpr const char* channel = "libSonavit.audioDeviceTopology";
inline qor::LoggerSlot logger;
}
