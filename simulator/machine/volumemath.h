/// @file
/// Levels of an endpoint volume between decibels and scalars, channels and master.
#pragma once

#include "simulator/machine/machine.h"

#include <cstddef>

namespace sim
{
/// 0 at the minimum, 1 at the maximum; 1 if minimum and maximum are equal. Otherwise as the volume's taper says, which
/// goes on outside the range:
///
/// linear: linear in decibels. audio: a power law of the amplitude a, which is 1 at the maximum and m at the minimum:
/// scalar = (a^(1/1.75) - m^(1/1.75)) / (1 - m^(1/1.75)). Windows uses that power for its fades, and on a range from
/// -65.25 to 0 decibels the law gives the levels that Windows shows: 27 % is -19.35, 50 % is -10.33 decibels.
/// measured: at the level of a point its scalar to the letter, linear in decibels between two. Points come first: they
/// say it for the ends of the range and for levels outside it, too.
float scalarLevel(const EndpointVolume& volume, float decibels);
/// The reverse, within the range; the lowest of several levels with the same scalar.
float decibelLevel(const EndpointVolume& volume, float scalar);

/// EndpointVolume::master, in decibels; without one the loudest channel, and the minimum if there is no channel.
float masterLevel(const EndpointVolume& volume);
/// Moves all channels by the same distance, so that the loudest is at @p decibels; none leaves the range. From now on
/// the loudest is the master level, whatever EndpointVolume::master was. A volume with a master level and no channel
/// keeps @p decibels as its master level.
void setMasterLevel(EndpointVolume& volume, float decibels);
/// Sets a channel that exists. From now on the loudest channel is the master level.
void setChannelLevel(EndpointVolume& volume, std::size_t channel, float decibels);
/// Sets all channels and, of a volume without channels, the master level if it has one.
void setAllLevels(EndpointVolume& volume, float decibels);

/// EndpointVolume::steps; without it the number of steps in the range, both ends included, and 1 without a step size.
unsigned stepCount(const EndpointVolume& volume);
/// The step nearest to @p decibels, counted from 0 at the minimum. Steps are at equal distances of decibels; of the
/// scalar level if the volume has a number of steps of its own or another taper than Taper::linear.
unsigned stepOf(const EndpointVolume& volume, float decibels);

/// The level one step above (@p direction 1) or below (-1) @p decibels, or the end of the range: volume.step decibels
/// away, or a step of stepOf() where steps are at equal distances of the scalar level.
float neighbouringStep(const EndpointVolume& volume, float decibels, int direction);

/// The level that hardware takes if it is asked for @p decibels, which must not be NaN: the nearest step, counted from
/// the minimum; a level outside the range becomes the nearest end, which need not be a step.
float nearestStep(const ChannelLevel& channel, float decibels);
}
