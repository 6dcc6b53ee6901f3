#include "sonavit/levelchange.h"

#include "sonavit/enumnames.h"
#include "sonavit/text.h"

#include <array>
#include <ostream>
#include <string>
#include <type_traits>

namespace sonavit
{
inline namespace v1
{
namespace
{
constexpr std::array<const char*, 3> directions = {"to", "up", "down"};

template<class Amount>
void write(std::ostream& out, const Amount& amount)
{
    if constexpr (std::is_same_v<Amount, Steps>)
        out << text::counted(amount.count, "step");
    else
        out << amount;
}
}

LevelChange::LevelChange(Percent level) : LevelChange(Direction::to, level) {}

LevelChange::LevelChange(Decibels level) : LevelChange(Direction::to, level) {}

LevelChange::LevelChange(Direction direction, std::variant<Percent, Decibels, Steps> amount)
    : m_direction(direction),
      m_amount(amount)
{
}

LevelChange LevelChange::up(Percent difference)
{
    return LevelChange(Direction::up, difference);
}

LevelChange LevelChange::up(Decibels difference)
{
    return LevelChange(Direction::up, difference);
}

LevelChange LevelChange::up(Steps steps)
{
    return LevelChange(Direction::up, steps);
}

LevelChange LevelChange::down(Percent difference)
{
    return LevelChange(Direction::down, difference);
}

LevelChange LevelChange::down(Decibels difference)
{
    return LevelChange(Direction::down, difference);
}

LevelChange LevelChange::down(Steps steps)
{
    return LevelChange(Direction::down, steps);
}

LevelChange LevelChange::onChannel(unsigned channel) const
{
    LevelChange result = *this;
    result.m_channel = channel;
    return result;
}

bool operator==(const LevelChange& left, const LevelChange& right)
{
    return left.direction() == right.direction() && left.amount() == right.amount() &&
           left.channel() == right.channel();
}

std::ostream& operator<<(std::ostream& out, const LevelChange& change)
{
    out << nameOf(directions, change.direction(), unknownKey) << ' ';
    std::visit([&](const auto& amount) { write(out, amount); }, change.amount());
    if (change.channel())
        out << ", channel " << std::to_string(*change.channel());
    return out;
}
}
}
