#include "client/reading/properties.h"
#include "platform/propertykeys.h"
#include "simulator/machine/deviceformat.h"
#include "tests/client/reading/readingtest.h"

#include <cstring>

namespace
{
using sonavit::Format;

/// The bytes of a structure.
template<class Structure>
std::vector<BYTE> bytesOf(const Structure& structure)
{
    std::vector<BYTE> bytes(sizeof structure);
    std::memcpy(bytes.data(), &structure, sizeof structure);
    return bytes;
}

WAVEFORMATEX shortForm(WORD tag = WAVE_FORMAT_PCM)
{
    WAVEFORMATEX wave = {};
    wave.wFormatTag = tag;
    wave.nChannels = 2;
    wave.nSamplesPerSec = 44100;
    wave.wBitsPerSample = 16;
    return wave;
}

WAVEFORMATEXTENSIBLE longForm(const GUID& subFormat = KSDATAFORMAT_SUBTYPE_PCM)
{
    WAVEFORMATEXTENSIBLE wave = {};
    wave.Format = shortForm(WAVE_FORMAT_EXTENSIBLE);
    wave.Format.wBitsPerSample = 32;
    wave.Format.cbSize = 22;
    wave.Samples.wValidBitsPerSample = 24;
    wave.dwChannelMask = KSAUDIO_SPEAKER_STEREO;
    wave.SubFormat = subFormat;
    return wave;
}

std::optional<Format> formatOf(const std::vector<BYTE>& bytes)
{
    return reading::formatOf(bytes.data(), bytes.size());
}

TEST(ReadingFormat, OfTheShortFormHasNeitherSpeakersNorSubFormat)
{
    const std::optional<Format> format = formatOf(bytesOf(shortForm()));

    ASSERT_TRUE(format);
    EXPECT_EQ(44100u, format->rate);
    EXPECT_EQ(16u, format->bits);
    EXPECT_EQ(16u, format->validBits);
    EXPECT_EQ(2u, format->channels);
    EXPECT_EQ(Format::Encoding::integer, format->encoding);
    EXPECT_FALSE(format->speakers);
    EXPECT_FALSE(format->subFormat);
}

TEST(ReadingFormat, OfTheLongFormHasAll)
{
    const std::optional<Format> format = formatOf(bytesOf(longForm()));

    ASSERT_TRUE(format);
    EXPECT_EQ(32u, format->bits);
    EXPECT_EQ(24u, format->validBits);
    EXPECT_EQ(3u, format->speakers);
    EXPECT_EQ(sonavit::Guid::parse("{00000001-0000-0010-8000-00AA00389B71}"), format->subFormat);
    EXPECT_EQ(Format::Encoding::integer, format->encoding);
}

TEST(ReadingFormat, WithoutValidBitsUsesAllOfThem)
{
    WAVEFORMATEXTENSIBLE wave = longForm();
    wave.Samples.wValidBitsPerSample = 0;

    EXPECT_EQ(32u, formatOf(bytesOf(wave))->validBits);
}

TEST(ReadingFormat, TellsTheEncodingByTagOrSubFormat)
{
    GUID strange = KSDATAFORMAT_SUBTYPE_IEEE_FLOAT;
    strange.Data4[0] ^= 1;

    EXPECT_EQ(Format::Encoding::floatingPoint, formatOf(bytesOf(shortForm(WAVE_FORMAT_IEEE_FLOAT)))->encoding);
    EXPECT_EQ(Format::Encoding::other, formatOf(bytesOf(shortForm(WAVE_FORMAT_ALAW)))->encoding);
    EXPECT_EQ(Format::Encoding::floatingPoint, formatOf(bytesOf(longForm(KSDATAFORMAT_SUBTYPE_IEEE_FLOAT)))->encoding);
    EXPECT_EQ(Format::Encoding::other, formatOf(bytesOf(longForm(KSDATAFORMAT_SUBTYPE_MULAW)))->encoding);
    EXPECT_EQ(Format::Encoding::other, formatOf(bytesOf(longForm(strange)))->encoding);
}

TEST(ReadingFormat, OfAnOddSizeIsNone)
{
    std::vector<BYTE> bytes = bytesOf(longForm());
    bytes.resize(72);

    for (const std::size_t size : {0, 1, 16, 17, 19, 28, 39, 41, 72})
        EXPECT_FALSE(reading::formatOf(bytes.data(), size)) << size;
}

TEST(ReadingFormat, WithTheLongTagInAShortBlockIsNone)
{
    EXPECT_FALSE(formatOf(bytesOf(shortForm(WAVE_FORMAT_EXTENSIBLE))));
}

TEST(ReadingFormat, WithAShortTagInALongBlockIsAShortForm)
{
    WAVEFORMATEXTENSIBLE wave = longForm();
    wave.Format.wFormatTag = WAVE_FORMAT_PCM;

    const std::optional<Format> format = formatOf(bytesOf(wave));

    ASSERT_TRUE(format);
    EXPECT_EQ(32u, format->validBits);
    EXPECT_FALSE(format->speakers);
}

class ReadingFormatOfEndpoint : public ReadingTest
{
protected:
    /// Reads a speaker whose format is that block.
    reading::EndpointReading readWith(std::vector<BYTE> bytes)
    {
        sim::MachineBuilder builder;
        sim::EndpointBuilder speaker = builder.card("Card").speaker();
        speaker.property(platform::propertykeys::deviceFormat, sim::PropertyValue::ofBytes(std::move(bytes)));
        start(builder.build());
        return read(speaker.id());
    }
};

TEST_F(ReadingFormatOfEndpoint, ReadsTheShortForm)
{
    const reading::EndpointReading endpoint = readWith(bytesOf(shortForm()));

    ASSERT_TRUE(endpoint.content.format);
    EXPECT_EQ(44100u, endpoint.content.format->rate);
    EXPECT_THAT(endpoint.content.problems, testing::IsEmpty());
}

TEST_F(ReadingFormatOfEndpoint, MakesABlockOfAnotherSizeAProblem)
{
    const reading::EndpointReading endpoint = readWith(std::vector<BYTE>(28));

    EXPECT_FALSE(endpoint.content.format);
    EXPECT_THAT(
        problemsOf(endpoint, sonavit::EndpointField::format),
        testing::ElementsAre(IsFailureOf("IPropertyStore::GetValue(deviceFormat)", static_cast<HRESULT>(0x8007000D))));
}

TEST_F(ReadingFormatOfEndpoint, MakesAnEmptyBlockAProblem)
{
    EXPECT_THAT(problemsOf(readWith({}), sonavit::EndpointField::format), testing::SizeIs(1));
}
}
