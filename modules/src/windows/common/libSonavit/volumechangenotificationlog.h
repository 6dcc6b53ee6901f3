#pragma once

#include "qor/logstatement.h"

/// Log channel of the volume change notification.
namespace notificationlog
{
inline constexpr const char* channel = "libSonavit.volumeChangeNotification";
inline qor::LoggerSlot logger;
}
