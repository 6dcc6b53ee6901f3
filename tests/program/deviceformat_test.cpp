#include "tools/sonavit/deviceformat.h"

#include <gtest/gtest.h>

using namespace sonavit::program;

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
