#include "tools/sonavit/output/modelwords.h"

#include "simulator/machine/nodetypes.h"
#include "tools/sonavit/failure.h"
#include "tools/sonavit/output/text.h"

#include <algorithm>
#include <array>

namespace sonavit::program
{
namespace
{
/// Candidates that a message lists; it counts the others.
constexpr std::size_t mostCandidates = 6;

struct TypeWords
{
    GUID type;
    const char* words;
};

const std::array<TypeWords, 45> typeWords = {{
    {KSNODETYPE_MICROPHONE, "Microphone"},
    {KSNODETYPE_DESKTOP_MICROPHONE, "Desk microphone"},
    {KSNODETYPE_PERSONAL_MICROPHONE, "Personal microphone"},
    {KSNODETYPE_OMNI_DIRECTIONAL_MICROPHONE, "Omni microphone"},
    {KSNODETYPE_MICROPHONE_ARRAY, "Microphone array"},
    {KSNODETYPE_PROCESSING_MICROPHONE_ARRAY, "Microphone array"},
    {KSNODETYPE_SPEAKER, "Speaker"},
    {KSNODETYPE_HEADPHONES, "Headphones"},
    {KSNODETYPE_DESKTOP_SPEAKER, "Desk speaker"},
    {KSNODETYPE_ROOM_SPEAKER, "Room speaker"},
    {KSNODETYPE_COMMUNICATION_SPEAKER, "Speech speaker"},
    {KSNODETYPE_LOW_FREQUENCY_EFFECTS_SPEAKER, "Subwoofer"},
    {KSNODETYPE_HANDSET, "Handset"},
    {KSNODETYPE_HEADSET, "Headset"},
    {KSNODETYPE_SPEAKERPHONE_NO_ECHO_REDUCTION, "Speakerphone"},
    {KSNODETYPE_ECHO_SUPPRESSING_SPEAKERPHONE, "Speakerphone"},
    {KSNODETYPE_ECHO_CANCELING_SPEAKERPHONE, "Speakerphone"},
    {KSNODETYPE_PHONE_LINE, "Phone line"},
    {KSNODETYPE_TELEPHONE, "Telephone"},
    {KSNODETYPE_DOWN_LINE_PHONE, "Telephone"},
    {KSNODETYPE_ANALOG_CONNECTOR, "Analog"},
    {KSNODETYPE_DIGITAL_AUDIO_INTERFACE, "Digital"},
    {KSNODETYPE_LINE_CONNECTOR, "Line"},
    {KSNODETYPE_LEGACY_AUDIO_CONNECTOR, "Board"},
    {KSNODETYPE_SPDIF_INTERFACE, "S/PDIF"},
    {KSNODETYPE_1394_DA_STREAM, "FireWire"},
    {KSNODETYPE_HDMI_INTERFACE, "HDMI"},
    {KSNODETYPE_DISPLAYPORT_INTERFACE, "DisplayPort"},
    {KSNODETYPE_CD_PLAYER, "CD player"},
    {KSNODETYPE_PHONOGRAPH, "Phono"},
    {KSNODETYPE_RADIO_RECEIVER, "Radio"},
    {KSNODETYPE_SYNTHESIZER, "Synthesizer"},
    {sim::nodetypes::stream, "Stream"},
    {KSNODETYPE_DAC, "To analog"},
    {KSNODETYPE_ADC, "To digital"},
    {KSNODETYPE_MUX, "Selector"},
    {KSNODETYPE_DEMUX, "Distributor"},
    {KSNODETYPE_SUM, "Sum"},
    {KSNODETYPE_MUTE, "Mute"},
    {KSNODETYPE_VOLUME, "Volume"},
    {KSNODETYPE_TONE, "Tone"},
    {KSNODETYPE_EQUALIZER, "Equalizer"},
    {KSNODETYPE_AGC, "Automatic gain"},
    {KSNODETYPE_LOUDNESS, "Loudness"},
    {KSNODETYPE_PEAKMETER, "Peak meter"},
}};

const char* wordsOf(const GUID& type)
{
    for (const TypeWords& known : typeWords)
    {
        if (known.type == type)
            return known.words;
    }
    return "Other";
}
}

std::string titleWords(const Endpoint& endpoint)
{
    const std::optional<std::string> known = endpoint.name();
    return known ? printable(*known)
                 : "unnamed " + std::string(flowWords(endpoint.flow)) + " " + printable(endpoint.id);
}

std::string shortTitleWords(const Endpoint& endpoint)
{
    return shortened(titleWords(endpoint), longestQuote);
}

const char* flowWords(EDataFlow flow)
{
    return flow == eRender ? "output" : "input";
}

std::string stateWords(const std::optional<unsigned>& state)
{
    const std::optional<std::string> key = stateKey(state);
    if (key && *state == DEVICE_STATE_NOTPRESENT)
        return "not present";
    return key.value_or(nothing);
}

std::string kindWords(const std::optional<GUID>& type)
{
    return type ? wordsOf(*type) : nothing;
}

std::string rangeWords(const std::optional<LevelRange>& range)
{
    if (!range)
        return nothing;
    return decimalText(range->minimum, 2) + " to " + decimalText(range->maximum, 2) + " dB in steps of " +
           decimalText(range->step, 2);
}

std::string muteWords(const std::optional<bool>& isMuted)
{
    if (!isMuted)
        return nothing;
    return *isMuted ? "muted" : "not muted";
}

void raiseAmbiguous(const std::vector<std::string>& titles, const std::string& name, const std::string& noun)
{
    const std::size_t listed = std::min(titles.size(), mostCandidates);
    std::vector<std::string> candidates(titles.begin(), titles.begin() + static_cast<std::ptrdiff_t>(listed));
    if (titles.size() > listed)
        candidates.push_back(std::to_string(titles.size() - listed) + " more");
    throw UsageError(inQuotes(name) + " matches " + counted(titles.size(), noun) + ": " + enumeration(candidates));
}
}
