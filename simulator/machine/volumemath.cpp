#include "simulator/machine/volumemath.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <vector>

namespace sim
{
namespace
{
constexpr double power = 1.75;

/// The amplitude at @p decibels, to the power of 1/1.75.
double rootOfAmplitude(double decibels)
{
    return std::pow(10.0, decibels / 20.0 / power);
}

/// The root of the amplitude at the minimum, which is 1 if the range is too small to be told from an empty one.
double rootAtMinimum(const EndpointVolume& volume)
{
    return rootOfAmplitude(static_cast<double>(volume.minimum) - static_cast<double>(volume.maximum));
}

bool followsAmplitude(const EndpointVolume& volume)
{
    return volume.taper == Taper::audio && rootAtMinimum(volume) < 1.0;
}

bool followsPoints(const EndpointVolume& volume)
{
    return volume.taper == Taper::measured && !volume.taperPoints.empty();
}

/// The measured points, and the ends of the range at 0 and 1 where the points leave room for them.
std::vector<TaperPoint> measuredPoints(const EndpointVolume& volume)
{
    std::vector<TaperPoint> points = volume.taperPoints;
    if (volume.minimum < points.front().level && points.front().scalar > 0.0f)
        points.insert(points.begin(), {volume.minimum, 0.0f});
    if (points.back().level < volume.maximum && points.back().scalar < 1.0f)
        points.push_back({volume.maximum, 1.0f});
    return points;
}

/// The value at @p at on the line from (@p from, @p first) to (@p to, @p last); exact at both ends.
float interpolated(float at, float from, float to, float first, float last)
{
    if (at <= from)
        return first;
    if (at >= to)
        return last;
    const double share = (static_cast<double>(at) - from) / (static_cast<double>(to) - from);
    return static_cast<float>(first + share * (static_cast<double>(last) - first));
}

float measuredScalar(const EndpointVolume& volume, float decibels)
{
    const std::vector<TaperPoint> points = measuredPoints(volume);
    const auto isBelow = [](const TaperPoint& point, float level) { return point.level < level; };
    const auto next = std::lower_bound(points.begin(), points.end(), decibels, isBelow);
    if (next == points.end())
        return points.back().scalar;
    const TaperPoint& before = next == points.begin() ? *next : *(next - 1);
    return interpolated(decibels, before.level, next->level, before.scalar, next->scalar);
}

float measuredLevel(const EndpointVolume& volume, float scalar)
{
    const std::vector<TaperPoint> points = measuredPoints(volume);
    const auto isBelow = [](const TaperPoint& point, float wanted) { return point.scalar < wanted; };
    const auto next = std::lower_bound(points.begin(), points.end(), scalar, isBelow);
    if (next == points.end())
        return points.back().level;
    const TaperPoint& before = next == points.begin() ? *next : *(next - 1);
    return interpolated(scalar, before.scalar, next->scalar, before.level, next->level);
}

float linearScalar(const EndpointVolume& volume, float decibels)
{
    const double minimum = volume.minimum;
    return static_cast<float>((static_cast<double>(decibels) - minimum) / (volume.maximum - minimum));
}

float audioScalar(const EndpointVolume& volume, float decibels)
{
    const double atMinimum = rootAtMinimum(volume);
    const double root = rootOfAmplitude(static_cast<double>(decibels) - static_cast<double>(volume.maximum));
    return static_cast<float>((root - atMinimum) / (1.0 - atMinimum));
}
}

float scalarLevel(const EndpointVolume& volume, float decibels)
{
    if (followsPoints(volume))
        return measuredScalar(volume, decibels);
    if (volume.maximum <= volume.minimum)
        return 1.0f;
    return followsAmplitude(volume) ? audioScalar(volume, decibels) : linearScalar(volume, decibels);
}

float decibelLevel(const EndpointVolume& volume, float scalar)
{
    const double minimum = volume.minimum;
    const double maximum = volume.maximum;
    const double share = scalar;
    if (volume.maximum <= volume.minimum)
        return volume.minimum;
    if (followsPoints(volume))
        return std::clamp(measuredLevel(volume, scalar), volume.minimum, volume.maximum);
    if (!followsAmplitude(volume))
        return static_cast<float>(minimum + share * (maximum - minimum));
    const double atMinimum = rootAtMinimum(volume);
    const double root = atMinimum + share * (1.0 - atMinimum);
    const double decibels = maximum + 20.0 * power * std::log10(root);
    return static_cast<float>(std::clamp(decibels, minimum, maximum));
}

namespace
{
float loudestChannel(const EndpointVolume& volume)
{
    const auto loudest = std::max_element(volume.channels.begin(), volume.channels.end());
    return loudest == volume.channels.end() ? volume.minimum : *loudest;
}
}

float masterLevel(const EndpointVolume& volume)
{
    return volume.master ? *volume.master : loudestChannel(volume);
}

namespace
{
/// From now on the channels say what the master level is. Without a channel a master level is all that there is.
void endMaster(EndpointVolume& volume, float decibels)
{
    if (volume.channels.empty() && volume.master)
        volume.master = decibels;
    else
        volume.master.reset();
}
}

void setMasterLevel(EndpointVolume& volume, float decibels)
{
    const float distance = decibels - loudestChannel(volume);
    for (float& level : volume.channels)
        level = std::clamp(level + distance, volume.minimum, volume.maximum);
    endMaster(volume, decibels);
}

void setChannelLevel(EndpointVolume& volume, std::size_t channel, float decibels)
{
    volume.channels[channel] = decibels;
    endMaster(volume, decibels);
}

void setAllLevels(EndpointVolume& volume, float decibels)
{
    std::fill(volume.channels.begin(), volume.channels.end(), decibels);
    endMaster(volume, decibels);
}

namespace
{
/// The nearest whole number of steps. More than the platform's counts can express become the most that they can.
unsigned wholeSteps(float steps)
{
    constexpr float most = 2147483520.0f; // the largest of a float that an int can express
    return static_cast<unsigned>(std::llround(std::clamp(steps, 0.0f, most)));
}

/// Whether steps are at equal distances of the scalar level.
bool stepsOfScalars(const EndpointVolume& volume)
{
    return volume.steps || volume.taper != Taper::linear;
}

unsigned lastStep(const EndpointVolume& volume)
{
    const unsigned count = stepCount(volume);
    return count == 0 ? 0 : count - 1;
}
}

unsigned stepCount(const EndpointVolume& volume)
{
    if (volume.steps)
        return *volume.steps;
    if (volume.step <= 0.0f)
        return 1;
    return wholeSteps((volume.maximum - volume.minimum) / volume.step) + 1;
}

unsigned stepOf(const EndpointVolume& volume, float decibels)
{
    const unsigned last = lastStep(volume);
    if (last == 0)
        return 0;
    const double steps = stepsOfScalars(volume) ? scalarLevel(volume, decibels) * static_cast<float>(last)
                                                : (decibels - volume.minimum) / volume.step;
    return static_cast<unsigned>(std::llround(std::clamp(steps, 0.0, static_cast<double>(last))));
}

float neighbouringStep(const EndpointVolume& volume, float decibels, int direction)
{
    if (!stepsOfScalars(volume))
        return std::clamp(decibels + static_cast<float>(direction) * volume.step, volume.minimum, volume.maximum);
    const std::int64_t last = lastStep(volume);
    if (last == 0)
        return std::clamp(decibels, volume.minimum, volume.maximum);
    const std::int64_t step = std::clamp(std::int64_t{stepOf(volume, decibels)} + direction, std::int64_t{0}, last);
    return decibelLevel(volume, static_cast<float>(step) / static_cast<float>(last));
}

float nearestStep(const ChannelLevel& channel, float decibels)
{
    const double within = std::clamp(decibels, channel.minimum, channel.maximum);
    if (channel.step <= 0.0f || decibels >= channel.maximum)
        return static_cast<float>(within);
    const double minimum = channel.minimum;
    const double step = channel.step;
    const double snapped = minimum + std::round((within - minimum) / step) * step;
    return static_cast<float>(std::min(snapped, static_cast<double>(channel.maximum)));
}
}
