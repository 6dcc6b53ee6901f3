/// @file
/// Levels of an endpoint volume between decibels and scalars, channels and master.
#pragma once

#include "simulator/machine/machine.h"

namespace sim
{
/// 0 at the minimum, 1 at the maximum, linear in between; 1 where both are the same.
float scalarLevel(const EndpointVolume& volume, float decibels);
float decibelLevel(const EndpointVolume& volume, float scalar);

/// The loudest channel, in decibels; the minimum where there is no channel.
float masterLevel(const EndpointVolume& volume);
/// Moves all channels by the same distance, so that the loudest is at @p decibels; none leaves the range.
void setMasterLevel(EndpointVolume& volume, float decibels);

/// How many steps the range has, the lower end included, and at which of them the master stands.
unsigned stepCount(const EndpointVolume& volume);
unsigned stepOf(const EndpointVolume& volume, float decibels);
}
