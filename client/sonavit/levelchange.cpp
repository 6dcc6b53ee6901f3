#include "sonavit/levelchange.h"

namespace sonavit
{
inline namespace v1
{
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
}
}
