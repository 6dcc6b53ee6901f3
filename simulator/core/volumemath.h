/// @file
/// Levels of an endpoint volume between decibels and scalars, channels and master.
#pragma once

#include "simulator/machine/machine.h"

namespace sim
{
/// 0 at the minimum, 1 at the maximum; 1 if minimum and maximum are equal. In between as the volume's taper says:
///
/// linear: linear in decibels. audio: a power law of the amplitude a, which is 1 at the maximum and m at the minimum:
/// scalar = (a^(1/1.75) - m^(1/1.75)) / (1 - m^(1/1.75)). Windows uses that power for its fades, and on a range from
/// -65.25 to 0 decibels the law gives the levels that Windows shows: 27 % is -19.35, 50 % is -10.33 decibels.
float scalarLevel(const EndpointVolume& volume, float decibels);
/// The reverse.
float decibelLevel(const EndpointVolume& volume, float scalar);

/// The loudest channel, in decibels; the minimum if there is no channel.
float masterLevel(const EndpointVolume& volume);
/// Moves all channels by the same distance, so that the loudest is at @p decibels; none leaves the range.
void setMasterLevel(EndpointVolume& volume, float decibels);

/// The number of steps in the range, both ends included; 1 without a step size.
unsigned stepCount(const EndpointVolume& volume);
/// The step nearest to @p decibels, counted from 0 at the minimum. Steps are at equal distances of decibels, or of the
/// scalar level with Taper::audio.
unsigned stepOf(const EndpointVolume& volume, float decibels);

/// The level one step above (@p direction 1) or below (-1) @p decibels, or the end of the range. With Taper::audio a
/// step of stepOf(), otherwise volume.step decibels away.
float neighbouringStep(const EndpointVolume& volume, float decibels, int direction);

/// The level that hardware takes if it is asked for @p decibels, which must not be NaN: the nearest step, counted from
/// the minimum; a level outside the range becomes the nearest end, which need not be a step.
float nearestStep(const ChannelLevel& channel, float decibels);
}
