#include "simulator/core/hardware.h"

#include "simulator/core/composedproperties.h"
#include "simulator/machine/casefolding.h"
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

/// Of two devices or parts with the same id the first in the machine's order counts, endpoints before adapters.
void Hardware::reindex()
{
    m_endpoints.clear();
    m_endpointOf.clear();
    m_devices.clear();
    m_devicesNoCase.clear();
    m_parts.clear();
    m_peers.clear();
    m_pathsFrom.clear();

    const auto index = [this](Device& device)
    {
        m_devices.emplace(device.id, &device);
        m_devicesNoCase[lowerCase(device.id)].push_back(&device);
        indexParts(device);
    };
    for (Endpoint& endpoint : m_machine.endpoints)
    {
        m_endpoints.emplace(endpoint.id, &endpoint);
        m_endpointOf.emplace(&endpoint, &endpoint);
        index(endpoint);
    }
    for (Adapter& adapter : m_machine.adapters)
        index(adapter);
    indexJoins();
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
    return m_devicesNoCase.count(lowerCase(id)) > 0;
}

Device* Hardware::openDevice(const std::string& id)
{
    const auto found = m_devicesNoCase.find(lowerCase(id));
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
    const Endpoint* const elected = m_serviceRuns ? m_machine.defaultEndpoint(flow, role) : nullptr;
    return elected == nullptr ? Text() : Text(elected->id);
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
