#include "tools/sonavit/output/formatwords.h"

#include "tools/sonavit/deviceformat.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

using namespace sonavit::program;
using testing::ElementsAre;

TEST(ProgramFormatWords, TellsAFormatInWords)
{
    WAVEFORMATEXTENSIBLE padded = deviceFormat({32, 48000, 2});
    padded.Samples.wValidBitsPerSample = 24;
    WAVEFORMATEXTENSIBLE floating = deviceFormat({32, 44100, 1});
    floating.SubFormat = KSDATAFORMAT_SUBTYPE_IEEE_FLOAT;

    EXPECT_EQ("44100 Hz, 16 bit, 2 channels (stereo)", formatWords(deviceFormat({16, 44100, 2})));
    EXPECT_EQ("48000 Hz, 24 bit in 32, 2 channels (stereo)", formatWords(padded));
    EXPECT_EQ("44100 Hz, 32 bit float, 1 channel (mono)", formatWords(floating));
    EXPECT_EQ("-", formatWords({}));
}

TEST(ProgramFormatWords, LooksAtTheShortPartOfAFormatThatIsNotExtensible)
{
    WAVEFORMATEXTENSIBLE format = deviceFormat({16, 44100, 2});
    format.Format.wFormatTag = WAVE_FORMAT_PCM;
    format.Samples.wValidBitsPerSample = 7;
    format.dwChannelMask = 0x60F;

    EXPECT_EQ("44100 Hz, 16 bit, 2 channels", formatWords(format));
}

TEST(ProgramFormatWords, NamesSpeakers)
{
    EXPECT_THAT(speakerNames(0x9), ElementsAre("front left", "low frequency"));
    EXPECT_EQ("front left and low frequency", speakerWords(0x9));
    EXPECT_EQ("7.1 surround", speakerWords(0x63F));
    EXPECT_EQ("direct", speakerWords(0));
}
