#include "tools/sonavit/deviceformat.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstring>
#include <vector>

namespace sonavit::program
{
namespace
{
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
