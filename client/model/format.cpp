#include "client/model/format.h"

#include "client/model/values.h"

namespace sonavit::model
{
namespace
{
Format::Encoding encodingOf(const WAVEFORMATEXTENSIBLE& format)
{
    const bool isLong = format.Format.wFormatTag == WAVE_FORMAT_EXTENSIBLE;
    const auto hasTag = [&](WORD tag, const GUID& subFormat)
    { return isLong ? IsEqualGUID(format.SubFormat, subFormat) != 0 : format.Format.wFormatTag == tag; };
    if (hasTag(WAVE_FORMAT_PCM, KSDATAFORMAT_SUBTYPE_PCM))
        return Format::Encoding::integer;
    return hasTag(WAVE_FORMAT_IEEE_FLOAT, KSDATAFORMAT_SUBTYPE_IEEE_FLOAT) ? Format::Encoding::floatingPoint
                                                                           : Format::Encoding::other;
}
}

std::optional<Format> formatOf(const WAVEFORMATEXTENSIBLE& format)
{
    if (format.Format.nSamplesPerSec == 0)
        return std::nullopt;
    Format result;
    result.rate = static_cast<std::uint32_t>(format.Format.nSamplesPerSec);
    result.bits = format.Format.wBitsPerSample;
    result.validBits = format.Format.wBitsPerSample;
    result.channels = format.Format.nChannels;
    result.encoding = encodingOf(format);
    if (format.Format.wFormatTag == WAVE_FORMAT_EXTENSIBLE)
    {
        if (format.Samples.wValidBitsPerSample != 0) // 0 stands for all of them
            result.validBits = format.Samples.wValidBitsPerSample;
        result.speakers = static_cast<std::uint32_t>(format.dwChannelMask);
        result.subFormat = guidOf(format.SubFormat);
    }
    return result;
}
}
