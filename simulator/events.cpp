#include "simulator/events.h"

#include "simulator/core/happening.h"
#include "simulator/core/notifications.h"
#include "simulator/core/state.h"
#include "simulator/machine/volumemath.h"

#include <algorithm>
#include <chrono>
#include <stdexcept>
#include <utility>

namespace sim
{
namespace
{
[[noreturn]] void raiseUnknown(const std::string& endpointId)
{
    throw std::invalid_argument("the machine has no endpoint " + endpointId);
}
}

Events::Events(std::shared_ptr<State> state) : m_state(std::move(state)) {}

/// Changes one endpoint: calls @p change with the hardware and the endpoint, then notifies as happen() does.
template<class Change, class Notify>
void Events::change(Kind event, const std::string& endpointId, const Change& change, const Notify& notify)
{
    happen(
        m_state, event,
        [&](Hardware& hardware)
        {
            Endpoint* const endpoint = hardware.anyEndpoint(endpointId);
            if (endpoint == nullptr)
                raiseUnknown(endpointId);
            change(hardware, *endpoint);
        },
        notify);
}

void Events::add(const std::string& endpointId)
{
    change(
        Kind::added, endpointId, [](Hardware&, Endpoint& endpoint) { endpoint.installed = true; },
        [&] { notifyDeviceAdded(m_state, endpointId); });
}

void Events::add(const Endpoint& endpoint)
{
    m_state->withHardware(
        [&](Hardware& hardware)
        {
            if (hardware.hasDevice(endpoint.id))
                throw std::invalid_argument("the machine has a device " + endpoint.id + " already");
            hardware.machine().endpoints.push_back(endpoint);
            hardware.machine().endpoints.back().installed = false;
            hardware.reindex();
        });
    add(endpoint.id);
}

void Events::remove(const std::string& endpointId)
{
    change(
        Kind::removed, endpointId, [](Hardware&, Endpoint& endpoint) { endpoint.installed = false; },
        [&] { notifyDeviceRemoved(m_state, endpointId); });
}

void Events::plug(const std::string& endpointId)
{
    moveTo(Kind::plugged, endpointId, stateActive);
}

void Events::unplug(const std::string& endpointId)
{
    moveTo(Kind::unplugged, endpointId, stateUnplugged);
}

void Events::setState(const std::string& endpointId, std::uint32_t state)
{
    moveTo(Kind::stateChanged, endpointId, state);
}

void Events::moveTo(Kind event, const std::string& endpointId, std::uint32_t state)
{
    change(
        event, endpointId, [&](Hardware&, Endpoint& endpoint) { endpoint.state = state; },
        [&] { notifyStateChanged(m_state, endpointId, state); });
}

void Events::plugJack(const std::string& endpointId)
{
    moveJack(Kind::plugJack, endpointId, stateUnplugged, stateActive);
}

void Events::unplugJack(const std::string& endpointId)
{
    moveJack(Kind::unplugJack, endpointId, stateActive, stateUnplugged);
}

void Events::moveJack(Kind event, const std::string& endpointId, std::uint32_t from, std::uint32_t to)
{
    bool isMoved = false;
    change(
        event, endpointId,
        [&](Hardware&, Endpoint& endpoint)
        {
            isMoved = endpoint.state == from;
            endpoint.state = isMoved ? to : endpoint.state;
        },
        [&]
        {
            if (isMoved)
                notifyStateChanged(m_state, endpointId, to);
        });
}

void Events::setDefault(const std::string& endpointId, ERole role)
{
    change(
        Kind::defaultChanged, endpointId,
        [&](Hardware& hardware, Endpoint& endpoint) { hardware.nameDefault(endpoint, role); }, [] {});
}

void Events::clearDefault(EDataFlow flow, ERole role)
{
    happen(
        m_state, Kind::defaultChanged, [&](Hardware& hardware) { hardware.removeDefault(flow, role); }, [] {});
}

void Events::setVolume(const std::string& endpointId, std::optional<float> level, std::optional<bool> muted)
{
    LevelChanges changes;
    change(
        Kind::volumeChanged, endpointId,
        [&](Hardware& hardware, Endpoint& endpoint)
        {
            if (!endpoint.volume)
                return;
            const LevelWatch watch(hardware, endpoint);
            EndpointVolume wanted = shownVolume(hardware, endpoint);
            if (level)
                setAllLevels(wanted, *level);
            wanted.muted = muted.value_or(wanted.muted);
            changeVolume(hardware, endpoint, wanted);
            changes = watch.changes(hardware);
        },
        [&] { notifyLevelsChanged(m_state, changes, nullptr); });
}

void Events::setProperty(const std::string& endpointId, const PROPERTYKEY& key, const PropertyValue& value)
{
    change(
        Kind::propertyChanged, endpointId, [&](Hardware&, Endpoint& endpoint) { changeProperty(endpoint, key, value); },
        [&] { notifyPropertyChanged(m_state, endpointId, key); });
}

void Events::announceAdded(const Text& endpointId)
{
    notifyDeviceAdded(m_state, endpointId);
}

void Events::announceRemoved(const Text& endpointId)
{
    notifyDeviceRemoved(m_state, endpointId);
}

void Events::announceState(const Text& endpointId, std::uint32_t state)
{
    notifyStateChanged(m_state, endpointId, state);
}

void Events::announceDefault(EDataFlow flow, ERole role, const Text& endpointId)
{
    notifyDefaultChanged(m_state, flow, role, endpointId);
}

void Events::announceProperty(const Text& endpointId, const PROPERTYKEY& key)
{
    notifyPropertyChanged(m_state, endpointId, key);
}

void Events::play(const ScriptEvent& event)
{
    switch (event.kind)
    {
    case Kind::added:
        return add(event.endpoint);
    case Kind::removed:
        return remove(event.endpoint);
    case Kind::plugged:
        return plug(event.endpoint);
    case Kind::unplugged:
        return unplug(event.endpoint);
    case Kind::stateChanged:
        return setState(event.endpoint, event.state);
    case Kind::defaultChanged:
        return event.endpoint.empty() ? clearDefault(event.flow, event.role) : setDefault(event.endpoint, event.role);
    case Kind::volumeChanged:
        return setVolume(event.endpoint, event.level, event.muted);
    case Kind::propertyChanged:
        return setProperty(event.endpoint, event.key, event.value);
    default:
        return playBurst(event);
    }
}

void Events::playScript()
{
    const std::vector<ScriptEvent> script =
        m_state->withHardware([](const Hardware& hardware) { return hardware.machine().script; });
    Notifier::Clock::time_point due = Notifier::Clock::now();
    for (const ScriptEvent& event : script)
    {
        due += std::chrono::milliseconds(event.afterMilliseconds);
        m_state->notifier.postAt(due,
                                 [state = m_state, event]
                                 {
                                     try
                                     {
                                         Events(state).play(event);
                                     }
                                     catch (const std::invalid_argument&)
                                     {
                                         // The machine may have changed since its script was written.
                                     }
                                 });
    }
}

void Events::waitForClients()
{
    m_state->notifier.waitUntilIdle();
}
}
