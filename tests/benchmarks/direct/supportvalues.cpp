#include "tests/benchmarks/direct/supportvalues.h"

#include "simulator/core/utf16.h"
#include "simulator/machine/valuetext.h"

#include <algorithm>
#include <sstream>

namespace directvalues
{
namespace
{
std::string shown(const qor::String& text)
{
    return "\"" + sim::utf8(platform::wide(text.getUCS2Buffer())) + "\" ";
}

std::string shown(const std::u16string& text)
{
    return "\"" + sim::utf8(direct::wide(text)) + "\" ";
}

std::string shown(const GUID& guid)
{
    return sim::guidText(guid) + " ";
}

std::string shown(unsigned int number)
{
    return std::to_string(number) + " ";
}

std::string shown(const WAVEFORMATEXTENSIBLE& format)
{
    const auto* const bytes = reinterpret_cast<const unsigned char*>(&format);
    std::string text;
    for (std::size_t index = 0; index < sizeof(format); ++index)
        text += std::to_string(bytes[index]) + ".";
    return text + " ";
}

std::string shownPresence(const void* object)
{
    return object == nullptr ? "none " : "there ";
}

// The library's values and the plain client's under the same names.

template<class I>
std::string shown(const AudioComponent<I>& component)
{
    return shown(component.id()) + shown(component.name()) + shown(component.subType()) +
           shownPresence(component.component().get()) + shownPresence(component.part().part().get());
}

template<class I>
std::string shown(const direct::Component<I>& component)
{
    return shown(component.part.globalId) + shown(component.part.name) + shown(component.part.subType) +
           shownPresence(component.component.get()) + shownPresence(component.part.part.get());
}

std::string shown(const AudioDeviceInterface::Properties& properties)
{
    return shown(properties.deviceId) + shown(properties.instancePath) + shown(properties.driverNodeStrongName) +
           shown(properties.friendlyName) + shown(properties.endpointType) + shown(properties.format) +
           shown(properties.subType) + shown(properties.directSoundGuid) + shown(properties.speakerConfig) +
           shown(properties.deviceState);
}

std::string shown(const direct::Properties& properties)
{
    return shown(properties.deviceId) + shown(properties.instancePath) + shown(properties.driverNodeStrongName) +
           shown(properties.friendlyName) + shown(properties.endpointType) + shown(properties.format) +
           shown(properties.subType) + shown(properties.directSoundGuid) + shown(properties.speakerConfig) +
           shown(properties.state);
}

std::string shown(const SharedPointer<VolumeControllerInterface>& control)
{
    if (control.get() == nullptr)
        return "no control";
    const auto& endpointControl = static_cast<const VolumeController<EndpointVolumeController>&>(*control);
    return shown(control->ownerName()) + shown(control->ownerType()) +
           shownPresence(endpointControl.m_policy.endpointVolume.get());
}

std::string shown(const std::shared_ptr<direct::EndpointControl>& control)
{
    if (control == nullptr)
        return "no control";
    return shown(control->ownerName) + shown(control->ownerType) + shownPresence(control->volume.get());
}

template<class I>
void addParts(Lines& lines, const qor::Array<AudioComponent<I>>& parts)
{
    for (unsigned int index = 0; index < parts.size(); ++index)
        lines.push_back("  part " + shown(parts[index]));
}

template<class I>
void addParts(Lines& lines, const std::vector<direct::Component<I>>& parts)
{
    for (const direct::Component<I>& part : parts)
        lines.push_back("  part " + shown(part));
}

void add(Lines& lines, const AudioDevice& device)
{
    lines.push_back("device " + shown(device.m_properties) + shownPresence(device.m_device.get()) +
                    shownPresence(device.m_propertyStore.get()));
    lines.push_back("  saved " + shown(device.m_savedProperties.format));
    lines.push_back("  control " + shown(device.m_volumeControl));
    lines.push_back("  topology " + shown(device.m_topology.deviceOwner()) +
                    shownPresence(device.m_topology.topology().get()));
    addParts(lines, device.m_topology.connector());
    addParts(lines, device.m_topology.subunit());
}

void add(Lines& lines, const direct::Device& device)
{
    lines.push_back("device " + shown(device.properties) + shownPresence(device.device.get()) +
                    shownPresence(device.store.get()));
    lines.push_back("  saved " + shown(device.savedFormat));
    lines.push_back("  control " + shown(device.control));
    lines.push_back("  topology " + shown(device.topology.deviceId) + shownPresence(device.topology.topology.get()));
    addParts(lines, device.topology.connectors);
    addParts(lines, device.topology.subunits);
}

void addDevices(Lines& lines, const char* title, const qor::Array<AudioDevice>& devices)
{
    lines.emplace_back(title);
    for (unsigned int index = 0; index < devices.size(); ++index)
        add(lines, devices[index]);
}

void addDevices(Lines& lines, const char* title, const std::vector<direct::Device>& devices)
{
    lines.emplace_back(title);
    for (const direct::Device& device : devices)
        add(lines, device);
}

void addControl(Lines& lines, const std::string& owner, IAudioVolumeLevel* level, IAudioMute* mute)
{
    std::ostringstream line;
    line << "control " << owner;
    UINT channels = 0;
    level->GetChannelCount(&channels);
    for (UINT channel = 0; channel < channels; ++channel)
    {
        float decibels = 0;
        level->GetLevel(channel, &decibels);
        line << decibels << " ";
    }
    BOOL isMuted = FALSE;
    if (mute != nullptr)
        mute->GetMute(&isMuted);
    line << shownPresence(mute) << isMuted;
    lines.push_back(line.str());
}
}

void add(Lines& lines, const SoundCard& card)
{
    lines.push_back("card " + shown(card.deviceId()));
    addDevices(lines, "playback", *card.m_playbackDevices);
    addDevices(lines, "record", *card.m_recordDevices);
    addDevices(lines, "adapters", *card.m_internalDevices);
    for (unsigned int index = 0; index < card.m_connectorMap.size(); ++index)
    {
        const SoundCard::ConnectorNode& node = card.m_connectorMap[index];
        std::string line = "node " + shown(node.connector);
        for (unsigned int link = 0; link < node.links.size(); ++link)
            line += shown(node.links[link]);
        lines.push_back(line);
    }
}

void add(Lines& lines, const direct::Card& card)
{
    lines.push_back("card " + shown(card.data().instancePath));
    addDevices(lines, "playback", card.data().playback.devices);
    addDevices(lines, "record", card.data().record.devices);
    addDevices(lines, "adapters", card.adapters());
    for (const direct::Node& node : card.graph())
    {
        std::string line = "node " + shown(node.connector);
        for (const unsigned int link : node.links)
            line += shown(link);
        lines.push_back(line);
    }
}

void add(Lines& lines, const EndpointDeviceEnumeratorCommon& lists)
{
    addDevices(lines, "active", lists.activeDevice());
    addDevices(lines, "disabled", lists.disabledDevice());
    addDevices(lines, "not present", lists.notPresentDevice());
    addDevices(lines, "unplugged", lists.unpluggedDevice());
}

void add(Lines& lines, const direct::StateLists& lists)
{
    addDevices(lines, "active", lists.active);
    addDevices(lines, "disabled", lists.disabled);
    addDevices(lines, "not present", lists.notPresent);
    addDevices(lines, "unplugged", lists.unplugged);
}

void add(Lines& lines, const SoundCard::VolumeController& control)
{
    addControl(lines, shown(control.ownerName) + shown(control.ownerType), control.volumeLevel.get(),
               control.mute.get());
}

void add(Lines& lines, const direct::Control& control)
{
    addControl(lines, shown(control.ownerName) + shown(control.ownerType), control.level.get(), control.mute.get());
}
}
