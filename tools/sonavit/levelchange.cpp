#include "tools/sonavit/levelchange.h"

#include <algorithm>

namespace sonavit::program
{
namespace
{
constexpr float wholeVolume = 100.0f;
}

bool LevelChange::canStartAt(const Level& level) const
{
    return !isStep || (unit == Unit::percent ? level.percent.has_value() : level.decibels.has_value());
}

bool LevelChange::apply(EndpointVolume& volume, const Level& level) const
{
    if (unit == Unit::decibels)
        return volume.setDecibels(isStep ? *level.decibels + amount : amount);
    const float percent = isStep ? static_cast<float>(*level.percent) + amount : amount;
    return volume.setPercent(std::clamp(percent, 0.0f, wholeVolume));
}
}
