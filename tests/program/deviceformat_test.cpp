#include "tools/sonavit/deviceformat.h"

#include "tools/sonavit/failure.h"

#include <gtest/gtest.h>

using namespace sonavit::program;

namespace
{
std::string complaint(const std::string& text)
{
    try
    {
        readFormatRequest(text);
    }
    catch (const UsageError& error)
    {
        return error.what();
    }
    return "";
}
}

TEST(ProgramDeviceFormat, ReadsBitsAndRateInEitherOrder)
{
    for (const char* const text : {"24/48000/6", "48000/24/6"})
    {
        const sim::DeviceFormat request = readFormatRequest(text);
        EXPECT_EQ(24u, request.bits);
        EXPECT_EQ(48000u, request.rate);
        EXPECT_EQ(6u, request.channels);
    }
}

TEST(ProgramDeviceFormat, RefusesWhatIsNoFormat)
{
    for (const char* const text : {"", "24", "24/48000", "24/48000/2/1", "24/48000/", "/48000/2", "a/48000/2",
                                   "24/-1/2", "24 /48000/2", "24/48000/2 ", "24/99999999/2"})
        EXPECT_EQ("\"" + std::string(text) + "\" is not a device format: write bits/rate/channels, such as 24/48000/2",
                  complaint(text));
}

TEST(ProgramDeviceFormat, RefusesNumbersThatNoFormatHas)
{
    EXPECT_EQ("\"20/48000/2\" is not a device format: a sample has 8, 16, 24 or 32 bits", complaint("20/48000/2"));
    EXPECT_EQ("\"0/48000/2\" is not a device format: a sample has 8, 16, 24 or 32 bits", complaint("0/48000/2"));
    EXPECT_EQ("\"64/48000/2\" is not a device format: a sample has 8, 16, 24 or 32 bits", complaint("64/48000/2"));
    EXPECT_EQ("\"16/999/2\" is not a device format: the rate ranges from 1000 to 768000 Hz", complaint("16/999/2"));
    EXPECT_EQ("\"16/768001/2\" is not a device format: the rate ranges from 1000 to 768000 Hz",
              complaint("16/768001/2"));
    EXPECT_EQ("\"16/48000/0\" is not a device format: the number of channels ranges from 1 to 8",
              complaint("16/48000/0"));
    EXPECT_EQ("\"16/48000/9\" is not a device format: the number of channels ranges from 1 to 8",
              complaint("16/48000/9"));
}

TEST(ProgramDeviceFormat, BlamesTheNumberThatIsWrong)
{
    EXPECT_EQ("\"16/0/2\" is not a device format: the rate ranges from 1000 to 768000 Hz", complaint("16/0/2"));
    EXPECT_EQ("\"16/8/2\" is not a device format: the rate ranges from 1000 to 768000 Hz", complaint("16/8/2"));
    EXPECT_EQ("\"48000/0/2\" is not a device format: a sample has 8, 16, 24 or 32 bits", complaint("48000/0/2"));
    EXPECT_EQ("\"65/64/2\" is not a device format: a sample has 8, 16, 24 or 32 bits", complaint("65/64/2"));
    EXPECT_EQ("\"48000/65/2\" is not a device format: a sample has 8, 16, 24 or 32 bits", complaint("48000/65/2"));
}

TEST(ProgramDeviceFormat, TakesTheSmallestAndTheLargestNumbers)
{
    for (const char* const text : {"8/1000/1", "32/768000/8", "1000/8/1"})
        EXPECT_EQ("", complaint(text));
}

TEST(ProgramDeviceFormat, MakesAFormatOfWholeNumberSamples)
{
    const WAVEFORMATEXTENSIBLE format = deviceFormat({24, 96000, 6});

    EXPECT_EQ(WAVE_FORMAT_EXTENSIBLE, format.Format.wFormatTag);
    EXPECT_EQ(6, format.Format.nChannels);
    EXPECT_EQ(96000u, format.Format.nSamplesPerSec);
    EXPECT_EQ(18, format.Format.nBlockAlign);
    EXPECT_EQ(1728000u, format.Format.nAvgBytesPerSec);
    EXPECT_EQ(24, format.Format.wBitsPerSample);
    EXPECT_EQ(22, format.Format.cbSize);
    EXPECT_EQ(24, format.Samples.wValidBitsPerSample);
    EXPECT_EQ(0x60Fu, format.dwChannelMask);
    EXPECT_TRUE(format.SubFormat == KSDATAFORMAT_SUBTYPE_PCM);
}
