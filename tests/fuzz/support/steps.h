/// @file
/// What happens on a machine while it is used.
#pragma once

#include "simulator/machine/machine.h"

#include <cstdint>
#include <vector>

class FuzzedDataProvider;

namespace fuzz
{
/// One step of a run.
struct Step
{
    enum class Kind
    {
        event, ///< something happens to the computer
        // A program uses the client layer.
        setVolume,
        setMute,
        setControl,
        select,
        restore,
        holdFormat,
        watch,
        refresh,
        poll,
        kMaxValue = poll
    };

    Kind kind = Kind::event;
    sim::ScriptEvent event;    ///< of Kind::event
    std::uint8_t endpoint = 0; ///< number of the endpoint, modulo their number
    std::uint8_t number = 0;   ///< what else the step needs
};

/// A few steps that fit the machine.
std::vector<Step> stepsOn(const sim::Machine& machine, FuzzedDataProvider& input);
}
