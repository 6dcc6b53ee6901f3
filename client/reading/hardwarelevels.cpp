#include "client/reading/hardwarelevels.h"

#include "client/reading/limits.h"

#include <cmath>

namespace sonavit::reading
{
namespace
{
/// The share of the range; no value if the range is empty or a number is not finite.
std::optional<Percent> shareOf(const LevelRange& range, double decibels)
{
    const double span = range.maximum - range.minimum;
    if (!std::isfinite(span) || !std::isfinite(decibels) || !(span > 0))
        return std::nullopt;
    return Percent((decibels - range.minimum) / span * 100);
}

/// A range of zeroes is that of a call that succeeds and stores nothing.
std::optional<LevelRange> readRange(IAudioVolumeLevel& level, UINT channel, Judge& judge)
{
    float minimum = 0;
    float maximum = 0;
    float step = 0;
    const HRESULT result = level.GetLevelRange(channel, &minimum, &maximum, &step);
    if (!judge.passes(result, {"IAudioVolumeLevel::GetLevelRange", nullptr, channel}))
        return std::nullopt;
    if (std::isnan(minimum) || std::isnan(maximum) || std::isnan(step))
    {
        judge.fails(invalidData, {"IAudioVolumeLevel::GetLevelRange", nullptr, channel});
        return std::nullopt;
    }
    if (minimum == 0 && maximum == 0 && step == 0)
        return std::nullopt;
    return LevelRange{double{minimum}, double{maximum}, double{step}};
}

ControlChannel readChannel(IAudioVolumeLevel& level, UINT channel, Judge& judge)
{
    ControlChannel result;
    result.range = readRange(level, channel, judge);
    float decibels = 0;
    if (!judge.passes(level.GetLevel(channel, &decibels), {"IAudioVolumeLevel::GetLevel", nullptr, channel}))
        return result;
    if (std::isnan(decibels))
    {
        judge.fails(invalidData, {"IAudioVolumeLevel::GetLevel", nullptr, channel});
        return result;
    }
    result.level.decibels = Decibels(double{decibels});
    if (result.range)
        result.level.percent = shareOf(*result.range, double{decibels});
    return result;
}
}

std::optional<std::vector<ControlChannel>> readChannels(IAudioVolumeLevel& level, Judge judge)
{
    UINT count = 0;
    if (!judge.passes(level.GetChannelCount(&count), {"IAudioVolumeLevel::GetChannelCount"}))
        return std::nullopt;
    if (count > mostChannels)
    {
        judge.fails(invalidData, {"IAudioVolumeLevel::GetChannelCount"});
        return std::nullopt;
    }
    std::vector<ControlChannel> channels;
    for (UINT channel = 0; channel < count; ++channel)
        channels.push_back(readChannel(level, channel, judge));
    return channels;
}

std::optional<bool> readMute(IAudioMute& mute, Judge judge)
{
    BOOL isMuted = FALSE;
    if (!judge.passes(mute.GetMute(&isMuted), {"IAudioMute::GetMute"}))
        return std::nullopt;
    return isMuted != FALSE;
}

std::optional<std::uint32_t> readSelection(IAudioInputSelector& selector, Judge judge)
{
    UINT selection = 0;
    if (!judge.passes(selector.GetSelection(&selection), {"IAudioInputSelector::GetSelection"}))
        return std::nullopt;
    return static_cast<std::uint32_t>(selection);
}
}
