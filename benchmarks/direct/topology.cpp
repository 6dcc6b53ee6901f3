#include "topology.h"

#include "text.h"

namespace direct
{
namespace
{
template<class I>
void addComponent(std::vector<Component<I>>& components, HRESULT result, ComPtr<I> component)
{
    if (SUCCEEDED(result))
        components.push_back(readComponent(std::move(component)));
}

void readConnectors(Topology& result)
{
    UINT count = 0;
    result.topology->GetConnectorCount(&count);
    result.connectors.reserve(count);
    for (UINT index = 0; index < count; ++index)
    {
        IConnector* connector = nullptr;
        const HRESULT answer = result.topology->GetConnector(index, &connector);
        addComponent(result.connectors, answer, ComPtr<IConnector>::adopt(connector));
    }
}

void readSubunits(Topology& result)
{
    UINT count = 0;
    result.topology->GetSubunitCount(&count);
    result.subunits.reserve(count);
    for (UINT index = 0; index < count; ++index)
    {
        ISubunit* subunit = nullptr;
        const HRESULT answer = result.topology->GetSubunit(index, &subunit);
        addComponent(result.subunits, answer, ComPtr<ISubunit>::adopt(subunit));
    }
}

bool hasSignalPath(const Topology& topology, const Part& from, const Part& to)
{
    ComPtr<IPartsList> path;
    return SUCCEEDED(topology.topology->GetSignalPath(from.part.get(), to.part.get(), TRUE, path.put()));
}
}

Part readPart(ComPtr<IPart> part)
{
    Part result;
    if (!part)
        return result;
    part->GetSubType(&result.subType);
    {
        TaskText id;
        part->GetGlobalId(id.put());
        result.globalId = copyOf(id.get());
    }
    {
        OptionalTaskText name;
        part->GetName(name.put());
        result.name = copyOf(name.get());
    }
    result.part = std::move(part);
    return result;
}

Topology readTopology(ComPtr<IDeviceTopology> topology)
{
    Topology result;
    if (!topology)
        return result;
    {
        OptionalTaskText id;
        topology->GetDeviceId(id.put());
        result.deviceId = copyOf(id.get());
    }
    result.topology = std::move(topology);
    readConnectors(result);
    readSubunits(result);
    return result;
}

Topology readTopologyOf(const Component<IConnector>& connector)
{
    ComPtr<IDeviceTopology> topology;
    if (connector.part.part)
        connector.part.part->GetTopologyObject(topology.put());
    return readTopology(std::move(topology));
}

std::vector<Part> readNeighbours(const Part& part, Neighbours side)
{
    std::vector<Part> result;
    ComPtr<IPartsList> list;
    if (!part.part || FAILED((part.part.get()->*side)(list.put())) || !list)
        return result;
    UINT count = 0;
    list->GetCount(&count);
    result.reserve(count);
    for (UINT index = 0; index < count; ++index)
    {
        ComPtr<IPart> neighbour;
        if (SUCCEEDED(list->GetPart(index, neighbour.put())))
            result.push_back(readPart(std::move(neighbour)));
    }
    return result;
}

bool areLinked(const Topology& topology, const Part& from, const Part& to)
{
    if (!topology.topology || !from.part || !to.part)
        return false;
    return hasSignalPath(topology, from, to) || hasSignalPath(topology, to, from);
}
}
