/// @file
/// The COM runtime: apartments, creation of objects, task memory. The provider of the platform defines the functions.
#pragma once

#include "platform/portable/unknown.h"

enum COINIT
{
    COINIT_MULTITHREADED = 0x0,
    COINIT_APARTMENTTHREADED = 0x2,
    COINIT_DISABLE_OLE1DDE = 0x4,
    COINIT_SPEED_OVER_MEMORY = 0x8
};

enum CLSCTX
{
    CLSCTX_INPROC_SERVER = 0x1,
    CLSCTX_INPROC_HANDLER = 0x2,
    CLSCTX_LOCAL_SERVER = 0x4,
    CLSCTX_REMOTE_SERVER = 0x10
};

inline constexpr DWORD CLSCTX_ALL =
    CLSCTX_INPROC_SERVER | CLSCTX_INPROC_HANDLER | CLSCTX_LOCAL_SERVER | CLSCTX_REMOTE_SERVER;

/// Enters a single-threaded apartment; counted per thread.
SONAVIT_PLATFORM_FUNCTION HRESULT WINAPI CoInitialize(LPVOID reserved);
/// Enters the apartment that @p model (COINIT values) names; counted per thread.
SONAVIT_PLATFORM_FUNCTION HRESULT WINAPI CoInitializeEx(LPVOID reserved, DWORD model);
/// Leaves an apartment. It may be called more often than the two above.
SONAVIT_PLATFORM_FUNCTION void WINAPI CoUninitialize();
/// Makes an object of class @p clsid; on failure *object holds null.
SONAVIT_PLATFORM_FUNCTION HRESULT WINAPI CoCreateInstance(REFCLSID clsid, LPUNKNOWN outer, DWORD context, REFIID iid,
                                                          LPVOID* object);
/// Memory that passes between platform and user; null when there is none.
SONAVIT_PLATFORM_FUNCTION LPVOID WINAPI CoTaskMemAlloc(SIZE_T bytes);
/// Takes back what CoTaskMemAlloc gave; null is allowed.
SONAVIT_PLATFORM_FUNCTION void WINAPI CoTaskMemFree(LPVOID memory);
/// Reads "{XXXXXXXX-XXXX-XXXX-XXXX-XXXXXXXXXXXX}"; null text gives S_OK and the zero identifier.
SONAVIT_PLATFORM_FUNCTION HRESULT WINAPI CLSIDFromString(LPCOLESTR text, LPCLSID clsid);

static_assert(CLSCTX_ALL == 23, "all contexts");
