#pragma once

#include "tools/sonavit/endpointvolume.h"

namespace sonavit::program
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
    float amount = 0.0f; ///< percent or decibels; negative for a step down

    /// Whether @p level is enough to apply the change: a step needs to know the level that it starts from.
    bool canStartAt(const Level& level) const;

    /// Applies the change to a volume whose present level is @p level. Steps in percent end at 0 and 100; decibels go
    /// to the platform as they are. @return whether the platform accepted the new volume
    bool apply(EndpointVolume& volume, const Level& level) const;
};
}
