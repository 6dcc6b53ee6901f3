#include "simulator/events.h"

#include "simulator/core/happening.h"
#include "simulator/core/notifications.h"
#include "simulator/core/state.h"

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

void removeDefault(Machine& machine, EDataFlow flow, ERole role)
{
    for (Endpoint& endpoint : machine.endpoints)
    {
        auto& roles = endpoint.defaultFor;
        if (endpoint.flow == flow)
            roles.erase(std::remove(roles.begin(), roles.end(), role), roles.end());
    }
}
}

Events::Events(std::shared_ptr<State> state) : m_state(std::move(state)) {}

/// Changes one endpoint: calls @p change with the hardware and the endpoint, then notifies as happen() does.
template<class Change, class Notify>
void Events::change(const std::string& endpointId, const Change& change, const Notify& notify)
{
    happen(
        m_state,
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
        endpointId, [](Hardware&, Endpoint& endpoint) { endpoint.installed = true; },
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
        endpointId, [](Hardware&, Endpoint& endpoint) { endpoint.installed = false; },
        [&] { notifyDeviceRemoved(m_state, endpointId); });
}

void Events::plug(const std::string& endpointId)
{
    setState(endpointId, stateActive);
}

void Events::unplug(const std::string& endpointId)
{
    setState(endpointId, stateUnplugged);
}

void Events::setState(const std::string& endpointId, std::uint32_t state)
{
    change(
        endpointId, [&](Hardware&, Endpoint& endpoint) { endpoint.state = state; },
        [&] { notifyStateChanged(m_state, endpointId, state); });
}

void Events::setDefault(const std::string& endpointId, ERole role)
{
    change(
        endpointId,
        [&](Hardware& hardware, Endpoint& endpoint)
        {
            removeDefault(hardware.machine(), endpoint.flow, role);
            endpoint.defaultFor.push_back(role);
        },
        [] {});
}

void Events::clearDefault(EDataFlow flow, ERole role)
{
    happen(
        m_state, [&](Hardware& hardware) { removeDefault(hardware.machine(), flow, role); }, [] {});
}

void Events::setVolume(const std::string& endpointId, std::optional<float> level, std::optional<bool> muted)
{
    LevelChanges changes;
    change(
        endpointId,
        [&](Hardware& hardware, Endpoint& endpoint)
        {
            if (!endpoint.volume)
                return;
            const LevelWatch watch(hardware, endpoint);
            EndpointVolume wanted = shownVolume(hardware, endpoint);
            if (level)
                std::fill(wanted.channels.begin(), wanted.channels.end(), *level);
            wanted.muted = muted.value_or(wanted.muted);
            changeVolume(hardware, endpoint, wanted);
            changes = watch.changes(hardware);
        },
        [&] { notifyLevelsChanged(m_state, changes, nullptr); });
}

void Events::setProperty(const std::string& endpointId, const PROPERTYKEY& key, const PropertyValue& value)
{
    change(
        endpointId, [&](Hardware&, Endpoint& endpoint) { changeProperty(endpoint.properties, key, value); },
        [&] { notifyPropertyChanged(m_state, endpointId, key); });
}

void Events::announceAdded(const std::string& endpointId)
{
    notifyDeviceAdded(m_state, endpointId);
}

void Events::announceRemoved(const std::string& endpointId)
{
    notifyDeviceRemoved(m_state, endpointId);
}

void Events::announceState(const std::string& endpointId, std::uint32_t state)
{
    notifyStateChanged(m_state, endpointId, state);
}

void Events::announceDefault(EDataFlow flow, ERole role, const Text& endpointId)
{
    notifyDefaultChanged(m_state, flow, role, endpointId);
}

void Events::announceProperty(const std::string& endpointId, const PROPERTYKEY& key)
{
    notifyPropertyChanged(m_state, endpointId, key);
}

void Events::play(const ScriptEvent& event)
{
    switch (event.kind)
    {
    case ScriptEvent::Kind::added:
        return add(event.endpoint);
    case ScriptEvent::Kind::removed:
        return remove(event.endpoint);
    case ScriptEvent::Kind::plugged:
        return plug(event.endpoint);
    case ScriptEvent::Kind::unplugged:
        return unplug(event.endpoint);
    case ScriptEvent::Kind::stateChanged:
        return setState(event.endpoint, event.state);
    case ScriptEvent::Kind::defaultChanged:
        return event.endpoint.empty() ? clearDefault(event.flow, event.role) : setDefault(event.endpoint, event.role);
    case ScriptEvent::Kind::volumeChanged:
        return setVolume(event.endpoint, event.level, event.muted);
    case ScriptEvent::Kind::propertyChanged:
        return setProperty(event.endpoint, event.key, event.value);
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
