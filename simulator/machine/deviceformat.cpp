#include "simulator/machine/deviceformat.h"

#include "simulator/machine/valuetext.h"

#include <array>

namespace sim
{
namespace
{
constexpr std::uint32_t maximumRate = 999999;

void appendNumber(std::vector<std::uint8_t>& bytes, std::uint32_t value, int size)
{
    for (int index = 0; index < size; ++index)
        bytes.push_back(static_cast<std::uint8_t>(value >> (8 * index)));
}

/// The whole-number subtype {00000001-0000-0010-8000-00AA00389B71} as it lies in memory.
constexpr std::array<std::uint8_t, 16> wholeNumberSamples = {0x01, 0x00, 0x00, 0x00, 0x00, 0x00, 0x10, 0x00,
                                                             0x80, 0x00, 0x00, 0xAA, 0x00, 0x38, 0x9B, 0x71};

bool isUsual(const DeviceFormat& format)
{
    const bool bitsFit = format.bits == 8 || format.bits == 16 || format.bits == 24 || format.bits == 32;
    const bool rateFits = format.rate > 0 && format.rate <= maximumRate;
    return bitsFit && rateFits && format.channels >= 1 && format.channels <= 8;
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

std::vector<std::uint8_t> DeviceFormat::bytes() const
{
    constexpr std::uint32_t extensibleTag = 0xFFFE;
    constexpr std::uint32_t bytesBehindTheBasicFormat = 22;
    const std::uint32_t frame = channels * (bits / 8);

    std::vector<std::uint8_t> result;
    appendNumber(result, extensibleTag, 2);
    appendNumber(result, channels, 2);
    appendNumber(result, rate, 4);
    appendNumber(result, rate * frame, 4);
    appendNumber(result, frame, 2);
    appendNumber(result, bits, 2);
    appendNumber(result, bytesBehindTheBasicFormat, 2);
    appendNumber(result, bits, 2);
    appendNumber(result, speakers(), 4);
    result.insert(result.end(), wholeNumberSamples.begin(), wholeNumberSamples.end());
    return result;
}

std::optional<DeviceFormat> DeviceFormat::fromBytes(const std::vector<std::uint8_t>& bytes)
{
    if (bytes.size() != 40)
        return std::nullopt;
    const auto number = [&](std::size_t at, std::size_t size)
    {
        std::uint32_t value = 0;
        for (std::size_t index = size; index > 0; --index)
            value = value << 8 | bytes[at + index - 1];
        return value;
    };
    const DeviceFormat format = {number(14, 2), number(4, 4), number(2, 2)};
    const bool isOurs = isUsual(format) && format.bytes() == bytes;
    return isOurs ? std::optional<DeviceFormat>(format) : std::nullopt;
}

std::uint32_t DeviceFormat::speakers() const
{
    constexpr std::array<std::uint32_t, 9> usual = {0, 0x4, 0x3, 0x7, 0x33, 0x37, 0x3F, 0x13F, 0x63F};
    return channels < usual.size() ? usual[channels] : 0;
}
}
