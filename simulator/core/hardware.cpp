#include "simulator/core/hardware.h"

#include "simulator/core/composedproperties.h"
#include "simulator/machine/casefolding.h"
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

std::size_t Hardware::HashNoCase::operator()(std::string_view text) const
{
    std::size_t value = 0xCBF29CE4;
    for (const char character : text)
        value = (value ^ static_cast<unsigned char>(lowerCase(character))) * 0x01000193;
    return value;
}

bool Hardware::EqualNoCase::operator()(std::string_view left, std::string_view right) const
{
    return equalNoCase(left, right);
}

void Hardware::reindex()
{
    clearIndexes();
    indexDevices();
    indexJoins();
    indexEndpointsAtConnectors();
    for (const DeviceInstance& instance : m_machine.deviceInstances)
        m_deviceInstances.emplace(instance.id, &instance);
}

void Hardware::clearIndexes()
{
    m_endpoints.clear();
    m_endpointOf.clear();
    m_devices.clear();
    m_devicesNoCase.clear();
    m_deviceInstances.clear();
    m_parts.clear();
    m_peers.clear();
    m_endpointsAt.clear();
    m_pathsFrom.clear();
}

/// Of two devices or parts with the same id the first in the machine's order counts, endpoints before adapters.
void Hardware::indexDevices()
{
    for (Endpoint& endpoint : m_machine.endpoints)
    {
        m_endpoints.emplace(endpoint.id, &endpoint);
        m_endpointOf.emplace(&endpoint, &endpoint);
        indexDevice(endpoint);
    }
    for (Adapter& adapter : m_machine.adapters)
        indexDevice(adapter);
}

void Hardware::indexDevice(Device& device)
{
    m_devices.emplace(device.id, &device);
    m_devicesNoCase[device.id].push_back(&device);
    indexParts(device);
}

void Hardware::indexParts(Device& device)
{
    if (!device.topology)
        return;
    for (Connector& connector : device.topology->connectors)
        m_parts.emplace(connector.id, ChangeablePartPlace{&device, &connector, &connector});
    for (Subunit& subunit : device.topology->subunits)
        m_parts.emplace(subunit.id, ChangeablePartPlace{&device, &subunit, nullptr});
    for (const SignalPath& path : device.topology->signalPaths)
        m_pathsFrom[path.from].push_back(&path);
}

/// As Machine::peer(), for all connectors at once.
void Hardware::indexJoins()
{
    const auto owner = [this](const std::string& connector)
    {
        const auto found = m_parts.find(connector);
        return found == m_parts.end() ? Text() : Text(found->second.device->id);
    };
    for (const Join& join : m_machine.joins)
    {
        m_peers.emplace(join.from, Peer{join.toDevice ? join.toDevice : owner(join.to), join.to});
        if (join.bothWays && !join.to.empty())
            m_peers.emplace(join.to, Peer{owner(join.from), join.from});
    }
}

void Hardware::indexEndpointsAtConnectors()
{
    for (const Endpoint& endpoint : m_machine.endpoints)
    {
        if (!endpoint.topology || endpoint.topology->connectors.empty())
            continue;
        if (const Peer* const found = peer(endpoint.topology->connectors.front().id))
            m_endpointsAt[found->connector].push_back(&endpoint);
    }
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
    const Endpoint* const elected = electDefault(m_machine, flow, role, jack);
    return elected == nullptr ? Text() : Text(elected->id);
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
    static const std::vector<const Endpoint*> none;
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
