#include "client/capturing/volumeanswers.h"
#include "simulator/machine/volumemath.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <utility>

namespace sonavit::capturing
{
namespace
{
constexpr std::uint32_t allHardwareSupport = 1 | 2 | 4;

std::vector<LevelAnswers> allLevels(const VolumeAnswers& answers)
{
    std::vector<LevelAnswers> all = answers.channels;
    all.push_back(answers.master);
    return all;
}

/// The range in place of one that could not be read: the usual one, or wider if the levels do not fit into it. Only
/// levels whose scalars are 0 or 1 are at its ends.
RangeAnswers assumedRange(const VolumeAnswers& answers)
{
    const sim::EndpointVolume usual;
    RangeAnswers range = {usual.minimum, usual.maximum, usual.step};
    for (const LevelAnswers& each : allLevels(answers))
    {
        if (!each.level)
            continue;
        const float below = each.scalar.value_or(0.0f) > 0.0f ? 1.0f : 0.0f;
        const float above = each.scalar.value_or(1.0f) < 1.0f ? 1.0f : 0.0f;
        range.minimum = std::min(range.minimum, *each.level - below);
        range.maximum = std::max(range.maximum, *each.level + above);
    }
    return range;
}

/// The range as a volume without levels. The nearest that a machine can have: its end is not below its beginning.
sim::EndpointVolume withRange(const VolumeAnswers& answers)
{
    const RangeAnswers range = answers.range ? *answers.range : assumedRange(answers);
    sim::EndpointVolume volume;
    volume.channels.clear();
    volume.minimum = range.minimum;
    volume.maximum = std::max(range.minimum, range.maximum);
    volume.step = std::max(range.step, 0.0f);
    return volume;
}

/// The levels that are known in both scales, in rising order, each once.
std::vector<sim::TaperPoint> knownPoints(const VolumeAnswers& answers)
{
    std::vector<sim::TaperPoint> points;
    for (const LevelAnswers& each : allLevels(answers))
    {
        if (each.level && each.scalar)
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

/// Without those whose scalar is lower than one before, which a machine cannot have.
std::vector<sim::TaperPoint> risingPoints(const VolumeAnswers& answers)
{
    std::vector<sim::TaperPoint> rising;
    for (const sim::TaperPoint& point : knownPoints(answers))
    {
        if (rising.empty() || point.scalar >= rising.back().scalar)
            rising.push_back(point);
    }
    return rising;
}

bool fits(const std::vector<sim::TaperPoint>& points, sim::EndpointVolume volume, sim::Taper taper)
{
    volume.taper = taper;
    return std::all_of(points.begin(), points.end(),
                       [&](const sim::TaperPoint& point)
                       { return sim::scalarLevel(volume, point.level) == point.scalar; });
}

/// The level nearest to that of @p scalar whose scalar is exactly that.
float levelOf(const sim::EndpointVolume& volume, float scalar)
{
    constexpr int mostRoundings = 64;
    constexpr float infinity = std::numeric_limits<float>::infinity();
    const float level = sim::decibelLevel(volume, std::clamp(scalar, 0.0f, 1.0f));
    float lower = level;
    float higher = level;
    for (int step = 0; step < mostRoundings; ++step)
    {
        for (const float candidate : {lower, higher})
        {
            if (std::isfinite(candidate) && sim::scalarLevel(volume, candidate) == scalar)
                return candidate;
        }
        lower = std::nextafter(lower, -infinity);
        higher = std::nextafter(higher, infinity);
    }
    return level;
}

/// What could not be read in decibels comes from the other scale; no value if neither could be read.
std::optional<float> levelOf(const sim::EndpointVolume& volume, const LevelAnswers& answers)
{
    if (answers.level || !answers.scalar)
        return answers.level;
    return levelOf(volume, *answers.scalar);
}

void setLevels(sim::EndpointVolume& volume, const VolumeAnswers& answers)
{
    const float usual = levelOf(volume, answers.master).value_or(volume.maximum);
    for (const LevelAnswers& channel : answers.channels)
        volume.channels.push_back(levelOf(volume, channel).value_or(usual));
    const bool isShown = answers.master.level
                             ? *answers.master.level == sim::masterLevel(volume)
                             : !answers.master.scalar || sim::scalarLevel(volume, usual) ==
                                                             sim::scalarLevel(volume, sim::masterLevel(volume));
    if (!isShown)
        volume.master = usual;
}

bool hasSteps(const sim::EndpointVolume& volume, const StepAnswers& steps)
{
    return sim::stepCount(volume) == steps.count && sim::stepOf(volume, sim::masterLevel(volume)) == steps.step;
}

/// A number of steps of its own changes which step a level is, too.
void setSteps(sim::EndpointVolume& volume, const StepAnswers& steps, const std::string& endpoint, Recorder& recorder)
{
    if (hasSteps(volume, steps))
        return;
    sim::EndpointVolume withOwn = volume;
    withOwn.steps = steps.count;
    const bool isShown = hasSteps(withOwn, steps);
    if (!isShown)
        recorder.note("GetVolumeStepInfo of " + endpoint + " stores step " + argument(steps.step) + " of " +
                      argument(steps.count) + ", which does not follow from its level.");
    if (isShown || sim::stepCount(volume) != steps.count)
        volume.steps = steps.count;
}

void noteWhatDiffers(const sim::EndpointVolume& volume, const VolumeAnswers& answers, Recorder& recorder)
{
    const bool hasRange =
        !answers.range || (answers.range->maximum == volume.maximum && answers.range->step == volume.step);
    if (!hasRange)
        recorder.note("The volume range of " + answers.endpoint + " ends below its beginning, or has a step below 0.");
    if (volume.hardwareSupport != answers.hardwareSupport)
        recorder.note("QueryHardwareSupport of " + answers.endpoint + " stores bits without meaning.");
    for (const LevelAnswers& each : allLevels(answers))
    {
        if (each.level && each.scalar && sim::scalarLevel(volume, *each.level) != *each.scalar)
            recorder.note("The volume levels of " + answers.endpoint + " fall while their scalars rise.");
    }
}
}

std::optional<sim::Taper> shownTaper(const VolumeAnswers& answers)
{
    const sim::EndpointVolume volume = withRange(answers);
    const std::vector<sim::TaperPoint> points = knownPoints(answers);
    const bool isLinear = fits(points, volume, sim::Taper::linear);
    const bool isAudio = fits(points, volume, sim::Taper::audio);
    if (isLinear && isAudio)
        return std::nullopt;
    if (isLinear)
        return sim::Taper::linear;
    return isAudio ? sim::Taper::audio : sim::Taper::measured;
}

sim::EndpointVolume volumeOf(const VolumeAnswers& answers, sim::Taper taper, Recorder& recorder)
{
    sim::EndpointVolume volume = withRange(answers);
    volume.taper = taper;
    if (taper == sim::Taper::measured)
        volume.taperPoints = risingPoints(answers);
    setLevels(volume, answers);
    volume.muted = answers.muted;
    if (answers.steps)
        setSteps(volume, *answers.steps, answers.endpoint, recorder);
    volume.hardwareSupport = answers.hardwareSupport & allHardwareSupport;
    noteWhatDiffers(volume, answers, recorder);
    return volume;
}
}
