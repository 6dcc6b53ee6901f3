#include "simulator/core/hardware.h"

#include "simulator/core/composedproperties.h"
#include "simulator/machine/defaults.h"
#include "simulator/machine/propertykeys.h"

#include <algorithm>
#include <utility>

namespace sim
{
void changeProperty(Device& device, const PROPERTYKEY& key, const PropertyValue& value)
{
    const bool isUnlisted = findProperty(device.unlistedProperties, key) != nullptr;
    Properties& properties = isUnlisted ? device.unlistedProperties : device.properties;
    if (value.tag == VT_EMPTY && !isComposed(key))
        removeProperty(properties, key);
    else
        setProperty(properties, key, value);
}

Hardware::Hardware(Machine machine) : m_machine(std::move(machine))
{
    reindex();
}

Machine& Hardware::machine()
{
    return m_machine;
}

const Machine& Hardware::machine() const
{
    return m_machine;
}

bool Hardware::isGone(const Device& device) const
{
    const auto found = m_endpointOf.find(&device);
    return found != m_endpointOf.end() && m_machine.isGone(*found->second);
}

Device* Hardware::device(const std::string& id)
{
    const auto found = m_devices.find(id);
    return found == m_devices.end() || isGone(*found->second) ? nullptr : found->second;
}

Endpoint* Hardware::endpoint(const std::string& id)
{
    Endpoint* const found = anyEndpoint(id);
    return found == nullptr || m_machine.isGone(*found) ? nullptr : found;
}

Endpoint* Hardware::anyEndpoint(const std::string& id)
{
    const auto found = m_endpoints.find(id);
    return found == m_endpoints.end() ? nullptr : found->second;
}

bool Hardware::isEndpoint(const Device& device) const
{
    const auto found = m_endpointOf.find(&device);
    return found != m_endpointOf.end() && !m_machine.isGone(*found->second);
}

bool Hardware::hasDevice(const std::string& id) const
{
    return m_devices.count(id) > 0;
}

bool Hardware::knows(const std::string& id) const
{
    return m_devicesNoCase.count(id) > 0;
}

Device* Hardware::openDevice(const std::string& id)
{
    const auto found = m_devicesNoCase.find(id);
    if (found == m_devicesNoCase.end())
        return nullptr;
    Device* nearly = nullptr;
    for (Device* candidate : found->second)
    {
        if (!candidate->openable || isGone(*candidate))
            continue;
        if (candidate->id == id)
            return candidate;
        nearly = nearly == nullptr ? candidate : nearly;
    }
    return nearly;
}

Text Hardware::defaultEndpoint(EDataFlow flow, ERole role) const
{
    if (!m_serviceRuns)
        return {};
    const auto jack = [this](const Endpoint& endpoint) { return jackOf(endpoint); };
    const auto named = m_namedDefaults.find({flow, role});
    if (named == m_namedDefaults.end())
        return {};
    const Endpoint* const elected = electDefault(m_machine, *named->second.front(), role, jack);
    return elected == nullptr ? Text() : Text(elected->id);
}

void Hardware::nameDefault(Endpoint& endpoint, ERole role)
{
    removeDefault(endpoint.flow, role);
    endpoint.defaultFor.push_back(role);
    m_namedDefaults[{endpoint.flow, role}] = {&endpoint};
}

void Hardware::removeDefault(EDataFlow flow, ERole role)
{
    const auto named = m_namedDefaults.find({flow, role});
    if (named == m_namedDefaults.end())
        return;
    for (Endpoint* const endpoint : named->second)
    {
        std::vector<ERole>& roles = endpoint->defaultFor;
        roles.erase(std::remove(roles.begin(), roles.end(), role), roles.end());
    }
    m_namedDefaults.erase(named);
}

GUID Hardware::jackOf(const Endpoint& endpoint) const
{
    if (!endpoint.topology || endpoint.topology->connectors.empty())
        return {};
    const Peer* const found = peer(endpoint.topology->connectors.front().id);
    const auto jack = found == nullptr ? m_parts.end() : m_parts.find(found->connector);
    return jack == m_parts.end() ? GUID{} : jack->second.part->subType;
}

std::vector<Endpoint*> Hardware::endpointsOfDevice(const std::string& endpointId)
{
    const auto pathOf = [](const Endpoint& endpoint)
    {
        const PropertyValue* const path = findProperty(endpoint, keys::instancePath);
        return path == nullptr ? std::string() : path->text.value_or("");
    };
    Endpoint* const first = anyEndpoint(endpointId);
    if (first == nullptr)
        return {};
    const std::string device = pathOf(*first);
    if (device.empty())
        return {first};
    std::vector<Endpoint*> result;
    for (Endpoint& candidate : m_machine.endpoints)
    {
        if (pathOf(candidate) == device)
            result.push_back(&candidate);
    }
    return result;
}

const std::vector<Endpoint*>& Hardware::endpointsInHardware(const std::string& partId) const
{
    static const std::vector<Endpoint*>& none = *new std::vector<Endpoint*>; // objects may outlive static ones
    const auto found = m_endpointsInHardware.find(partId);
    return found == m_endpointsInHardware.end() ? none : found->second;
}

void Hardware::leave(Endpoint& endpoint)
{
    if (endpoint.state == stateNotPresent)
        return;
    m_statesBefore[endpoint.id] = endpoint.state;
    endpoint.state = stateNotPresent;
}

void Hardware::comeBack(Endpoint& endpoint)
{
    const auto before = m_statesBefore.find(endpoint.id);
    endpoint.state = before == m_statesBefore.end() ? stateActive : before->second;
    m_statesBefore.erase(endpoint.id);
}

bool Hardware::serviceRuns() const
{
    return m_serviceRuns;
}

void Hardware::runService(bool on)
{
    m_serviceRuns = on;
}

std::uint64_t Hardware::storeAge(const std::string& deviceId) const
{
    const auto found = m_storeAges.find(deviceId);
    return m_allStoresAge + (found == m_storeAges.end() ? 0 : found->second);
}

void Hardware::makeStoresStale()
{
    ++m_allStoresAge;
}

void Hardware::makeStoresStale(const std::string& deviceId)
{
    ++m_storeAges[deviceId];
}

const DeviceInstance* Hardware::deviceInstance(const std::string& id) const
{
    const auto found = m_deviceInstances.find(id);
    return found == m_deviceInstances.end() ? nullptr : found->second;
}

const ChangeablePartPlace* Hardware::part(const std::string& id) const
{
    const auto found = m_parts.find(id);
    return found == m_parts.end() || isGone(*found->second.device) ? nullptr : &found->second;
}

const std::string& Hardware::deviceOf(const std::string& id) const
{
    const auto found = m_parts.find(id);
    return found == m_parts.end() || hasDevice(id) ? id : found->second.device->id;
}

const Peer* Hardware::peer(const std::string& connectorId) const
{
    const auto found = m_peers.find(connectorId);
    return found == m_peers.end() ? nullptr : &found->second;
}

const std::vector<const Endpoint*>& Hardware::endpointsAt(const std::string& connectorId) const
{
    static const std::vector<const Endpoint*>& none = *new std::vector<const Endpoint*>; // as above
    const auto found = m_endpointsAt.find(connectorId);
    return found == m_endpointsAt.end() ? none : found->second;
}

const SignalPath* Hardware::signalPath(const Device& device, const std::string& from, const std::string& to,
                                       bool rejectMixed) const
{
    const auto found = m_pathsFrom.find(from);
    const auto origin = m_parts.find(from);
    const auto target = m_parts.find(to);
    if (found == m_pathsFrom.end() || origin == m_parts.end() || target == m_parts.end())
        return nullptr;
    if (origin->second.device != &device || target->second.device != &device)
        return nullptr;
    const auto fits = [&](const SignalPath* path) { return path->to == to && !(rejectMixed && path->mixed); };
    const auto path = std::find_if(found->second.begin(), found->second.end(), fits);
    return path == found->second.end() ? nullptr : *path;
}
}
