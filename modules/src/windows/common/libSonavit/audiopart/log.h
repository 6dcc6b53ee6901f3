#pragma once

#include "qor/logstatement.h"

/// Log channel of parts and components.
namespace partlog
{
inline constexpr const char* channel = "libSonavit.audioPart";
inline qor::LoggerSlot logger;
}
