#include "client/capturing/volumeanswers.h"

#include "simulator/core/volumemath.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace sonavit::capturing
{
namespace
{
constexpr std::uint32_t allHardwareSupport = 1 | 2 | 4;
constexpr float infinity = std::numeric_limits<float>::infinity();

std::vector<LevelAnswers> allLevels(const VolumeAnswers& answers)
{
    std::vector<LevelAnswers> all = answers.channels;
    all.push_back(answers.master);
    return all;
}

/// The range in place of one that could not be read: the usual one, so far as the levels fit into it.
RangeAnswers assumedRange(const VolumeAnswers& answers)
{
    const sim::EndpointVolume usual;
    RangeAnswers range = {usual.minimum, usual.maximum, usual.step};
    for (const LevelAnswers& each : allLevels(answers))
    {
        range.minimum = std::min(range.minimum, each.level.value_or(range.minimum));
        range.maximum = std::max(range.maximum, each.level.value_or(range.maximum));
    }
    return range;
}

/// The nearest range that a machine can have: it is not empty, and a step is not longer than the range.
RangeAnswers possibleRange(const RangeAnswers& range)
{
    RangeAnswers possible = range;
    if (!(range.minimum < range.maximum))
        possible.maximum = std::nextafter(range.minimum, infinity);
    const float length = possible.maximum - possible.minimum;
    if (!(range.step > 0.0f))
        possible.step = std::min(length, std::numeric_limits<float>::min());
    possible.step = std::min(possible.step, length);
    return possible;
}

bool isSame(const RangeAnswers& left, const RangeAnswers& right)
{
    return left.minimum == right.minimum && left.maximum == right.maximum && left.step == right.step;
}

/// The range as a volume without levels.
sim::EndpointVolume withRange(const VolumeAnswers& answers)
{
    const RangeAnswers range = possibleRange(answers.range ? *answers.range : assumedRange(answers));
    sim::EndpointVolume volume;
    volume.minimum = range.minimum;
    volume.maximum = range.maximum;
    volume.step = range.step;
    return volume;
}

/// The levels within the range of @p volume that are known in both scales and are at none of its ends, where all tapers
/// are the same; in rising order, each level once.
std::vector<sim::TaperPoint> tellingPoints(const VolumeAnswers& answers, const sim::EndpointVolume& volume)
{
    std::vector<sim::TaperPoint> points;
    for (const LevelAnswers& each : allLevels(answers))
    {
        if (each.level && each.scalar && *each.level > volume.minimum && *each.level < volume.maximum)
            points.push_back({*each.level, *each.scalar});
    }
    const auto isLower = [](const sim::TaperPoint& left, const sim::TaperPoint& right)
    { return left.level < right.level; };
    const auto isSameLevel = [](const sim::TaperPoint& left, const sim::TaperPoint& right)
    { return left.level == right.level; };
    std::stable_sort(points.begin(), points.end(), isLower);
    points.erase(std::unique(points.begin(), points.end(), isSameLevel), points.end());
    return points;
}

bool fits(const std::vector<sim::TaperPoint>& points, sim::EndpointVolume volume, sim::Taper taper)
{
    volume.taper = taper;
    return std::all_of(points.begin(), points.end(),
                       [&](const sim::TaperPoint& point)
                       { return sim::scalarLevel(volume, point.level) == point.scalar; });
}

/// Within the range, which a machine requires.
float possibleLevel(float level, const sim::EndpointVolume& volume, const VolumeAnswers& answers, Recorder& recorder)
{
    const float possible = std::clamp(level, volume.minimum, volume.maximum);
    if (possible != level)
        recorder.note("A volume level of " + answers.endpoint + " is outside its range.");
    return possible;
}

/// The level of a channel that could not be read comes from its scalar level, or is the master level.
float channelLevel(const LevelAnswers& channel, const sim::EndpointVolume& volume, const VolumeAnswers& answers,
                   Recorder& recorder)
{
    if (channel.level)
        return possibleLevel(*channel.level, volume, answers, recorder);
    if (channel.scalar)
        return sim::decibelLevel(volume, std::clamp(*channel.scalar, 0.0f, 1.0f));
    return std::clamp(answers.master.level.value_or(volume.maximum), volume.minimum, volume.maximum);
}

void setLevels(sim::EndpointVolume& volume, const VolumeAnswers& answers, Recorder& recorder)
{
    volume.channels.clear();
    for (const LevelAnswers& channel : answers.channels)
        volume.channels.push_back(channelLevel(channel, volume, answers, recorder));
    if (volume.channels.empty())
        volume.channels.push_back(channelLevel(answers.master, volume, answers, recorder));
    if (!answers.master.level)
        return;
    const float master = possibleLevel(*answers.master.level, volume, answers, recorder);
    if (master != sim::masterLevel(volume))
        volume.master = master;
}
}

std::optional<sim::Taper> shownTaper(const VolumeAnswers& answers)
{
    const sim::EndpointVolume volume = withRange(answers);
    const std::vector<sim::TaperPoint> points = tellingPoints(answers, volume);
    if (points.empty())
        return std::nullopt;
    for (const sim::Taper taper : {sim::Taper::linear, sim::Taper::audio})
    {
        if (fits(points, volume, taper))
            return taper;
    }
    return sim::Taper::measured;
}

sim::EndpointVolume volumeOf(const VolumeAnswers& answers, sim::Taper taper, Recorder& recorder)
{
    sim::EndpointVolume volume = withRange(answers);
    if (answers.range && !isSame(*answers.range, {volume.minimum, volume.maximum, volume.step}))
        recorder.note("The volume range of " + answers.endpoint + " is empty, or its step does not fit into it.");
    volume.taper = taper;
    if (taper == sim::Taper::measured)
        volume.taperPoints = tellingPoints(answers, volume);
    setLevels(volume, answers, recorder);
    volume.muted = answers.muted;
    if (answers.steps && *answers.steps != sim::stepCount(volume))
        volume.steps = answers.steps;
    volume.hardwareSupport = answers.hardwareSupport & allHardwareSupport;
    if (volume.hardwareSupport != answers.hardwareSupport)
        recorder.note("QueryHardwareSupport of " + answers.endpoint + " stored bits that have no meaning.");
    return volume;
}
}
