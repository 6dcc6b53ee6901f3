#include "libSonavit/soundcard.h"

#include "libSonavit/soundcardlog.h"

namespace
{
void appendIds(const qor::Array<AudioDevice>& devices, qor::Array<qor::String>& ids)
{
    for (unsigned int i = 0; i < devices.size(); ++i)
        ids.append(devices[i].deviceProperty().deviceId);
}

/// Id of the device on the far side; empty where the platform gives none.
qor::String farDeviceId(const AudioComponent<IConnector>& connector)
{
    LPWSTR text = nullptr;
    connector.component()->GetDeviceIdConnectedTo(&text); // the pointer decides
    const qor::String id(platform::ucs2(text));
    CoTaskMemFree(text);
    return id;
}

bool holds(const qor::Array<AudioDevice>& devices, const AudioDevice& device)
{
    for (unsigned int i = 0; i < devices.size(); ++i)
    {
        if (devices[i] == device)
            return true;
    }
    return false;
}
}

void SoundCard::initializeConnectorMap()
{
    SONAVIT_TRACE(soundcardlog, "SoundCard::initializeConnectorMap");
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
        if (static_cast<int>(nodeIndex(connectors[i])) < 0)
            m_connectorMap.append(ConnectorNode{connectors[i], qor::Array<unsigned int>()});
    }
}

/// Looks behind the connector of a node: a new device there joins the card, and the join itself is recorded. The device
/// is opened in any case, before it is known whether it is new.
void SoundCard::followConnector(unsigned int index, qor::Array<qor::String>& knownDevices)
{
    const qor::String farId = farDeviceId(m_connectorMap[index].connector);
    const AudioDevice farDevice(farId);
    if (!knownDevices.contains(farId) && !holds(*m_internalDevices, farDevice))
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
        registerConnectors(*m_internalDevices);
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
    IConnector* peer = nullptr;
    m_connectorMap[index].connector.component()->GetConnectedTo(&peer); // the pointer decides
    if (peer == nullptr)
        return;
    const AudioComponent<IConnector> peerConnector(peer);
    m_connectorMap[index].links.append(nodeIndex(peerConnector));
}

/// Records the signal paths between the connector of a node and those of all later nodes, in both directions.
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

/// Index of the first node whose connector equals @p connector; 0xFFFFFFFF, negative as a signed number, where there is
/// none.
unsigned int SoundCard::nodeIndex(const AudioComponent<IConnector>& connector) const
{
    for (unsigned int i = 0; i < m_connectorMap.size(); ++i)
    {
        if (m_connectorMap[i].connector == connector)
            return i;
    }
    return 0xFFFFFFFF;
}
