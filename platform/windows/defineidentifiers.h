/// @file
/// Makes one source file the home of the identifiers.
///
/// The SDK declares most IID_, CLSID_, PKEY_ and KSNODETYPE_ constants and leaves it to each program to define them. A
/// source file whose first include is this one does so for its library. Two of them may meet in one executable: the
/// linker keeps one copy of each constant.
#pragma once

#if defined(_WIN32)

#if defined(_WINDOWS_) || defined(_INC_WINDOWS) || defined(GUID_DEFINED)
#error "platform/windows/defineidentifiers.h must be the first include of its source file."
#endif

#include <initguid.h>

#endif

#include "platform/coreaudio.h"
