#include "client/changing/endpointlevel.h"

#include <algorithm>
#include <variant>

namespace sonavit::changing
{
EndpointLevel::EndpointLevel(IAudioEndpointVolume& volume, const Subject& subject, ChangeContext& context,
                             std::optional<unsigned> channel)
    : m_volume(volume),
      m_subject(subject),
      m_context(context),
      m_channel(channel)
{
}

std::optional<Problem> EndpointLevel::apply(const LevelChange& change)
{
    if (std::optional<Problem> problem = missingChannel())
        return problem;
    if (const auto* const percent = std::get_if<Percent>(&change.amount()))
        return applyScalar(change.direction(), *percent);
    const auto* const steps = std::get_if<Steps>(&change.amount());
    if (steps != nullptr && !m_channel)
        return takeSteps(change.direction() == LevelChange::Direction::up, steps->count);
    return applyDecibels(change);
}

std::optional<Problem> EndpointLevel::missingChannel()
{
    if (!m_channel)
        return std::nullopt;
    UINT count = 0;
    // If the platform cannot count the channels, its setter decides.
    const bool isCounted = SUCCEEDED(m_volume.GetChannelCount(&count));
    if (isCounted && *m_channel >= count)
        return noSuchChannel(m_subject, *m_channel, count);
    return std::nullopt;
}

std::optional<Problem> EndpointLevel::applyScalar(LevelChange::Direction direction, Percent amount)
{
    const Result<float> now = scalar();
    const Result<float> target = targetScalar(direction, amount, now);
    if (!target)
        return target.problem();
    if (now && *now == *target)
        return std::nullopt;
    if (m_channel)
        return judge("IAudioEndpointVolume::SetChannelVolumeLevelScalar",
                     m_volume.SetChannelVolumeLevelScalar(*m_channel, *target, m_context.use()));
    return judge("IAudioEndpointVolume::SetMasterVolumeLevelScalar",
                 m_volume.SetMasterVolumeLevelScalar(*target, m_context.use()));
}

std::optional<Problem> EndpointLevel::applyDecibels(const LevelChange& change)
{
    const Present now = present();
    const Result<float> target = targetLevel(m_subject, change, now);
    if (!target)
        return target.problem();
    if (now.level && *now.level == *target)
        return std::nullopt;
    if (m_channel)
        return judge("IAudioEndpointVolume::SetChannelVolumeLevel",
                     m_volume.SetChannelVolumeLevel(*m_channel, *target, m_context.use()));
    return judge("IAudioEndpointVolume::SetMasterVolumeLevel", m_volume.SetMasterVolumeLevel(*target, m_context.use()));
}

std::optional<Problem> EndpointLevel::takeSteps(bool isUp, unsigned count)
{
    if (count > 1)
    {
        UINT step = 0;
        UINT steps = 0;
        if (std::optional<Problem> problem =
                judge("IAudioEndpointVolume::GetVolumeStepInfo", m_volume.GetVolumeStepInfo(&step, &steps)))
            return problem;
        // Between two steps the platform reports the nearer one, so that one more may lead to the end.
        const unsigned room = isUp ? std::max(steps, step) - step : step + 1;
        count = std::min(count, room);
    }
    for (; count > 0; --count)
    {
        std::optional<Problem> problem =
            isUp ? judge("IAudioEndpointVolume::VolumeStepUp", m_volume.VolumeStepUp(m_context.use()))
                 : judge("IAudioEndpointVolume::VolumeStepDown", m_volume.VolumeStepDown(m_context.use()));
        if (problem)
            return problem;
    }
    return std::nullopt;
}

Present EndpointLevel::present()
{
    const char* const rangeCall = "IAudioEndpointVolume::GetVolumeRange";
    float minimum = 0;
    float maximum = 0;
    float step = 0;
    const std::optional<Problem> noRange = judge(rangeCall, m_volume.GetVolumeRange(&minimum, &maximum, &step));
    const char* const call =
        m_channel ? "IAudioEndpointVolume::GetChannelVolumeLevel" : "IAudioEndpointVolume::GetMasterVolumeLevel";
    float level = 0;
    const std::optional<Problem> noLevel = judge(call, m_channel ? m_volume.GetChannelVolumeLevel(*m_channel, &level)
                                                                 : m_volume.GetMasterVolumeLevel(&level));
    return {noLevel ? *noLevel : finite(m_subject, call, level),
            noRange ? *noRange : finite(m_subject, rangeCall, minimum, maximum, step)};
}

Result<float> EndpointLevel::scalar()
{
    const char* const call = m_channel ? "IAudioEndpointVolume::GetChannelVolumeLevelScalar"
                                       : "IAudioEndpointVolume::GetMasterVolumeLevelScalar";
    float level = 0;
    const std::optional<Problem> problem =
        judge(call, m_channel ? m_volume.GetChannelVolumeLevelScalar(*m_channel, &level)
                              : m_volume.GetMasterVolumeLevelScalar(&level));
    return problem ? Result<float>(*problem) : finite(m_subject, call, level);
}

std::optional<Problem> EndpointLevel::judge(const char* call, HRESULT result) const
{
    if (SUCCEEDED(result))
        return std::nullopt;
    return Problem::ofCall(call, m_subject.object, result);
}
}
