#include "client/reading/properties.h"
#include "client/reading/text.h"

#include <cstring>

namespace sonavit::reading
{
namespace
{
/// The GUIDs of formats that have a tag differ in their first member alone, which is the tag.
WORD tagOf(const GUID& subFormat)
{
    GUID family = subFormat;
    family.Data1 = KSDATAFORMAT_SUBTYPE_PCM.Data1;
    const bool hasTag = IsEqualGUID(family, KSDATAFORMAT_SUBTYPE_PCM) != 0 && subFormat.Data1 <= 0xFFFF;
    return hasTag ? static_cast<WORD>(subFormat.Data1) : WORD{WAVE_FORMAT_UNKNOWN};
}

Format::Encoding encodingOf(WORD tag)
{
    if (tag == WAVE_FORMAT_PCM)
        return Format::Encoding::integer;
    return tag == WAVE_FORMAT_IEEE_FLOAT ? Format::Encoding::floatingPoint : Format::Encoding::other;
}

Format shortForm(const WAVEFORMATEX& wave)
{
    Format format;
    format.rate = static_cast<std::uint32_t>(wave.nSamplesPerSec);
    format.bits = wave.wBitsPerSample;
    format.validBits = wave.wBitsPerSample;
    format.channels = wave.nChannels;
    format.encoding = encodingOf(wave.wFormatTag);
    return format;
}

Format longForm(const WAVEFORMATEXTENSIBLE& wave)
{
    Format format = shortForm(wave.Format);
    if (wave.Samples.wValidBitsPerSample != 0) // 0 stands for all of them
        format.validBits = wave.Samples.wValidBitsPerSample;
    format.encoding = encodingOf(tagOf(wave.SubFormat));
    format.speakers = static_cast<std::uint32_t>(wave.dwChannelMask);
    format.subFormat = guidOf(wave.SubFormat);
    return format;
}
}

/// The long form has its own tag; a block of its size with another tag holds a short form with something behind it.
std::optional<Format> formatOf(const BYTE* bytes, std::size_t size)
{
    if (size != sizeof(WAVEFORMATEX) && size != sizeof(WAVEFORMATEXTENSIBLE))
        return std::nullopt;
    WAVEFORMATEXTENSIBLE wave = {};
    std::memcpy(&wave, bytes, size);
    if (wave.Format.wFormatTag != WAVE_FORMAT_EXTENSIBLE)
        return shortForm(wave.Format);
    return size == sizeof wave ? std::optional<Format>(longForm(wave)) : std::nullopt;
}
}
