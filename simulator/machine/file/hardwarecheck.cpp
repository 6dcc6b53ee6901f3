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
        const std::string place = inner(inner("/endpoints", index), "volume");
        if (volume && !volume->hardware.volume.empty())
            hardwareVolume(*volume, place);
        if (volume && !volume->hardware.mute.empty())
            hardwareMute(*volume, place);
    }
}

void MachineCheck::hardwareVolume(const EndpointVolume& volume, const std::string& place)
{
    const std::string partPlace = inner(inner(place, "hardware"), "volume");
    const PartPlace part = m_machine.part(volume.hardware.volume);
    const bool hasLevels = part && part->volume;
    if (!require(hasLevels, partPlace, "the id of a part with a volume", inQuotes(volume.hardware.volume)))
        return;
    const std::vector<ChannelLevel>& channels = part->volume->channels;
    if (!require(channels.size() == volume.channels.size(), inner(place, "channels"),
                 "the " + std::to_string(channels.size()) + " channels of the part that implements them",
                 std::to_string(volume.channels.size())))
        return;
    for (std::size_t index = 0; index < channels.size(); ++index)
    {
        const ChannelLevel& channel = channels[index];
        const bool isRange =
            channel.minimum == volume.minimum && channel.maximum == volume.maximum && channel.step == volume.step;
        require(isRange, place, "the range of the part that implements it",
                decimal(volume.minimum) + " to " + decimal(volume.maximum) + " by " + decimal(volume.step));
        // The part is at a step, the endpoint may be between two.
        require(std::abs(channel.level - volume.channels[index]) <= channel.step / 2.0f,
                inner(inner(place, "channels"), index), "the level of the part that implements it",
                decimal(volume.channels[index]));
    }
}

void MachineCheck::hardwareMute(const EndpointVolume& volume, const std::string& place)
{
    const PartPlace part = m_machine.part(volume.hardware.mute);
    const bool hasMute = part && part->mute;
    if (require(hasMute, inner(inner(place, "hardware"), "mute"), "the id of a part with a mute",
                inQuotes(volume.hardware.mute)))
        require(part->mute->muted == volume.muted, inner(place, "muted"), "the mute of the part that implements it",
                volume.muted ? "true" : "false");
}
}
