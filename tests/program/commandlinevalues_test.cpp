#include "tools/sonavit/commandlinevalues.h"

#include "tools/sonavit/failure.h"

#include <gtest/gtest.h>

using namespace sonavit::program;
using sonavit::Decibels;
using sonavit::LevelChange;
using sonavit::Percent;
using Direction = LevelChange::Direction;

namespace
{
double percentOf(const LevelChange& change)
{
    return std::get<Percent>(change.amount()).value();
}

double decibelsOf(const LevelChange& change)
{
    return std::get<Decibels>(change.amount()).value();
}

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

    EXPECT_EQ(Direction::to, change.direction());
    EXPECT_EQ(50, percentOf(change));
    EXPECT_EQ(std::nullopt, change.channel());
}

TEST(ProgramReadLevelChange, ReadsDecibelsWithASign)
{
    const LevelChange below = readLevelChange("-12.5dB");
    const LevelChange above = readLevelChange("+3DB");

    EXPECT_EQ(Direction::to, below.direction());
    EXPECT_EQ(-12.5, decibelsOf(below));
    EXPECT_EQ(Direction::to, above.direction());
    EXPECT_EQ(3, decibelsOf(above));
}

TEST(ProgramReadLevelChange, ReadsSteps)
{
    const LevelChange up = readLevelChange("5%+");
    const LevelChange down = readLevelChange("5%-");
    const LevelChange decibels = readLevelChange("1.5dB-");

    EXPECT_EQ(Direction::up, up.direction());
    EXPECT_EQ(5, percentOf(up));
    EXPECT_EQ(Direction::down, down.direction());
    EXPECT_EQ(5, percentOf(down));
    EXPECT_EQ(Direction::down, decibels.direction());
    EXPECT_EQ(1.5, decibelsOf(decibels));
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
    EXPECT_EQ(33.3, percentOf(readLevelChange("33.3%")));
    EXPECT_EQ(0.5, percentOf(readLevelChange(".5%+")));
}

TEST(ProgramReadLevelChange, TakesANumberWithoutUnitForPercent)
{
    const LevelChange level = readLevelChange("50");
    const LevelChange step = readLevelChange("5-");

    EXPECT_EQ(Direction::to, level.direction());
    EXPECT_EQ(50, percentOf(level));
    EXPECT_EQ(Direction::down, step.direction());
    EXPECT_EQ(5, percentOf(step));
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

    EXPECT_EQ(Direction::up, up.direction());
    EXPECT_EQ(5, percentOf(up));
    EXPECT_EQ(Direction::down, down.direction());
    EXPECT_EQ(5, percentOf(down));
}

TEST(ProgramReadControlChange, ReadsALevelOrAMute)
{
    EXPECT_EQ(50, percentOf(std::get<LevelChange>(readControlChange("50"))));
    EXPECT_EQ(-12, decibelsOf(std::get<LevelChange>(readControlChange("-12dB"))));
    EXPECT_EQ(MuteChange::on, std::get<MuteChange>(readControlChange("On")));
    EXPECT_EQ(MuteChange::off, std::get<MuteChange>(readControlChange("no")));
}

TEST(ProgramReadControlChange, TakesZeroAndOneForLevels)
{
    EXPECT_EQ(0, percentOf(std::get<LevelChange>(readControlChange("0"))));
    EXPECT_EQ(1, percentOf(std::get<LevelChange>(readControlChange("1"))));
}

TEST(ProgramReadControlChange, RefusesWhatIsNeither)
{
    for (const char* const text : {"loud", "toggle", ""})
        EXPECT_EQ("\"" + std::string(text) + "\" is not a volume: write 50%, -12.5dB, 5%+ or 5%-, or on or off",
                  complaint(readControlChange, text));
}

TEST(ProgramReadChannel, CountsFromOne)
{
    EXPECT_EQ(0u, readChannel("1"));
    EXPECT_EQ(7u, readChannel("8"));
    for (const char* const text : {"0", "-1", "1.5", "left", ""})
        EXPECT_EQ("--channel takes the number of a channel from 1 on, not \"" + std::string(text) + "\"",
                  complaint(readChannel, text));
}

TEST(ProgramReadEventKinds, ReadsKindsBetweenCommas)
{
    EXPECT_EQ((std::set<EventKind>{EventKind::volume, EventKind::state}), readEventKinds("volume,STATE"));
    EXPECT_EQ((std::set<EventKind>{EventKind::hardware}), readEventKinds("hardware"));
    for (const char* const text : {"", "volume,", ",volume", "volumes"})
        EXPECT_NE("", complaint(readEventKinds, text)) << text;
    EXPECT_EQ("\"noise\" is not a kind of event: added, removed, state, volume, default, name, format, hardware, "
              "service or other",
              complaint(readEventKinds, "volume,noise"));
}

TEST(ProgramReadVia, IsOneOfTwo)
{
    EXPECT_EQ(Via::layer, readVia("layer"));
    EXPECT_EQ(Via::model, readVia("Model"));
    EXPECT_EQ("\"cable\" is not a way to read: layer or model", complaint(readVia, "cable"));
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
    for (const char* const text : {"", "24", "24/48000", "24/48000/2/1", "24/48000/", "24/48000/2/", "/48000/2",
                                   "a/48000/2", "24/-1/2", "24 /48000/2", "24/48000/2 ", "24/99999999/2"})
        EXPECT_EQ("\"" + std::string(text) + "\" is not a device format: write bits/rate/channels, such as 16/44100/2",
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
