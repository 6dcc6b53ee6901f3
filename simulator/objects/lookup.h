/// @file
/// How objects find what they stand for. It can be gone: a test may have taken it out of the machine.
#pragma once

#include <string>

#include "simulator/core/state.h"

namespace sim
{
/// Calls @p action(Device&) under the machine's lock; AUDCLNT_E_DEVICE_INVALIDATED when the device is gone.
template<class Action>
HRESULT onDevice(State& state, const std::string& id, const Action& action)
{
    return state.withHardware(
        [&](Hardware& hardware) -> HRESULT
        {
            Device* const device = hardware.device(id);
            return device == nullptr ? AUDCLNT_E_DEVICE_INVALIDATED : action(*device);
        });
}

/// Calls @p action(PartInPlace) in the same way.
template<class Action>
HRESULT onPart(State& state, const std::string& id, const Action& action)
{
    return state.withHardware(
        [&](Hardware& hardware) -> HRESULT
        {
            const PartInPlace* const place = hardware.part(id);
            return place == nullptr ? AUDCLNT_E_DEVICE_INVALIDATED : action(*place);
        });
}
}
