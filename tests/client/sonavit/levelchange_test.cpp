#include "sonavit/levelchange.h"

#include <gtest/gtest.h>

#include <sstream>

using namespace sonavit;

TEST(LevelChange, IsANewLevelByItself)
{
    const LevelChange percent = Percent(40);
    const LevelChange decibels = Decibels(-12);

    EXPECT_EQ(LevelChange::Direction::to, percent.direction());
    EXPECT_EQ(Percent(40), std::get<Percent>(percent.amount()));
    EXPECT_EQ(LevelChange::Direction::to, decibels.direction());
    EXPECT_EQ(Decibels(-12), std::get<Decibels>(decibels.amount()));
    EXPECT_EQ(std::nullopt, percent.channel());
}

TEST(LevelChange, GoesUpAndDown)
{
    EXPECT_EQ(LevelChange::Direction::up, LevelChange::up(Percent(5)).direction());
    EXPECT_EQ(Percent(5), std::get<Percent>(LevelChange::up(Percent(5)).amount()));
    EXPECT_EQ(Decibels(3), std::get<Decibels>(LevelChange::up(Decibels(3)).amount()));
    EXPECT_EQ(1u, std::get<Steps>(LevelChange::up().amount()).count);
    EXPECT_EQ(LevelChange::Direction::down, LevelChange::down(Percent(5)).direction());
    EXPECT_EQ(Percent(5), std::get<Percent>(LevelChange::down(Percent(5)).amount()));
    EXPECT_EQ(Decibels(3), std::get<Decibels>(LevelChange::down(Decibels(3)).amount()));
    EXPECT_EQ(2u, std::get<Steps>(LevelChange::down(Steps{2}).amount()).count);
}

TEST(LevelChange, IsForAllChannelsOrForOne)
{
    const LevelChange all = LevelChange::up(Decibels(3));
    const LevelChange one = all.onChannel(1);

    EXPECT_EQ(std::nullopt, all.channel());
    EXPECT_EQ(1u, one.channel());
    EXPECT_EQ(LevelChange::Direction::up, one.direction());
    EXPECT_EQ(Decibels(3), std::get<Decibels>(one.amount()));
}

TEST(LevelChange, IsEqualIfDirectionAmountAndChannelAre)
{
    const LevelChange change = LevelChange::up(Decibels(3));

    EXPECT_EQ(change, LevelChange::up(Decibels(3)));
    EXPECT_NE(change, LevelChange::down(Decibels(3)));
    EXPECT_NE(change, LevelChange::up(Percent(3)));
    EXPECT_NE(change, LevelChange::up(Decibels(4)));
    EXPECT_NE(change, change.onChannel(0));
    EXPECT_EQ(Steps{2}, Steps{2});
    EXPECT_NE(Steps{2}, Steps{1});
}

TEST(LevelChange, IsPrintedInWords)
{
    std::ostringstream out;
    out << LevelChange(Percent(40)) << "; " << LevelChange::up(Decibels(3)) << "; "
        << LevelChange::down(Steps{2}).onChannel(1234) << "; " << LevelChange::up();

    EXPECT_EQ("to 40%; up 3.00 dB; down 2 steps, channel 1234; up 1 step", out.str());
}
