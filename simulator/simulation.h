/// @file
/// A simulated machine that answers as this process's Core Audio.
///
///     sim::Simulation simulation(machine);
///     …                                            // whatever uses Core Audio meets the machine
///     EXPECT_EQ(1u, simulation.journal().count("IMMDevice::Activate"));
///     EXPECT_EQ(sim::Census(), simulation.census());
#pragma once

#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "simulator/census.h"
#include "simulator/events.h"
#include "simulator/faultplan.h"
#include "simulator/journal.h"
#include "simulator/latencyplan.h"
#include "simulator/machine/machine.h"
#include "simulator/postedmessage.h"

namespace sim
{
class State;

/// Makes a machine the process's Core Audio from construction to destruction.
///
/// Off Windows the functions of the COM runtime, the wave functions, PostMessageW and the configuration manager answer
/// from it. On Windows the real CoCreateInstance hands out its enumerator in every apartment that was registered, see
/// registerOnThisThread(); all other functions are the system's own there.
///
/// Of several simulations the latest one answers, and the one before it again when that ends. Objects share ownership
/// of the machine's data and stay usable after the simulation; the runtime functions then answer as on a machine
/// without audio, also while the process's static objects are destroyed. All operations may be called from any thread.
class Simulation
{
public:
    /// Reads the machine's fault and latency rules in; its script waits for events().playScript().
    explicit Simulation(Machine machine);
    /// Lets a callback that runs end, drops what has not been delivered and tells nobody any more.
    ~Simulation();
    Simulation(const Simulation&) = delete;
    Simulation& operator=(const Simulation&) = delete;

    /// On Windows makes CoCreateInstance in the calling thread's apartment hand out this machine's enumerator. The
    /// constructor tries the same; the thread must have called CoInitialize. It ends with the simulation, or with
    /// the apartment.
    /// @return S_OK; CO_E_NOTINITIALIZED on Windows on a thread without COM. Off Windows always S_OK: nothing is
    /// needed.
    HRESULT registerOnThisThread();

    /// What has been called; who still holds what; what fails; what takes time; what happens.
    Journal& journal();
    Census census() const;
    FaultPlan& faults();
    LatencyPlan& latency();
    Events& events();

    /// Whether clients are called on the thread that makes something happen, before the call that did it returns. At
    /// first they are called on the machine's notification thread, which has COM.
    void deliverAtOnce(bool on);

    /// The machine as it stands: levels, mutes, states and properties that were set are seen in it.
    Machine machine() const;
    /// Changes the machine in silence: nobody is told. @p action must not call anything but the machine.
    void change(const std::function<void(Machine&)>& action);

    /// What PostMessageW was given, in order. Empty on Windows, where the messages go to their windows.
    std::vector<PostedMessage> postedMessages() const;

    /// How often CoUninitialize was called on a thread that had no COM. 0 on Windows, where nobody can tell.
    unsigned comUnderflows() const;

    // Objects of the machine for tests that need just one, each with one reference that is the caller's; null where the
    // machine has no such thing. Neither journal nor fault plan sees these operations.
    IMMDeviceEnumerator* enumerator() const;
    IMMDevice* device(const std::string& deviceId) const;
    IDeviceTopology* topology(const std::string& deviceId) const;
    IAudioEndpointVolume* endpointVolume(const std::string& endpointId) const;
    IPart* part(const std::string& partId) const;
    IConnector* connector(const std::string& partId) const;
    ISubunit* subunit(const std::string& partId) const;
    IAudioVolumeLevel* volumeLevel(const std::string& partId) const;
    IAudioMute* mute(const std::string& partId) const;
    IAudioInputSelector* inputSelector(const std::string& partId) const;

private:
    std::shared_ptr<State> m_state;
    Events m_events;
};
}
