#include "tests/libSonavit/audiodeviceendpoint/devicetest.h"

namespace
{
using devicetest::waveFormat;

const WAVEFORMATEXTENSIBLE original = waveFormat({16, 48000, 2});

/// One field of a format, and a way to change it.
struct FieldCase
{
    std::string name;
    bool isBasic; ///< one of the fields of WAVEFORMATEX
    void (*change)(WAVEFORMATEXTENSIBLE&);
};

void PrintTo(const FieldCase& field, std::ostream* stream)
{
    *stream << field.name;
}

class FormatField : public testing::TestWithParam<FieldCase>
{
protected:
    void SetUp() override { GetParam().change(m_changed); }

    WAVEFORMATEXTENSIBLE m_changed = original;
};

TEST_P(FormatField, DistinguishesExtendedFormats)
{
    EXPECT_FALSE(original == m_changed);
    EXPECT_FALSE(m_changed == original);
    EXPECT_TRUE(original != m_changed);
    EXPECT_TRUE(m_changed != original);
}

TEST_P(FormatField, DistinguishesPlainFormatsIfTheyHaveIt)
{
    const bool isEqual = !GetParam().isBasic;

    EXPECT_EQ(isEqual, original.Format == m_changed.Format);
    EXPECT_EQ(!isEqual, original.Format != m_changed.Format);
}

INSTANTIATE_TEST_SUITE_P(
    Each, FormatField,
    testing::Values(
        FieldCase{"cbSize", true, [](WAVEFORMATEXTENSIBLE& format) { format.Format.cbSize ^= 1; }},
        FieldCase{"nAvgBytesPerSec", true, [](WAVEFORMATEXTENSIBLE& format) { format.Format.nAvgBytesPerSec ^= 1; }},
        FieldCase{"nBlockAlign", true, [](WAVEFORMATEXTENSIBLE& format) { format.Format.nBlockAlign ^= 1; }},
        FieldCase{"nChannels", true, [](WAVEFORMATEXTENSIBLE& format) { format.Format.nChannels ^= 1; }},
        FieldCase{"nSamplesPerSec", true, [](WAVEFORMATEXTENSIBLE& format) { format.Format.nSamplesPerSec ^= 1; }},
        FieldCase{"wBitsPerSample", true, [](WAVEFORMATEXTENSIBLE& format) { format.Format.wBitsPerSample ^= 1; }},
        FieldCase{"wFormatTag", true, [](WAVEFORMATEXTENSIBLE& format) { format.Format.wFormatTag ^= 1; }},
        FieldCase{"dwChannelMask", false, [](WAVEFORMATEXTENSIBLE& format) { format.dwChannelMask ^= 1; }},
        FieldCase{"wValidBitsPerSample", false,
                  [](WAVEFORMATEXTENSIBLE& format) { format.Samples.wValidBitsPerSample ^= 1; }},
        FieldCase{"SubFormat", false, [](WAVEFORMATEXTENSIBLE& format) { format.SubFormat.Data1 ^= 1; }}),
    [](const auto& tested) { return tested.param.name; });

TEST(FormatComparison, FindsCopiesEqual)
{
    const WAVEFORMATEXTENSIBLE copy = original;

    EXPECT_TRUE(original == copy);
    EXPECT_FALSE(original != copy);
    EXPECT_TRUE(original.Format == copy.Format);
    EXPECT_FALSE(original.Format != copy.Format);
}

TEST(FormatComparison, ComparesEachByteOfTheSubFormat)
{
    for (std::size_t i = 0; i < sizeof(GUID); ++i)
    {
        unsigned char bytes[sizeof(GUID)];
        std::memcpy(bytes, &original.SubFormat, sizeof(bytes));
        bytes[i] ^= 0x80;
        WAVEFORMATEXTENSIBLE changed = original;
        std::memcpy(&changed.SubFormat, bytes, sizeof(bytes));

        EXPECT_FALSE(original == changed) << i;
        EXPECT_TRUE(original != changed) << i;
    }
}

TEST(FormatComparison, IgnoresTheFormatTag)
{
    WAVEFORMATEXTENSIBLE plain = original;
    plain.Format.wFormatTag = 1;
    plain.Format.cbSize = 0;
    WAVEFORMATEXTENSIBLE other = plain;
    other.dwChannelMask ^= 1; // unused in a plain format

    EXPECT_FALSE(plain == other);
    EXPECT_TRUE(plain != other);
}

TEST(FormatComparison, IgnoresWhatFollowsAPlainFormat)
{
    WAVEFORMATEXTENSIBLE changed = original;
    std::memset(reinterpret_cast<unsigned char*>(&changed) + sizeof(WAVEFORMATEX), 0xEE,
                sizeof(changed) - sizeof(WAVEFORMATEX));

    EXPECT_TRUE(original.Format == changed.Format);
    EXPECT_FALSE(original.Format != changed.Format);
}

TEST(FormatComparison, ComparesSamplesAsOneField)
{
    WAVEFORMATEXTENSIBLE changed = original;
    changed.Samples.wSamplesPerBlock = static_cast<WORD>(original.Samples.wSamplesPerBlock + 1);

    EXPECT_FALSE(original == changed);
}
}
