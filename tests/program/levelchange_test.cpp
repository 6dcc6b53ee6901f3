#include "tools/sonavit/levelchange.h"

#include "tools/sonavit/failure.h"

#include <gtest/gtest.h>

using namespace sonavit::program;

namespace
{
std::string complaint(const std::string& text)
{
    try
    {
        readLevelChange(text);
    }
    catch (const UsageError& error)
    {
        return error.what();
    }
    return "";
}
}

TEST(ProgramLevelChange, ReadsAPercentage)
{
    const LevelChange change = readLevelChange("50%");

    EXPECT_EQ(LevelChange::Unit::percent, change.unit);
    EXPECT_FALSE(change.isStep);
    EXPECT_EQ(50.0f, change.amount);
}

TEST(ProgramLevelChange, ReadsDecibelsWithASign)
{
    const LevelChange below = readLevelChange("-12.5dB");
    const LevelChange above = readLevelChange("+3DB");

    EXPECT_EQ(LevelChange::Unit::decibels, below.unit);
    EXPECT_FALSE(below.isStep);
    EXPECT_EQ(-12.5f, below.amount);
    EXPECT_EQ(3.0f, above.amount);
}

TEST(ProgramLevelChange, ReadsSteps)
{
    const LevelChange up = readLevelChange("5%+");
    const LevelChange down = readLevelChange("5%-");
    const LevelChange decibels = readLevelChange("1.5dB-");

    EXPECT_TRUE(up.isStep);
    EXPECT_EQ(5.0f, up.amount);
    EXPECT_TRUE(down.isStep);
    EXPECT_EQ(-5.0f, down.amount);
    EXPECT_EQ(LevelChange::Unit::decibels, decibels.unit);
    EXPECT_EQ(-1.5f, decibels.amount);
}

TEST(ProgramLevelChange, RefusesWhatIsNoVolume)
{
    for (const char* const text : {"",
                                   "%",
                                   "dB",
                                   "-dB",
                                   "x%",
                                   "5%+-",
                                   "+5%+",
                                   "-5%-",
                                   "5+%",
                                   "--5dB",
                                   "5e3dB",
                                   "1.2.3dB",
                                   ".dB",
                                   "infdB",
                                   "nandB",
                                   "0x10dB",
                                   "-5dB+",
                                   " 5%",
                                   "5 %",
                                   "5%%",
                                   "\xE2\x88\x92"
                                   "5dB",
                                   "99999999999999999999%"})
        EXPECT_EQ("\"" + std::string(text) + "\" is not a volume: write 50%, -12.5dB, 5%+ or 5%-", complaint(text));
}

TEST(ProgramLevelChange, TakesPercentagesFrom0To100)
{
    EXPECT_EQ("\"150%\" is not a volume: percentages range from 0 to 100", complaint("150%"));
    EXPECT_EQ("\"101%+\" is not a volume: percentages range from 0 to 100", complaint("101%+"));
    EXPECT_EQ("\"100.1%\" is not a volume: percentages range from 0 to 100", complaint("100.1%"));
    EXPECT_EQ("", complaint("0%"));
    EXPECT_EQ("", complaint("100%"));
    EXPECT_EQ("", complaint("101dB"));
}

TEST(ProgramLevelChange, ReadsAFractionOfAPercent)
{
    EXPECT_EQ(33.3f, readLevelChange("33.3%").amount);
    EXPECT_EQ(0.5f, readLevelChange(".5%+").amount);
}

TEST(ProgramLevelChange, TakesANumberWithoutUnitForPercent)
{
    const LevelChange level = readLevelChange("50");
    const LevelChange step = readLevelChange("5-");

    EXPECT_EQ(LevelChange::Unit::percent, level.unit);
    EXPECT_FALSE(level.isStep);
    EXPECT_EQ(50.0f, level.amount);
    EXPECT_TRUE(step.isStep);
    EXPECT_EQ(-5.0f, step.amount);
}

TEST(ProgramLevelChange, AsksForTheUnitOfASignedNumber)
{
    EXPECT_EQ("\"-5\" is not a volume: add the unit, as in -5dB or -5%", complaint("-5"));
    EXPECT_EQ("\"+5\" is not a volume: add the unit, as in +5dB or +5%", complaint("+5"));
}

TEST(ProgramLevelChange, TakesASignedPercentageForAStep)
{
    const LevelChange up = readLevelChange("+5%");
    const LevelChange down = readLevelChange("-5%");

    EXPECT_TRUE(up.isStep);
    EXPECT_EQ(5.0f, up.amount);
    EXPECT_TRUE(down.isStep);
    EXPECT_EQ(-5.0f, down.amount);
}

TEST(ProgramLevelChange, NeedsToKnowTheLevelForAStepAlone)
{
    const Level percentAlone{50u, std::nullopt};
    const Level decibelsAlone{std::nullopt, -6.0f};

    EXPECT_TRUE(readLevelChange("5%+").canStartAt(percentAlone));
    EXPECT_FALSE(readLevelChange("5%+").canStartAt(decibelsAlone));
    EXPECT_TRUE(readLevelChange("5dB+").canStartAt(decibelsAlone));
    EXPECT_FALSE(readLevelChange("5dB+").canStartAt(percentAlone));
    EXPECT_TRUE(readLevelChange("5%").canStartAt({}));
    EXPECT_TRUE(readLevelChange("-5dB").canStartAt({}));
}
