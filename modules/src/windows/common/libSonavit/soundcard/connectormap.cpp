#include "libSonavit/soundcard.h"

#include "COM/tasktext.h"
#include "libSonavit/audiodeviceendpoint/deviceview.h"
#include "libSonavit/audiodeviceendpoint/inpassing.h"
#include "libSonavit/audiodeviceendpoint/lastuse.h"
#include "libSonavit/audiodevicetopology/passingtopology.h"
#include "libSonavit/audiodevicetopology/topologyreferences.h"
#include "libSonavit/audiodevicetopology/topologyview.h"
#include "libSonavit/audiopart/partview.h"
#include "libSonavit/audiopart/passingcomponent.h"
#include "libSonavit/soundcard/connectorgraph.h"
#include "libSonavit/soundcard/listsearch.h"
#include "libSonavit/soundcard/log.h"

using libSonavit::DeviceView;
using libSonavit::DroppedTexts;
using libSonavit::KeptId;
using libSonavit::KeptTexts;
using libSonavit::PartView;
using libSonavit::PassingComponent;
using libSonavit::PassingTopology;
using libSonavit::TopologyReferences;
using libSonavit::TopologyView;

namespace
{
/// Id of the device on the far side; empty if the platform reports none, or if there is no connector to ask.
qor::String farDeviceId(IConnector* connector)
{
    TaskText id;
    if (connector != nullptr)
        connector->GetDeviceIdConnectedTo(id.put()); // the HRESULT is ignored on purpose: null means that there is none
    return qor::String(platform::ucs2(id.get()));
}

/// The connector on the far side of @p connector, with a reference that the caller owns, or null.
IConnector* farConnector(IConnector* connector)
{
    IConnector* found = nullptr;
    if (connector != nullptr)
        connector->GetConnectedTo(&found); // the HRESULT is ignored on purpose: null means that there is none
    return found;
}
}

void SoundCard::initializeConnectorMap()
{
    SONAVIT_TRACE(soundcardlog, "SoundCard::initializeConnectorMap");
    // Only the map starts anew. The devices on the adapter side stay, because copies of the card share them. A second
    // build treats them as known and omits their connectors, so discovery builds each map once.
    m_connectorMap.clear();
    ConnectorGraph graph(*m_internalDevices);
    registerConnectors(*m_playbackDevices, 0u, graph);
    registerConnectors(*m_recordDevices, 0u, graph);
    graph.addKnownDevices(*m_playbackDevices);
    graph.addKnownDevices(*m_recordDevices);
    for (unsigned int i = 0; i < m_connectorMap.size(); ++i) // the map grows during this pass
        followConnector(i, graph);
    for (unsigned int i = 0; i < m_connectorMap.size(); ++i)
        linkWithinTopology(i);
}

/// @param numRegistered so many devices at the front of the list have all their connectors in the map, so that these
/// need not be searched for
void SoundCard::registerConnectors(const qor::Array<AudioDevice>& deviceList, unsigned int numRegistered,
                                   ConnectorGraph& graph)
{
    SONAVIT_TRACE(soundcardlog, "SoundCard::registerConnectors(const Array<AudioDevice>& deviceList)");
    for (unsigned int i = 0; i < deviceList.size(); ++i)
    {
        const AudioDeviceTopology& topology = DeviceView::topology(deviceList[i]);
        const TopologyReferences references(topology);
        registerConnectors(TopologyView::connectors(topology), i < numRegistered, graph);
    }
}

/// Appends a node for each connector of a topology that is not in the map yet.
/// @param areRegistered whether the map contains all of them
/// @tparam Connector AudioComponent<IConnector>, or a PassingComponent with its texts
template<class Connector>
void SoundCard::registerConnectors(const qor::Array<Connector>& connectors, bool areRegistered, ConnectorGraph& graph)
{
    SONAVIT_TRACE(soundcardlog, "SoundCard::registerConnectors(const AudioDeviceTopology& deviceTopology)");
    if (areRegistered)
        return;
    for (unsigned int i = 0; i < connectors.size(); ++i)
    {
        if (graph.addNode(PartView::id(connectors[i]), m_connectorMap.size()))
            m_connectorMap.emplace(PartView::kept(connectors[i]));
    }
}

