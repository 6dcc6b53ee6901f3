/// @file
/// Changes to a simulated machine while it runs.
#pragma once

#include "simulator/machine/machine.h"

#include <memory>
#include <optional>
#include <string>

namespace sim
{
class State;

/// Changes the machine and notifies its clients. Any thread may call any operation.
///
/// The machine changes before an operation returns. Its clients are notified on the machine's notification thread, or
/// with Simulation::deliverAtOnce() on the calling thread before the operation returns. If the machine has no endpoint
/// with the given id, an operation throws std::invalid_argument.
///
/// A change may move defaults, see Machine::defaultEndpoint(). The clients are notified of the change first, then of
/// each default that another endpoint has now, by one OnDefaultDeviceChanged for each role; its id is null if no
/// endpoint is left. A default that stays where it is causes none.
///
/// The announce… operations notify the clients and change nothing; they accept any id. Without a value the clients
/// receive a null pointer.
class Events
{
public:
    explicit Events(std::shared_ptr<State> state);

    /// The endpoint enters the collections: OnDeviceAdded. The second form adds a new endpoint to the machine; it
    /// throws std::invalid_argument if the machine has a device with that id.
    void add(const std::string& endpointId);
    void add(const Endpoint& endpoint);
    /// The endpoint leaves the collections: OnDeviceRemoved. Whether it can still be opened by id, the machine says:
    /// Machine::removedEndpoints.
    void remove(const std::string& endpointId);

    /// The endpoint takes that state: OnDeviceStateChanged, even if it is in that state.
    void plug(const std::string& endpointId);
    void unplug(const std::string& endpointId);
    void setState(const std::string& endpointId, std::uint32_t state);

    /// The user chooses the endpoint as the default of its flow, or the flow has no default any more. An endpoint that
    /// is not active becomes the default when it is.
    void setDefault(const std::string& endpointId, ERole role);
    void clearDefault(EDataFlow flow, ERole role);

    /// Sets all channels to @p level (decibels, not limited to the range) and the mute to @p muted, as another program
    /// would: IAudioEndpointVolumeCallback::OnNotify if that changes anything.
    void setVolume(const std::string& endpointId, std::optional<float> level, std::optional<bool> muted = {});
    /// Sets the property to @p value; VT_EMPTY removes it: OnPropertyValueChanged.
    void setProperty(const std::string& endpointId, const PROPERTYKEY& key, const PropertyValue& value);

    // What happens to a computer, in the bursts of notifications that real machines show. All of it concerns the
    // endpoints of one device: those with exactly the same instance path.

    /// A USB device arrives. For each of its endpoints that is not present, clients are notified of its state (not
    /// present) twice, of its addition if it is not in the collections, of its state again, and of the state that it
    /// has then: the one that it had before, or active. An endpoint that is present stays as it is.
    void plugUsb(const std::string& endpointId);
    /// A USB device goes: its endpoints are not present, but not removed.
    void unplugUsb(const std::string& endpointId);
    /// A plug enters or leaves the jack of the endpoint, which becomes active if it was unplugged, or unplugged if it
    /// was active. In any other state nothing happens.
    void plugJack(const std::string& endpointId);
    void unplugJack(const std::string& endpointId);
    /// The computer wakes up: all active endpoints become not present, and with them the defaults null. They come back
    /// on the notification thread after the clients have been notified, see waitForClients(). A fault that holds for
    /// some seconds after ScriptEvent::Kind::wake keeps them from being found.
    void wake();
    /// The driver of the endpoint's device is replaced: its endpoints go and come back as in wake(), and their open
    /// property stores become stale, see remoteLogon().
    void driverUpdate(const std::string& endpointId);
    /// The Windows audio service stops and starts. While it is stopped there is no default endpoint, and no
    /// IAudioClient, 2 or 3 can be activated (AUDCLNT_E_SERVICE_NOT_RUNNING); everything else answers as before, open
    /// streams included.
    void serviceStop();
    void serviceStart();
    /// A user logs on from another computer: every property store that is open becomes stale. Each of its operations
    /// returns E_ACCESSDENIED then; a store that is opened anew works. No client is notified.
    void remoteLogon();

    void announceAdded(const Text& endpointId);
    void announceRemoved(const Text& endpointId);
    void announceState(const Text& endpointId, std::uint32_t state);
    void announceDefault(EDataFlow flow, ERole role, const Text& endpointId);
    void announceProperty(const Text& endpointId, const PROPERTYKEY& key);

    /// Performs one event of a script.
    void play(const ScriptEvent& event);
    /// Plays the machine's script on the notification thread, with the delays of its events. With
    /// Simulation::deliverAtOnce() all of it happens before the operation returns, without delays. An event for an
    /// endpoint that the machine does not have is skipped.
    void playScript();

    /// Waits until all clients have been notified of all changes, a running script included. On the notification thread
    /// it returns at once.
    void waitForClients();

private:
    using Kind = ScriptEvent::Kind;

    template<class Change, class Notify>
    void change(Kind event, const std::string& endpointId, const Change& change, const Notify& notify);
    void playBurst(const ScriptEvent& event);
    void moveTo(Kind event, const std::string& endpointId, std::uint32_t state);
    void moveJack(Kind event, const std::string& endpointId, std::uint32_t from, std::uint32_t to);

    std::shared_ptr<State> m_state;
};
}
