#include "tools/sonavit/cardgraph.h"

#include "tools/sonavit/output/modelwords.h"
#include "tools/sonavit/output/text.h"

#include <algorithm>
#include <utility>

namespace sonavit::program
{
namespace
{
/// Copies and frees a string of the platform.
std::string takenText(LPWSTR text)
{
    const std::string result = qor::String(platform::ucs2(text)).toUtf8();
    CoTaskMemFree(text);
    return result;
}

/// The platform may report success without an object.
template<class I>
bool isThere(const AudioComponent<I>& component)
{
    return component.component().get() != nullptr && component.part().part().get() != nullptr;
}

bool isThere(const AudioPart& part)
{
    return part.part().get() != nullptr;
}

/// Whether the system says that the device has no topology. A call that fails otherwise does not answer that.
bool lacksTopology(AudioDevice device)
{
    const COMPtr<IMMDevice>::pointer platformDevice = device.device();
    if (platformDevice.get() == nullptr)
        return false;
    void* topology = nullptr;
    const HRESULT result = platformDevice->Activate(IID_IDeviceTopology, CLSCTX_ALL, nullptr, &topology);
    const COMPtr<IDeviceTopology>::pointer holder(static_cast<IDeviceTopology*>(topology));
    return result == E_NOINTERFACE;
}

std::string localId(const AudioPart& part)
{
    UINT id = 0;
    const COMPtr<IPart>::pointer platformPart = part.part();
    if (platformPart.get() == nullptr || FAILED(platformPart->GetLocalId(&id)))
        return {};
    return std::to_string(id);
}

std::optional<DataFlow> directionOf(const AudioComponent<IConnector>& connector)
{
    DataFlow direction = In;
    if (!isThere(connector) || FAILED(connector.component()->GetDataFlow(&direction)))
        return std::nullopt;
    return direction;
}
}

CardGraph::CardGraph(const std::vector<Card>& cards)
{
    for (const Card& card : cards)
    {
        for (const Endpoint& endpoint : card.endpoints)
            addEndpoint(endpoint);
    }
    // Both lists grow during the walk.
    for (std::size_t device = 0; device < m_devices.size(); ++device)
    {
        const std::vector<std::size_t> parts = m_devices[device].parts;
        for (const std::size_t part : parts)
        {
            if (m_parts[part].isConnector)
                followConnector(part);
        }
    }
    for (std::size_t part = 0; part < m_parts.size(); ++part)
        addWires(part);
    for (std::size_t device = 0; device < m_topologies.size(); ++device)
        addPaths(device, m_topologies[device]);
}

const std::vector<CardGraph::Device>& CardGraph::devices() const
{
    return m_devices;
}

const std::vector<CardGraph::Part>& CardGraph::parts() const
{
    return m_parts;
}

const std::vector<CardGraph::Edge>& CardGraph::edges() const
{
    return m_edges;
}

void CardGraph::addEndpoint(const Endpoint& endpoint)
{
    addDevice(endpoint.device, {Device::Kind::endpoint, endpoint.id, titleWords(endpoint), endpoint.flow, {}});
}

void CardGraph::addDevice(const AudioDevice& device, Device description)
{
    const std::size_t index = m_devices.size();
    const std::string key = description.id.empty() ? "#" + std::to_string(index) : lowerCase(description.id);
    if (!m_deviceIndexes.emplace(key, index).second)
        return;
    m_devices.push_back(std::move(description));
    AudioDeviceTopology topology;
    device.deviceTopology(topology);
    m_topologies.push_back(topology);
    const qor::Array<AudioComponent<IConnector>> connectors = topology.connector();
    for (unsigned i = 0; i < connectors.size(); ++i)
    {
        if (isThere(connectors[i]))
            addConnector(connectors[i], index);
    }
    const qor::Array<AudioComponent<ISubunit>> subunits = topology.subunit();
    for (unsigned i = 0; i < subunits.size(); ++i)
    {
        if (isThere(subunits[i]))
            addPart(subunits[i].part(), index);
    }
    m_devices[index].hasTopology = !m_devices[index].parts.empty() || !lacksTopology(device);
}

/// Identifies a part by its global id, as the library does, or else by its device and its number there.
std::string CardGraph::keyOf(const AudioPart& part) const
{
    const std::string id = part.globalId().toUtf8();
    if (!id.empty())
        return lowerCase(id);
    const AudioDeviceTopology topology(part.topology());
    return lowerCase(topology.deviceOwner().toUtf8()) + "#" + localId(part);
}

std::size_t CardGraph::indexOf(const AudioPart& part) const
{
    const auto found = m_partIndexes.find(keyOf(part));
    return found == m_partIndexes.end() ? none : found->second;
}

std::size_t CardGraph::addPart(const AudioPart& part, std::size_t device)
{
    const auto [place, isNew] = m_partIndexes.emplace(keyOf(part), m_parts.size());
    if (!isNew)
        return place->second;
    Part description;
    description.part = part;
    description.device = device;
    description.name = textOrNothing(part.name());
    description.type = typeOrNothing(part.subType());
    m_parts.push_back(std::move(description));
    m_devices[device].parts.push_back(place->second);
    return place->second;
}

std::size_t CardGraph::addConnector(const AudioComponent<IConnector>& connector, std::size_t device)
{
    const std::size_t index = addPart(connector.part(), device);
    m_parts[index].isConnector = true;
    m_parts[index].direction = directionOf(connector);
    return index;
}

/// Adds the join from a connector, and the device on its far side if it is new.
void CardGraph::followConnector(std::size_t index)
{
    const COMPtr<IPart>::pointer part = m_parts[index].part.part();
    const AudioComponent<IConnector> connector(part);
    if (!isThere(connector))
        return;
    LPWSTR text = nullptr;
    connector.component()->GetDeviceIdConnectedTo(&text);
    std::string farId = takenText(text);
    IConnector* opposite = nullptr;
    connector.component()->GetConnectedTo(&opposite);
    const AudioComponent<IConnector> peer(opposite);
    const bool hasPeer = isThere(peer);
    if (farId.empty() && hasPeer)
        farId = peer.deviceOwner().toUtf8();
    if (farId.empty())
        return;
    const std::size_t farDevice = deviceIndex(farId);
    if (hasPeer)
        addEdge(Edge::Kind::join, index, peerIndex(peer, farDevice));
    else
        m_edges.push_back({Edge::Kind::join, index, none, farDevice});
}

/// The device with that id, opened when the walk meets it for the first time. It keeps this id even if it cannot report
/// one itself.
std::size_t CardGraph::deviceIndex(const std::string& id)
{
    const auto found = m_deviceIndexes.find(lowerCase(id));
    if (found != m_deviceIndexes.end())
        return found->second;
    const std::size_t index = m_devices.size();
    const AudioDevice device(qor::String::fromUtf8(id));
    const std::optional<std::string> name = textOrNothing(device.deviceProperty().friendlyName);
    EDataFlow flow = eRender;
    if (device.isInitialized() && device.isEndpoint() && device.dataFlow(flow))
    {
        Endpoint endpoint = readEndpoint(device, flow); // of another card, or one that the system does not list
        endpoint.id = id;
        addEndpoint(endpoint);
    }
    else if (device.isInitialized())
        addDevice(device, {Device::Kind::adapter, id, printable(name.value_or("Adapter")), std::nullopt, {}});
    else
        addDevice(device, {Device::Kind::closed, id, "cannot be opened", std::nullopt, {}});
    return index;
}

/// The part on the far side of a join, even if its device does not list it.
std::size_t CardGraph::peerIndex(const AudioComponent<IConnector>& peer, std::size_t farDevice)
{
    const std::size_t known = indexOf(peer.part());
    return known == none ? addConnector(peer, farDevice) : known;
}

void CardGraph::addWires(std::size_t index)
{
    AudioPart part = m_parts[index].part; // reading the neighbours changes the object
    const std::size_t device = m_parts[index].device;
    if (!isThere(part) || m_devices[device].kind == Device::Kind::closed)
        return;
    qor::Array<AudioPart> neighbours;
    const unsigned count = part.outgoingPartsList(neighbours);
    for (unsigned i = 0; i < count; ++i)
    {
        if (isThere(neighbours[i]))
            addEdge(Edge::Kind::wire, index, addPart(neighbours[i], device));
    }
}

void CardGraph::addPaths(std::size_t device, const AudioDeviceTopology& topology)
{
    const qor::Array<AudioComponent<IConnector>> connectors = topology.connector();
    for (unsigned i = 0; i < connectors.size(); ++i)
    {
        for (unsigned j = i + 1; j < connectors.size(); ++j)
        {
            if (topology.connectorsAreLinked(connectors[i], connectors[j]))
                addEdge(Edge::Kind::path, addConnector(connectors[i], device), addConnector(connectors[j], device));
        }
    }
}

/// Joins and paths have no direction of their own: they point the way that the sound flows, as far as it is known. Both
/// ends report them; the second report is ignored.
void CardGraph::addEdge(Edge::Kind kind, std::size_t from, std::size_t to)
{
    const std::optional<DataFlow>& direction = m_parts[from].direction;
    const bool entersAtStart = kind == Edge::Kind::path ? direction == Out : direction == In;
    if (kind != Edge::Kind::wire && entersAtStart)
        std::swap(from, to);
    const bool isKnown =
        std::any_of(m_edges.begin(), m_edges.end(),
                    [&](const Edge& edge)
                    {
                        const bool isSame = edge.from == from && edge.to == to;
                        const bool isReverse = edge.from == to && edge.to == from;
                        return edge.kind == kind && (isSame || (isReverse && kind != Edge::Kind::wire));
                    });
    if (!isKnown)
        m_edges.push_back({kind, from, to, none});
}

std::vector<std::size_t> CardGraph::sourcesOf(std::size_t index) const
{
    std::vector<std::size_t> sources;
    for (const Edge& edge : m_edges)
    {
        if (edge.kind == Edge::Kind::wire && edge.to == index)
            sources.push_back(edge.from);
    }
    return sources;
}

/// The next parts on the path of an endpoint: along the wires (against them for an output) and across joins, but not
/// into another endpoint.
std::vector<std::size_t> CardGraph::nextOnPath(std::size_t index, EDataFlow flow, std::size_t start) const
{
    std::vector<std::size_t> next;
    for (const Edge& edge : m_edges)
    {
        if (edge.to == none)
            continue;
        const std::size_t other = edge.from == index ? edge.to : edge.from;
        const bool isAtEnd = edge.from == index || edge.to == index;
        const bool isWireOurWay =
            edge.kind == Edge::Kind::wire && (flow == eRender ? edge.to == index : edge.from == index);
        const std::size_t device = m_parts[other].device;
        const bool isJoin =
            edge.kind == Edge::Kind::join && (m_devices[device].kind != Device::Kind::endpoint || device == start);
        if (isAtEnd && (isWireOurWay || isJoin))
            next.push_back(other);
    }
    return next;
}

void CardGraph::showPath(const Endpoint& endpoint)
{
    const auto found = m_deviceIndexes.find(lowerCase(endpoint.id));
    if (found == m_deviceIndexes.end())
        return;
    const std::size_t start = found->second;
    m_devices[start].isOnPath = true;
    std::vector<std::size_t> reached = m_devices[start].parts;
    for (std::size_t i = 0; i < reached.size(); ++i)
    {
        m_parts[reached[i]].isOnPath = true;
        for (const std::size_t part : nextOnPath(reached[i], endpoint.flow, start))
        {
            if (std::find(reached.begin(), reached.end(), part) == reached.end())
                reached.push_back(part);
        }
    }
    for (Edge& edge : m_edges)
        edge.isOnPath = edge.kind != Edge::Kind::path && edge.to != none && m_parts[edge.from].isOnPath &&
                        m_parts[edge.to].isOnPath;
}
}
