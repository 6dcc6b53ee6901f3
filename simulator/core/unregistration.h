/// @file
/// How the machine's objects unregister a client.
#pragma once

#include "simulator/core/state.h"
#include "simulator/core/watchedcall.h"

#include <string>
#include <thread>
#include <vector>

namespace sim
{
/// Unregisters @p client from @p listeners as @p call asks; false if it is not registered. A callback that keeps the
/// call waiting for too long is a violation.
template<class Listeners, class Client>
bool unregister(State& state, Listeners& listeners, Client* client, const WatchedCall& call)
{
    const auto onLongWait = [&](const std::vector<std::thread::id>& threads)
    {
        const std::string callback = state.callbacks.textOn(threads);
        if (!callback.empty()) // it has not returned meanwhile
            state.callbacks.report({Violation::Kind::wait, call.text(), call.place(), callback});
    };
    return listeners.remove(client, state.callbacks.patience(), onLongWait);
}
}
