#pragma once

#include "qor/logstatement.h"

/// Log channel of the enumerators.
namespace enumeratorlog
{
inline constexpr const char* channel = "libSonavit.endpointDeviceEnumerator";
inline qor::LoggerSlot logger;
}
