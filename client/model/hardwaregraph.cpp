#include "client/model/hardwaregraph.h"

#include "COM/tasktext.h"
#include "client/model/values.h"

#include <algorithm>
#include <utility>

namespace sonavit::model
{
namespace
{
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

/// Whether the platform says that the device has no topology. A call that fails otherwise does not answer that.
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

std::optional<std::uint32_t> numberOf(const AudioPart& part)
{
    UINT number = 0;
    const COMPtr<IPart>::pointer platformPart = part.part();
    if (platformPart.get() == nullptr || FAILED(platformPart->GetLocalId(&number)))
        return std::nullopt;
    return number;
}

std::optional<Graph::Direction> directionOf(const AudioComponent<IConnector>& connector)
{
    DataFlow direction = In;
    if (!isThere(connector) || FAILED(connector.component()->GetDataFlow(&direction)))
        return std::nullopt;
    return direction == In ? Graph::Direction::in : Graph::Direction::out;
}

std::optional<bool> isJoined(const AudioComponent<IConnector>& connector)
{
    BOOL isConnected = FALSE;
    if (!isThere(connector) || FAILED(connector.component()->IsConnected(&isConnected)))
        return std::nullopt;
    return isConnected != FALSE;
}

Graph::Device describe(const Endpoint& endpoint)
{
    Graph::Device device;
    device.kind = Graph::Device::Kind::endpoint;
    device.id = endpoint.id().text();
    device.name = endpoint.title();
    device.flow = endpoint.flow();
    device.state = endpoint.state();
    return device;
}

/// A device on the far side of a connector. It keeps the id @p id even if it cannot report one itself.
Graph::Device describe(AudioDevice& device, const std::string& id)
{
    Graph::Device description;
    description.id = id;
    EDataFlow flow = eAll;
    if (!device.isInitialized())
    {
        description.kind = Graph::Device::Kind::closed;
        description.name = "cannot be opened";
    }
    else if (device.isEndpoint() && device.dataFlow(flow)) // of another card, or one that the platform does not list
    {
        Endpoint::Content content = describeEndpoint(device, flowOf(flow).value_or(Flow::output));
        content.id = EndpointId(id);
        description = describe(Endpoint(std::move(content)));
        description.flow = flowOf(flow);
        description.isListed = false;
    }
    else
        description.name = textOrNothing(device.deviceProperty().friendlyName).value_or("Adapter");
    return description;
}
}

HardwareGraph::HardwareGraph(const std::vector<ModelEndpoint>& endpoints)
{
    for (const ModelEndpoint& endpoint : endpoints)
        addDevice(endpoint.device, describe(endpoint.value));
    // Both lists grow during the walk.
    for (std::size_t device = 0; device < m_graph.devices.size(); ++device)
    {
        const std::vector<std::size_t> parts = m_graph.devices[device].parts;
        for (const std::size_t part : parts)
        {
            if (m_graph.parts[part].isConnector)
                followConnector(part);
        }
    }
    for (std::size_t part = 0; part < m_parts.size(); ++part)
        addWires(part);
    for (std::size_t device = 0; device < m_topologies.size(); ++device)
        addPaths(device);
}

void HardwareGraph::addDevice(const AudioDevice& device, Graph::Device description)
{
    const std::size_t index = m_graph.devices.size();
    const std::string key = description.id.empty() ? "#" + std::to_string(index) : folded(description.id);
    if (!m_deviceIndexes.emplace(key, index).second)
        return;
    m_graph.devices.push_back(std::move(description));
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
    m_graph.devices[index].hasTopology = !m_graph.devices[index].parts.empty() || !lacksTopology(device);
}

/// Identifies a part by its global id, as the object model does, or else by its device and its number there.
std::string HardwareGraph::keyOf(const AudioPart& part) const
{
    const std::string id = part.globalId().toUtf8();
    if (!id.empty())
        return folded(id);
    const AudioDeviceTopology topology(part.topology());
    const std::optional<std::uint32_t> number = numberOf(part);
    return folded(topology.deviceOwner().toUtf8()) + "#" + (number ? std::to_string(*number) : std::string());
}

std::size_t HardwareGraph::addPart(const AudioPart& part, std::size_t device)
{
    const auto [place, isNew] = m_partIndexes.emplace(keyOf(part), m_parts.size());
    if (!isNew)
        return place->second;
    Graph::Part description;
    description.device = device;
    description.id = part.globalId().toUtf8();
    description.number = numberOf(part);
    description.name = textOrNothing(part.name());
    description.type = guidOrNothing(part.subType());
    m_graph.parts.push_back(std::move(description));
    m_graph.devices[device].parts.push_back(place->second);
    m_parts.push_back(part);
    return place->second;
}

std::size_t HardwareGraph::addConnector(const AudioComponent<IConnector>& connector, std::size_t device)
{
    const std::size_t index = addPart(connector.part(), device);
    if (m_graph.parts[index].isConnector) // it is met on several ways
        return index;
    m_graph.parts[index].isConnector = true;
    m_graph.parts[index].direction = directionOf(connector);
    m_graph.parts[index].isJoined = isJoined(connector);
    return index;
}

/// Adds the join from a connector, and the device on its far side if it is new.
void HardwareGraph::followConnector(std::size_t index)
{
    const AudioComponent<IConnector> connector(m_parts[index].part());
    if (!isThere(connector))
        return;
    std::string farId;
    {
        TaskText text(TaskText::NullText::skipped);
        connector.component()->GetDeviceIdConnectedTo(text.put());
        farId = qor::String(platform::ucs2(text.get())).toUtf8();
    }
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
        addEdge(Graph::Edge::Kind::join, index, peerIndex(peer, farDevice));
    else
        m_graph.edges.push_back({Graph::Edge::Kind::join, index, std::nullopt, farDevice});
}

/// The device with that id, opened when the walk meets it for the first time.
std::size_t HardwareGraph::deviceIndex(const std::string& id)
{
    const auto found = m_deviceIndexes.find(folded(id));
    if (found != m_deviceIndexes.end())
        return found->second;
    const std::size_t index = m_graph.devices.size();
    AudioDevice device(qor::String::fromUtf8(id));
    addDevice(device, describe(device, id));
    return index;
}

/// The part on the far side of a join, even if its device does not list it.
std::size_t HardwareGraph::peerIndex(const AudioComponent<IConnector>& peer, std::size_t farDevice)
{
    const auto known = m_partIndexes.find(keyOf(peer.part()));
    return known == m_partIndexes.end() ? addConnector(peer, farDevice) : known->second;
}

void HardwareGraph::addWires(std::size_t index)
{
    AudioPart part = m_parts[index]; // reading the neighbours changes the object
    const std::size_t device = m_graph.parts[index].device;
    if (!isThere(part) || m_graph.devices[device].kind == Graph::Device::Kind::closed)
        return;
    qor::Array<AudioPart> neighbours;
    const unsigned count = part.outgoingPartsList(neighbours);
    for (unsigned i = 0; i < count; ++i)
    {
        if (isThere(neighbours[i]))
            addEdge(Graph::Edge::Kind::wire, index, addPart(neighbours[i], device));
    }
}

void HardwareGraph::addPaths(std::size_t device)
{
    const AudioDeviceTopology& topology = m_topologies[device];
    const qor::Array<AudioComponent<IConnector>> connectors = topology.connector();
    for (unsigned i = 0; i < connectors.size(); ++i)
    {
        for (unsigned j = i + 1; j < connectors.size(); ++j)
        {
            if (topology.connectorsAreLinked(connectors[i], connectors[j]))
                addEdge(Graph::Edge::Kind::path, addConnector(connectors[i], device),
                        addConnector(connectors[j], device));
        }
    }
}

/// Joins and paths have no direction of their own: they point the way that the sound flows, as far as it is known. Both
/// ends report them; the second report is ignored.
void HardwareGraph::addEdge(Graph::Edge::Kind kind, std::size_t from, std::size_t to)
{
    using Kind = Graph::Edge::Kind;
    const std::optional<Graph::Direction>& direction = m_graph.parts[from].direction;
    const bool entersAtStart = direction == (kind == Kind::path ? Graph::Direction::out : Graph::Direction::in);
    if (kind != Kind::wire && entersAtStart)
        std::swap(from, to);
    const auto isSame = [&](const Graph::Edge& edge)
    {
        const bool isEqual = edge.from == from && edge.to == to;
        const bool isReverse = edge.from == to && edge.to == from;
        return edge.kind == kind && (isEqual || (isReverse && kind != Kind::wire));
    };
    if (std::none_of(m_graph.edges.begin(), m_graph.edges.end(), isSame))
        m_graph.edges.push_back({kind, from, to, std::nullopt});
}
}
