/// @file
/// What to do to a level.
#pragma once

#include "sonavit/volume.h"

#include <iosfwd>
#include <optional>
#include <variant>

namespace sonavit
{
inline namespace v1
{
/// The device's own steps, as its keys for louder and softer use them (IAudioEndpointVolume::VolumeStepUp); of a
/// hardware control, steps of its range.
struct Steps
{
    unsigned count = 1;

    friend constexpr bool operator==(Steps left, Steps right) noexcept { return left.count == right.count; }
    friend constexpr bool operator!=(Steps left, Steps right) noexcept { return left.count != right.count; }
};

/// A new level, or a step from the present one, for all channels or one of them.
///
///     audio.setVolume(id, Percent(40));
///     audio.setVolume(id, LevelChange::up(Decibels(3)));
///     audio.setVolume(id, LevelChange(Decibels(-12)).onChannel(1));
///
/// A value; any thread may use it.
class SONAVIT_CLIENT_API LevelChange
{
public:
    enum class Direction : int
    {
        to,
        up,
        down
    };

    // Implicit on purpose: a level is the usual change.
    // NOLINTBEGIN(google-explicit-constructor)
    LevelChange(Percent level);
    LevelChange(Decibels level);
    // NOLINTEND(google-explicit-constructor)

    /// Louder or softer by that much. The result stops at the ends of the range. A negative difference in decibels
    /// reverses the direction.
    static LevelChange up(Percent difference);
    static LevelChange up(Decibels difference);
    static LevelChange up(Steps steps = Steps());
    static LevelChange down(Percent difference);
    static LevelChange down(Decibels difference);
    static LevelChange down(Steps steps = Steps());

    /// The same for one channel, counted from 0 as in Volume::channels; the others keep their levels. The platform has
    /// no steps for one channel: Steps are then those of the range.
    LevelChange onChannel(unsigned channel) const;

    Direction direction() const noexcept { return m_direction; }
    const std::variant<Percent, Decibels, Steps>& amount() const noexcept { return m_amount; }
    std::optional<unsigned> channel() const noexcept { return m_channel; }

private:
    LevelChange(Direction direction, std::variant<Percent, Decibels, Steps> amount);

    Direction m_direction;
    std::variant<Percent, Decibels, Steps> m_amount;
    std::optional<unsigned> m_channel;
};

SONAVIT_CLIENT_API bool operator==(const LevelChange& left, const LevelChange& right);
inline bool operator!=(const LevelChange& left, const LevelChange& right)
{
    return !(left == right);
}
/// "to 40%", "up 3.00 dB", "down 2 steps, channel 1".
SONAVIT_CLIENT_API std::ostream& operator<<(std::ostream& out, const LevelChange& change);
}
}
