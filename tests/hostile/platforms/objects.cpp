// Objects other than those that are asked for, and objects that deny what they are.
#include "simulator/core/interfaces.h"
#include "tests/hostile/platforms/platform.h"

#include <array>

namespace hostile
{
namespace
{
/// Adopts a reference of the machine.
template<class I>
I& keep(References& references, I* object)
{
    references.emplace_back(object, [](IUnknown* each) { each->Release(); });
    return *object;
}

/// Each call of @p operation gives the object that @p find gets from the machine.
template<class Find>
Platform gives(const char* name, const char* operation, Find find)
{
    const auto lie = [operation, find](sim::Simulation& simulation)
    {
        References references;
        simulation.faults().lie(operation, sim::Lie::ofObject(keep(references, find(simulation))));
        return references;
    };
    return {name, {}, lie, {}};
}

/// Each query for @p iid is answered as @p plan has it.
Platform answersQueries(const std::string& name, const std::string& interfaceName, const char* iid,
                        sim::PlannedFault (*plan)(sim::FaultPlan& faults, const std::string& operation))
{
    const auto lie = [operation = interfaceName + "::QueryInterface", iid, plan](sim::Simulation& simulation)
    {
        plan(simulation.faults(), operation).with(iid);
        return References();
    };
    return {name, {}, lie, {}};
}

sim::PlannedFault deny(sim::FaultPlan& faults, const std::string& operation)
{
    return faults.fail(operation, E_NOINTERFACE);
}

sim::PlannedFault giveNull(sim::FaultPlan& faults, const std::string& operation)
{
    return faults.succeedWithNull(operation);
}

/// A query for a part or an endpoint gives another object's.
Platform answersQueriesWithOther(const char* name, void (*plan)(References& references, sim::Simulation& simulation))
{
    const auto lie = [plan](sim::Simulation& simulation)
    {
        References references;
        plan(references, simulation);
        return references;
    };
    return {name, {}, lie, {}};
}

void connectorsAreAnotherPart(References& references, sim::Simulation& simulation)
{
    IPart& part = keep(references, simulation.part(honest().mute));
    simulation.faults().lie("IConnector::QueryInterface", sim::Lie::ofObject(part)).with("IPart");
}

void subunitsAreAnotherPart(References& references, sim::Simulation& simulation)
{
    IPart& part = keep(references, simulation.part(honest().speakerJack));
    simulation.faults().lie("ISubunit::QueryInterface", sim::Lie::ofObject(part)).with("IPart");
}

void devicesAreAnotherEndpoint(References& references, sim::Simulation& simulation)
{
    IMMDevice& device = keep(references, simulation.device(honest().microphone));
    void* endpoint = nullptr;
    device.QueryInterface(sim::InterfaceTraits<IMMEndpoint>::iid(), &endpoint);
    IMMEndpoint& other = keep(references, static_cast<IMMEndpoint*>(endpoint));
    simulation.faults().lie("IMMDevice::QueryInterface", sim::Lie::ofObject(other)).with("IMMEndpoint");
}

/// The neighbours of the speaker's jack.
IPartsList* neighbours(sim::Simulation& simulation)
{
    IPart* const jack = simulation.part(honest().speakerJack);
    IPartsList* list = nullptr;
    jack->EnumPartsIncoming(&list);
    jack->Release();
    return list;
}
}

std::vector<Platform> platformsThatLieInObjects()
{
    std::vector<Platform> platforms = {
        gives("OneEndpointForEachPlace", "IMMDeviceCollection::Item",
              [](sim::Simulation& simulation) { return simulation.device(honest().speaker); }),
        gives("AnAdapterForEachEndpoint", "IMMDeviceCollection::Item",
              [](sim::Simulation& simulation) { return simulation.device(honest().codec); }),
        gives("AnAdapterAsTheDefault", "IMMDeviceEnumerator::GetDefaultAudioEndpoint",
              [](sim::Simulation& simulation) { return simulation.device(honest().codec); }),
        gives("OneDeviceForEachId", "IMMDeviceEnumerator::GetDevice",
              [](sim::Simulation& simulation) { return simulation.device(honest().microphone); }),
        gives("OneConnectorForEachIndex", "IDeviceTopology::GetConnector",
              [](sim::Simulation& simulation) { return simulation.connector(honest().speakerConnector); }),
        gives("OneSubunitForEachIndex", "IDeviceTopology::GetSubunit",
              [](sim::Simulation& simulation) { return simulation.subunit(honest().volume); }),
        gives("OneConnectorOnEachFarSide", "IConnector::GetConnectedTo",
              [](sim::Simulation& simulation) { return simulation.connector(honest().speakerStream); }),
        gives("OnePartForEachNeighbour", "IPartsList::GetPart",
              [](sim::Simulation& simulation) { return simulation.part(honest().volume); }),
        gives("TheNeighboursOfAnotherPart", "IPart::EnumPartsIncoming", &neighbours),
        gives("TheTopologyOfAnotherDevice", "IPart::GetTopologyObject",
              [](sim::Simulation& simulation) { return simulation.topology(honest().microphone); }),
        answersQueriesWithOther("ConnectorsThatAreAnotherPart", &connectorsAreAnotherPart),
        answersQueriesWithOther("SubunitsThatAreAnotherPart", &subunitsAreAnotherPart),
        answersQueriesWithOther("DevicesThatAreAnotherEndpoint", &devicesAreAnotherEndpoint),
    };
    for (const auto& [name, interfaceName, iid] : {std::array<const char*, 3>{"Connectors", "IConnector", "IPart"},
                                                   {"Subunits", "ISubunit", "IPart"},
                                                   {"Endpoints", "IMMDevice", "IMMEndpoint"}})
    {
        platforms.push_back(answersQueries(std::string(name) + "ThatDenyWhatTheyAre", interfaceName, iid, &deny));
        platforms.push_back(answersQueries(std::string(name) + "ThatAreNull", interfaceName, iid, &giveNull));
    }
    return platforms;
}
}
