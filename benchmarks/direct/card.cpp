#include "card.h"

#include "updater.h"

namespace direct
{
std::vector<Card> Card::findAll(Client& client, Registration registration)
{
    std::vector<Card> cards;
    const ComPtr<IMMDeviceEnumerator> enumerator = createEnumerator();
    if (!enumerator)
        return cards;
    std::unordered_map<std::u16string, std::size_t> places; // by instance path
    for (const EDataFlow flow : {eCapture, eRender})
    {
        for (Device& device : readEndpoints(*enumerator.get(), flow, DEVICE_STATEMASK_ALL))
        {
            const auto [place, isNew] = places.try_emplace(device.properties.instancePath, cards.size());
            if (isNew)
                cards.push_back(Card(client, device.properties.instancePath));
            cards[place->second].addEndpoint(flow, std::move(device));
        }
    }
    for (Card& card : cards)
        card.buildGraph(client, registration);
    return cards;
}

Card::Card(Client& client, const std::u16string& instancePath) : m_data(std::make_shared<SharedData>())
{
    m_data->instancePath = instancePath;
    client.registerClient(makeUpdater(client, m_data));
}

void Card::addEndpoint(EDataFlow flow, Device device)
{
    if (!m_endpointIds.insert(device.properties.deviceId).second)
        return;
    Side& side = flow == eRender ? m_data->playback : m_data->record;
    side.devices.push_back(std::move(device));
}

void Card::buildGraph(Client& client, Registration registration)
{
    for (const Side* side : {&m_data->playback, &m_data->record})
    {
        for (const Device& device : side->devices)
        {
            addConnectors(device.topology);
            m_knownDevices.insert(device.properties.deviceId);
        }
    }
    for (unsigned int index = 0; index < m_graph.size(); ++index) // the graph grows meanwhile
        follow(index, client, registration);
    for (unsigned int index = 0; index < m_graph.size(); ++index)
        linkWithinTopology(index);
}

void Card::addConnectors(const Topology& topology)
{
    for (const Component<IConnector>& connector : topology.connectors)
    {
        if (m_indexes.try_emplace(connector.part.globalId, static_cast<unsigned int>(m_graph.size())).second)
            m_graph.push_back({connector, {}});
    }
}

/// Opens the device on the far side of the connector, whether it is known or not, and notes the connector there.
void Card::follow(unsigned int index, Client& client, Registration registration)
{
    std::u16string farId;
    {
        TaskText id;
        if (m_graph[index].connector.component)
            m_graph[index].connector.component->GetDeviceIdConnectedTo(id.put());
        farId = copyOf(id.get());
    }
    Device farDevice = client.open(farId);
    if (m_knownDevices.count(farId) == 0 && m_adapterIds.count(farDevice.properties.deviceId) == 0)
    {
        if (farDevice.device)
            addFarDevice(std::move(farDevice), farId, registration);
        else
            addNearDevice(index);
    }
    linkToPeer(index);
}

void Card::addFarDevice(Device device, const std::u16string& id, Registration registration)
{
    m_knownDevices.insert(id);
    m_adapterIds.insert(device.properties.deviceId);
    m_adapters.push_back(std::move(device));
    const std::size_t first = registration == Registration::wholeList ? 0 : m_adapters.size() - 1;
    for (std::size_t adapter = first; adapter < m_adapters.size(); ++adapter)
        addConnectors(m_adapters[adapter].topology);
}

/// A device that cannot be opened stays unknown; the connectors next to that of @p index take its place.
void Card::addNearDevice(unsigned int index)
{
    const Topology topology = readTopologyOf(m_graph[index].connector);
    if (m_knownDevices.insert(topology.deviceId).second)
        addConnectors(topology);
}

void Card::linkToPeer(unsigned int index)
{
    const Component<IConnector>& connector = m_graph[index].connector;
    ComPtr<IConnector> peer;
    if (connector.component)
        connector.component->GetConnectedTo(peer.put());
    if (peer)
        m_graph[index].links.push_back(indexOf(readComponent(std::move(peer)).part.globalId));
}

void Card::linkWithinTopology(unsigned int index)
{
    const Topology topology = readTopologyOf(m_graph[index].connector);
    for (unsigned int other = index + 1; other < m_graph.size(); ++other)
    {
        if (!areLinked(topology, m_graph[index].connector.part, m_graph[other].connector.part))
            continue;
        m_graph[index].links.push_back(other);
        m_graph[other].links.push_back(index);
    }
}

unsigned int Card::indexOf(const std::u16string& connectorId) const
{
    const auto found = m_indexes.find(connectorId);
    return found == m_indexes.end() ? outsideGraph : found->second;
}
}
