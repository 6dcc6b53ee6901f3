#include "simulator/machine/mixformat.h"

#include "simulator/machine/valuetext.h"

#include <gtest/gtest.h>

#include <regex>

namespace
{
TEST(MixFormatText, IsFloatingPointOrWholeNumbers)
{
    const auto floating = sim::MixFormat::fromText("32f/44100/6");
    const auto whole = sim::MixFormat::fromText("32/44100/6");

    ASSERT_TRUE(floating && whole);
    EXPECT_TRUE(floating->isFloatingPoint);
    EXPECT_FALSE(whole->isFloatingPoint);
    EXPECT_EQ("32f/44100/6", floating->text());
    EXPECT_EQ("32/44100/6", whole->text());
    EXPECT_FALSE(*floating == *whole);
}

TEST(MixFormatText, IsRefusedByReaderAndPatternAlike)
{
    const std::regex pattern(sim::MixFormat::pattern());

    for (const char* wrong : {"", "32f", "24f/48000/2", "32f/48000", "32F/48000/2", "f/48000/2", "32f/48000/9"})
    {
        EXPECT_FALSE(sim::MixFormat::fromText(wrong)) << wrong;
        EXPECT_FALSE(std::regex_match(wrong, pattern)) << wrong;
    }
    for (const char* right : {"32f/48000/2", "16/8000/1", "32/192000/8"})
    {
        EXPECT_TRUE(sim::MixFormat::fromText(right)) << right;
        EXPECT_TRUE(std::regex_match(right, pattern)) << right;
    }
}

TEST(MixFormatStructure, NamesFloatingPointSamples)
{
    const WAVEFORMATEXTENSIBLE format = sim::MixFormat::fromText("32f/96000/2")->waveFormat();

    EXPECT_EQ(WAVE_FORMAT_EXTENSIBLE, format.Format.wFormatTag);
    EXPECT_EQ(96000u, format.Format.nSamplesPerSec);
    EXPECT_EQ(8u, format.Format.nBlockAlign);
    EXPECT_EQ(32u, format.Samples.wValidBitsPerSample);
    EXPECT_EQ("{00000003-0000-0010-8000-00AA00389B71}", sim::guidText(format.SubFormat));
    EXPECT_EQ("{00000001-0000-0010-8000-00AA00389B71}",
              sim::guidText(sim::MixFormat::fromText("24/96000/2")->waveFormat().SubFormat));
}
}
