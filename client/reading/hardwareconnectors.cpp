// The walk's connectors and their joins.
#include "COM/interfacequery.h"
#include "COM/tasktext.h"
#include "client/reading/hardwarereader.h"
#include "client/reading/text.h"

#include <algorithm>

namespace sonavit::reading
{
/// Registers a connector. HardwarePart::none if it has no part.
std::size_t HardwareReader::addConnector(const Handle<IConnector>& connector, std::size_t device, Place place)
{
    IPart* part = nullptr;
    const HRESULT result = interfacequery::query(*connector, part);
    if (!judgeOf(device).gives(result, part, {"IConnector::QueryInterface", "IPart"}))
        return HardwarePart::none;
    const std::size_t index = addPart(Part(part), device, place);
    if (index == HardwarePart::none)
        return index;
    HardwarePart& known = m_map.parts[index];
    if (known.connector.get() != nullptr)
        return index;
    known.isConnector = true;
    known.connector = connector;
    DataFlow direction = In;
    if (judgeOfPart(index).passes(connector->GetDataFlow(&direction), {"IConnector::GetDataFlow"}))
        known.direction = direction == In ? Graph::Direction::in : Graph::Direction::out;
    BOOL isJoined = FALSE;
    if (judgeOfPart(index).passes(connector->IsConnected(&isJoined), {"IConnector::IsConnected"}))
        known.isJoined = isJoined != FALSE;
    return index;
}

void HardwareReader::followConnectors()
{
    for (std::size_t device = 0; device < m_map.devices.size(); ++device) // grows meanwhile
    {
        const std::vector<std::size_t> parts = m_map.devices[device].facts.parts;
        for (const std::size_t part : parts)
        {
            if (m_map.parts[part].isConnector)
                followConnector(part);
        }
    }
}

/// Adds the join from a connector, and the device on its far side if it is new.
void HardwareReader::followConnector(std::size_t part)
{
    HardwarePart& known = m_map.parts[part];
    IConnector* object = nullptr;
    const HRESULT result = known.connector->GetConnectedTo(&object);
    const bool hasPeer = judgeOfPart(part).gives(result, object, {"IConnector::GetConnectedTo"}, {E_NOTFOUND});
    const Handle<IConnector> peer(hasPeer ? object : nullptr);
    const std::string farId = farDeviceId(part, *known.connector, peer.get());
    if (farId.empty())
        return;
    const std::size_t device = deviceIndex(farId, known.problems);
    if (device == HardwarePart::none)
        return;
    m_map.devices[known.device].leadsTo.push_back(device);
    m_joinedDevices.emplace_back(known.device, device);
    const std::size_t peerPart = hasPeer ? addConnector(peer, device, Place::graph) : HardwarePart::none;
    if (peerPart == HardwarePart::none)
        m_map.edges.push_back({Graph::Edge::Kind::join, part, std::nullopt, device});
    else
        join(part, peerPart);
}

/// As the connector reports it, or else as the topology of its peer does; empty without a device.
std::string HardwareReader::farDeviceId(std::size_t part, IConnector& connector, IConnector* peer)
{
    {
        TaskText id(TaskText::NullText::skipped);
        const HRESULT result = connector.GetDeviceIdConnectedTo(id.put());
        if (judgeOfPart(part).gives(result, *id.put(), {"IConnector::GetDeviceIdConnectedTo"}, {E_NOTFOUND}) &&
            *id.get() != 0)
            return utf8(id.get());
    }
    return peer == nullptr ? std::string() : ownerOf(*peer, part);
}

/// The device of the connector on the far side of @p part, as its topology reports it.
std::string HardwareReader::ownerOf(IConnector& peer, std::size_t part)
{
    IPart* peerPart = nullptr;
    HRESULT result = interfacequery::query(peer, peerPart);
    if (!judgeOfPart(part).gives(result, peerPart, {"IConnector::QueryInterface", "IPart"}))
        return {};
    const Part holder(peerPart);
    const std::string peerId = readId(*peerPart, m_map.parts[part].device);
    Judge judge(peerId.empty() ? m_map.objectOf(part) : peerId, m_map.parts[part].problems);
    IDeviceTopology* topology = nullptr;
    result = peerPart->GetTopologyObject(&topology);
    if (!judge.gives(result, topology, {"IPart::GetTopologyObject"}))
        return {};
    const Handle<IDeviceTopology> topologyHolder(topology);
    TaskText id(TaskText::NullText::skipped);
    result = topology->GetDeviceId(id.put());
    return judge.gives(result, *id.put(), {"IDeviceTopology::GetDeviceId"}) ? utf8(id.get()) : std::string();
}

/// Both ends report a join; the second report is ignored. It points the way that the sound flows, as far as it is
/// known.
void HardwareReader::join(std::size_t part, std::size_t peer)
{
    HardwarePart& known = m_map.parts[part];
    known.peer = peer;
    m_joinedDevices.emplace_back(known.device, m_map.parts[peer].device);
    const std::uint64_t ends = std::uint64_t{std::min(part, peer)} << 32 | std::max(part, peer);
    if (!m_joins.insert(ends).second)
        return;
    const bool isBackwards = known.direction == Graph::Direction::in;
    m_map.edges.push_back(
        {Graph::Edge::Kind::join, isBackwards ? peer : part, isBackwards ? part : peer, std::nullopt});
}

/// Takes the topology of a device that cannot be opened from one of its connectors.
void HardwareReader::openThroughPeer(std::size_t device)
{
    const std::vector<std::size_t> peers = m_map.devices[device].facts.parts;
    for (const std::size_t peer : peers)
    {
        IDeviceTopology* topology = nullptr;
        const HRESULT result = m_map.parts[peer].part->GetTopologyObject(&topology);
        if (!judgeOfPart(peer).gives(result, topology, {"IPart::GetTopologyObject"}))
            continue;
        m_map.devices[device].topology = Handle<IDeviceTopology>(topology);
        readComponents(device, Place::surroundings);
        return;
    }
}
}
