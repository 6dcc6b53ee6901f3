// The indexes over a machine's devices and parts.
#include "simulator/core/hardware.h"
#include "simulator/machine/casefolding.h"

namespace sim
{
namespace
{
template<class Devices>
std::size_t countParts(const Devices& devices)
{
    std::size_t count = 0;
    for (const Device& device : devices)
        count += device.topology ? device.topology->connectors.size() + device.topology->subunits.size() : 0;
    return count;
}
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
    indexDefaults();
    indexVolumesInHardware();
    for (const DeviceInstance& instance : m_machine.deviceInstances)
        m_deviceInstances.emplace(instance.id, &instance);
}

/// Empty, with room for what the machine has.
void Hardware::clearIndexes()
{
    m_endpoints.clear();
    m_endpointOf.clear();
    m_devices.clear();
    m_devicesNoCase.clear();
    m_deviceInstances.clear();
    m_parts.clear();
    m_endpointsAt.clear();
    m_peers.clear();
    m_endpointsInHardware.clear();
    m_namedDefaults.clear();
    m_pathsFrom.clear();

    // An index that grows step by step moves its entries several times.
    const std::size_t endpoints = m_machine.endpoints.size();
    m_endpoints.reserve(endpoints);
    m_endpointOf.reserve(endpoints);
    m_endpointsAt.reserve(endpoints);
    m_devices.reserve(endpoints + m_machine.adapters.size());
    m_devicesNoCase.reserve(endpoints + m_machine.adapters.size());
    m_deviceInstances.reserve(m_machine.deviceInstances.size());
    m_parts.reserve(countParts(m_machine.endpoints) + countParts(m_machine.adapters));
    m_peers.reserve(2 * m_machine.joins.size());
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

void Hardware::indexDefaults()
{
    for (Endpoint& endpoint : m_machine.endpoints)
    {
        for (const ERole role : endpoint.defaultFor)
            m_namedDefaults[{endpoint.flow, role}].push_back(&endpoint);
    }
}

void Hardware::indexVolumesInHardware()
{
    for (Endpoint& endpoint : m_machine.endpoints)
    {
        if (!endpoint.volume)
            continue;
        const auto& [volume, mute] = endpoint.volume->hardware;
        if (!volume.empty())
            m_endpointsInHardware[volume].push_back(&endpoint);
        if (!mute.empty() && mute != volume)
            m_endpointsInHardware[mute].push_back(&endpoint);
    }
}
}
