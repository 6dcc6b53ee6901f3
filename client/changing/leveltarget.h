/// @file
/// Which level a change leads to, for one channel or for the master. Nothing here calls the platform.
#pragma once

#include "sonavit/levelchange.h"
#include "sonavit/problem.h"
#include "sonavit/result.h"
#include "sonavit/volume.h"

#include <string>

namespace sonavit::changing
{
/// What problems name: the operation of the layer, and the id of the object that it changes.
struct Subject
{
    std::string operation;
    std::string object;
};

/// What is there before a change; a Problem for what cannot be read.
struct Present
{
    Result<float> level;
    Result<LevelRange> range;
};

/// How far a step leads, in decibels; negative for a step down. It needs level and range.
/// Problem::Kind::notSupported for device steps if the device reports none.
Result<double> distance(const Subject& subject, const LevelChange& change, const Present& present);

/// The level that is @p distance decibels away, or the end of the range. It needs level and range.
float levelAfter(double distance, const Present& present);

/// The level in decibels after @p change.
///
/// A step stops at the ends of the range. A new level outside the range is Problem::Kind::outOfRange; if the range
/// cannot be read, the platform decides. A percentage of a range with a single level is Problem::Kind::notSupported.
Result<float> targetLevel(const Subject& subject, const LevelChange& change, const Present& present);

/// The scalar level, 0 to 1, after @p amount. A step needs the present one.
Result<float> targetScalar(LevelChange::Direction direction, Percent amount, const Result<float>& present);

/// Problem::Kind::outOfRange for a channel that does not exist.
Problem noSuchChannel(const Subject& subject, unsigned channel, unsigned count);

/// What @p call has stored; a Problem with the code reading::invalidData if it is no number, or no range.
Result<float> finite(const Subject& subject, const char* call, float level);
Result<LevelRange> finite(const Subject& subject, const char* call, float minimum, float maximum, float step);
}
