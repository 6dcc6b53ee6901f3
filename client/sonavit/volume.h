/// @file
/// Levels in percent and decibels.
#pragma once

#include "sonavit/export.h"

#include <iosfwd>
#include <optional>
#include <string>
#include <vector>

namespace sonavit
{
inline namespace v1
{
/// A level or a difference of levels in percent, 0 to 100.
///
/// Of an endpoint it is the platform's scalar times 100, of a hardware control the share of its decibel range: two
/// different scales. Who sets the percent that was read changes no level.
class SONAVIT_CLIENT_API Percent
{
public:
    /// Values below 0 become 0, values above 100 become 100. Throws std::invalid_argument, a std::logic_error, if
    /// @p value is not a number.
    explicit Percent(double value);

    double value() const noexcept { return m_value; }
    /// The whole percent to show: rounded half up.
    unsigned rounded() const noexcept;

    friend bool operator==(Percent left, Percent right) noexcept { return left.m_value == right.m_value; }
    friend bool operator!=(Percent left, Percent right) noexcept { return left.m_value != right.m_value; }
    friend bool operator<(Percent left, Percent right) noexcept { return left.m_value < right.m_value; }
    friend bool operator>(Percent left, Percent right) noexcept { return left.m_value > right.m_value; }
    friend bool operator<=(Percent left, Percent right) noexcept { return left.m_value <= right.m_value; }
    friend bool operator>=(Percent left, Percent right) noexcept { return left.m_value >= right.m_value; }

private:
    double m_value;
};

/// A level or a difference of levels in decibels. 0 is the level at which the sound is passed unchanged.
class SONAVIT_CLIENT_API Decibels
{
public:
    /// Throws std::invalid_argument, a std::logic_error, if @p value is not a number; it may be infinite.
    explicit Decibels(double value);

    double value() const noexcept { return m_value; }

    friend bool operator==(Decibels left, Decibels right) noexcept { return left.m_value == right.m_value; }
    friend bool operator!=(Decibels left, Decibels right) noexcept { return left.m_value != right.m_value; }
    friend bool operator<(Decibels left, Decibels right) noexcept { return left.m_value < right.m_value; }
    friend bool operator>(Decibels left, Decibels right) noexcept { return left.m_value > right.m_value; }
    friend bool operator<=(Decibels left, Decibels right) noexcept { return left.m_value <= right.m_value; }
    friend bool operator>=(Decibels left, Decibels right) noexcept { return left.m_value >= right.m_value; }

private:
    double m_value;
};

SONAVIT_CLIENT_API std::ostream& operator<<(std::ostream& out, Percent percent);   ///< "40%"
SONAVIT_CLIENT_API std::ostream& operator<<(std::ostream& out, Decibels decibels); ///< "-12.50 dB"

/// What levels a device can have, in decibels: minimum, minimum + step, and so on to maximum. 0 is the level at which
/// the sound is passed unchanged; many maxima are above it. A step of 0 means that the device reports none. The limits
/// of a hardware control may be infinite.
struct LevelRange
{
    double minimum = 0;
    double maximum = 0;
    double step = 0;
};

/// One level. What cannot be read has no value; there is no percent where the range is empty or not finite.
struct Level
{
    std::optional<Percent> percent;
    std::optional<Decibels> decibels;

    /// "40% (-18.00 dB)"; "-" for a level that cannot be read.
    SONAVIT_CLIENT_API std::string sentence() const;
};

/// The volume of an endpoint, as IAudioEndpointVolume reports it. What the platform fails to report has no value, and
/// Endpoint::problemWith(EndpointField::volume) says why.
struct Volume
{
    Level master;
    std::optional<LevelRange> range;
    std::optional<std::vector<Level>> channels; ///< by channel number, from 0; no value if there is no count of them
    std::optional<bool> isMuted;
    /// Whether the device itself attenuates, and not Windows.
    std::optional<bool> isInHardware;

    /// "40% (-18.00 dB)" of the master, and ", muted" if it is.
    SONAVIT_CLIENT_API std::string sentence() const;
};

SONAVIT_CLIENT_API bool operator==(const LevelRange& left, const LevelRange& right) noexcept;
SONAVIT_CLIENT_API bool operator==(const Level& left, const Level& right) noexcept;
SONAVIT_CLIENT_API bool operator==(const Volume& left, const Volume& right);
inline bool operator!=(const LevelRange& left, const LevelRange& right) noexcept
{
    return !(left == right);
}
inline bool operator!=(const Level& left, const Level& right) noexcept
{
    return !(left == right);
}
inline bool operator!=(const Volume& left, const Volume& right)
{
    return !(left == right);
}
SONAVIT_CLIENT_API std::ostream& operator<<(std::ostream& out, const LevelRange& range);
SONAVIT_CLIENT_API std::ostream& operator<<(std::ostream& out, const Level& level);
SONAVIT_CLIENT_API std::ostream& operator<<(std::ostream& out, const Volume& volume);
}
}
