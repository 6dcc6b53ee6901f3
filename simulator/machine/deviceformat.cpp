#include "simulator/machine/deviceformat.h"

#include "simulator/machine/valuetext.h"

#include <algorithm>
#include <array>
#include <cstring>

namespace sim
{
namespace
{
constexpr std::array<std::uint32_t, 4> sampleBits = {8, 16, 24, 32};
constexpr int rateDigits = 6; // of maximumRate

/// The subtype of whole-number samples. The SDK's name for it is a constant that each program must define.
constexpr GUID wholeNumberSamples = {0x00000001, 0x0000, 0x0010, {0x80, 0x00, 0x00, 0xAA, 0x00, 0x38, 0x9B, 0x71}};

bool isUsual(const DeviceFormat& format)
{
    const bool bitsFit = std::count(sampleBits.begin(), sampleBits.end(), format.bits) != 0;
    const bool rateFits = format.rate > 0 && format.rate <= maximumRate;
    return bitsFit && rateFits && format.channels >= 1 && format.channels <= maximumFormatChannels;
}
}

std::string DeviceFormat::text() const
{
    return std::to_string(bits) + "/" + std::to_string(rate) + "/" + std::to_string(channels);
}

std::optional<DeviceFormat> DeviceFormat::fromText(const std::string& text)
{
    const std::size_t first = text.find('/');
    const std::size_t second = first == std::string::npos ? first : text.find('/', first + 1);
    if (second == std::string::npos)
        return std::nullopt;

    const std::optional<std::uint32_t> bits = numberFromText(text.substr(0, first));
    const std::optional<std::uint32_t> rate = numberFromText(text.substr(first + 1, second - first - 1));
    const std::optional<std::uint32_t> channels = numberFromText(text.substr(second + 1));
    if (!bits || !rate || !channels)
        return std::nullopt;
    const DeviceFormat format = {*bits, *rate, *channels};
    return isUsual(format) ? std::optional<DeviceFormat>(format) : std::nullopt;
}

std::string DeviceFormat::pattern()
{
    std::string bits;
    for (const std::uint32_t each : sampleBits)
        bits += (bits.empty() ? "" : "|") + std::to_string(each);
    return "^(" + bits + ")/[1-9][0-9]{0," + std::to_string(rateDigits - 1) + "}/[1-" +
           std::to_string(maximumFormatChannels) + "]$";
}

WAVEFORMATEXTENSIBLE DeviceFormat::waveFormat() const
{
    const std::uint32_t frame = channels * (bits / 8);

    WAVEFORMATEXTENSIBLE format = {};
    format.Format.wFormatTag = WAVE_FORMAT_EXTENSIBLE;
    format.Format.nChannels = static_cast<WORD>(channels);
    format.Format.nSamplesPerSec = rate;
    format.Format.nAvgBytesPerSec = rate * frame;
    format.Format.nBlockAlign = static_cast<WORD>(frame);
    format.Format.wBitsPerSample = static_cast<WORD>(bits);
    format.Format.cbSize = sizeof(WAVEFORMATEXTENSIBLE) - sizeof(WAVEFORMATEX);
    format.Samples.wValidBitsPerSample = static_cast<WORD>(bits);
    format.dwChannelMask = speakers();
    format.SubFormat = wholeNumberSamples;
    return format;
}

std::vector<std::uint8_t> DeviceFormat::bytes() const
{
    const WAVEFORMATEXTENSIBLE format = waveFormat();
    std::vector<std::uint8_t> result(sizeof format);
    std::memcpy(result.data(), &format, sizeof format);
    return result;
}

std::optional<DeviceFormat> DeviceFormat::fromBytes(const std::vector<std::uint8_t>& bytes)
{
    WAVEFORMATEXTENSIBLE stored = {};
    if (bytes.size() != sizeof stored)
        return std::nullopt;
    std::memcpy(&stored, bytes.data(), sizeof stored);
    const DeviceFormat format = {stored.Format.wBitsPerSample, stored.Format.nSamplesPerSec, stored.Format.nChannels};
    const bool isOurs = isUsual(format) && format.bytes() == bytes;
    return isOurs ? std::optional<DeviceFormat>(format) : std::nullopt;
}

std::uint32_t DeviceFormat::speakers() const
{
    constexpr std::uint32_t stereo = SPEAKER_FRONT_LEFT | SPEAKER_FRONT_RIGHT;
    constexpr std::uint32_t quadraphonic = stereo | SPEAKER_BACK_LEFT | SPEAKER_BACK_RIGHT;
    constexpr std::uint32_t surround =
        stereo | SPEAKER_FRONT_CENTER | SPEAKER_LOW_FREQUENCY | SPEAKER_SIDE_LEFT | SPEAKER_SIDE_RIGHT;
    constexpr std::array<std::uint32_t, 9> usual = {0,
                                                    SPEAKER_FRONT_CENTER,
                                                    stereo,
                                                    stereo | SPEAKER_FRONT_CENTER,
                                                    quadraphonic,
                                                    quadraphonic | SPEAKER_FRONT_CENTER,
                                                    surround,
                                                    surround | SPEAKER_BACK_CENTER,
                                                    surround | SPEAKER_BACK_LEFT | SPEAKER_BACK_RIGHT};
    return channels < usual.size() ? usual[channels] : 0;
}
}
