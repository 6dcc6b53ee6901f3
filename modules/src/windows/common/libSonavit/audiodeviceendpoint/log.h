#pragma once

#include "qor/logstatement.h"

/// Log channel of the endpoint device.
namespace endpointlog
{
inline constexpr const char* channel = "libSonavit.audioDeviceEndpoint";
inline qor::LoggerSlot logger;
}
