// Events of a whole computer, and the bursts of notifications that they cause.
//
// Real logs show how they look: mumble issue 2266 (a USB device at its first plug: for each endpoint "state 4, state 4,
// added, state 4 …" within 90 ms for two endpoints), SoundSwitch issue 1168 (defaults of both flows and all roles after
// it), NAudio issue 562; SDL's source of device detection (a USB device that goes is not present, and comes again
// without OnDeviceAdded; after waking GetDevice may fail for 8 s).
#include "simulator/core/happening.h"
#include "simulator/core/notifications.h"
#include "simulator/events.h"

#include <stdexcept>
#include <utility>
#include <vector>

namespace sim
{
namespace
{
bool isPresent(const Endpoint& endpoint)
{
    return endpoint.installed && endpoint.state != stateNotPresent;
}

/// Several changes, after which the defaults are compared once.
class Burst
{
public:
    /// Begins with @p change, as happen() does.
    template<class Change>
    Burst(std::shared_ptr<State> state, std::optional<ScriptEvent::Kind> event, const Change& change)
        : m_state(std::move(state))
    {
        m_state->withHardware(
            [&](Hardware& hardware)
            {
                m_before = defaultsOf(hardware);
                change(hardware);
            });
        if (event)
            m_state->faults.happened(*event);
    }

    /// Brings the endpoint back and notifies of its state.
    void comeBack(const std::string& id)
    {
        std::optional<std::uint32_t> state;
        m_state->withHardware(
            [&](Hardware& hardware)
            {
                Endpoint* const endpoint = hardware.anyEndpoint(id);
                if (endpoint == nullptr || !endpoint->installed || endpoint->state != stateNotPresent)
                    return; // something else has happened to it since
                hardware.comeBack(*endpoint);
                state = endpoint->state;
            });
        if (state)
            notifyStateChanged(m_state, id, *state);
    }

    /// Notifies of the defaults that are others now.
    void end()
    {
        const Defaults after = m_state->withHardware([](Hardware& hardware) { return defaultsOf(hardware); });
        notifyDefaults(m_state, m_before, after);
    }

private:
    std::shared_ptr<State> m_state;
    Defaults m_before;
};

/// The endpoints of the device of @p endpointId; throws if there is none.
std::vector<Endpoint*> deviceOf(Hardware& hardware, const std::string& endpointId)
{
    std::vector<Endpoint*> endpoints = hardware.endpointsOfDevice(endpointId);
    if (endpoints.empty())
        throw std::invalid_argument("the machine has no endpoint " + endpointId);
    return endpoints;
}

/// Takes the endpoints away that @p choose returns, and notifies the clients. Returns their ids.
template<class Choose>
std::vector<std::string> leave(const std::shared_ptr<State>& state, ScriptEvent::Kind event, const Choose& choose)
{
    std::vector<std::string> gone;
    Burst burst(state, event,
                [&](Hardware& hardware)
                {
                    for (Endpoint* const endpoint : choose(hardware))
                    {
                        if (!isPresent(*endpoint))
                            continue;
                        hardware.leave(*endpoint);
                        gone.push_back(endpoint->id);
                    }
                });
    for (const std::string& id : gone)
        notifyStateChanged(state, id, stateNotPresent);
    burst.end();
    return gone;
}

/// Brings the endpoints back after the clients have been notified of what was before.
void comeBackLater(const std::shared_ptr<State>& state, std::vector<std::string> ids)
{
    state->notifier.post(
        [state, ids = std::move(ids)]
        {
            Burst burst(state, std::nullopt, [](Hardware&) {});
            for (const std::string& id : ids)
                burst.comeBack(id);
            burst.end();
        });
}
}

void Events::plugUsb(const std::string& endpointId)
{
    struct Arrival
    {
        std::string id;
        bool isNew;
    };
    std::vector<Arrival> arrivals;
    Burst burst(m_state, Kind::plugUsb,
                [&](Hardware& hardware)
                {
                    for (Endpoint* const endpoint : deviceOf(hardware, endpointId))
                    {
                        if (isPresent(*endpoint))
                            continue;
                        arrivals.push_back({endpoint->id, !endpoint->installed});
                        hardware.leave(*endpoint);
                        endpoint->installed = true;
                    }
                });
    for (const Arrival& arrival : arrivals)
    {
        notifyStateChanged(m_state, arrival.id, stateNotPresent);
        notifyStateChanged(m_state, arrival.id, stateNotPresent);
        if (arrival.isNew)
            notifyDeviceAdded(m_state, arrival.id);
        notifyStateChanged(m_state, arrival.id, stateNotPresent);
        burst.comeBack(arrival.id);
    }
    burst.end();
}

void Events::unplugUsb(const std::string& endpointId)
{
    leave(m_state, Kind::unplugUsb, [&](Hardware& hardware) { return deviceOf(hardware, endpointId); });
}

void Events::wake()
{
    const auto active = [](Hardware& hardware)
    {
        std::vector<Endpoint*> result;
        for (Endpoint& endpoint : hardware.machine().endpoints)
        {
            if (endpoint.state == stateActive)
                result.push_back(&endpoint);
        }
        return result;
    };
    comeBackLater(m_state, leave(m_state, Kind::wake, active));
}

void Events::driverUpdate(const std::string& endpointId)
{
    const auto device = [&](Hardware& hardware)
    {
        std::vector<Endpoint*> endpoints = deviceOf(hardware, endpointId);
        for (const Endpoint* const endpoint : endpoints)
            hardware.makeStoresStale(endpoint->id);
        return endpoints;
    };
    comeBackLater(m_state, leave(m_state, Kind::driverUpdate, device));
}

void Events::serviceStop()
{
    happen(
        m_state, Kind::serviceStop, [](Hardware& hardware) { hardware.runService(false); }, [] {});
}

void Events::serviceStart()
{
    happen(
        m_state, Kind::serviceStart, [](Hardware& hardware) { hardware.runService(true); }, [] {});
}

void Events::remoteLogon()
{
    happen(
        m_state, Kind::remoteLogon, [](Hardware& hardware) { hardware.makeStoresStale(); }, [] {});
}

void Events::playBurst(const ScriptEvent& event)
{
    switch (event.kind)
    {
    case Kind::plugUsb:
        return plugUsb(event.endpoint);
    case Kind::unplugUsb:
        return unplugUsb(event.endpoint);
    case Kind::plugJack:
        return plugJack(event.endpoint);
    case Kind::unplugJack:
        return unplugJack(event.endpoint);
    case Kind::wake:
        return wake();
    case Kind::driverUpdate:
        return driverUpdate(event.endpoint);
    case Kind::serviceStop:
        return serviceStop();
    case Kind::serviceStart:
        return serviceStart();
    case Kind::remoteLogon:
        return remoteLogon();
    case Kind::added:
    case Kind::removed:
    case Kind::plugged:
    case Kind::unplugged:
    case Kind::stateChanged:
    case Kind::defaultChanged:
    case Kind::volumeChanged:
    case Kind::propertyChanged:
        return; // play() performs them
    }
}
}
