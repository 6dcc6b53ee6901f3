/// @file
/// Window handles and the one function that this library calls with them. The provider of the platform defines it.
#pragma once

#include "platform/portable/basetypes.h"

using HWND = struct HWND__*;
using WPARAM = UINT_PTR;
using LPARAM = LONG_PTR;

/// Queues a message for @p window and returns at once. A null window is allowed.
SONAVIT_PLATFORM_FUNCTION BOOL WINAPI PostMessageW(HWND window, UINT message, WPARAM first, LPARAM second);
