/// @file
/// How objects find their device or part, which a test may have removed from the machine.
#pragma once

#include "simulator/core/state.h"

#include <string>

namespace sim
{
/// Calls @p action(Device&) under the machine's lock; AUDCLNT_E_DEVICE_INVALIDATED if the machine has lost the device.
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

/// Calls @p action(const ChangeablePartPlace&) in the same way.
template<class Action>
HRESULT onPart(State& state, const std::string& id, const Action& action)
{
    return state.withHardware(
        [&](Hardware& hardware) -> HRESULT
        {
            const ChangeablePartPlace* const place = hardware.part(id);
            return place == nullptr ? AUDCLNT_E_DEVICE_INVALIDATED : action(*place);
        });
}
}
