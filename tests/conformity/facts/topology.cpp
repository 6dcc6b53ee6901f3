// Hardware graphs: devices, connectors, signal paths.
#include "tests/conformity/fact.h"
#include "tests/conformity/results.h"
#include "tests/conformity/system.h"

#include <algorithm>

namespace conformity
{
namespace
{
const char* const topologies = "Microsoft's documentation of device topologies";

using Connectors = std::vector<Held<IConnector>>;

Connectors connectorsOf(IDeviceTopology& topology)
{
    Connectors result;
    UINT count = 0;
    topology.GetConnectorCount(&count);
    for (UINT index = 0; index < count; ++index)
    {
        Held<IConnector> connector;
        if (SUCCEEDED(topology.GetConnector(index, connector.put())) && connector)
            result.push_back(std::move(connector));
    }
    return result;
}

void eachEndpointTopology(System& system, const std::function<void(const EndpointInSystem&, IDeviceTopology&)>& action)
{
    system.eachActive(
        [&](const EndpointInSystem& endpoint)
        {
            if (const Held<IDeviceTopology> topology = activated<IDeviceTopology>(*endpoint.device.get()))
                action(endpoint, *topology.get());
        });
}

Finding topologyKnowsItsDevice(System& system)
{
    Observation observation;
    eachEndpointTopology(system,
                         [&](const EndpointInSystem& endpoint, IDeviceTopology& topology)
                         {
                             const std::string id = textOf(topology, &IDeviceTopology::GetDeviceId);
                             observation.see(id == endpoint.id, id == endpoint.id ? "the device's id" : id,
                                             endpoint.name);
                         });
    return observation.finding("no endpoint with a topology");
}

Finding endpointsHaveOneConnector(System& system)
{
    Observation observation;
    eachEndpointTopology(system,
                         [&](const EndpointInSystem& endpoint, IDeviceTopology& topology)
                         {
                             UINT connectors = 0;
                             UINT subunits = 0;
                             topology.GetConnectorCount(&connectors);
                             topology.GetSubunitCount(&subunits);
                             const std::string found =
                                 std::to_string(connectors) + " connector, " + std::to_string(subunits) + " subunits";
                             observation.see(found == "1 connector, 0 subunits", found, endpoint.name);
                         });
    return observation.finding("no endpoint with a topology");
}

Finding connectorPastTheEnd(System& system)
{
    Observation observation;
    eachEndpointTopology(system,
                         [&](const EndpointInSystem& endpoint, IDeviceTopology& topology)
                         {
                             UINT count = 0;
                             topology.GetConnectorCount(&count);
                             Held<IConnector> connector;
                             const HRESULT result = topology.GetConnector(count, connector.put());
                             observation.see(result == E_INVALIDARG, resultName(result), endpoint.name);
                         });
    return observation.finding("no endpoint with a topology");
}

/// The joined pairs of connectors that endpoints and adapters show.
void eachJoin(System& system, const std::function<void(IConnector& here, IConnector& there)>& action)
{
    const auto visit = [&](IDeviceTopology& topology)
    {
        for (const Held<IConnector>& connector : connectorsOf(topology))
        {
            Held<IConnector> peer;
            if (SUCCEEDED(connector->GetConnectedTo(peer.put())) && peer)
                action(*connector.get(), *peer.get());
        }
    };
    eachEndpointTopology(system, [&](const EndpointInSystem&, IDeviceTopology& topology) { visit(topology); });
    system.eachAdapter([&](const std::string&, IMMDevice&, IDeviceTopology& topology) { visit(topology); });
}

std::string idOf(IConnector& connector)
{
    Held<IPart> part;
    connector.QueryInterface(sim::InterfaceTraits<IPart>::iid(), part.putVoid());
    return part ? textOf(*part.get(), &IPart::GetGlobalId) : std::string();
}

Finding endsHaveOneType(System& system)
{
    Observation observation;
    eachJoin(system,
             [&](IConnector& here, IConnector& there)
             {
                 ConnectorType one = Unknown_Connector;
                 ConnectorType other = Unknown_Connector;
                 here.GetType(&one);
                 there.GetType(&other);
                 const std::string found =
                     one == other ? "the same" : std::to_string(one) + " and " + std::to_string(other);
                 observation.see(one == other, found, idOf(here));
             });
    return observation.finding("no connection");
}

Finding endsFlowOppositeWays(System& system)
{
    Observation observation;
    eachJoin(system,
             [&](IConnector& here, IConnector& there)
             {
                 DataFlow one = In;
                 DataFlow other = In;
                 here.GetDataFlow(&one);
                 there.GetDataFlow(&other);
                 observation.see(one != other, one != other ? "one in, one out" : "the same", idOf(here));
             });
    return observation.finding("no connection");
}

Finding idsOfPeersAgree(System& system)
{
    Observation observation;
    eachJoin(system,
             [&](IConnector& here, IConnector& there)
             {
                 const std::string told = textOf(here, &IConnector::GetConnectorIdConnectedTo);
                 const bool isRight = told == idOf(there);
                 observation.see(isRight, isRight ? "the peer's id" : told, idOf(here));
             });
    return observation.finding("no connection");
}

Finding connectedIsReported(System& system)
{
    Observation observation;
    eachJoin(system,
             [&](IConnector& here, IConnector&)
             {
                 BOOL isConnected = FALSE;
                 here.IsConnected(&isConnected);
                 observation.see(isConnected != FALSE, isConnected != FALSE ? "connected" : "not connected",
                                 idOf(here));
             });
    return observation.finding("no connection");
}

/// Calls @p action with the signal path between each two connectors of an adapter that has one.
void eachPath(System& system, const std::function<void(IPart& from, IPart& to, IPartsList& path)>& action)
{
    system.eachAdapter(
        [&](const std::string&, IMMDevice&, IDeviceTopology& topology)
        {
            const Connectors connectors = connectorsOf(topology);
            for (const Held<IConnector>& first : connectors)
            {
                for (const Held<IConnector>& second : connectors)
                {
                    const Held<IPart> from = first.as<IPart>();
                    const Held<IPart> to = second.as<IPart>();
                    Held<IPartsList> path;
                    if (&first != &second && from && to &&
                        SUCCEEDED(topology.GetSignalPath(from.get(), to.get(), FALSE, path.put())) && path)
                        action(*from.get(), *to.get(), *path.get());
                }
            }
        });
}

std::string itemOf(IPartsList& list, UINT index)
{
    Held<IPart> part;
    list.GetPart(index, part.put());
    return part ? textOf(*part.get(), &IPart::GetGlobalId) : std::string();
}

Finding pathsRunBackwards(System& system)
{
    Observation observation;
    eachPath(system,
             [&](IPart& from, IPart& to, IPartsList& path)
             {
                 UINT count = 0;
                 path.GetCount(&count);
                 const std::string start = textOf(from, &IPart::GetGlobalId);
                 const bool isRight = count > 1 && itemOf(path, 0) == textOf(to, &IPart::GetGlobalId) &&
                                      itemOf(path, count - 1) == start;
                 observation.see(isRight, isRight ? "from the end to the beginning" : "in another order", start);
             });
    return observation.finding("no signal path");
}
}

Facts topologyFacts()
{
    return {
        {"An endpoint's topology reports the endpoint's id", "the device's id",
         "Microsoft's documentation of IDeviceTopology::GetDeviceId", topologyKnowsItsDevice},
        {"An endpoint's topology has one connector and no subunit", "1 connector, 0 subunits", topologies,
         endpointsHaveOneConnector},
        {"A connector past the end", "E_INVALIDARG", "Microsoft's documentation of IDeviceTopology::GetConnector",
         connectorPastTheEnd},
        {"Both ends of a connection have one type", "the same", topologies, endsHaveOneType},
        {"Of the two ends of a connection one is an input and one an output", "one in, one out", topologies,
         endsFlowOppositeWays},
        {"A connector that leads somewhere is connected", "connected",
         "Microsoft's documentation of IConnector::IsConnected", connectedIsReported},
        {"A connector reports the id of its peer", "the peer's id",
         "Microsoft's documentation of IConnector::GetConnectorIdConnectedTo", idsOfPeersAgree},
        {"A signal path lists its end first and its beginning last", "from the end to the beginning",
         "Microsoft's documentation of IDeviceTopology::GetSignalPath", pathsRunBackwards},
    };
}
}
