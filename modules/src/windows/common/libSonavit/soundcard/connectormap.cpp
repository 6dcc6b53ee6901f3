#include "libSonavit/soundcard.h"

#include "COM/tasktext.h"
#include "libSonavit/soundcard/listsearch.h"
#include "libSonavit/soundcard/log.h"
#include "libSonavit/soundcard/pendingreference.h"

namespace
{
void appendIds(const qor::Array<AudioDevice>& devices, qor::Array<qor::String>& ids)
{
    for (unsigned int i = 0; i < devices.size(); ++i)
        ids.append(devices[i].deviceProperty().deviceId);
}

/// Id of the device on the far side; empty if the platform reports none, or if there is no connector to ask.
qor::String farDeviceId(const COMPtr<IConnector>::pointer& connector)
{
    TaskText id;
    if (connector.get() != nullptr)
        connector->GetDeviceIdConnectedTo(id.put()); // the HRESULT is ignored on purpose: null means that there is none
    return qor::String(platform::ucs2(id.get()));
}

/// Stores the connector on the far side of @p component in @p peer, or nothing.
void findPeer(const AudioComponent<IConnector>& component, PendingReference<IConnector>& peer)
{
    const COMPtr<IConnector>::pointer connector = component.component();
    IConnector* found = nullptr;
    if (connector.get() != nullptr)
        connector->GetConnectedTo(&found); // the HRESULT is ignored on purpose: null means that there is none
    peer.adopt(found);
}
}

void SoundCard::initializeConnectorMap()
{
    SONAVIT_TRACE(soundcardlog, "SoundCard::initializeConnectorMap");
    // Only the map starts anew. The devices on the adapter side stay, because copies of the card share them. A second
    // build treats them as known and omits their connectors, so discovery builds each map once.
    m_connectorMap.clear();
    registerConnectors(*m_playbackDevices);
    registerConnectors(*m_recordDevices);
    qor::Array<qor::String> knownDevices;
    appendIds(*m_playbackDevices, knownDevices);
    appendIds(*m_recordDevices, knownDevices);
    for (unsigned int i = 0; i < m_connectorMap.size(); ++i) // the map grows during this pass
        followConnector(i, knownDevices);
    for (unsigned int i = 0; i < m_connectorMap.size(); ++i)
        linkWithinTopology(i);
}

void SoundCard::registerConnectors(const qor::Array<AudioDevice>& deviceList)
{
    SONAVIT_TRACE(soundcardlog, "SoundCard::registerConnectors(const Array<AudioDevice>& deviceList)");
    for (unsigned int i = 0; i < deviceList.size(); ++i)
    {
        AudioDeviceTopology deviceTopology;
        deviceList[i].deviceTopology(deviceTopology);
        registerConnectors(deviceTopology);
    }
}

void SoundCard::registerConnectors(const AudioDeviceTopology& deviceTopology)
{
    SONAVIT_TRACE(soundcardlog, "SoundCard::registerConnectors(const AudioDeviceTopology& deviceTopology)");
    const qor::Array<AudioComponent<IConnector>> connectors = deviceTopology.connector();
    for (unsigned int i = 0; i < connectors.size(); ++i)
    {
        if (!listsearch::isHit(nodeIndex(connectors[i])))
            m_connectorMap.append(ConnectorNode{connectors[i], qor::Array<unsigned int>()});
    }
}

/// Follows the connector of a node to its far side: registers a new device there, then records the join itself.
///
/// Required behaviour: the far device is always opened, even if it is known already. Ids count as known only if they
/// are equal in case, whereas devices are compared without regard to case: an endpoint of the card that a connector
/// names in another case becomes an internal device, too. Callers rely on the graphs that follow from this.
void SoundCard::followConnector(unsigned int index, qor::Array<qor::String>& knownDevices)
{
    qor::String farId;
    {
        const COMPtr<IConnector>::pointer nearSide = m_connectorMap[index].connector.component();
        farId = farDeviceId(nearSide);
    }
    const AudioDevice farDevice(farId);
    if (!knownDevices.contains(farId) && !listsearch::isHit(listsearch::indexOf(*m_internalDevices, farDevice)))
        registerFarDevice(farDevice, farId, index, knownDevices);
    linkToPeer(index);
}

/// If the far device cannot be opened, registers the topology on this side of the connector instead; the far side stays
/// unknown.
void SoundCard::registerFarDevice(const AudioDevice& farDevice, const qor::String& farId, unsigned int index,
                                  qor::Array<qor::String>& knownDevices)
{
    if (farDevice.isInitialized())
    {
        m_internalDevices->append(farDevice);
        knownDevices.append(farId);
        registerConnectors(*m_internalDevices); // the whole list again; connectors in the map are skipped
        return;
    }
    const AudioDeviceTopology nearTopology(m_connectorMap[index].connector);
    const qor::String owner = nearTopology.deviceOwner();
    if (knownDevices.contains(owner))
        return;
    registerConnectors(nearTopology);
    knownDevices.append(owner);
}

/// Records the join to the connector on the far side. Required behaviour: a connector that is not in the map is
/// recorded as 0xFFFFFFFF, so that a walk of the map raises an exception at the gap.
void SoundCard::linkToPeer(unsigned int index)
{
    PendingReference<IConnector> peer;
    findPeer(m_connectorMap[index].connector, peer);
    if (peer.get() == nullptr)
        return;
    const AudioComponent<IConnector> peerConnector(peer.take());
    m_connectorMap[index].links.append(nodeIndex(peerConnector));
}

/// Records the signal paths between the connector of a node and those of all later nodes, in both directions. Pairs of
/// different devices are tested, too: the platform decides whether a path leaves a device.
void SoundCard::linkWithinTopology(unsigned int index)
{
    const AudioDeviceTopology topology(m_connectorMap[index].connector);
    for (unsigned int other = index + 1; other < m_connectorMap.size(); ++other)
    {
        if (!topology.connectorsAreLinked(m_connectorMap[index].connector, m_connectorMap[other].connector))
            continue;
        m_connectorMap[index].links.append(other);
        m_connectorMap[other].links.append(index);
    }
}

/// Index of the first node whose connector equals @p connector, or listsearch::notFound.
unsigned int SoundCard::nodeIndex(const AudioComponent<IConnector>& connector) const
{
    return listsearch::indexWhere(m_connectorMap,
                                  [&connector](const ConnectorNode& node) { return node.connector == connector; });
}
