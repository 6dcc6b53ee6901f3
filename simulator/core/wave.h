/// @file
/// The wave functions, answered by the current machine.
#pragma once

#include "platform/coreaudio.h"

#include <cstddef>

namespace sim::wave
{
/// The device number that the caller passes instead of a wave handle.
template<class Handle>
std::size_t idOf(Handle device)
{
    return static_cast<std::size_t>(reinterpret_cast<DWORD_PTR>(device));
}

// What waveOutGetNumDevs, waveInGetNumDevs, waveOutMessage and waveInMessage return. Without a machine there are no
// devices.
UINT countOutputs();
UINT countInputs();
MMRESULT sendToOutput(std::size_t id, UINT message, DWORD_PTR first, DWORD_PTR second);
MMRESULT sendToInput(std::size_t id, UINT message, DWORD_PTR first, DWORD_PTR second);
}
