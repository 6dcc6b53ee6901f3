#include "simulator/machine/deviceformat.h"

#include <gtest/gtest.h>

#include <cstring>

namespace
{
TEST(DeviceFormatText, IsBitsRateAndChannels)
{
    const auto format = sim::DeviceFormat::fromText("24/96000/6");

    ASSERT_TRUE(format);
    EXPECT_EQ(24u, format->bits);
    EXPECT_EQ(96000u, format->rate);
    EXPECT_EQ(6u, format->channels);
    EXPECT_EQ("24/96000/6", format->text());
}

TEST(DeviceFormatText, IsRefusedWhenANumberIsMissingOrOutOfRange)
{
    for (const char* wrong : {"", "24", "24/48000", "24/48000/", "/48000/2", "12/48000/2", "24/0/2", "24/1000000/2",
                              "24/48000/0", "24/48000/9", "24/48000/2/1", " 24/48000/2", "024/48000/2"})
        EXPECT_FALSE(sim::DeviceFormat::fromText(wrong)) << wrong;
}

TEST(DeviceFormatStructure, DescribesWholeNumberSamples)
{
    const WAVEFORMATEXTENSIBLE format = sim::DeviceFormat{24, 48000, 2}.waveFormat();

    EXPECT_EQ(0xFFFEu, format.Format.wFormatTag);
    EXPECT_EQ(2u, format.Format.nChannels);
    EXPECT_EQ(48000u, format.Format.nSamplesPerSec);
    EXPECT_EQ(288000u, format.Format.nAvgBytesPerSec);
    EXPECT_EQ(6u, format.Format.nBlockAlign);
    EXPECT_EQ(24u, format.Format.wBitsPerSample);
    EXPECT_EQ(22u, format.Format.cbSize);
    EXPECT_EQ(24u, format.Samples.wValidBitsPerSample);
    EXPECT_EQ(0x3u, format.dwChannelMask);
    const GUID wholeNumbers = {1, 0, 0x10, {0x80, 0x00, 0x00, 0xAA, 0x00, 0x38, 0x9B, 0x71}};
    EXPECT_TRUE(format.SubFormat == wholeNumbers);
}

TEST(DeviceFormatStructure, HasTheUsualSpeakersOfItsChannels)
{
    const std::uint32_t masks[] = {0, 0x4, 0x3, 0x7, 0x33, 0x37, 0x60F, 0x70F, 0x63F, 0};

    for (std::uint32_t channels = 0; channels < 10; ++channels)
        EXPECT_EQ(masks[channels], (sim::DeviceFormat{16, 48000, channels}.speakers())) << channels;
}

TEST(DeviceFormatBytes, AreThoseOfTheStructureAndReadBack)
{
    const sim::DeviceFormat format = {32, 192000, 8};
    const WAVEFORMATEXTENSIBLE structure = format.waveFormat();

    const std::vector<std::uint8_t> bytes = format.bytes();

    ASSERT_EQ(40u, bytes.size());
    EXPECT_EQ(0, std::memcmp(&structure, bytes.data(), bytes.size()));
    EXPECT_EQ("32/192000/8", sim::DeviceFormat::fromBytes(bytes).value().text());
}

TEST(DeviceFormatBytes, AreReadOnlyIfTheFormatWritesTheSame)
{
    const std::vector<std::uint8_t> bytes = sim::DeviceFormat().bytes();

    for (std::size_t index = 0; index < bytes.size(); ++index)
    {
        std::vector<std::uint8_t> changed = bytes;
        changed[index] ^= 0x80;
        EXPECT_FALSE(sim::DeviceFormat::fromBytes(changed)) << index;
    }
    EXPECT_FALSE(sim::DeviceFormat::fromBytes({}));
    EXPECT_FALSE(sim::DeviceFormat::fromBytes(std::vector<std::uint8_t>(bytes.begin(), bytes.end() - 1)));
}
}
