/// @file
/// The platform as this library sees it: Windows Core Audio, the COM runtime and a few other functions.
///
/// No other file of the library includes a platform header. On Windows the names come from the SDK; elsewhere they are
/// declared here, and each executable links a provider that defines them (platform/README.md).
#pragma once

#if defined(_WIN32)
#include "platform/windows/coreaudio.h"
#else
#include "platform/portable/coreaudio.h"
#endif

#include "platform/text.h"
