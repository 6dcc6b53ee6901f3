/// @file
/// The old wave functions, which number the endpoints. The provider of the platform defines them.
#pragma once

#include "platform/portable/basetypes.h"

using MMRESULT = UINT;
using HWAVEOUT = struct HWAVEOUT__*;
using HWAVEIN = struct HWAVEIN__*;

inline constexpr MMRESULT MMSYSERR_NOERROR = 0;
inline constexpr MMRESULT MMSYSERR_ERROR = 1;
inline constexpr MMRESULT MMSYSERR_BADDEVICEID = 2;
inline constexpr MMRESULT MMSYSERR_NOTENABLED = 3;
inline constexpr MMRESULT MMSYSERR_ALLOCATED = 4;
inline constexpr MMRESULT MMSYSERR_INVALHANDLE = 5;
inline constexpr MMRESULT MMSYSERR_NODRIVER = 6;
inline constexpr MMRESULT MMSYSERR_NOMEM = 7;
inline constexpr MMRESULT MMSYSERR_NOTSUPPORTED = 8;
inline constexpr MMRESULT MMSYSERR_INVALPARAM = 11;

/// Stores the id of the endpoint behind a wave device, as zero-terminated text, where the first parameter points; the
/// second parameter is the room there in bytes.
inline constexpr UINT DRV_QUERYFUNCTIONINSTANCEID = 0x811;
/// Stores the bytes of that text, its zero included, in the DWORD_PTR to which the first parameter points.
inline constexpr UINT DRV_QUERYFUNCTIONINSTANCEIDSIZE = 0x812;

SONAVIT_PLATFORM_FUNCTION UINT WINAPI waveOutGetNumDevs();
SONAVIT_PLATFORM_FUNCTION UINT WINAPI waveInGetNumDevs();
/// @p device is a handle, or a device number in the handle's place.
SONAVIT_PLATFORM_FUNCTION MMRESULT WINAPI waveOutMessage(HWAVEOUT device, UINT message, DWORD_PTR first,
                                                         DWORD_PTR second);
SONAVIT_PLATFORM_FUNCTION MMRESULT WINAPI waveInMessage(HWAVEIN device, UINT message, DWORD_PTR first,
                                                        DWORD_PTR second);
