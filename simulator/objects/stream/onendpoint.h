/// @file
/// How the objects of a stream find their endpoint, which may have gone.
#pragma once

#include "simulator/core/state.h"

#include <string>

namespace sim
{
/// Whether streams of the endpoint work.
inline bool hasStreams(const Endpoint& endpoint)
{
    return endpoint.installed && (endpoint.state & stateActive) != 0;
}

/// Calls @p action(const Machine&, const Endpoint&) under the machine's lock; AUDCLNT_E_DEVICE_INVALIDATED if the
/// endpoint is not there, was removed, or is not active.
template<class Action>
HRESULT onActiveEndpoint(State& state, const std::string& id, const Action& action)
{
    return state.withHardware(
        [&](Hardware& hardware) -> HRESULT
        {
            const Endpoint* const endpoint = hardware.endpoint(id);
            if (endpoint == nullptr || !hasStreams(*endpoint))
                return AUDCLNT_E_DEVICE_INVALIDATED;
            return action(hardware.machine(), *endpoint);
        });
}

inline HRESULT requireActiveEndpoint(State& state, const std::string& id)
{
    return onActiveEndpoint(state, id, [](const Machine&, const Endpoint&) { return S_OK; });
}
}
