#include "tests/support/questionshardware.h"

#include <functional>
#include <utility>

namespace support
{
namespace
{
/// A connector or a subunit of the topology.
struct OwnPart
{
    std::string name;
    bench::Held<IPart> part;
};

void noteLocalId(Notes& notes, const std::string& name, IPart& part, std::vector<UINT>& localIds)
{
    UINT id = 0;
    if (notes.add("IPart::GetLocalId", name, part.GetLocalId(&id), id))
        localIds.push_back(id);
}

/// Takes one item of a numbered list, which is a part.
template<class I>
void takePart(Notes& notes, const std::string& call, const std::string& name, const std::string& place, HRESULT result,
              const bench::Held<I>& item, std::vector<OwnPart>& parts)
{
    if (!notes.addObject(call, name, result, item))
        return;
    bench::Held<IPart> part = item.template as<IPart>();
    if (!notes.addObject("QueryInterface(IPart)", place, S_OK, part))
        return;
    const std::string id = idOf(*part.get());
    parts.push_back({id.empty() ? place : id, std::move(part)});
}

std::vector<OwnPart> connectorsOf(Notes& notes, const std::string& name, IDeviceTopology& topology)
{
    std::vector<OwnPart> parts;
    UINT count = 0;
    if (!notes.add("IDeviceTopology::GetConnectorCount", name, topology.GetConnectorCount(&count), count))
        count = 0;
    for (UINT index = 0; index <= believable(count); ++index)
    {
        bench::Held<IConnector> item;
        const HRESULT result = topology.GetConnector(index, item.put());
        const std::string number = answerText(index);
        takePart(notes, callText("IDeviceTopology::GetConnector", number), name, "connector " + number + " of " + name,
                 result, item, parts);
    }
    return parts;
}

std::vector<OwnPart> subunitsOf(Notes& notes, const std::string& name, IDeviceTopology& topology)
{
    std::vector<OwnPart> parts;
    UINT count = 0;
    if (!notes.add("IDeviceTopology::GetSubunitCount", name, topology.GetSubunitCount(&count), count))
        count = 0;
    for (UINT index = 0; index <= believable(count); ++index)
    {
        bench::Held<ISubunit> item;
        const HRESULT result = topology.GetSubunit(index, item.put());
        const std::string number = answerText(index);
        takePart(notes, callText("IDeviceTopology::GetSubunit", number), name, "subunit " + number + " of " + name,
                 result, item, parts);
    }
    return parts;
}

/// Notes the parts of a list. @p elsewhere receives those that have ids.
void askPartsList(Notes& notes, const std::string& name, IPartsList& list, Elsewhere& elsewhere)
{
    UINT count = 0;
    if (!notes.add("IPartsList::GetCount", name, list.GetCount(&count), count))
        count = 0;
    for (UINT index = 0; index <= believable(count); ++index)
    {
        bench::Held<IPart> part;
        const HRESULT result = list.GetPart(index, part.put());
        notes.add(callText("IPartsList::GetPart", answerText(index)), name, result, describedPart(part.get()));
        const std::string id = part.get() == nullptr ? std::string() : idOf(*part.get());
        if (!id.empty())
            elsewhere.parts.push_back({id, std::move(part)});
    }
}

void askSignalPaths(Notes& notes, const std::string& name, IDeviceTopology& topology,
                    const std::vector<OwnPart>& connectors, Elsewhere& elsewhere)
{
    for (const OwnPart& from : connectors)
    {
        for (const OwnPart& to : connectors)
        {
            for (const BOOL rejectMixed : {FALSE, TRUE})
            {
                bench::Held<IPartsList> path;
                const HRESULT result = topology.GetSignalPath(from.part.get(), to.part.get(), rejectMixed, path.put());
                const std::string call =
                    callText("IDeviceTopology::GetSignalPath", from.name, to.name, answerText(rejectMixed));
                if (notes.addObject(call, name, result, path))
                    askPartsList(notes, call + " of " + name, *path.get(), elsewhere);
            }
        }
    }
}

void askPartsById(Notes& notes, const std::string& name, IDeviceTopology& topology, std::vector<UINT> localIds)
{
    UINT unknown = 0xFFFFFFF0;
    for (const UINT id : localIds)
        unknown = id == unknown ? unknown + 1 : unknown;
    localIds.push_back(unknown);
    for (const UINT id : localIds)
    {
        bench::Held<IPart> part;
        const HRESULT result = topology.GetPartById(id, part.put());
        notes.add(callText("IDeviceTopology::GetPartById", answerText(id)), name, result, describedPart(part.get()));
    }
}

void askConnector(Notes& notes, const std::string& name, IConnector& connector, Elsewhere& elsewhere)
{
    ConnectorType type = Unknown_Connector;
    DataFlow flow = In;
    BOOL isConnected = FALSE;
    LPWSTR text = nullptr;
    bench::Held<IConnector> peer;
    notes.add("IConnector::GetType", name, connector.GetType(&type), type);
    notes.add("IConnector::GetDataFlow", name, connector.GetDataFlow(&flow), flow);
    notes.add("IConnector::IsConnected", name, connector.IsConnected(&isConnected), isConnected);
    const HRESULT connectorNamed = connector.GetConnectorIdConnectedTo(&text);
    notes.addText("IConnector::GetConnectorIdConnectedTo", name, connectorNamed, text);
    text = nullptr;
    const HRESULT deviceNamed = connector.GetDeviceIdConnectedTo(&text);
    if (const auto id = notes.addText("IConnector::GetDeviceIdConnectedTo", name, deviceNamed, text))
        elsewhere.deviceIds.push_back(*id);
    const HRESULT connected = connector.GetConnectedTo(peer.put());
    bench::Held<IPart> part = peer.get() == nullptr ? bench::Held<IPart>() : peer.as<IPart>();
    notes.add("IConnector::GetConnectedTo", name, connected, describedPart(part.get()));
    const std::string id = part.get() == nullptr ? std::string() : idOf(*part.get());
    if (!id.empty())
        elsewhere.parts.push_back({id, std::move(part)});
}

using Neighbours = HRESULT (STDMETHODCALLTYPE IPart::*)(IPartsList**);

void askNeighbours(Notes& notes, const char* call, const std::string& name, IPart& part, Neighbours neighbours,
                   Elsewhere& elsewhere)
{
    bench::Held<IPartsList> list;
    const HRESULT result = (part.*neighbours)(list.put());
    if (notes.addObject(call, name, result, list))
        askPartsList(notes, call + (" of " + name), *list.get(), elsewhere);
}

void askSides(Notes& notes, const std::string& name, const bench::Held<IPart>& part, Elsewhere& elsewhere)
{
    askNeighbours(notes, "IPart::EnumPartsIncoming", name, *part.get(), &IPart::EnumPartsIncoming, elsewhere);
    askNeighbours(notes, "IPart::EnumPartsOutgoing", name, *part.get(), &IPart::EnumPartsOutgoing, elsewhere);
    const bench::Held<IConnector> connector = part.as<IConnector>();
    const bench::Held<ISubunit> subunit = part.as<ISubunit>();
    notes.addObject("QueryInterface(ISubunit)", name, S_OK, subunit);
    if (notes.addObject("QueryInterface(IConnector)", name, S_OK, connector))
        askConnector(notes, name, *connector.get(), elsewhere);
}

/// The topology of a part is described by its device.
void askTopologyOf(Notes& notes, const std::string& name, IPart& part)
{
    bench::Held<IDeviceTopology> topology;
    const HRESULT result = part.GetTopologyObject(topology.put());
    if (!notes.addObject("IPart::GetTopologyObject", name, result, topology))
        return;
    LPWSTR id = nullptr;
    const HRESULT identified = topology->GetDeviceId(&id);
    notes.addText("IDeviceTopology::GetDeviceId", "topology of part " + name, identified, id);
}
}

void askTopology(Notes& notes, const std::string& name, IDeviceTopology& topology, Elsewhere& elsewhere)
{
    LPWSTR deviceId = nullptr;
    const HRESULT identified = topology.GetDeviceId(&deviceId);
    notes.addText("IDeviceTopology::GetDeviceId", name, identified, deviceId);
    std::vector<UINT> localIds;
    const std::vector<OwnPart> connectors = connectorsOf(notes, name, topology);
    const std::vector<OwnPart> subunits = subunitsOf(notes, name, topology);
    for (const auto* const list : {&connectors, &subunits})
    {
        for (const OwnPart& own : *list)
        {
            if (!notes.isNew("part " + own.name))
                continue;
            noteLocalId(notes, own.name, *own.part.get(), localIds);
            askPart(notes, own.name, own.part, elsewhere);
        }
    }
    askPartsById(notes, name, topology, localIds);
    askSignalPaths(notes, name, topology, connectors, elsewhere);
}

void askPart(Notes& notes, const std::string& name, const bench::Held<IPart>& part, Elsewhere& elsewhere)
{
    LPWSTR text = nullptr;
    const HRESULT identified = part->GetGlobalId(&text);
    notes.addText("IPart::GetGlobalId", name, identified, text);
    text = nullptr;
    const HRESULT named = part->GetName(&text);
    notes.addText("IPart::GetName", name, named, text);
    PartType type = Connector;
    GUID subType = {};
    notes.add("IPart::GetPartType", name, part->GetPartType(&type), type);
    notes.add("IPart::GetSubType", name, part->GetSubType(&subType), subType);
    askTopologyOf(notes, name, *part.get());
    askControls(notes, name, *part.get());
    askSides(notes, name, part, elsewhere);
}

std::string idOf(IPart& part)
{
    LPWSTR id = nullptr;
    if (FAILED(part.GetGlobalId(&id)) || id == nullptr)
        return {};
    return bench::taken(id);
}

std::string describedPart(IPart* part)
{
    if (part == nullptr)
        return "null";
    const std::string id = idOf(*part);
    UINT localId = 0;
    if (!id.empty())
        return id;
    return SUCCEEDED(part->GetLocalId(&localId)) ? "local id " + answerText(localId) : "a part";
}
}
