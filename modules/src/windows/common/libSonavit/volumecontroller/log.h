#pragma once

#include "qor/logstatement.h"

/// Log channel of the volume controllers.
namespace volumelog
{
inline constexpr const char* channel = "libSonavit.volumecontroller";
inline qor::LoggerSlot logger;
}
