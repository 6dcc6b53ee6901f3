#include "tools/sonavit/commandlinevalues.h"

#include "tools/sonavit/failure.h"

#include <gtest/gtest.h>

using namespace sonavit::program;

namespace
{
/// What @p read says about @p text if it refuses it.
template<class Value>
std::string complaint(Value (*read)(const std::string&), const std::string& text)
{
    try
    {
        read(text);
    }
    catch (const UsageError& error)
    {
        return error.what();
    }
    return "";
}
}

TEST(ProgramReadLevelChange, ReadsAPercentage)
{
    const LevelChange change = readLevelChange("50%");

    EXPECT_EQ(LevelChange::Unit::percent, change.unit);
    EXPECT_FALSE(change.isStep);
    EXPECT_EQ(50.0f, change.amount);
}

TEST(ProgramReadLevelChange, ReadsDecibelsWithASign)
{
    const LevelChange below = readLevelChange("-12.5dB");
    const LevelChange above = readLevelChange("+3DB");

    EXPECT_EQ(LevelChange::Unit::decibels, below.unit);
    EXPECT_FALSE(below.isStep);
    EXPECT_EQ(-12.5f, below.amount);
    EXPECT_EQ(3.0f, above.amount);
}

TEST(ProgramReadLevelChange, ReadsSteps)
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

TEST(ProgramReadLevelChange, RefusesWhatIsNoVolume)
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
        EXPECT_EQ("\"" + std::string(text) + "\" is not a volume: write 50%, -12.5dB, 5%+ or 5%-",
                  complaint(readLevelChange, text));
}

TEST(ProgramReadLevelChange, TakesPercentagesFrom0To100)
{
    EXPECT_EQ("\"150%\" is not a volume: percentages range from 0 to 100", complaint(readLevelChange, "150%"));
    EXPECT_EQ("\"101%+\" is not a volume: percentages range from 0 to 100", complaint(readLevelChange, "101%+"));
    EXPECT_EQ("\"100.1%\" is not a volume: percentages range from 0 to 100", complaint(readLevelChange, "100.1%"));
    EXPECT_EQ("", complaint(readLevelChange, "0%"));
    EXPECT_EQ("", complaint(readLevelChange, "100%"));
    EXPECT_EQ("", complaint(readLevelChange, "101dB"));
}

TEST(ProgramReadLevelChange, ReadsAFractionOfAPercent)
{
    EXPECT_EQ(33.3f, readLevelChange("33.3%").amount);
    EXPECT_EQ(0.5f, readLevelChange(".5%+").amount);
}

TEST(ProgramReadLevelChange, TakesANumberWithoutUnitForPercent)
{
    const LevelChange level = readLevelChange("50");
    const LevelChange step = readLevelChange("5-");

    EXPECT_EQ(LevelChange::Unit::percent, level.unit);
    EXPECT_FALSE(level.isStep);
    EXPECT_EQ(50.0f, level.amount);
    EXPECT_TRUE(step.isStep);
    EXPECT_EQ(-5.0f, step.amount);
}

TEST(ProgramReadLevelChange, AsksForTheUnitOfASignedNumber)
{
    EXPECT_EQ("\"-5\" is not a volume: add the unit, as in -5dB or -5%", complaint(readLevelChange, "-5"));
    EXPECT_EQ("\"+5\" is not a volume: add the unit, as in +5dB or +5%", complaint(readLevelChange, "+5"));
}

TEST(ProgramReadLevelChange, TakesASignedPercentageForAStep)
{
    const LevelChange up = readLevelChange("+5%");
    const LevelChange down = readLevelChange("-5%");

    EXPECT_TRUE(up.isStep);
    EXPECT_EQ(5.0f, up.amount);
    EXPECT_TRUE(down.isStep);
    EXPECT_EQ(-5.0f, down.amount);
}

TEST(ProgramReadFormatRequest, ReadsBitsAndRateInEitherOrder)
{
    for (const char* const text : {"24/48000/6", "48000/24/6"})
    {
        const sim::DeviceFormat request = readFormatRequest(text);
        EXPECT_EQ(24u, request.bits);
        EXPECT_EQ(48000u, request.rate);
        EXPECT_EQ(6u, request.channels);
    }
}

TEST(ProgramReadFormatRequest, RefusesWhatIsNoFormat)
{
    for (const char* const text : {"", "24", "24/48000", "24/48000/2/1", "24/48000/", "/48000/2", "a/48000/2",
                                   "24/-1/2", "24 /48000/2", "24/48000/2 ", "24/99999999/2"})
        EXPECT_EQ("\"" + std::string(text) + "\" is not a device format: write bits/rate/channels, such as 24/48000/2",
                  complaint(readFormatRequest, text));
}

TEST(ProgramReadFormatRequest, RefusesNumbersThatNoFormatHas)
{
    EXPECT_EQ("\"20/48000/2\" is not a device format: a sample has 8, 16, 24 or 32 bits",
              complaint(readFormatRequest, "20/48000/2"));
    EXPECT_EQ("\"0/48000/2\" is not a device format: a sample has 8, 16, 24 or 32 bits",
              complaint(readFormatRequest, "0/48000/2"));
    EXPECT_EQ("\"64/48000/2\" is not a device format: a sample has 8, 16, 24 or 32 bits",
              complaint(readFormatRequest, "64/48000/2"));
    EXPECT_EQ("\"16/999/2\" is not a device format: the rate ranges from 1000 to 768000 Hz",
              complaint(readFormatRequest, "16/999/2"));
    EXPECT_EQ("\"16/768001/2\" is not a device format: the rate ranges from 1000 to 768000 Hz",
              complaint(readFormatRequest, "16/768001/2"));
    EXPECT_EQ("\"16/48000/0\" is not a device format: the number of channels ranges from 1 to 8",
              complaint(readFormatRequest, "16/48000/0"));
    EXPECT_EQ("\"16/48000/9\" is not a device format: the number of channels ranges from 1 to 8",
              complaint(readFormatRequest, "16/48000/9"));
}

TEST(ProgramReadFormatRequest, BlamesTheNumberThatIsWrong)
{
    EXPECT_EQ("\"16/0/2\" is not a device format: the rate ranges from 1000 to 768000 Hz",
              complaint(readFormatRequest, "16/0/2"));
    EXPECT_EQ("\"16/8/2\" is not a device format: the rate ranges from 1000 to 768000 Hz",
              complaint(readFormatRequest, "16/8/2"));
    EXPECT_EQ("\"48000/0/2\" is not a device format: a sample has 8, 16, 24 or 32 bits",
              complaint(readFormatRequest, "48000/0/2"));
    EXPECT_EQ("\"65/64/2\" is not a device format: a sample has 8, 16, 24 or 32 bits",
              complaint(readFormatRequest, "65/64/2"));
    EXPECT_EQ("\"48000/65/2\" is not a device format: a sample has 8, 16, 24 or 32 bits",
              complaint(readFormatRequest, "48000/65/2"));
}

TEST(ProgramReadFormatRequest, TakesTheSmallestAndTheLargestNumbers)
{
    for (const char* const text : {"8/1000/1", "32/768000/8", "1000/8/1"})
        EXPECT_EQ("", complaint(readFormatRequest, text));
}
