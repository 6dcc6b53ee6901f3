#include "simulator/core/sampleformat.h"

#include "simulator/machine/propertykeys.h"

#include <algorithm>
#include <cstring>
#include <tuple>

namespace sim
{
namespace
{
constexpr std::uint32_t unitsPerSecond = 10000000; // of 100 ns
constexpr std::uint32_t burstFrames = 32;
constexpr WORD extensionBytes = sizeof(WAVEFORMATEXTENSIBLE) - sizeof(WAVEFORMATEX);

/// The subtypes of the SDK are a tag followed by the same bytes for all of them.
constexpr GUID tagged = {0x00000000, 0x0000, 0x0010, {0x80, 0x00, 0x00, 0xAA, 0x00, 0x38, 0x9B, 0x71}};

std::optional<WORD> linearTag(const GUID& subFormat)
{
    GUID rest = subFormat;
    rest.Data1 = 0;
    const bool isLinear = subFormat.Data1 == WAVE_FORMAT_PCM || subFormat.Data1 == WAVE_FORMAT_IEEE_FLOAT;
    const bool isTagged = std::memcmp(&rest, &tagged, sizeof tagged) == 0;
    return isLinear && isTagged ? std::optional<WORD>(static_cast<WORD>(subFormat.Data1)) : std::nullopt;
}

/// The tag of linear samples, or no value; @p valid becomes the number of valid bits.
std::optional<WORD> linearTag(const WAVEFORMATEX& format, std::uint32_t& valid)
{
    valid = format.wBitsPerSample;
    if (format.wFormatTag == WAVE_FORMAT_PCM || format.wFormatTag == WAVE_FORMAT_IEEE_FLOAT)
        return format.wFormatTag;
    if (format.wFormatTag != WAVE_FORMAT_EXTENSIBLE || format.cbSize < extensionBytes)
        return std::nullopt;
    WAVEFORMATEXTENSIBLE whole = {};
    std::memcpy(&whole, &format, sizeof whole);
    if (whole.Samples.wValidBitsPerSample != 0)
        valid = whole.Samples.wValidBitsPerSample;
    return linearTag(whole.SubFormat);
}

bool isWidth(std::uint32_t bits, bool isFloatingPoint)
{
    return isFloatingPoint ? bits == 32 || bits == 64 : bits == 8 || bits == 16 || bits == 24 || bits == 32;
}
}

std::string SampleFormat::text() const
{
    const std::string width = validBits == containerBits
                                  ? std::to_string(containerBits)
                                  : std::to_string(validBits) + "of" + std::to_string(containerBits);
    return width + (isFloatingPoint ? "f/" : "/") + std::to_string(rate) + "/" + std::to_string(channels);
}

bool operator==(const SampleFormat& left, const SampleFormat& right)
{
    const auto members = [](const SampleFormat& format)
    { return std::tie(format.rate, format.channels, format.containerBits, format.validBits, format.isFloatingPoint); };
    return members(left) == members(right);
}

std::optional<SampleFormat> sampleFormat(const WAVEFORMATEX& format)
{
    SampleFormat result;
    const std::optional<WORD> tag = linearTag(format, result.validBits);
    if (!tag)
        return std::nullopt;
    result.rate = format.nSamplesPerSec;
    result.channels = format.nChannels;
    result.containerBits = format.wBitsPerSample;
    result.isFloatingPoint = *tag == WAVE_FORMAT_IEEE_FLOAT;
    const bool isWhole = result.rate > 0 && result.channels > 0 && result.frameBytes() == format.nBlockAlign;
    const bool fits = isWidth(result.containerBits, result.isFloatingPoint) && result.validBits <= result.containerBits;
    return isWhole && fits ? std::optional<SampleFormat>(result) : std::nullopt;
}

namespace
{
/// The format in these bytes, which may be too few for what they say.
std::optional<SampleFormat> samplesOf(const std::vector<std::uint8_t>& bytes)
{
    if (bytes.size() < sizeof(WAVEFORMATEX))
        return std::nullopt;
    WAVEFORMATEXTENSIBLE stored = {};
    std::memcpy(&stored, bytes.data(), std::min(bytes.size(), sizeof stored));
    if (bytes.size() < sizeof(WAVEFORMATEX) + stored.Format.cbSize)
        return std::nullopt;
    return sampleFormat(stored.Format);
}

std::vector<std::uint8_t> bytesOf(const MixFormat& format)
{
    const WAVEFORMATEXTENSIBLE whole = format.waveFormat();
    std::vector<std::uint8_t> bytes(sizeof whole);
    std::memcpy(bytes.data(), &whole, sizeof whole);
    return bytes;
}
}

std::optional<SampleFormat> deviceFormatOf(const Endpoint& endpoint)
{
    const PropertyValue* const value = findProperty(endpoint, keys::deviceFormat);
    return value != nullptr && value->tag == VT_BLOB ? samplesOf(value->bytes) : std::nullopt;
}

std::vector<std::uint8_t> mixFormatOf(const Endpoint& endpoint)
{
    if (!endpoint.mixFormatBytes.empty())
        return endpoint.mixFormatBytes;
    if (endpoint.mixFormat)
        return bytesOf(*endpoint.mixFormat);
    const std::optional<SampleFormat> device = deviceFormatOf(endpoint);
    if (!device)
        return {};
    return bytesOf(MixFormat{{32, device->rate, device->channels}, true});
}

std::optional<SampleFormat> mixSamplesOf(const Endpoint& endpoint)
{
    return samplesOf(mixFormatOf(endpoint));
}

DevicePeriods periodsOf(const Endpoint& endpoint)
{
    if (endpoint.periods)
        return *endpoint.periods;
    DevicePeriods periods;
    const std::optional<SampleFormat> mix = mixSamplesOf(endpoint);
    if (!mix)
        return periods;
    const std::uint64_t rate = mix->rate;
    const std::uint64_t frames = (rate * periods.usual + unitsPerSecond - 1) / unitsPerSecond;
    const std::uint64_t whole = (frames + burstFrames - 1) / burstFrames * burstFrames;
    periods.usual = static_cast<std::uint32_t>((whole * unitsPerSecond + rate / 2) / rate);
    return periods;
}

bool sharedEngineTakes(const Endpoint& endpoint, const SampleFormat& format)
{
    const std::optional<SampleFormat> mix = mixSamplesOf(endpoint);
    return mix && format.rate == mix->rate && format.channels == mix->channels;
}

bool deviceTakes(const Endpoint& endpoint, const SampleFormat& format)
{
    const std::optional<SampleFormat> device = deviceFormatOf(endpoint);
    return device && format == *device;
}
}
