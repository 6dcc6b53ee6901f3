#include "sonavit/format.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <sstream>

using namespace sonavit;
using testing::ElementsAre;
using testing::IsEmpty;

TEST(FormatInteger, HasTheUsualSpeakersForItsChannels)
{
    const std::uint32_t masks[] = {0, 0x4, 0x3, 0x7, 0x33, 0x37, 0x60F, 0x70F, 0x63F, 0, 0};
    for (std::uint32_t channels = 0; channels <= 10; ++channels)
        EXPECT_EQ(masks[channels], Format::integer(16, 48000, channels).speakers) << channels;
}

TEST(FormatInteger, IsPcmInTheLongForm)
{
    const Format format = Format::integer(24, 96000, 2);

    EXPECT_EQ(96000u, format.rate);
    EXPECT_EQ(24u, format.bits);
    EXPECT_EQ(24u, format.validBits);
    EXPECT_EQ(2u, format.channels);
    EXPECT_EQ(Format::Encoding::integer, format.encoding);
    EXPECT_EQ(Guid::parse("{00000001-0000-0010-8000-00AA00389B71}"), format.subFormat);
}

TEST(FormatSentence, ShowsRateBitsAndChannels)
{
    Format format = Format::integer(32, 48000, 2);
    format.validBits = 24;
    EXPECT_EQ("48000 Hz, 24 bit in 32, 2 channels (stereo)", format.sentence());
    format.validBits = 32;
    format.encoding = Format::Encoding::floatingPoint;
    EXPECT_EQ("48000 Hz, 32 bit float, 2 channels (stereo)", format.sentence());
}

TEST(FormatSentence, LeavesOutSpeakersThatAreNotNamed)
{
    Format format = Format::integer(16, 44100, 1);
    format.speakers = 0;
    EXPECT_EQ("44100 Hz, 16 bit, 1 channel", format.sentence());
    format.speakers.reset();
    EXPECT_EQ("44100 Hz, 16 bit, 1 channel", format.sentence());
}

TEST(Format, IsEqualIfEachMemberIs)
{
    const auto differs = [](auto change)
    {
        Format format;
        change(format);
        return format != Format() && format == Format(format);
    };

    EXPECT_TRUE(differs([](Format& format) { format.rate = 1; }));
    EXPECT_TRUE(differs([](Format& format) { format.bits = 1; }));
    EXPECT_TRUE(differs([](Format& format) { format.validBits = 1; }));
    EXPECT_TRUE(differs([](Format& format) { format.channels = 1; }));
    EXPECT_TRUE(differs([](Format& format) { format.encoding = Format::Encoding::other; }));
    EXPECT_TRUE(differs([](Format& format) { format.speakers = 0; }));
    EXPECT_TRUE(differs([](Format& format) { format.subFormat.emplace(); }));
}

TEST(Format, HasKeysForItsEncodings)
{
    EXPECT_STREQ("pcm", keyOf(Format::Encoding::integer));
    EXPECT_STREQ("float", keyOf(Format::Encoding::floatingPoint));
    EXPECT_STREQ("other", keyOf(Format::Encoding::other));
    EXPECT_STREQ("other", keyOf(static_cast<Format::Encoding>(99)));
}

TEST(Format, IsPrintedWithAllItsMembers)
{
    std::ostringstream out;
    out << Format::integer(16, 48000, 2);

    EXPECT_EQ("Format(rate: 48000, bits: 16, validBits: 16, channels: 2, encoding: pcm, speakers: 0x00000003, "
              "subFormat: {00000001-0000-0010-8000-00AA00389B71})",
              out.str());
}

TEST(SpeakerNames, AreInTheOrderOfTheBits)
{
    EXPECT_THAT(speakerNames(0x3), ElementsAre("front left", "front right"));
    EXPECT_THAT(speakerNames(0x20008), ElementsAre("low frequency", "top back right"));
    EXPECT_THAT(speakerNames(0), IsEmpty());
    EXPECT_THAT(speakerNames(0x80000000), IsEmpty());
    EXPECT_EQ(18u, speakerNames(0xFFFFFFFF).size());
}

TEST(SpeakerWords, AreThoseOfTheUsualMasksOrTheSpeakersOneByOne)
{
    EXPECT_EQ("direct", speakerWords(0));
    EXPECT_EQ("mono", speakerWords(0x4));
    EXPECT_EQ("stereo", speakerWords(0x3));
    EXPECT_EQ("quadraphonic", speakerWords(0x33));
    EXPECT_EQ("5.1", speakerWords(0x3F));
    EXPECT_EQ("5.1 surround", speakerWords(0x60F));
    EXPECT_EQ("7.1", speakerWords(0xFF));
    EXPECT_EQ("7.1 surround", speakerWords(0x63F));
    EXPECT_EQ("front left, front right and front center", speakerWords(0x7));
    EXPECT_EQ("0x80000000", speakerWords(0x80000000));
}

TEST(Format, HasEncodingsThatArePrintedAsTheirKeys)
{
    std::ostringstream out;
    out << Format::Encoding::integer << ' ' << Format::Encoding::floatingPoint << ' '
        << static_cast<Format::Encoding>(3);

    EXPECT_EQ("pcm float other", out.str());
}
