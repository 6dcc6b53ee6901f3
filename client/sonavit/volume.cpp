#include "sonavit/volume.h"

#include "sonavit/text.h"

#include <cmath>
#include <ostream>
#include <stdexcept>

namespace sonavit
{
inline namespace v1
{
namespace
{
double requireNumber(double value)
{
    if (std::isnan(value))
        throw std::invalid_argument("sonavit: a level must be a number");
    return value;
}

double clamped(double value)
{
    if (value > 0)
        return value < 100 ? value : 100;
    return 0;
}

/// What is not a number equals itself here, so that a value always equals its copy.
bool isSame(double left, double right)
{
    return left == right || (std::isnan(left) && std::isnan(right));
}
}

Percent::Percent(double value) : m_value(clamped(requireNumber(value))) {}

unsigned Percent::rounded() const noexcept
{
    const double whole = std::floor(m_value);
    return static_cast<unsigned>(whole) + (m_value - whole >= 0.5 ? 1 : 0);
}

Decibels::Decibels(double value) : m_value(requireNumber(value)) {}

std::ostream& operator<<(std::ostream& out, Percent percent)
{
    return out << std::to_string(percent.rounded()) + "%";
}

std::ostream& operator<<(std::ostream& out, Decibels decibels)
{
    return out << text::decimal(decibels.value(), 2) + " dB";
}

std::string Level::sentence() const
{
    if (!percent && !decibels)
        return text::nothing;
    const std::string inDecibels = decibels ? text::decimal(decibels->value(), 2) + " dB" : std::string();
    if (!percent)
        return inDecibels;
    return std::to_string(percent->rounded()) + "%" + (decibels ? " (" + inDecibels + ")" : "");
}

std::string Volume::sentence() const
{
    return master.sentence() + (isMuted.value_or(false) ? ", muted" : "");
}

bool operator==(const LevelRange& left, const LevelRange& right) noexcept
{
    return isSame(left.minimum, right.minimum) && isSame(left.maximum, right.maximum) && isSame(left.step, right.step);
}

bool operator==(const Level& left, const Level& right) noexcept
{
    return left.percent == right.percent && left.decibels == right.decibels;
}

bool operator==(const Volume& left, const Volume& right)
{
    return left.master == right.master && left.range == right.range && left.channels == right.channels &&
           left.isMuted == right.isMuted && left.isInHardware == right.isInHardware;
}

std::ostream& operator<<(std::ostream& out, const LevelRange& range)
{
    return out << text::decimal(range.minimum, 2) << " to " << text::decimal(range.maximum, 2) << " dB in steps of "
               << text::decimal(range.step, 2);
}

std::ostream& operator<<(std::ostream& out, const Level& level)
{
    return out << level.sentence();
}

std::ostream& operator<<(std::ostream& out, const Volume& volume)
{
    text::Fields(out, "Volume")
        .add("master", volume.master)
        .add("range", volume.range)
        .add("channels", volume.channels)
        .add("isMuted", volume.isMuted)
        .add("isInHardware", volume.isInHardware);
    return out;
}
}
}
