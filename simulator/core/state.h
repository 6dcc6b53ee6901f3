/// @file
/// What the objects of one simulated machine share.
#pragma once

#include "simulator/census.h"
#include "simulator/core/callbacks.h"
#include "simulator/core/hardware.h"
#include "simulator/core/keptobject.h"
#include "simulator/core/notifier.h"
#include "simulator/core/streamengine.h"
#include "simulator/core/subscriptions.h"
#include "simulator/faultplan.h"
#include "simulator/journal.h"
#include "simulator/latencyplan.h"
#include "simulator/mutex.h"
#include "simulator/postedmessage.h"

#include <atomic>
#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <mutex>
#include <string>
#include <vector>

namespace sim
{
/// One simulated machine. Its COM objects share ownership of it, so it lives until the last of them is released.
class State : public std::enable_shared_from_this<State>
{
public:
    using Clients = Subscriptions<IMMNotificationClient, ClientReferences::untouched>;
    using VolumeListeners = Subscriptions<IAudioEndpointVolumeCallback, ClientReferences::counted>;
    using ControlListeners = Subscriptions<IControlChangeNotify, ClientReferences::counted>;

    static std::shared_ptr<State> create(Machine machine);
    State(const State&) = delete;
    State& operator=(const State&) = delete;

    const std::uint64_t number; ///< unique in the process
    Journal journal;
    FaultPlan faults;
    LatencyPlan latency;
    Notifier notifier;
    StreamEngine streams;
    Callbacks callbacks;
    Clients clients;
    KeptObject enumerator;
    std::atomic<unsigned> comUnderflows{0};

    /// Calls @p action with the hardware, under its lock. @p action must not call user code.
    template<class Action>
    auto withHardware(const Action& action)
    {
        const std::lock_guard<Mutex> lock(m_hardwareMutex);
        return action(m_hardware);
    }

    /// The clients of one endpoint's volume, or of one kind of control of one part; created on demand.
    std::shared_ptr<VolumeListeners> volumeListeners(const std::string& endpoint);
    std::shared_ptr<ControlListeners> controlListeners(const std::string& part, const std::string& interfaceName);
    /// The clients of all controls of @p part.
    std::vector<std::shared_ptr<ControlListeners>> controlListeners(const std::string& part);

    void recordMessage(const PostedMessage& message);
    std::vector<PostedMessage> postedMessages() const;

    Census census() const;

private:
    explicit State(Machine machine);

    Mutex m_hardwareMutex;
    Hardware m_hardware;
    mutable Mutex m_listenersMutex;
    std::map<std::string, std::shared_ptr<VolumeListeners>> m_volumeListeners;
    std::map<std::string, std::map<std::string, std::shared_ptr<ControlListeners>>> m_controlListeners;
    mutable Mutex m_messagesMutex;
    std::vector<PostedMessage> m_messages;
};

/// The machine that currently answers the runtime functions; null if there is none.
std::shared_ptr<State> currentState();
/// Makes @p state the current machine; the earlier ones follow when it is removed.
void pushCurrentState(const std::shared_ptr<State>& state);
/// Removes @p state, current or not.
void removeCurrentState(const std::shared_ptr<State>& state);
}
