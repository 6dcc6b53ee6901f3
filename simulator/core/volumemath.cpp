#include "simulator/core/volumemath.h"

#include <algorithm>
#include <cmath>

namespace sim
{
float scalarLevel(const EndpointVolume& volume, float decibels)
{
    const double range = static_cast<double>(volume.maximum) - static_cast<double>(volume.minimum);
    if (range <= 0.0)
        return 1.0f;
    return static_cast<float>((static_cast<double>(decibels) - static_cast<double>(volume.minimum)) / range);
}

float decibelLevel(const EndpointVolume& volume, float scalar)
{
    const double range = static_cast<double>(volume.maximum) - static_cast<double>(volume.minimum);
    return static_cast<float>(static_cast<double>(volume.minimum) + static_cast<double>(scalar) * range);
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

unsigned stepCount(const EndpointVolume& volume)
{
    return stepOf(volume, volume.maximum) + 1;
}

unsigned stepOf(const EndpointVolume& volume, float decibels)
{
    if (volume.step <= 0.0f)
        return 0;
    return static_cast<unsigned>(std::max(0L, std::lround((decibels - volume.minimum) / volume.step)));
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
