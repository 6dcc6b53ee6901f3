#include "client/diagnosing/explainwiring.h"

#include "sonavit/text.h"

#include <algorithm>
#include <set>

namespace sonavit::diagnosing
{
namespace
{
/// The reader asks for the signal paths between the first connectors of a device.
constexpr std::size_t mostLinkedConnectors = 256;

template<class Devices, class Action>
void forEachTopology(const Devices& devices, const Action& action)
{
    for (const sim::Device& device : devices)
    {
        if (device.topology)
            action(device);
    }
}
}

bool Wiring::Node::isOfType(const GUID& type) const
{
    return isTypeKnown && IsEqualGUID(part->subType, type);
}

Wiring::Wiring(const capturing::Survey& survey)
{
    const auto add = [this](const sim::Device& device) { addDevice(device); };
    forEachTopology(survey.machine.endpoints, add);
    forEachTopology(survey.machine.adapters, add);
    connect(survey);
    forgetUnseenJoins();
    addSources();
}

void Wiring::addDevice(const sim::Device& device)
{
    m_devices.push_back(&device);
    const auto add = [&](const sim::Part& part, const sim::Connector* connector, std::size_t position)
    {
        if (!m_places.emplace(text::lowerCase(part.id), m_nodes.size()).second)
            return;
        Node node;
        node.device = &device;
        node.part = &part;
        node.connector = connector;
        node.position = position;
        m_nodes.push_back(std::move(node));
    };
    for (std::size_t i = 0; i < device.topology->connectors.size(); ++i)
        add(device.topology->connectors[i], &device.topology->connectors[i], i);
    for (const sim::Subunit& subunit : device.topology->subunits)
        add(subunit, nullptr, none);
}

void Wiring::connect(const capturing::Survey& survey)
{
    for (Node& node : m_nodes)
    {
        node.incoming = find(node.part->incoming);
        node.outgoing = find(node.part->outgoing);
        if (node.connector == nullptr)
            continue;
        const std::optional<sim::Peer> peer = survey.machine.peer(node.part->id);
        if (peer)
            node.peer = find(peer->connector);
    }
    for (const sim::Device* const device : m_devices)
    {
        for (const sim::SignalPath& path : device->topology->signalPaths)
        {
            const std::size_t from = find(path.from);
            const std::size_t to = find(path.to);
            if (!path.mixed && isNamed(from, path.from) && isNamed(to, path.to))
                m_paths.insert(pathOf(from, to));
        }
    }
    for (const capturing::FailedCall& failure : survey.failures)
    {
        const std::size_t node = failure.operation == "IPart::GetSubType" ? find(failure.object) : none;
        if (node != none)
            m_nodes[node].isTypeKnown = false;
    }
}

/// The joins of a device that cannot be opened are known at those of its connectors to which a known join leads.
void Wiring::forgetUnseenJoins()
{
    std::vector<std::size_t> seen;
    std::vector<bool> isSeen(m_nodes.size(), false);
    const auto see = [&](std::size_t node)
    {
        if (node == none || isSeen[node])
            return;
        isSeen[node] = true;
        seen.push_back(node);
    };
    for (std::size_t node = 0; node < m_nodes.size(); ++node)
    {
        if (m_nodes[node].device->openable)
            see(node);
    }
    for (std::size_t i = 0; i < seen.size(); ++i) // grows meanwhile
        see(m_nodes[seen[i]].peer);
    for (std::size_t node = 0; node < m_nodes.size(); ++node)
    {
        if (!isSeen[node])
            m_nodes[node].peer = none;
    }
}

/// The wires of a device that cannot be opened are known at its connectors alone.
void Wiring::addSources()
{
    for (Node& node : m_nodes)
    {
        if (node.connector == nullptr)
            continue;
        node.isNextToConnector = true; // it is never between two nodes
        for (const std::size_t next : node.incoming)
            m_nodes[next].isNextToConnector = true;
        for (const std::size_t next : node.outgoing)
            m_nodes[next].isNextToConnector = true;
    }
    for (std::size_t i = 0; i < m_nodes.size(); ++i)
    {
        Node& node = m_nodes[i];
        const bool isClosed = !node.device->openable;
        if (isClosed && node.connector == nullptr && !(node.isNextToConnector && node.isOfType(KSNODETYPE_VOLUME)))
            node.outgoing.clear();
        for (const std::size_t next : node.outgoing)
        {
            std::vector<std::size_t>& sources = m_nodes[next].sources;
            if (!isClosed && (sources.empty() || sources.back() != i))
                sources.push_back(i);
        }
    }
}

std::size_t Wiring::find(const std::string& id) const
{
    const auto found = m_places.find(text::lowerCase(id));
    return found == m_places.end() ? none : found->second;
}

std::vector<std::size_t> Wiring::find(const std::vector<std::string>& ids) const
{
    std::vector<std::size_t> nodes;
    for (const std::string& id : ids)
    {
        const std::size_t node = find(id);
        if (node != none)
            nodes.push_back(node);
    }
    return nodes;
}

/// Paths are those of the first part with an id.
bool Wiring::isNamed(std::size_t node, const std::string& id) const
{
    return node != none && m_nodes[node].part->id == id;
}

std::uint64_t Wiring::pathOf(std::size_t from, std::size_t to)
{
    return std::uint64_t{from} << 32 | to;
}

std::vector<std::size_t> Wiring::connectorsOf(const sim::Device& device) const
{
    std::vector<std::size_t> connectors;
    if (device.topology)
    {
        for (const sim::Connector& connector : device.topology->connectors)
            connectors.push_back(find(connector.id));
    }
    return connectors;
}

std::vector<const sim::Device*> Wiring::devicesOf(const std::vector<EndpointId>& ids) const
{
    std::vector<const sim::Device*> devices;
    std::set<const sim::Device*> known;
    const auto add = [&](const sim::Device* device)
    {
        if (known.insert(device).second)
            devices.push_back(device);
    };
    for (const EndpointId& id : ids)
    {
        for (const sim::Device* const device : m_devices)
        {
            if (EndpointId(device->id) == id)
                add(device);
        }
    }
    for (std::size_t i = 0; i < devices.size(); ++i) // grows meanwhile
    {
        for (const std::size_t connector : connectorsOf(*devices[i]))
        {
            if (m_nodes[connector].peer != none)
                add(m_nodes[m_nodes[connector].peer].device);
        }
    }
    return devices;
}

std::vector<std::size_t> Wiring::linkedWith(std::size_t connector) const
{
    std::vector<std::size_t> linked;
    const Node& known = m_nodes[connector];
    if (!known.device->topology || known.position >= mostLinkedConnectors)
        return linked;
    const std::vector<sim::Connector>& all = known.device->topology->connectors;
    for (std::size_t i = 0; i < std::min(all.size(), mostLinkedConnectors); ++i)
    {
        const std::size_t other = find(all[i].id);
        if (other != connector && areLinked(connector, other))
            linked.push_back(other);
    }
    return linked;
}

bool Wiring::areLinked(std::size_t one, std::size_t other) const
{
    return m_nodes[other].position < mostLinkedConnectors &&
           (m_paths.count(pathOf(one, other)) != 0 || m_paths.count(pathOf(other, one)) != 0);
}

std::vector<std::size_t> Wiring::wired(std::size_t node) const
{
    std::vector<std::size_t> parts = m_nodes[node].sources;
    parts.insert(parts.end(), m_nodes[node].outgoing.begin(), m_nodes[node].outgoing.end());
    return parts;
}

std::string Wiring::idOf(std::size_t node) const
{
    const Node& known = m_nodes[node];
    return known.part->reportsId ? known.part->id : known.device->id + "#" + std::to_string(known.part->localId);
}

const sim::Endpoint* surveyedEndpoint(const capturing::Survey& survey, const EndpointId& id)
{
    const auto& endpoints = survey.machine.endpoints;
    const auto found = std::find_if(endpoints.begin(), endpoints.end(),
                                    [&](const sim::Endpoint& endpoint) { return EndpointId(endpoint.id) == id; });
    return found == endpoints.end() ? nullptr : &*found;
}
}
