/// @file
/// The legacy wave functions that a reading calls.
#pragma once

#include "platform/coreaudio.h"
#include "sonavit/endpoint.h"

namespace sonavit::reading
{
/// No computer has more wave devices.
inline constexpr UINT mostWaveNumbers = 4096;
/// Bytes; no endpoint has a longer id.
inline constexpr DWORD_PTR longestWaveId = 0x10000;

/// The functions of one flow.
struct WaveFunctions
{
    UINT (*count)();
    const char* countName;
    MMRESULT (*message)(UINT number, UINT message, DWORD_PTR first, DWORD_PTR second);
    const char* messageName;
};

const WaveFunctions& waveFunctions(Flow flow);
}
