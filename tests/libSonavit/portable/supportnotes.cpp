#include "tests/libSonavit/portable/supportnotes.h"

#include "libModuleCommon/guid.h"

#include <cstring>

namespace support
{
namespace
{
std::string textOf(GUID guid)
{
    return guidToString(&guid).toUtf8();
}

/// "3 of 8": size and capacity.
template<class T>
std::string roomOf(const qor::Array<T>& array)
{
    return std::to_string(array.size()) + " of " + std::to_string(array.capacity());
}

/// Of a list that a part keeps of its latest walk: the capacity counts once there are parts in it.
std::string walkedIn(const qor::Array<AudioPart>& parts)
{
    return parts.size() == 0 ? "none" : roomOf(parts);
}

std::string textOf(const WAVEFORMATEXTENSIBLE& format)
{
    const WAVEFORMATEX& common = format.Format;
    return std::to_string(common.wFormatTag) + "/" + std::to_string(common.nChannels) + "/" +
           std::to_string(common.nSamplesPerSec) + "/" + std::to_string(common.wBitsPerSample) + "/" +
           std::to_string(format.dwChannelMask);
}
}

void noteDevice(Transcript& transcript, const std::string& what, const AudioDevice& device)
{
    const AudioDevice::Properties& properties = device.m_properties;
    const auto note = [&](const char* name, const std::string& value)
    { transcript.note(what + " " + name + " " + value); };
    note("device", properties.deviceId.toUtf8());
    note("names", properties.endpointType.toUtf8() + " | " + properties.friendlyName.toUtf8());
    note("path", properties.instancePath.toUtf8() + " | " + properties.driverNodeStrongName.toUtf8());
    note("types", textOf(properties.subType) + textOf(properties.directSoundGuid));
    note("state", std::to_string(properties.deviceState) + " " + std::to_string(properties.speakerConfig));
    note("format", textOf(properties.format) + " saved " + textOf(device.m_savedProperties.format));
    note("holds", std::string(device.m_device.get() == nullptr ? "" : "device ") +
                      (device.m_propertyStore.get() == nullptr ? "" : "store ") +
                      (device.m_volumeControl.get() == nullptr ? "" : "volume ") +
                      (device.m_topology.m_topology.get() == nullptr ? "" : "topology ") +
                      roomOf(device.m_topology.m_connectors) + " " + roomOf(device.m_topology.m_subunits));
}

void noteDevices(Transcript& transcript, const std::string& what, const qor::Array<AudioDevice>& devices)
{
    transcript.note(what + " " + roomOf(devices));
    for (unsigned int i = 0; i < devices.size(); ++i)
        noteDevice(transcript, what, devices[i]);
}

void notePart(Transcript& transcript, const std::string& what, const AudioPart& part)
{
    transcript.note(what + " " + part.m_globalId.toUtf8() + " | " + part.m_name.toUtf8() + " " +
                    textOf(part.m_subType) + (part.m_part.get() == nullptr ? " empty" : "") + ", incoming " +
                    walkedIn(part.m_incomingParts) + ", outgoing " + walkedIn(part.m_outgoingParts));
}

void noteParts(Transcript& transcript, const std::string& what, const qor::Array<AudioPart>& parts)
{
    transcript.note(what + " " + roomOf(parts));
    for (unsigned int i = 0; i < parts.size(); ++i)
        notePart(transcript, what, parts[i]);
}

void noteTopology(Transcript& transcript, const AudioDeviceTopology& topology)
{
    transcript.note("topology of " + topology.m_deviceOwner.toUtf8() +
                    (topology.m_topology.get() == nullptr ? " empty" : "") + ", connectors " +
                    roomOf(topology.m_connectors) + ", subunits " + roomOf(topology.m_subunits));
    for (unsigned int i = 0; i < topology.m_connectors.size(); ++i)
        noteComponent(transcript, "connector", topology.m_connectors[i]);
    for (unsigned int i = 0; i < topology.m_subunits.size(); ++i)
        noteComponent(transcript, "subunit", topology.m_subunits[i]);
}

void noteCard(Transcript& transcript, const SoundCard& card)
{
    transcript.note("card " + card.m_deviceId->toUtf8());
    noteDevices(transcript, "playback", *card.m_playbackDevices);
    noteDevices(transcript, "record", *card.m_recordDevices);
    noteDevices(transcript, "internal", *card.m_internalDevices);
    transcript.note("map " + roomOf(card.m_connectorMap) + ", observers " + roomOf(*card.m_playbackObservers) + ", " +
                    roomOf(*card.m_recordObservers));
    for (unsigned int i = 0; i < card.m_connectorMap.size(); ++i)
    {
        const SoundCard::ConnectorNode& node = card.m_connectorMap[i];
        std::string links = "links " + roomOf(node.links) + ":";
        for (unsigned int k = 0; k < node.links.size(); ++k)
            links += " " + std::to_string(node.links[k]);
        noteComponent(transcript, "node " + std::to_string(i), node.connector);
        transcript.note(links);
    }
}

void noteCards(Transcript& transcript, const qor::Array<SoundCard>& cards)
{
    transcript.note("cards " + roomOf(cards));
    for (unsigned int i = 0; i < cards.size(); ++i)
        noteCard(transcript, cards[i]);
}

void noteControls(Transcript& transcript, const qor::Array<SoundCard::VolumeController>& controls)
{
    transcript.note("controls " + roomOf(controls));
    for (unsigned int i = 0; i < controls.size(); ++i)
        transcript.note("control of " + controls[i].ownerName.toUtf8() + " " + textOf(controls[i].ownerType) +
                        (controls[i].mute.get() == nullptr ? " without mute" : ""));
}
}
