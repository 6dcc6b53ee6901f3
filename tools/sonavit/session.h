#pragma once

#include "simulator/redirection.h"
#include "simulator/simulation.h"
#include "tools/sonavit/commandline.h"
#include "tools/sonavit/environment.h"
#include "tools/sonavit/source.h"

#include <chrono>
#include <functional>
#include <memory>
#include <optional>
#include <string>

namespace sonavit::program
{
/// COM on this thread, and the machine that the library works on, for as long as a command runs. The library reads what
/// an ordinary account may not write.
///
/// close() destroys the library's shared enumerator, which otherwise lives as long as the process: all registrations
/// end while the thread that made them still has COM.
class Session
{
public:
    /// Throws UsageError if the machine cannot be loaded, or if an account or a latency is chosen for the system's own
    /// Core Audio.
    Session(const Environment& environment, const Arguments& arguments);
    ~Session();
    Session(const Session&) = delete;
    Session& operator=(const Session&) = delete;

    /// Ends the machine and all registrations; no thread of the platform calls the program after that. The library must
    /// not be used after that. An exception that leaves a Release leaves this operation too.
    void close();

    /// The client layer on that machine, from the first call on. Its changes come where System::poll() is called.
    System& audio();
    /// What the commands that read ask: the library that the user has chosen.
    Source& source();

    /// The simulated machine; null if the library works on the system's own Core Audio.
    sim::Simulation* simulation();

    /// Name and description of the simulated machine; no name on the system's own Core Audio.
    const std::optional<std::string>& machineName() const;
    const std::string& machineDescription() const;

private:
    bool m_hasCom = false; ///< whether it has initialised COM on its thread
    std::optional<std::string> m_name;
    std::string m_description;
    std::function<void()> m_onWorkerStart; ///< for a machine that is not the session's
    sim::Redirection m_redirection;        ///< of the object model's library
    sim::Redirection m_layerRedirection;   ///< of the client layer's
    std::unique_ptr<sim::Simulation> m_simulation;
    std::chrono::minutes m_patience; ///< with the client layer
    Via m_via;
    std::unique_ptr<System> m_audio;
    std::unique_ptr<Source> m_source;
};
}
