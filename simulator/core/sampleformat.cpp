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

std::optional<SampleFormat> deviceFormatOf(const Endpoint& endpoint)
{
    const PropertyValue* const value = findProperty(endpoint, keys::deviceFormat);
    if (value == nullptr || value->tag != VT_BLOB || value->bytes.size() < sizeof(WAVEFORMATEX))
        return std::nullopt;
    WAVEFORMATEXTENSIBLE stored = {};
    std::memcpy(&stored, value->bytes.data(), std::min(value->bytes.size(), sizeof stored));
    if (value->bytes.size() < sizeof(WAVEFORMATEX) + stored.Format.cbSize)
        return std::nullopt;
    return sampleFormat(stored.Format);
}

std::optional<WAVEFORMATEXTENSIBLE> mixFormatOf(const Endpoint& endpoint)
{
    if (endpoint.mixFormat)
        return endpoint.mixFormat->waveFormat();
    const std::optional<SampleFormat> device = deviceFormatOf(endpoint);
    if (!device)
        return std::nullopt;
    return MixFormat{{32, device->rate, device->channels}, true}.waveFormat();
}

DevicePeriods periodsOf(const Endpoint& endpoint)
{
    if (endpoint.periods)
        return *endpoint.periods;
    DevicePeriods periods;
    const std::optional<WAVEFORMATEXTENSIBLE> mix = mixFormatOf(endpoint);
    if (!mix)
        return periods;
    const std::uint64_t rate = mix->Format.nSamplesPerSec;
    const std::uint64_t frames = (rate * periods.usual + unitsPerSecond - 1) / unitsPerSecond;
    const std::uint64_t whole = (frames + burstFrames - 1) / burstFrames * burstFrames;
    periods.usual = static_cast<std::uint32_t>((whole * unitsPerSecond + rate / 2) / rate);
    return periods;
}

bool sharedEngineTakes(const Endpoint& endpoint, const SampleFormat& format)
{
    const std::optional<WAVEFORMATEXTENSIBLE> mix = mixFormatOf(endpoint);
    return mix && format.rate == mix->Format.nSamplesPerSec && format.channels == mix->Format.nChannels;
}

bool deviceTakes(const Endpoint& endpoint, const SampleFormat& format)
{
    const std::optional<SampleFormat> device = deviceFormatOf(endpoint);
    return device && format == *device;
}
}
