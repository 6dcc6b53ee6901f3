/// @file
/// A simulated machine that answers as this process's Core Audio.
///
///     sim::Simulation simulation(machine);
///     …                                            // code that uses Core Audio gets the machine
///     EXPECT_EQ(1u, simulation.journal().count("IMMDevice::Activate"));
///     EXPECT_EQ(sim::Census(), simulation.census());
#pragma once

#include "simulator/census.h"
#include "simulator/events.h"
#include "simulator/faultplan.h"
#include "simulator/journal.h"
#include "simulator/latencyplan.h"
#include "simulator/machine/machine.h"
#include "simulator/postedmessage.h"
#include "simulator/streams.h"
#include "simulator/violation.h"

#include <chrono>
#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace sim
{
class State;

/// Makes a machine the process's Core Audio from construction to destruction.
///
/// Off Windows it answers the functions of the COM runtime, the wave functions, PostMessageW and the configuration
/// manager. On Windows the real CoCreateInstance hands out its enumerator in every registered apartment, see
/// registerOnThisThread(); all other functions are the system's own there.
///
/// Of several simulations the latest one answers; when it ends, the one before it answers again. Objects share
/// ownership of the machine's data and stay usable after the simulation. Without a simulation the runtime functions
/// answer as on a machine without audio, even while the process's static objects are destroyed. Any thread may call any
/// operation.
class Simulation
{
public:
    /// Takes over the machine's fault and latency rules; its script starts with events().playScript().
    explicit Simulation(Machine machine);
    /// Waits for a running callback and drops the notifications that have not been delivered.
    ~Simulation();
    Simulation(const Simulation&) = delete;
    Simulation& operator=(const Simulation&) = delete;

    /// On Windows makes CoCreateInstance in the calling thread's apartment hand out this machine's enumerator, until
    /// the simulation or the apartment ends. The thread must have called CoInitialize. The constructor does the same
    /// and ignores a failure.
    /// @return S_OK; CO_E_NOTINITIALIZED on Windows on a thread without COM. Off Windows always S_OK: no registration
    /// is needed.
    HRESULT registerOnThisThread();

    /// Recorded calls; references, task memory and clients; planned failures; delays; changes of the machine.
    Journal& journal();
    Census census() const;
    FaultPlan& faults();
    LatencyPlan& latency();
    Events& events();
    /// The clock of the streams, see IAudioClient.
    Streams& streams();

    /// Whether clients are called on the thread that causes a change, before the causing call returns. By default they
    /// are called on the machine's notification thread; see CallbackThread.
    void deliverAtOnce(bool on);

    /// The account under which programs use the machine from now on. Stores that are open stay open as they are.
    void setAccount(Account account);

    /// What clients did in their callbacks although Windows forbids it, in order.
    std::vector<Violation> violations() const;
    /// Calls @p handler at each violation, on the thread and at the place of it, so that it can fail a test or stop in
    /// a debugger. An empty handler ends that. The handler must not throw.
    void onViolation(std::function<void(const Violation&)> handler);
    /// How long an unregistration waits for a callback on another thread before that is a violation; 5 s by default.
    /// The unregistration goes on waiting, as on Windows.
    void setPatience(std::chrono::milliseconds patience);

    /// A copy of the machine in its current state, with all levels, mutes, states and properties that were set.
    Machine machine() const;
    /// Changes the machine without notifying any client. @p action must only use its argument.
    void change(const std::function<void(Machine&)>& action);

    /// The arguments of all PostMessageW calls, in order. Empty on Windows, where the messages go to their windows.
    std::vector<PostedMessage> postedMessages() const;

    /// How often CoUninitialize was called on a thread without COM. Always 0 on Windows, where it cannot be observed.
    unsigned comUnderflows() const;

    // Single objects of the machine, each with one reference that belongs to the caller; null if the machine has no
    // such object. Neither journal nor fault plan sees these operations.
    // There is one enumerator, on which the machine holds a reference of its own until it ends.
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
    Streams m_streams;
};
}
