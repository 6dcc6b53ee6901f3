#pragma once

#include "simulator/machine/file/machinefile.h"

#include <chrono>
#include <functional>
#include <optional>
#include <ostream>
#include <string>

namespace sonavit
{
/// All that a command knows of the world apart from Core Audio.
struct Environment
{
    std::ostream& out;
    std::ostream& err;

    bool isTerminal = false; ///< whether `out` is one
    bool hasColours = false;
    unsigned width = 0; ///< columns of the terminal; 0 for no limit

    /// The machine to simulate if the user names none; no value for the system's own Core Audio.
    std::optional<std::string> defaultMachine = std::nullopt;
    std::function<sim::Machine(const std::string&)> findMachine = sim::findMachine;

    /// Waits for that long, or less if something may have happened. @return whether the user wants an end
    std::function<bool(std::chrono::milliseconds)> pause = [](std::chrono::milliseconds) { return true; };
};
}
