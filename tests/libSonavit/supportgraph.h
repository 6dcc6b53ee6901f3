/// A hardware graph for the tests of parts, components and topologies.
#pragma once

#include "libSonavit/audiodevicetopology.h"
#include "libSonavit/audiopart.h"
#include "tests/support/librarytest.h"

#include <string>
#include <utility>
#include <vector>

namespace support
{
/// A test on a machine with one card. A test may change the members until it calls start(). The card's graph:
///
///     stream (connector) -> volume (subunit) -> mute (subunit) -> jack (connector, "Speakers")
///
/// Nothing of it is referenced, recorded or logged when a test begins.
class GraphTest : public LibraryTest
{
protected:
    using Texts = std::vector<std::string>;

    GraphTest()
    {
        speaker.hardwareMute().hardwareVolume({-96.0f, 0.0f, 1.5f, -12.0f});
        jack = speaker.jackId();
        stream = speaker.streamId();
        mute = card.adapter().topology->subunits[0].id;
        volume = card.adapter().topology->subunits[1].id;
        device = card.adapter().id;
    }

    sim::Simulation& start() { return run(bench.build()); }

    // Each result has one reference that the test owns.
    IPart* part(const std::string& id) { return simulation().part(id); }
    IConnector* connector(const std::string& id) { return simulation().connector(id); }
    ISubunit* subunit(const std::string& id) { return simulation().subunit(id); }
    IDeviceTopology* topology(const std::string& id) { return simulation().topology(id); }

    COMPtr<IPart>::pointer partHandle(const std::string& id) { return part(id); }
    COMPtr<IConnector>::pointer connectorHandle(const std::string& id) { return connector(id); }
    COMPtr<ISubunit>::pointer subunitHandle(const std::string& id) { return subunit(id); }
    COMPtr<IDeviceTopology>::pointer topologyHandle(const std::string& id) { return topology(id); }

    /// A part of the graph as a component of it.
    AudioComponent<IConnector> component(const std::string& id) { return AudioComponent<IConnector>(connector(id)); }

    /// The part in the machine, to be changed before start().
    sim::Part& described(const std::string& id) { return *bench.machine().part(id).part; }

    /// References on all objects that stand for one part, or for the topology of one device.
    long references(const std::string& id)
    {
        const sim::Census census = simulation().census();
        long sum = 0;
        for (const char* const interfaceName : {"IConnector ", "ISubunit ", "IDeviceTopology "})
        {
            const auto found = census.byObject.find(interfaceName + id);
            sum += found == census.byObject.end() ? 0 : found->second;
        }
        return sum;
    }

    /// The operations of the platform's objects since the last call of this function.
    Texts asked()
    {
        const Texts operations = simulation().journal().entries().of("I*").operations();
        simulation().journal().clear();
        return operations;
    }

    sim::MachineBuilder bench;
    sim::CardBuilder card = bench.card("Codec");
    sim::EndpointBuilder speaker = card.speaker();
    std::string jack;
    std::string stream;
    std::string volume;
    std::string mute;
    std::string device;
};

/// Ids of the parts in @p list, in its order.
inline std::vector<std::string> idsOf(const qor::Array<AudioPart>& list)
{
    std::vector<std::string> ids;
    for (unsigned int index = 0; index < list.size(); ++index)
        ids.push_back(list[index].globalId().toUtf8());
    return ids;
}

/// Ids of the components in @p list, in its order.
template<class I>
std::vector<std::string> idsOf(const qor::Array<AudioComponent<I>>& list)
{
    std::vector<std::string> ids;
    for (unsigned int index = 0; index < list.size(); ++index)
        ids.push_back(list[index].id().toUtf8());
    return ids;
}
}
