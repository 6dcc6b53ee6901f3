#include "client/changing/controllevels.h"

#include "client/reading/judge.h"
#include "client/reading/limits.h"

#include <algorithm>
#include <utility>

namespace sonavit::changing
{
namespace
{
bool isAt(const Present& present, float level)
{
    return present.level && *present.level == level;
}

/// A channel whose range has one level stays out of changes of all channels.
bool isMovable(const Present& present)
{
    return !present.range || present.range->maximum > present.range->minimum;
}

float fixedLevel(const Present& present)
{
    return static_cast<float>(present.range->minimum);
}
}

ControlLevels::ControlLevels(IAudioVolumeLevel& level, const Subject& subject, ChangeContext& context)
    : m_level(level),
      m_subject(subject),
      m_context(context)
{
}

std::optional<Problem> ControlLevels::apply(const LevelChange& change)
{
    const Result<unsigned> count = channelCount();
    if (const std::optional<unsigned> channel = change.channel())
    {
        if (count && *channel >= *count)
            return noSuchChannel(m_subject, *channel, *count);
        return changeOne(change, *channel);
    }
    if (!count)
        return count.problem();
    if (*count == 0)
        return Problem(Problem::Kind::notSupported, m_subject.operation, m_subject.object,
                       "the control has no channels");
    return *count == 1 ? changeOne(change, 0) : changeAll(change, *count);
}

std::optional<Problem> ControlLevels::changeOne(const LevelChange& change, unsigned channel)
{
    const Present now = present(channel);
    const Result<float> target = targetLevel(m_subject, change, now);
    if (!target)
        return target.problem();
    if (isAt(now, *target))
        return std::nullopt;
    return judge("IAudioVolumeLevel::SetLevel", m_level.SetLevel(channel, *target, m_context.use()));
}

std::optional<Problem> ControlLevels::changeAll(const LevelChange& change, unsigned count)
{
    const std::vector<Present> channels = presentOf(count);
    Result<std::vector<float>> levels = targets(change, channels);
    if (!levels)
        return levels.problem();
    return setAll(channels, *std::move(levels));
}

std::optional<Problem> ControlLevels::set(const std::vector<std::optional<Decibels>>& levels)
{
    const std::optional<Decibels> highest = *std::max_element(levels.begin(), levels.end());
    const Result<unsigned> count = channelCount();
    if (!count)
        return count.problem();
    const std::vector<Present> channels = presentOf(*count);
    std::optional<Problem> problem = *count == levels.size() ? setEach(levels, channels) : apply(*highest);
    if (m_context.isUsed() && isWhere(channels))
        m_context.noteNoEffect();
    return problem;
}

std::optional<Problem> ControlLevels::setEach(const std::vector<std::optional<Decibels>>& levels,
                                              const std::vector<Present>& channels)
{
    std::vector<float> targets;
    for (std::size_t channel = 0; channel < channels.size(); ++channel)
    {
        const Present& now = channels[channel];
        const Result<float> target = levels[channel] ? targetLevel(m_subject, *levels[channel], now) : now.level;
        if (!target)
            return target.problem();
        targets.push_back(*target);
    }
    return setAll(channels, std::move(targets));
}

std::optional<Problem> ControlLevels::setAll(const std::vector<Present>& channels, std::vector<float> levels)
{
    if (std::equal(channels.begin(), channels.end(), levels.begin(), isAt))
        return std::nullopt;
    if (levels.size() == 1)
        return judge("IAudioVolumeLevel::SetLevel", m_level.SetLevel(0, levels.front(), m_context.use()));
    return judge("IAudioVolumeLevel::SetLevelAllChannels",
                 m_level.SetLevelAllChannels(levels.data(), static_cast<ULONG>(levels.size()), m_context.use()));
}

/// A number that no control has is none.
Result<unsigned> ControlLevels::channelCount() const
{
    const char* const call = "IAudioVolumeLevel::GetChannelCount";
    UINT count = 0;
    if (const std::optional<Problem> problem = judge(call, m_level.GetChannelCount(&count)))
        return *problem;
    if (count > reading::mostChannels)
        return Problem::ofCall(call, m_subject.object, reading::invalidData);
    return unsigned{count};
}

std::vector<Present> ControlLevels::presentOf(unsigned count) const
{
    std::vector<Present> channels;
    channels.reserve(count);
    for (unsigned channel = 0; channel < count; ++channel)
        channels.push_back(present(channel));
    return channels;
}

Result<std::vector<float>> ControlLevels::targets(const LevelChange& change, const std::vector<Present>& channels) const
{
    if (change.direction() != LevelChange::Direction::to)
        return afterStep(change, channels);
    const bool isAnyMovable = std::any_of(channels.begin(), channels.end(), isMovable);
    std::vector<float> levels;
    for (const Present& channel : channels)
    {
        if (isAnyMovable && !isMovable(channel))
        {
            levels.push_back(fixedLevel(channel));
            continue;
        }
        const Result<float> level = targetLevel(m_subject, change, channel);
        if (!level)
            return level.problem();
        levels.push_back(*level);
    }
    return levels;
}

Result<std::vector<float>> ControlLevels::afterStep(const LevelChange& change,
                                                    const std::vector<Present>& channels) const
{
    std::vector<double> ways;
    double share = 1.0; // of the step, as far as the channel with the least room can take it
    for (const Present& channel : channels)
    {
        const Result<double> way = isMovable(channel) ? distance(m_subject, change, channel) : Result<double>(0.0);
        if (!way)
            return way.problem();
        ways.push_back(*way);
        if (*way != 0.0)
            share = std::min(share, (static_cast<double>(levelAfter(*way, channel)) - *channel.level) / *way);
    }
    share = std::max(share, 0.0); // a level outside its range has no room
    std::vector<float> levels;
    for (std::size_t channel = 0; channel < channels.size(); ++channel)
    {
        const Present& now = channels[channel];
        levels.push_back(isMovable(now) ? levelAfter(share * ways[channel], now) : fixedLevel(now));
    }
    return levels;
}

/// Whether the levels are still those of @p channels.
bool ControlLevels::isWhere(const std::vector<Present>& channels) const
{
    for (unsigned channel = 0; channel < channels.size(); ++channel)
    {
        const Result<float> now = levelOf(channel);
        if (!now || !isAt(channels[channel], *now))
            return false;
    }
    return true;
}

Present ControlLevels::present(unsigned channel) const
{
    const char* const rangeCall = "IAudioVolumeLevel::GetLevelRange";
    float minimum = 0;
    float maximum = 0;
    float step = 0;
    const std::optional<Problem> noRange = judge(rangeCall, m_level.GetLevelRange(channel, &minimum, &maximum, &step));
    return {levelOf(channel), noRange ? *noRange : finite(m_subject, rangeCall, minimum, maximum, step)};
}

Result<float> ControlLevels::levelOf(unsigned channel) const
{
    const char* const call = "IAudioVolumeLevel::GetLevel";
    float level = 0;
    const std::optional<Problem> problem = judge(call, m_level.GetLevel(channel, &level));
    return problem ? Result<float>(*problem) : finite(m_subject, call, level);
}

std::optional<Problem> ControlLevels::judge(const char* call, HRESULT result) const
{
    if (SUCCEEDED(result))
        return std::nullopt;
    return Problem::ofCall(call, m_subject.object, result);
}
}
