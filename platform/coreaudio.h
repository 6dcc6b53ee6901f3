/// @file
/// The platform as this library sees it: Windows Core Audio, the COM runtime below it and a few functions beside it.
///
/// No other file of the library includes a platform header. On Windows the names come from the SDK; elsewhere they are
/// declared here, and whoever links an executable says what answers them (platform/README.md).
#pragma once

#if defined(_WIN32)
#include "platform/windows/coreaudio.h"
#else
#include "platform/portable/coreaudio.h"
#endif

#include "platform/text.h"
