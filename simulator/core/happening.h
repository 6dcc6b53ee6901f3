/// @file
/// One event from the change of the machine to the notification of its clients.
#pragma once

#include "simulator/core/state.h"

#include <array>
#include <memory>

namespace sim
{
/// The ids of the default endpoints of all flows and roles, as GetDefaultAudioEndpoint finds them.
using Defaults = std::array<Text, 6>;

Defaults defaultsOf(const Hardware& hardware);

/// OnDefaultDeviceChanged for each flow and role in which @p before and @p after differ: render before capture, in each
/// the roles in the order of ERole; a null id where no default is left.
void notifyDefaults(const std::shared_ptr<State>& state, const Defaults& before, const Defaults& after);

/// Runs @p change with the hardware, under its lock, begins the faults that hold after @p event, runs @p notify, which
/// notifies the clients of the change itself, and at last notifies them of the defaults that have changed with it.
/// If two threads change the machine at the same time, the notifications of each change keep their order, but those of
/// the later change may come first: a client that wants the default asks for it.
template<class Change, class Notify>
void happen(const std::shared_ptr<State>& state, ScriptEvent::Kind event, const Change& change, const Notify& notify)
{
    Defaults before;
    Defaults after;
    state->withHardware(
        [&](Hardware& hardware)
        {
            before = defaultsOf(hardware);
            change(hardware);
            after = defaultsOf(hardware);
        });
    state->faults.happened(event);
    notify();
    notifyDefaults(state, before, after);
}
}
