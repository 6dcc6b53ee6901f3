#pragma once

#include "simulator/simulation.h"
#include "simulator/waveredirection.h"
#include "tools/sonavit/commandline.h"
#include "tools/sonavit/environment.h"

#include <memory>
#include <optional>
#include <string>

namespace sonavit
{
/// COM on this thread, and the machine that the library works on, for as long as a command runs.
///
/// At its end it takes down the library's shared enumerator, which lives as long as the process otherwise: all
/// registrations go while the thread that made them still has COM.
class Session
{
public:
    /// Throws UsageError where the machine cannot be had.
    Session(const Environment& environment, const Arguments& arguments);
    ~Session();
    Session(const Session&) = delete;
    Session& operator=(const Session&) = delete;

    /// Ends the machine and all registrations, after which no thread of the platform calls any more. The library must
    /// not be asked anything afterwards.
    void close();

    /// The simulated machine; null where the library works on the system's own Core Audio.
    sim::Simulation* simulation();

    /// Name and description of the simulated machine; empty for the system's own.
    const std::optional<std::string>& machineName() const;
    const std::string& machineDescription() const;

private:
    std::optional<std::string> m_name;
    std::string m_description;
    sim::WaveRedirection m_waveFunctions;
    std::unique_ptr<sim::Simulation> m_simulation;
};
}
