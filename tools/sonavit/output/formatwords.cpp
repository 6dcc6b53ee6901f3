#include "tools/sonavit/output/formatwords.h"

#include "tools/sonavit/deviceformat.h"
#include "tools/sonavit/output/text.h"

#include <algorithm>
#include <array>

namespace sonavit::program
{
namespace
{
struct MaskName
{
    unsigned mask;
    const char* name;
};

constexpr std::array<MaskName, 18> speakerBits = {{{SPEAKER_FRONT_LEFT, "front left"},
                                                   {SPEAKER_FRONT_RIGHT, "front right"},
                                                   {SPEAKER_FRONT_CENTER, "front center"},
                                                   {SPEAKER_LOW_FREQUENCY, "low frequency"},
                                                   {SPEAKER_BACK_LEFT, "back left"},
                                                   {SPEAKER_BACK_RIGHT, "back right"},
                                                   {SPEAKER_FRONT_LEFT_OF_CENTER, "front left of center"},
                                                   {SPEAKER_FRONT_RIGHT_OF_CENTER, "front right of center"},
                                                   {SPEAKER_BACK_CENTER, "back center"},
                                                   {SPEAKER_SIDE_LEFT, "side left"},
                                                   {SPEAKER_SIDE_RIGHT, "side right"},
                                                   {SPEAKER_TOP_CENTER, "top center"},
                                                   {SPEAKER_TOP_FRONT_LEFT, "top front left"},
                                                   {SPEAKER_TOP_FRONT_CENTER, "top front center"},
                                                   {SPEAKER_TOP_FRONT_RIGHT, "top front right"},
                                                   {SPEAKER_TOP_BACK_LEFT, "top back left"},
                                                   {SPEAKER_TOP_BACK_CENTER, "top back center"},
                                                   {SPEAKER_TOP_BACK_RIGHT, "top back right"}}};

constexpr std::array<MaskName, 8> usualMasks = {{{KSAUDIO_SPEAKER_DIRECTOUT, "direct"},
                                                 {KSAUDIO_SPEAKER_MONO, "mono"},
                                                 {KSAUDIO_SPEAKER_STEREO, "stereo"},
                                                 {KSAUDIO_SPEAKER_QUAD, "quadraphonic"},
                                                 {KSAUDIO_SPEAKER_5POINT1, "5.1"},
                                                 {KSAUDIO_SPEAKER_5POINT1_SURROUND, "5.1 surround"},
                                                 {KSAUDIO_SPEAKER_7POINT1, "7.1"},
                                                 {KSAUDIO_SPEAKER_7POINT1_SURROUND, "7.1 surround"}}};

bool isExtensible(const WAVEFORMATEXTENSIBLE& format)
{
    return format.Format.wFormatTag == WAVE_FORMAT_EXTENSIBLE;
}

unsigned validBits(const WAVEFORMATEXTENSIBLE& format)
{
    const unsigned valid = format.Samples.wValidBitsPerSample;
    return isExtensible(format) && valid != 0 ? valid : format.Format.wBitsPerSample;
}

bool hasTag(const WAVEFORMATEXTENSIBLE& format, WORD tag, const GUID& subFormat)
{
    return isExtensible(format) ? format.SubFormat == subFormat : format.Format.wFormatTag == tag;
}

const char* encoding(const WAVEFORMATEXTENSIBLE& format)
{
    if (hasTag(format, WAVE_FORMAT_PCM, KSDATAFORMAT_SUBTYPE_PCM))
        return "pcm";
    return hasTag(format, WAVE_FORMAT_IEEE_FLOAT, KSDATAFORMAT_SUBTYPE_IEEE_FLOAT) ? "float" : "other";
}

const MaskName* usualMask(unsigned mask)
{
    const auto* const found =
        std::find_if(usualMasks.begin(), usualMasks.end(), [&](const MaskName& name) { return name.mask == mask; });
    return found == usualMasks.end() ? nullptr : found;
}
}

std::string formatWords(const WAVEFORMATEXTENSIBLE& format)
{
    if (!isKnown(format))
        return nothing;
    const unsigned container = format.Format.wBitsPerSample;
    const unsigned valid = validBits(format);
    std::string words = std::to_string(format.Format.nSamplesPerSec) + " Hz, " + std::to_string(valid) + " bit";
    if (valid != container)
        words += " in " + std::to_string(container);
    if (encoding(format) == std::string("float"))
        words += " float";
    words += ", " + counted(format.Format.nChannels, "channel");
    if (isExtensible(format) && format.dwChannelMask != 0)
        words += " (" + speakerWords(format.dwChannelMask) + ")";
    return words;
}

Json formatJson(const WAVEFORMATEXTENSIBLE& format)
{
    if (!isKnown(format))
        return {};
    Json mask;
    if (isExtensible(format))
        mask = static_cast<unsigned>(format.dwChannelMask);
    return Json::object({{"rate", static_cast<unsigned>(format.Format.nSamplesPerSec)},
                         {"bits", static_cast<unsigned>(format.Format.wBitsPerSample)},
                         {"validBits", validBits(format)},
                         {"channels", static_cast<unsigned>(format.Format.nChannels)},
                         {"encoding", encoding(format)},
                         {"channelMask", mask}});
}

std::vector<std::string> speakerNames(unsigned mask)
{
    std::vector<std::string> names;
    for (const MaskName& speaker : speakerBits)
    {
        if ((mask & speaker.mask) != 0)
            names.emplace_back(speaker.name);
    }
    return names;
}

std::string speakerWords(unsigned mask)
{
    const MaskName* const usual = usualMask(mask);
    return usual != nullptr ? usual->name : enumeration(speakerNames(mask));
}
}
