/// @file
/// What happens to a simulated machine while it runs.
#pragma once

#include <memory>
#include <optional>
#include <string>

#include "simulator/machine/machine.h"

namespace sim
{
class State;

/// Makes things happen. Any thread may call any operation.
///
/// The machine changes before an operation returns; its clients hear of it on the machine's notification thread, or
/// before the operation returns where Simulation::deliverAtOnce() says so. An id that names no endpoint of the machine
/// raises std::invalid_argument. The operations named announce… tell the clients and change nothing.
class Events
{
public:
    explicit Events(std::shared_ptr<State> state);

    /// The endpoint enters the collections: OnDeviceAdded. The second form gives the machine an endpoint that it did
    /// not have; an id that it has already raises std::invalid_argument.
    void add(const std::string& endpointId);
    void add(const Endpoint& endpoint);
    /// The endpoint leaves the collections, but can still be opened by id: OnDeviceRemoved.
    void remove(const std::string& endpointId);

    /// The endpoint takes that state: OnDeviceStateChanged. Clients hear it also when the endpoint was in that state.
    void plug(const std::string& endpointId);
    void unplug(const std::string& endpointId);
    void setState(const std::string& endpointId, std::uint32_t state);

    /// The endpoint becomes the default of its flow, or the flow loses its default: OnDefaultDeviceChanged.
    void setDefault(const std::string& endpointId, ERole role);
    void clearDefault(EDataFlow flow, ERole role);

    /// All channels take @p level (decibels), the mute takes @p muted, as if another program had set them:
    /// IAudioEndpointVolumeCallback::OnNotify when that changed something.
    void setVolume(const std::string& endpointId, std::optional<float> level, std::optional<bool> muted = {});
    /// The property takes @p value; VT_EMPTY takes it away: OnPropertyValueChanged.
    void setProperty(const std::string& endpointId, const PROPERTYKEY& key, const PropertyValue& value);

    void announceAdded(const std::string& endpointId);
    void announceRemoved(const std::string& endpointId);
    void announceState(const std::string& endpointId, std::uint32_t state);
    void announceDefault(EDataFlow flow, ERole role, const Text& endpointId);
    void announceProperty(const std::string& endpointId, const PROPERTYKEY& key);

    /// One event of a script, at once.
    void play(const ScriptEvent& event);
    /// The machine's script, on the notification thread and at its own pace, counted from now; where delivery is at
    /// once all of it before the operation returns. An event that names no endpoint of the machine is passed over.
    void playScript();

    /// Waits until all clients have been told of all that has happened, a running script included. On the notification
    /// thread it returns at once.
    void settle();

private:
    template<class Change>
    void change(const std::string& endpointId, const Change& change);

    std::shared_ptr<State> m_state;
};
}
