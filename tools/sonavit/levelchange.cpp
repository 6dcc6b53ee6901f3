#include "tools/sonavit/levelchange.h"

#include "tools/sonavit/failure.h"
#include "tools/sonavit/text.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>

namespace sonavit
{
namespace
{
constexpr float wholeVolume = 100.0f;

[[noreturn]] void raiseUnreadable(const std::string& text)
{
    throw UsageError("\"" + text + "\" is no volume: expected 50%, -12.5dB, 5%+ or 5%-");
}

bool takeEnd(std::string& text, const std::string& end)
{
    if (text.size() < end.size() || !equalNoCase(text.substr(text.size() - end.size()), end))
        return false;
    text.resize(text.size() - end.size());
    return true;
}

/// A decimal number with digits only, without exponents and such.
bool isNumber(const std::string& text)
{
    const std::size_t start = text.find_first_not_of("+-") == 1 ? 1 : 0;
    const std::string digits = text.substr(start);
    const std::size_t points = static_cast<std::size_t>(std::count(digits.begin(), digits.end(), '.'));
    return digits.size() > points && points <= 1 && digits.size() <= 12 &&
           digits.find_first_not_of("0123456789.") == std::string::npos;
}
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
    return volume.setPercent(static_cast<unsigned>(std::clamp(percent, 0.0f, wholeVolume)));
}

LevelChange readLevelChange(const std::string& text)
{
    LevelChange change;
    std::string rest = text;
    const bool isUp = takeEnd(rest, "+");
    const bool isDown = !isUp && takeEnd(rest, "-");
    change.isStep = isUp || isDown;
    if (takeEnd(rest, "%"))
        change.unit = LevelChange::Unit::percent;
    else if (takeEnd(rest, "dB"))
        change.unit = LevelChange::Unit::decibels;
    else
        raiseUnreadable(text);
    const bool hasSign = !rest.empty() && (rest[0] == '-' || rest[0] == '+');
    if (!isNumber(rest) || (hasSign && (change.isStep || change.unit == LevelChange::Unit::percent)))
        raiseUnreadable(text);

    change.amount = std::strtof(rest.c_str(), nullptr) * (isDown ? -1.0f : 1.0f);
    if (change.unit == LevelChange::Unit::percent && change.amount != std::floor(change.amount))
        throw UsageError("\"" + text + "\" is no volume: percents are whole numbers");
    if (change.unit == LevelChange::Unit::percent && std::fabs(change.amount) > wholeVolume)
        throw UsageError("\"" + text + "\" is no volume: percents run from 0 to 100");
    return change;
}
}
