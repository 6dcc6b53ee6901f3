#include "simulator/core/hardwarelevels.h"

#include "simulator/machine/volumemath.h"

#include <algorithm>

namespace sim
{
namespace
{
/// Bits of QueryHardwareSupport.
constexpr std::uint32_t hardwareVolume = 1;
constexpr std::uint32_t hardwareMute = 2;

/// The part with that id if it has a level for each channel of @p volume, otherwise null.
Part* levelPart(const Hardware& hardware, const EndpointVolume& volume)
{
    const ChangeablePartPlace* const place = hardware.part(volume.hardware.volume);
    const bool fits =
        place != nullptr && place->part->volume && place->part->volume->channels.size() == volume.channels.size();
    return fits ? place->part : nullptr;
}

Part* mutePart(const Hardware& hardware, const EndpointVolume& volume)
{
    const ChangeablePartPlace* const place = hardware.part(volume.hardware.mute);
    return place != nullptr && place->part->mute ? place->part : nullptr;
}

Subunit controlsOnly(const Part& part)
{
    Subunit controls;
    controls.volume = part.volume;
    controls.mute = part.mute;
    return controls;
}

/// Whether clients read the same: a master level may be a number of its own or that of the loudest channel.
bool areReadAlike(EndpointVolume left, EndpointVolume right)
{
    left.master = masterLevel(left);
    right.master = masterLevel(right);
    return left == right;
}
}

EndpointVolume shownVolume(const Hardware& hardware, const Endpoint& endpoint)
{
    EndpointVolume shown = *endpoint.volume;
    if (const Part* const part = levelPart(hardware, shown))
    {
        shown.hardwareSupport |= hardwareVolume;
        for (std::size_t index = 0; index < shown.channels.size(); ++index)
        {
            const ChannelLevel& channel = part->volume->channels[index];
            if (nearestStep(channel, shown.channels[index]) != channel.level)
                shown.channels[index] = channel.level;
        }
    }
    if (const Part* const part = mutePart(hardware, shown))
    {
        shown.hardwareSupport |= hardwareMute;
        shown.muted = part->mute->muted;
    }
    return shown;
}

void changeVolume(const Hardware& hardware, Endpoint& endpoint, const EndpointVolume& wanted)
{
    const EndpointVolume before = shownVolume(hardware, endpoint);
    if (Part* const part = levelPart(hardware, wanted))
    {
        for (std::size_t index = 0; index < wanted.channels.size(); ++index)
        {
            ChannelLevel& channel = part->volume->channels[index];
            if (wanted.channels[index] != before.channels[index])
                channel.level = nearestStep(channel, wanted.channels[index]);
        }
    }
    if (Part* const part = mutePart(hardware, wanted))
        part->mute->muted = wanted.muted;
    endpoint.volume->channels = wanted.channels;
    endpoint.volume->master = wanted.master;
    endpoint.volume->muted = wanted.muted;
}

LevelWatch::LevelWatch(Hardware& hardware, Endpoint& endpoint)
{
    m_volumes.emplace(&endpoint, shownVolume(hardware, endpoint));
    watch(hardware, endpoint.volume->hardware.volume);
    watch(hardware, endpoint.volume->hardware.mute);
}

LevelWatch::LevelWatch(Hardware& hardware, const Part& part) : m_changedPart(part.id)
{
    watch(hardware, part.id);
}

void LevelWatch::watch(Hardware& hardware, const std::string& partId)
{
    const ChangeablePartPlace* const place = hardware.part(partId);
    if (place == nullptr)
        return;
    m_parts.emplace(partId, controlsOnly(*place->part));
    for (Endpoint* const endpoint : hardware.endpointsInHardware(partId))
        m_volumes.emplace(endpoint, shownVolume(hardware, *endpoint));
}

LevelChanges LevelWatch::changes(const Hardware& hardware) const
{
    LevelChanges result;
    for (const auto& [id, before] : m_parts)
    {
        const Part& part = *hardware.part(id)->part;
        if (!(part.volume == before.volume))
            result.levels.push_back(id);
        if (!(part.mute == before.mute))
            result.mutes.push_back(id);
    }
    for (const auto& [endpoint, before] : m_volumes)
    {
        const Part* const part = levelPart(hardware, *endpoint->volume);
        const bool hasNewLevel =
            part != nullptr && std::count(result.levels.begin(), result.levels.end(), part->id) != 0;
        if (hasNewLevel)
            endpoint->volume->master.reset();
        if (hasNewLevel && part->id == m_changedPart)
        {
            for (std::size_t index = 0; index < before.channels.size(); ++index)
                endpoint->volume->channels[index] = part->volume->channels[index].level;
        }
        const EndpointVolume after = shownVolume(hardware, *endpoint);
        endpoint->volume->muted = after.muted;
        if (!areReadAlike(after, before))
            result.endpoints.push_back(endpoint->id);
    }
    return result;
}
}
