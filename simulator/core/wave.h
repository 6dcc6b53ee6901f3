/// @file
/// The wave functions as the current machine answers them.
#pragma once

#include <cstddef>

#include "platform/coreaudio.h"

namespace sim::wave
{
/// The number that stands in the place of a wave handle.
template<class Handle>
std::size_t idOf(Handle device)
{
    return static_cast<std::size_t>(reinterpret_cast<DWORD_PTR>(device));
}

// What waveOutGetNumDevs, waveOutMessage and waveInMessage answer. Without a machine there are no devices.
UINT countOutputs();
MMRESULT sendToOutput(std::size_t id, UINT message, DWORD_PTR first, DWORD_PTR second);
MMRESULT sendToInput(std::size_t id, UINT message, DWORD_PTR first, DWORD_PTR second);
}
