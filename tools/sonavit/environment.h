#pragma once

#include "simulator/machine/file/machinefile.h"

#include <chrono>
#include <functional>
#include <memory>
#include <optional>
#include <ostream>
#include <string>
#include <vector>

namespace sonavit::program
{
/// What a command uses of the world outside Core Audio.
struct Environment
{
    std::ostream& out;
    std::ostream& err;

    /// The whole of standard input.
    std::function<std::string()> readInput = [] { return std::string(); };

    /// What names the user and the computer; see ownerNames().
    std::function<std::vector<std::string>()> ownerNames = [] { return std::vector<std::string>(); };

    bool isTerminal = false; ///< whether `out` is a terminal, so that a person reads it
    bool hasColours = false; ///< whether `out` shows colours
    unsigned width = 0;      ///< columns that a line may take; 0 for no limit

    /// The machine to simulate if the command line names none; no value for the system's own Core Audio.
    std::optional<std::string> defaultMachine = std::nullopt;
    std::function<sim::Machine(const std::string&)> findMachine = sim::findMachine;

    /// Called on the client layer's worker before its first call to Core Audio, unless the command line names a
    /// machine: a test registers its own machine there, which Windows wants on each thread.
    std::function<void()> onWorkerStart = [] {};

    /// While the result lives, a request to end (Ctrl-C, SIGTERM, the closing of a window) does not end the process:
    /// pause() reports it instead. A command that has to put something back holds one.
    std::function<std::shared_ptr<void>()> deferEnd = [] { return nullptr; };

    /// Waits for that long, or until the end is requested. @return whether the end is requested
    std::function<bool(std::chrono::milliseconds)> pause = [](std::chrono::milliseconds) { return true; };
};
}
