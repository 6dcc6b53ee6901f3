#include "simulator/core/volumemath.h"

#include <algorithm>
#include <cmath>

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
}

float scalarLevel(const EndpointVolume& volume, float decibels)
{
    const double minimum = volume.minimum;
    const double maximum = volume.maximum;
    if (maximum <= minimum)
        return 1.0f;
    if (volume.taper == Taper::linear)
        return static_cast<float>((static_cast<double>(decibels) - minimum) / (maximum - minimum));
    const double atMinimum = rootOfAmplitude(minimum - maximum);
    const double root = rootOfAmplitude(static_cast<double>(decibels) - maximum);
    return static_cast<float>((root - atMinimum) / (1.0 - atMinimum));
}

float decibelLevel(const EndpointVolume& volume, float scalar)
{
    const double minimum = volume.minimum;
    const double maximum = volume.maximum;
    const double share = scalar;
    if (volume.taper == Taper::linear || maximum <= minimum)
        return static_cast<float>(minimum + share * (maximum - minimum));
    const double atMinimum = rootOfAmplitude(minimum - maximum);
    const double root = atMinimum + share * (1.0 - atMinimum);
    const auto decibels = static_cast<float>(maximum + 20.0 * power * std::log10(root));
    return std::clamp(decibels, volume.minimum, volume.maximum);
}

float masterLevel(const EndpointVolume& volume)
{
    const auto loudest = std::max_element(volume.channels.begin(), volume.channels.end());
    return loudest == volume.channels.end() ? volume.minimum : *loudest;
}

void setMasterLevel(EndpointVolume& volume, float decibels)
{
    const float distance = decibels - masterLevel(volume);
    for (float& level : volume.channels)
        level = std::clamp(level + distance, volume.minimum, volume.maximum);
}

namespace
{
/// The nearest whole number of steps. More than the platform's counts can express become the most that they can.
unsigned wholeSteps(float steps)
{
    constexpr float most = 2147483520.0f; // the largest of a float that an int can express
    return static_cast<unsigned>(std::llround(std::clamp(steps, 0.0f, most)));
}
}

unsigned stepCount(const EndpointVolume& volume)
{
    if (volume.step <= 0.0f)
        return 1;
    return wholeSteps((volume.maximum - volume.minimum) / volume.step) + 1;
}

unsigned stepOf(const EndpointVolume& volume, float decibels)
{
    if (volume.step <= 0.0f)
        return 0;
    const float steps = volume.taper == Taper::linear
                            ? (decibels - volume.minimum) / volume.step
                            : scalarLevel(volume, decibels) * static_cast<float>(stepCount(volume) - 1);
    return wholeSteps(steps);
}

float neighbouringStep(const EndpointVolume& volume, float decibels, int direction)
{
    if (volume.taper == Taper::linear)
        return std::clamp(decibels + static_cast<float>(direction) * volume.step, volume.minimum, volume.maximum);
    const int last = static_cast<int>(stepCount(volume)) - 1;
    const int step = std::clamp(static_cast<int>(stepOf(volume, decibels)) + direction, 0, last);
    return last == 0 ? decibels : decibelLevel(volume, static_cast<float>(step) / static_cast<float>(last));
}

float nearestStep(const ChannelLevel& channel, float decibels)
{
    const double within = std::clamp(decibels, channel.minimum, channel.maximum);
    if (channel.step <= 0.0f || decibels >= channel.maximum)
        return static_cast<float>(within);
    const double minimum = channel.minimum;
    const double step = channel.step;
    const double snapped = minimum + std::round((within - minimum) / step) * step;
    return std::min(static_cast<float>(snapped), channel.maximum);
}
}
