/// @file
/// What lets the examples run on a simulated machine. A program needs nothing of it; its tests do.
#pragma once

#include <simulator/machine/file/machinefile.h>
#include <simulator/redirection.h>
#include <simulator/simulation.h>
#include <sonavit/client.h>

#include <algorithm>
#include <cstdlib>
#include <iostream>
#include <memory>
#include <string>
#include <string_view>
#include <utility>

/// A simulated machine in place of the computer's own hardware, for all that the client layer asks. It begins before
/// the first System and ends after the last.
class SimulatedMachine
{
public:
    explicit SimulatedMachine(sim::Machine machine)
        : m_redirection(reinterpret_cast<const void*>(&sonavit::refer)),
          m_simulation(std::move(machine))
    {
    }

    sim::Simulation& simulation() { return m_simulation; }

private:
    /// On Windows it leads the module that contains the client layer to the machine, on every thread.
    sim::Redirection m_redirection;
    sim::Simulation m_simulation;
};

/// Takes "--machine NAME" out of the words of a command line. Without it a program uses the computer's own hardware on
/// Windows, where the result is null, and the machine "desktop" on other systems. Ends the process if there is no such
/// machine.
inline std::unique_ptr<SimulatedMachine> machineOf(int& count, char** words)
try
{
#if defined(_WIN32)
    std::string name;
#else
    std::string name = "desktop";
#endif
    char** const end = words + count;
    char** const option =
        std::find_if(words, end, [](const char* word) { return std::string_view(word) == "--machine"; });
    if (end - option >= 2)
    {
        name = option[1];
        std::rotate(option, option + 2, end);
        count -= 2;
    }
    if (name.empty())
        return nullptr;
    auto machine = std::make_unique<SimulatedMachine>(sim::findMachine(name));
    machine->simulation().journal().record(false); // it would grow for as long as a program runs
    return machine;
}
catch (const sim::MachineFileError& error) // no such machine, or a file that is none
{
    std::cerr << error.what() << "\n";
    std::exit(1);
}
