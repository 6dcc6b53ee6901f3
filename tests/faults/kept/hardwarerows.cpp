// What is kept by operations of the hardware graph.
#include "libSonavit/soundcard.h"
#include "tests/faults/kept/row.h"

#include <memory>

namespace faults::kept
{
namespace
{
typedef qor::Array<AudioDeviceTopology> Topologies;

/// Those of the devices on the adapter side.
std::shared_ptr<Topologies> adapters()
{
    auto topologies = std::make_shared<Topologies>();
    const qor::Array<SoundCard> cards = SoundCard::enumerateSystemSoundDevices();
    for (unsigned int i = 0; i < cards.size(); ++i)
    {
        for (unsigned int k = 0; k < cards[i].m_internalDevices->size(); ++k)
            topologies->append((*cards[i].m_internalDevices)[k].m_topology);
    }
    return topologies;
}

template<class Ask>
std::function<std::function<void()>(sim::Simulation&)> ofEachTopology(Ask ask)
{
    return [ask](sim::Simulation&)
    {
        return [ask, topologies = adapters()]
        {
            for (unsigned int i = 0; i < topologies->size(); ++i)
                ask((*topologies)[i]);
        };
    };
}

template<class I>
void walk(const qor::Array<AudioComponent<I>>& components)
{
    for (unsigned int i = 0; i < components.size(); ++i)
    {
        AudioComponent<I> component = components[i];
        qor::Array<AudioPart> neighbours;
        component.incomingPartsList(neighbours);
        component.outgoingPartsList(neighbours);
        AudioPart part = component.part();
        part.incomingPartsList(neighbours);
        part.outgoingPartsList(neighbours);
    }
}

void walkParts(AudioDeviceTopology& topology)
{
    walk(topology.connector());
    walk(topology.subunit());
}

void readTopology(AudioDeviceTopology& topology)
{
    AudioDeviceTopology again(topology.topology());
    AudioDeviceTopology copy(again);
    copy = topology;
    const qor::Array<AudioComponent<IConnector>> connectors = copy.connector();
    const qor::Array<AudioComponent<ISubunit>> subunits = copy.subunit();
    for (unsigned int i = 0; i < connectors.size(); ++i)
    {
        const AudioDeviceTopology other(connectors[i]);
        copy.connectorsAreLinked(connectors[0], connectors[i]);
        connectors[i].deviceOwner();
    }
    for (unsigned int i = 0; i < subunits.size(); ++i)
        subunits[i].part().topology();
}
}

std::vector<Row> hardwareRows()
{
    return {{"AudioPart::incomingPartsList, outgoingPartsList", {Kind::partsLists}, ofEachTopology(walkParts)},
            {"AudioDeviceTopology", {}, ofEachTopology(readTopology)}};
}
}
