/// @file
/// Levels of an endpoint volume between decibels and scalars, channels and master.
#pragma once

#include "simulator/machine/machine.h"

namespace sim
{
/// 0 at the minimum, 1 at the maximum, linear in decibels in between; 1 if minimum and maximum are equal.
float scalarLevel(const EndpointVolume& volume, float decibels);
float decibelLevel(const EndpointVolume& volume, float scalar);

/// The loudest channel, in decibels; the minimum if there is no channel.
float masterLevel(const EndpointVolume& volume);
/// Moves all channels by the same distance, so that the loudest is at @p decibels; none leaves the range.
void setMasterLevel(EndpointVolume& volume, float decibels);

/// The number of steps in the range, both ends included; 1 without a step size.
unsigned stepCount(const EndpointVolume& volume);
/// The step nearest to @p decibels, counted from 0 at the minimum.
unsigned stepOf(const EndpointVolume& volume, float decibels);

/// The level that hardware takes if it is asked for @p decibels, which must not be NaN: the nearest step, counted from
/// the minimum; a level outside the range becomes the nearest end, which need not be a step.
float nearestStep(const ChannelLevel& channel, float decibels);
}
