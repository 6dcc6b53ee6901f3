/// @file
/// The library's objects as text, to compare what they know.
#pragma once

#include "libSonavit/audiodeviceendpoint.h"
#include "libSonavit/soundcard.h"

#include <string>

namespace faults::memory
{
inline std::string textOf(const AudioDevice& device)
{
    const AudioDeviceInterface::Properties& properties = device.deviceProperty();
    std::string text = properties.deviceId.toUtf8() + "|" + properties.instancePath.toUtf8() + "|" +
                       properties.friendlyName.toUtf8() + "|" + properties.endpointType.toUtf8() + "|" +
                       properties.driverNodeStrongName.toUtf8() + "|" + std::to_string(properties.deviceState) + "|" +
                       std::to_string(properties.subType.Data1) + "|" +
                       std::to_string(properties.format.Format.nSamplesPerSec);
    text += device.m_volumeControl.get() == nullptr ? "|no volume" : "|volume";
    text += "|" + std::to_string(device.m_topology.m_connectors.size()) + " connectors";
    return text + "|" + std::to_string(device.m_topology.m_subunits.size()) + " subunits\n";
}

inline std::string textOf(const qor::Array<AudioDevice>& devices)
{
    std::string text = std::to_string(devices.size()) + " devices\n";
    for (unsigned int i = 0; i < devices.size(); ++i)
        text += textOf(devices[i]);
    return text;
}

inline std::string textOf(const SoundCard& card)
{
    std::string text = "card " + card.deviceId().toUtf8() + "\n" + textOf(*card.m_playbackDevices) +
                       textOf(*card.m_recordDevices) + textOf(*card.m_internalDevices);
    for (unsigned int i = 0; i < card.m_connectorMap.size(); ++i)
    {
        text += card.m_connectorMap[i].connector.id().toUtf8() + " to";
        for (unsigned int k = 0; k < card.m_connectorMap[i].links.size(); ++k)
            text += " " + std::to_string(card.m_connectorMap[i].links[k]);
        text += "\n";
    }
    return text;
}

inline std::string textOf(const qor::Array<SoundCard>& cards)
{
    std::string text;
    for (unsigned int i = 0; i < cards.size(); ++i)
        text += textOf(cards[i]);
    return text;
}
}
