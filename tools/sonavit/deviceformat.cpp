#include "tools/sonavit/deviceformat.h"

#include "tools/sonavit/failure.h"
#include "tools/sonavit/output/text.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <optional>
#include <utility>

namespace sonavit::program
{
namespace
{
constexpr std::uint32_t bitsOfAByte = 8;
constexpr std::uint32_t mostBits = 32;
constexpr std::uint32_t lowestRate = 1000;
constexpr std::uint32_t highestRate = 768000;
constexpr std::uint32_t mostChannels = 8;

/// The speakers for each number of channels, with side speakers for surround sound. Machine files use back speakers.
constexpr std::array<unsigned, mostChannels + 1> masksOfChannels = {0,
                                                                    KSAUDIO_SPEAKER_MONO,
                                                                    KSAUDIO_SPEAKER_STEREO,
                                                                    KSAUDIO_SPEAKER_STEREO | SPEAKER_FRONT_CENTER,
                                                                    KSAUDIO_SPEAKER_QUAD,
                                                                    KSAUDIO_SPEAKER_QUAD | SPEAKER_FRONT_CENTER,
                                                                    KSAUDIO_SPEAKER_5POINT1_SURROUND,
                                                                    KSAUDIO_SPEAKER_5POINT1_SURROUND |
                                                                        SPEAKER_BACK_CENTER,
                                                                    KSAUDIO_SPEAKER_7POINT1_SURROUND};

std::optional<std::uint32_t> number(const std::string& text)
{
    const bool isNumber =
        !text.empty() && text.size() <= 7 && text.find_first_not_of("0123456789") == std::string::npos;
    if (!isNumber)
        return std::nullopt;
    return static_cast<std::uint32_t>(std::strtoul(text.c_str(), nullptr, 10));
}

/// The numbers between slashes; none if there is anything else.
std::vector<std::uint32_t> numbers(const std::string& text)
{
    std::vector<std::uint32_t> result;
    std::size_t start = 0;
    while (start <= text.size())
    {
        const std::size_t end = std::min(text.find('/', start), text.size());
        const std::optional<std::uint32_t> value = number(text.substr(start, end - start));
        if (!value)
            return {};
        result.push_back(*value);
        start = end + 1;
    }
    return result;
}

/// Whether @p first and @p second are a rate and bits, in this order. A number that is too small for the bits or too
/// large for them is not taken for the other of the two.
bool isRateBeforeBits(std::uint32_t first, std::uint32_t second)
{
    constexpr std::uint32_t largestMistake = 64; // "64/48000/2" means 64 bits
    return first > largestMistake && second <= largestMistake;
}
}

sim::DeviceFormat readFormatRequest(const std::string& text)
{
    const auto refuse = [&](const char* reason)
    { throw UsageError(inQuotes(text) + " is not a device format: " + reason); };
    std::vector<std::uint32_t> parts = numbers(text);
    if (parts.size() != 3)
        refuse("write bits/rate/channels, such as 24/48000/2");
    if (isRateBeforeBits(parts[0], parts[1]))
        std::swap(parts[0], parts[1]);
    const sim::DeviceFormat request{parts[0], parts[1], parts[2]};
    if (request.bits % bitsOfAByte != 0 || request.bits == 0 || request.bits > mostBits)
        refuse("a sample has 8, 16, 24 or 32 bits");
    if (request.rate < lowestRate || request.rate > highestRate)
        refuse("the rate ranges from 1000 to 768000 Hz");
    if (request.channels == 0 || request.channels > mostChannels)
        refuse("the number of channels ranges from 1 to 8");
    return request;
}

WAVEFORMATEXTENSIBLE deviceFormat(const sim::DeviceFormat& request)
{
    WAVEFORMATEXTENSIBLE format{};
    const std::vector<std::uint8_t> bytes = request.bytes();
    std::memcpy(&format, bytes.data(), std::min(bytes.size(), sizeof format));
    format.dwChannelMask = masksOfChannels[request.channels];
    return format;
}

bool isKnown(const WAVEFORMATEXTENSIBLE& format)
{
    return format.Format.nSamplesPerSec != 0;
}
}
