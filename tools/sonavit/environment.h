#pragma once

#include "simulator/machine/file/machinefile.h"

#include <chrono>
#include <functional>
#include <optional>
#include <ostream>
#include <string>

namespace sonavit
{
/// All that a command knows of the world outside of Core Audio.
struct Environment
{
    std::ostream& out;
    std::ostream& err;

    bool isTerminal = false; ///< whether `out` is one, so that somebody looks on
    bool hasColours = false;
    unsigned width = 0; ///< columns of the terminal; 0 for no limit

    /// The machine to simulate where none is named; no value for the system's own Core Audio.
    std::optional<std::string> defaultMachine = std::nullopt;
    std::function<sim::Machine(const std::string&)> findMachine = sim::findMachine;

    /// Waits so long, or less where something may have happened. @return whether the user wants an end
    std::function<bool(std::chrono::milliseconds)> pause = [](std::chrono::milliseconds) { return true; };
};
}
