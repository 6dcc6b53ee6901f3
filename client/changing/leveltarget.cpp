#include "client/changing/leveltarget.h"

#include "client/reading/judge.h"
#include "sonavit/text.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <variant>

namespace sonavit::changing
{
namespace
{
constexpr double wholePercent = 100.0;
/// Two levels at the same share of the range are one level; the share is computed in doubles.
constexpr double samePercent = 1e-9;
constexpr double sameDecibels = 1e-9;

/// With as many digits as it takes to see that @p level is outside the range.
Problem outsideRange(const Subject& subject, double level, const LevelRange& range)
{
    constexpr int usualDigits = 2;
    const std::string usual = text::decimal(level, usualDigits);
    const bool looksInside =
        usual == text::decimal(range.minimum, usualDigits) || usual == text::decimal(range.maximum, usualDigits);
    const auto number = [&](double value)
    { return looksInside ? text::shortest(value) : text::decimal(value, usualDigits); };
    return {Problem::Kind::outOfRange, subject.operation, subject.object,
            number(level) + " dB is outside the range of " + number(range.minimum) + " to " + number(range.maximum) +
                " dB"};
}

/// What the platform takes; a number that no float can express becomes the nearest one.
float asFloat(double value)
{
    constexpr double most = std::numeric_limits<float>::max();
    return static_cast<float>(std::clamp(value, -most, most));
}

double sign(LevelChange::Direction direction)
{
    return direction == LevelChange::Direction::down ? -1.0 : 1.0;
}

bool isStep(LevelChange::Direction direction)
{
    return direction != LevelChange::Direction::to;
}

double width(const LevelRange& range)
{
    return range.maximum - range.minimum;
}

/// Within the range. What lies at an end but for the errors of rounding is that end.
float clampedTo(const LevelRange& range, double level)
{
    if (std::abs(level - range.maximum) < sameDecibels)
        return asFloat(range.maximum);
    if (std::abs(level - range.minimum) < sameDecibels)
        return asFloat(range.minimum);
    return asFloat(std::clamp(level, range.minimum, range.maximum));
}

/// The reason why a step cannot be taken.
std::optional<Problem> missing(const Present& present)
{
    if (!present.level)
        return present.level.problem();
    if (!present.range)
        return present.range.problem();
    return std::nullopt;
}

Result<float> levelAt(const Subject& subject, Decibels wanted, const Present& present)
{
    const float level = asFloat(wanted.value());
    if (present.range)
    {
        const LevelRange& range = *present.range;
        if (level < asFloat(range.minimum) || level > asFloat(range.maximum))
            return outsideRange(subject, wanted.value(), range);
    }
    return level;
}

Result<float> levelAt(const Subject& subject, Percent wanted, const Present& present)
{
    if (!present.range)
        return present.range.problem();
    const LevelRange& range = *present.range;
    if (width(range) <= 0)
        return Problem(Problem::Kind::notSupported, subject.operation, subject.object,
                       "the level is fixed at " + text::decimal(range.minimum, 2) + " dB");
    if (present.level)
    {
        const double now = (static_cast<double>(*present.level) - range.minimum) / width(range) * wholePercent;
        if (std::abs(now - wanted.value()) <= samePercent)
            return *present.level;
    }
    return clampedTo(range, range.minimum + wanted.value() / wholePercent * width(range));
}
}

Result<double> distance(const Subject& subject, const LevelChange& change, const Present& present)
{
    if (const std::optional<Problem> problem = missing(present))
        return *problem;
    const LevelRange& range = *present.range;
    const double way = sign(change.direction());
    if (const auto* const percent = std::get_if<Percent>(&change.amount()))
        return way * width(range) * percent->value() / wholePercent;
    if (const auto* const decibels = std::get_if<Decibels>(&change.amount()))
        return way * static_cast<double>(asFloat(decibels->value()));
    if (range.step <= 0)
        return Problem(Problem::Kind::notSupported, subject.operation, subject.object, "the device reports no steps");
    return way * range.step * std::get<Steps>(change.amount()).count;
}

float levelAfter(double distance, const Present& present)
{
    return clampedTo(*present.range, static_cast<double>(*present.level) + distance);
}

Result<float> targetLevel(const Subject& subject, const LevelChange& change, const Present& present)
{
    if (isStep(change.direction()))
    {
        const Result<double> way = distance(subject, change, present);
        return way ? Result<float>(levelAfter(*way, present)) : way.problem();
    }
    if (const auto* const percent = std::get_if<Percent>(&change.amount()))
        return levelAt(subject, *percent, present);
    return levelAt(subject, std::get<Decibels>(change.amount()), present);
}

Result<float> targetScalar(LevelChange::Direction direction, Percent amount, const Result<float>& present)
{
    if (!isStep(direction))
        return asFloat(amount.value() / wholePercent);
    if (!present)
        return present.problem();
    const Percent target(static_cast<double>(*present) * wholePercent + sign(direction) * amount.value());
    return asFloat(target.value() / wholePercent);
}

Problem noSuchChannel(const Subject& subject, unsigned channel, unsigned count)
{
    const std::string last = std::to_string(count == 0 ? 0 : count - 1);
    const std::string channels = count == 0   ? "there are none"
                                 : count == 1 ? "the only one is channel 0"
                                              : "they are channels 0 to " + last;
    return {Problem::Kind::outOfRange, subject.operation, subject.object,
            "channel " + std::to_string(channel) + " does not exist: " + channels};
}

Result<float> finite(const Subject& subject, const char* call, float level)
{
    if (std::isfinite(level))
        return level;
    return Problem::ofCall(call, subject.object, reading::invalidData);
}

Result<LevelRange> finite(const Subject& subject, const char* call, float minimum, float maximum, float step)
{
    const bool isRange = std::isfinite(minimum) && std::isfinite(maximum) && std::isfinite(step) && minimum <= maximum;
    if (isRange)
        return LevelRange{minimum, maximum, step};
    return Problem::ofCall(call, subject.object, reading::invalidData);
}
}
