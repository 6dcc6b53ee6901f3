#include "simulator/simulation.h"

#include "simulator/core/registrations.h"
#include "simulator/core/state.h"
#include "simulator/objects/objects.h"

#include <utility>

namespace sim
{
namespace
{
/// Whether the machine has the part @p id and @p wanted is true for it.
template<class Wanted>
bool hasPart(State& state, const std::string& id, const Wanted& wanted)
{
    return state.withHardware(
        [&](const Hardware& hardware)
        {
            const ChangeablePartPlace* const place = hardware.part(id);
            return place != nullptr && wanted(*place->part);
        });
}
}

Simulation::Simulation(Machine machine)
    : m_state(State::create(std::move(machine))),
      m_events(m_state),
      m_streams(m_state)
{
    pushCurrentState(m_state);
    registerOnThisThread();
}

Simulation::~Simulation()
{
    removeCurrentState(m_state);
    m_state->notifier.stop();
    m_state->streams.stop();
    revokeRegistrations(*m_state);
    m_state->enumerator.end();
}

HRESULT Simulation::registerOnThisThread()
{
    return registerApartment(m_state);
}

Journal& Simulation::journal()
{
    return m_state->journal;
}

Census Simulation::census() const
{
    return m_state->census();
}

FaultPlan& Simulation::faults()
{
    return m_state->faults;
}

LatencyPlan& Simulation::latency()
{
    return m_state->latency;
}

Events& Simulation::events()
{
    return m_events;
}

Streams& Simulation::streams()
{
    return m_streams;
}

void Simulation::deliverAtOnce(bool on)
{
    m_state->notifier.deliverAtOnce(on);
}

void Simulation::setAccount(Account account)
{
    m_state->withHardware([&](Hardware& hardware) { hardware.machine().account = account; });
}

std::vector<Violation> Simulation::violations() const
{
    return m_state->callbacks.violations();
}

void Simulation::onViolation(std::function<void(const Violation&)> handler)
{
    m_state->callbacks.onViolation(std::move(handler));
}

void Simulation::setPatience(std::chrono::milliseconds patience)
{
    m_state->callbacks.setPatience(patience);
}

Machine Simulation::machine() const
{
    return m_state->withHardware([](const Hardware& hardware) { return hardware.machine(); });
}

void Simulation::change(const std::function<void(Machine&)>& action)
{
    m_state->withHardware(
        [&](Hardware& hardware)
        {
            try
            {
                action(hardware.machine());
            }
            catch (...)
            {
                hardware.reindex(); // for what the action changed before it threw
                throw;
            }
            hardware.reindex();
        });
}

std::vector<PostedMessage> Simulation::postedMessages() const
{
    return m_state->postedMessages();
}

unsigned Simulation::comUnderflows() const
{
    return m_state->comUnderflows;
}

IMMDeviceEnumerator* Simulation::enumerator() const
{
    return lendEnumerator(m_state);
}

IMMDevice* Simulation::device(const std::string& deviceId) const
{
    return makeDevice(m_state, deviceId);
}

IDeviceTopology* Simulation::topology(const std::string& deviceId) const
{
    const bool isThere = m_state->withHardware(
        [&](Hardware& hardware)
        {
            const Device* const device = hardware.device(deviceId);
            return device != nullptr && device->topology;
        });
    return isThere ? makeTopology(m_state, deviceId) : nullptr;
}

IAudioEndpointVolume* Simulation::endpointVolume(const std::string& endpointId) const
{
    const bool isThere = m_state->withHardware(
        [&](Hardware& hardware)
        {
            const Endpoint* const endpoint = hardware.endpoint(endpointId);
            return endpoint != nullptr && endpoint->volume;
        });
    return isThere ? makeEndpointVolume(m_state, endpointId) : nullptr;
}

IPart* Simulation::part(const std::string& partId) const
{
    return makePart(m_state, partId);
}

IConnector* Simulation::connector(const std::string& partId) const
{
    return makeConnector(m_state, partId);
}

ISubunit* Simulation::subunit(const std::string& partId) const
{
    return makeSubunit(m_state, partId);
}

IAudioVolumeLevel* Simulation::volumeLevel(const std::string& partId) const
{
    const bool isThere = hasPart(*m_state, partId, [](const Part& part) { return part.volume.has_value(); });
    return isThere ? makeVolumeLevel(m_state, partId) : nullptr;
}

IAudioMute* Simulation::mute(const std::string& partId) const
{
    const bool isThere = hasPart(*m_state, partId, [](const Part& part) { return part.mute.has_value(); });
    return isThere ? makeMute(m_state, partId) : nullptr;
}

IAudioInputSelector* Simulation::inputSelector(const std::string& partId) const
{
    const bool isThere = hasPart(*m_state, partId, [](const Part& part) { return part.selector.has_value(); });
    return isThere ? makeInputSelector(m_state, partId) : nullptr;
}
}
