#pragma once

#include "tools/sonavit/endpointvolume.h"

#include <string>

namespace sonavit
{
/// A new volume, or a step from the present one.
struct LevelChange
{
    enum class Unit
    {
        percent,
        decibels
    };

    Unit unit = Unit::percent;
    bool isStep = false;
    float amount = 0.0f; ///< of a step down it is negative

    /// Whether the change starts from a level that has to be known.
    bool canStartAt(const Level& level) const;

    /// Applies the change to a volume that stands at @p level. Steps in percent end at 0 and 100; decibels go to the
    /// platform as they are. @return whether the platform accepted
    bool apply(EndpointVolume& volume, const Level& level) const;
};

/// Reads "50%", "-12.5dB", "5%+", "5%-", "3dB+", "3dB-". Throws UsageError.
LevelChange readLevelChange(const std::string& text);
}
