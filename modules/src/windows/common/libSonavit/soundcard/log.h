#pragma once

#include "qor/logstatement.h"

/// Log channel of the sound card model.
namespace soundcardlog
{
inline constexpr const char* channel = "libSonavit.soundcard";
inline qor::LoggerSlot logger;
}