/// Follows the connector of a node to its far side: registers a new device there, then records the join itself.
///
/// Required behaviour: the far device is always opened, even if it is known already. Ids count as known only if they
/// are equal in case, whereas devices are compared without regard to case: an endpoint of the card that a connector
/// names in another case becomes an internal device, too. Callers rely on the graphs that follow from this.
void SoundCard::followConnector(unsigned int index, ConnectorGraph& graph)
{
    const qor::String farId = farDeviceId(PartView::component(m_connectorMap[index].connector));
    if (graph.isKnownDevice(farId))
    {
        const AudioDevice::InPassing farDevice(farId); // nothing is done with it
        linkToPeer(index, graph);
        return;
    }
    AudioDevice farDevice(farId);
    if (!graph.isInternalDevice(farDevice.deviceProperty().deviceId))
        registerFarDevice(farDevice, farId, index, graph);
    linkToPeer(index, graph);
}

/// If the far device cannot be opened, registers the topology on this side of the connector instead; the far side stays
/// unknown.
void SoundCard::registerFarDevice(AudioDevice& farDevice, const qor::String& farId, unsigned int index,
                                  ConnectorGraph& graph)
{
    if (farDevice.isInitialized())
    {
        graph.addInternalDevice(farDevice.deviceProperty().deviceId);
        libSonavit::lastuse::append(farDevice, *m_internalDevices);
        graph.addKnownDevice(farId);
        // Required behaviour: the whole list again.
        registerConnectors(*m_internalDevices, graph.numRegisteredInternalDevices, graph);
        graph.numRegisteredInternalDevices = m_internalDevices->size();
        return;
    }
    const PassingTopology<KeptTexts> nearTopology(m_connectorMap[index].connector);
    const qor::String& owner = nearTopology.deviceOwner();
    if (graph.isKnownDevice(owner))
        return;
    registerConnectors(nearTopology.connectors(), false, graph);
    graph.addKnownDevice(owner);
}

/// Records the join to the connector on the far side. Required behaviour: a connector that is not in the map is
/// recorded as 0xFFFFFFFF, so that a walk of the map raises an exception at the gap.
void SoundCard::linkToPeer(unsigned int index, const ConnectorGraph& graph)
{
    IConnector* const peer = farConnector(PartView::component(m_connectorMap[index].connector));
    if (peer == nullptr)
        return;
    const PassingComponent<IConnector, KeptId> peerConnector(peer);
    m_connectorMap[index].links.append(graph.nodeIndex(peerConnector.texts().globalId));
}

/// Records the signal paths between the connector of a node and those of all later nodes, in both directions. Pairs of
/// different devices are tested, too: the platform decides whether a path leaves a device.
void SoundCard::linkWithinTopology(unsigned int index)
{
    ConnectorNode& node = m_connectorMap[index];
    const PassingTopology<DroppedTexts> topology(node.connector);
    const unsigned int numLater = m_connectorMap.size() - index - 1;
    ConnectorNode* const later = m_connectorMap.begin() + index + 1;
    // Then nothing is written during the pass, so no sink can open the log meanwhile.
    const bool isSilent = qor::LogFactory::isSilent(qor::LoggerPriority::LOG_WARNING);
    for (unsigned int i = 0; i < numLater; ++i)
    {
        const AudioComponent<IConnector>& other = later[i].connector;
        if (isSilent ? !topology.nodesAreLinkedSilently(node.connector, other)
                     : !topology.nodesAreLinked(node.connector, other))
            continue;
        node.links.append(index + 1 + i);
        later[i].links.append(index);
    }
}

/// Index of the first node whose connector has the id @p id, or listsearch::notFound.
unsigned int SoundCard::nodeIndex(const qor::String& id) const
{
    return listsearch::indexWhere(m_connectorMap, [&id](const ConnectorNode& node)
                                  { return qor::String::equalNoCase(PartView::id(node.connector), id); });
}
