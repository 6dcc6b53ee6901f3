// The checks of the parts that implement endpoint volumes.
#include "simulator/machine/file/machinecheck.h"
#include "simulator/machine/valuetext.h"

#include <cmath>

namespace sim
{
void MachineCheck::hardwareControls()
{
    for (std::size_t index = 0; index < m_machine.endpoints.size(); ++index)
    {
        const std::optional<EndpointVolume>& volume = m_machine.endpoints[index].volume;
        const FilePlace endpoint(m_file, "endpoints", index);
        const FilePlace place(endpoint, "volume");
        if (volume && !volume->hardware.volume.empty())
            hardwareVolume(*volume, place);
        if (volume && !volume->hardware.mute.empty())
            hardwareMute(*volume, place);
    }
}

void MachineCheck::hardwareVolume(const EndpointVolume& volume, const FilePlace& place)
{
    const auto part = m_parts.find(volume.hardware.volume);
    if (part == m_parts.end() || !part->second->volume)
    {
        const FilePlace hardware(place, "hardware");
        report(FilePlace(hardware, "volume"), "the id of a part with a volume", inQuotes(volume.hardware.volume));
        return;
    }
    const std::vector<ChannelLevel>& channels = part->second->volume->channels;
    if (channels.size() != volume.channels.size())
    {
        report(FilePlace(place, "channels"),
               "the " + std::to_string(channels.size()) + " channels of the part that implements them",
               std::to_string(volume.channels.size()));
        return;
    }
    for (std::size_t index = 0; index < channels.size(); ++index)
    {
        const ChannelLevel& channel = channels[index];
        const bool isRange =
            channel.minimum == volume.minimum && channel.maximum == volume.maximum && channel.step == volume.step;
        if (!isRange)
            report(place, "the range of the part that implements it",
                   decimal(volume.minimum) + " to " + decimal(volume.maximum) + " by " + decimal(volume.step));
        // The part is at a step, the endpoint may be between two.
        const bool isLevel = std::abs(channel.level - volume.channels[index]) <= channel.step / 2.0f;
        if (!isLevel)
            report(FilePlace(place, "channels", index), "the level of the part that implements it",
                   decimal(volume.channels[index]));
    }
}

void MachineCheck::hardwareMute(const EndpointVolume& volume, const FilePlace& place)
{
    const auto part = m_parts.find(volume.hardware.mute);
    if (part == m_parts.end() || !part->second->mute)
    {
        const FilePlace hardware(place, "hardware");
        report(FilePlace(hardware, "mute"), "the id of a part with a mute", inQuotes(volume.hardware.mute));
    }
    else if (part->second->mute->muted != volume.muted)
    {
        report(FilePlace(place, "muted"), "the mute of the part that implements it", volume.muted ? "true" : "false");
    }
}
}
