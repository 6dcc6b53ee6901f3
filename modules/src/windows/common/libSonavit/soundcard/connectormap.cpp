#include "libSonavit/soundcard.h"

#include "COM/tasktext.h"
#include "libSonavit/soundcard/listsearch.h"
#include "libSonavit/soundcard/log.h"

namespace
{
void appendIds(const qor::Array<AudioDevice>& devices, qor::Array<qor::String>& ids)
{
    for (unsigned int i = 0; i < devices.size(); ++i)
        ids.append(devices[i].deviceProperty().deviceId);
}

/// Id of the device on the far side; empty where the platform gives none, or has given no connector to ask.
qor::String farDeviceId(const COMPtr<IConnector>::pointer& connector)
{
    TaskText id;
    if (connector.get() != nullptr)
        connector->GetDeviceIdConnectedTo(id.put()); // the pointer decides
    return qor::String(platform::ucs2(id.get()));
}

/// The connector on the far side, or null.
IConnector* farConnector(const COMPtr<IConnector>::pointer& connector)
{
    IConnector* peer = nullptr;
    if (connector.get() != nullptr)
        connector->GetConnectedTo(&peer); // the pointer decides
    return peer;
}
}

void SoundCard::initializeConnectorMap()
{
    SONAVIT_TRACE(soundcardlog, "SoundCard::initializeConnectorMap");
    // Only the map starts anew. The devices on the adapter side stay, as copies of the card share them; a second build
    // takes them for known and leaves their connectors out, so discovery builds each map once.
    m_connectorMap.clear();
    registerConnectors(*m_playbackDevices);
    registerConnectors(*m_recordDevices);
    qor::Array<qor::String> knownDevices;
    appendIds(*m_playbackDevices, knownDevices);
    appendIds(*m_recordDevices, knownDevices);
    for (unsigned int i = 0; i < m_connectorMap.size(); ++i) // the map grows meanwhile
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

/// Looks behind the connector of a node: a new device there joins the card, and the join itself is recorded. The device
/// is opened in any case, before it is known whether it is new. Ids count as known only when they are spelled alike,
/// devices without regard to case: an endpoint of the card that a connector names in another case becomes an internal
/// device as well, and what follows from that is in the graphs that callers know.
void SoundCard::followConnector(unsigned int index, qor::Array<qor::String>& knownDevices)
{
    const qor::String farId = farDeviceId(m_connectorMap[index].connector.component());
    const AudioDevice farDevice(farId);
    if (!knownDevices.contains(farId) && !listsearch::isHit(listsearch::indexOf(*m_internalDevices, farDevice)))
        registerFarDevice(farDevice, farId, index, knownDevices);
    linkToPeer(index);
}

/// Where the far device cannot be opened, this side of the connector is registered instead, and the far side stays
/// unknown.
void SoundCard::registerFarDevice(const AudioDevice& farDevice, const qor::String& farId, unsigned int index,
                                  qor::Array<qor::String>& knownDevices)
{
    if (farDevice.isInitialized())
    {
        m_internalDevices->append(farDevice);
        knownDevices.append(farId);
        registerConnectors(*m_internalDevices); // the whole list again: what is in the map already is passed over
        return;
    }
    const AudioDeviceTopology nearTopology(m_connectorMap[index].connector);
    const qor::String owner = nearTopology.deviceOwner();
    if (knownDevices.contains(owner))
        return;
    registerConnectors(nearTopology);
    knownDevices.append(owner);
}

/// Records the join to the connector on the far side. One that is not in the map is recorded as 0xFFFFFFFF, unfiltered:
/// whoever walks the map is to notice that it is incomplete there.
void SoundCard::linkToPeer(unsigned int index)
{
    IConnector* const peer = farConnector(m_connectorMap[index].connector.component());
    if (peer == nullptr)
        return;
    const AudioComponent<IConnector> peerConnector(peer);
    m_connectorMap[index].links.append(nodeIndex(peerConnector));
}

/// Records the signal paths between the connector of a node and those of all later nodes, in both directions. Pairs
/// across two devices are tested like the others: whether a path leaves a device is for the platform to say.
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
