#include "sonavit/nodekind.h"

#include "platform/coreaudio.h"

#include <array>
#include <cstring>
#include <ostream>

namespace sonavit
{
inline namespace v1
{
namespace
{
struct Known
{
    NodeKind kind;
    Guid type;
    const char* key;
    const char* words;
};

/// The category of a connector that streams to or from software.
constexpr GUID streamType = {0x6994AD04, 0x93EF, 0x11D0, {0xA3, 0xCC, 0x00, 0xA0, 0xC9, 0x22, 0x31, 0x96}};

Guid guid(const GUID& platformGuid)
{
    static_assert(sizeof(Guid) == sizeof(GUID), "both have the platform's layout");
    Guid result;
    std::memcpy(static_cast<void*>(&result), &platformGuid, sizeof result);
    return result;
}

/// In the order of NodeKind, which begins with `other`.
const std::array<Known, 45>& knownKinds()
{
    static const std::array<Known, 45> table = {{
        {NodeKind::microphone, guid(KSNODETYPE_MICROPHONE), "microphone", "Microphone"},
        {NodeKind::desktopMicrophone, guid(KSNODETYPE_DESKTOP_MICROPHONE), "desktopMicrophone", "Desk microphone"},
        {NodeKind::personalMicrophone, guid(KSNODETYPE_PERSONAL_MICROPHONE), "personalMicrophone",
         "Personal microphone"},
        {NodeKind::omnidirectionalMicrophone, guid(KSNODETYPE_OMNI_DIRECTIONAL_MICROPHONE), "omnidirectionalMicrophone",
         "Omni microphone"},
        {NodeKind::microphoneArray, guid(KSNODETYPE_MICROPHONE_ARRAY), "microphoneArray", "Microphone array"},
        {NodeKind::processingMicrophoneArray, guid(KSNODETYPE_PROCESSING_MICROPHONE_ARRAY), "processingMicrophoneArray",
         "Microphone array"},
        {NodeKind::speaker, guid(KSNODETYPE_SPEAKER), "speaker", "Speaker"},
        {NodeKind::headphones, guid(KSNODETYPE_HEADPHONES), "headphones", "Headphones"},
        {NodeKind::desktopSpeaker, guid(KSNODETYPE_DESKTOP_SPEAKER), "desktopSpeaker", "Desk speaker"},
        {NodeKind::roomSpeaker, guid(KSNODETYPE_ROOM_SPEAKER), "roomSpeaker", "Room speaker"},
        {NodeKind::communicationSpeaker, guid(KSNODETYPE_COMMUNICATION_SPEAKER), "communicationSpeaker",
         "Speech speaker"},
        {NodeKind::subwoofer, guid(KSNODETYPE_LOW_FREQUENCY_EFFECTS_SPEAKER), "subwoofer", "Subwoofer"},
        {NodeKind::handset, guid(KSNODETYPE_HANDSET), "handset", "Handset"},
        {NodeKind::headset, guid(KSNODETYPE_HEADSET), "headset", "Headset"},
        {NodeKind::speakerphone, guid(KSNODETYPE_SPEAKERPHONE_NO_ECHO_REDUCTION), "speakerphone", "Speakerphone"},
        {NodeKind::echoSuppressingSpeakerphone, guid(KSNODETYPE_ECHO_SUPPRESSING_SPEAKERPHONE),
         "echoSuppressingSpeakerphone", "Speakerphone"},
        {NodeKind::echoCancelingSpeakerphone, guid(KSNODETYPE_ECHO_CANCELING_SPEAKERPHONE), "echoCancelingSpeakerphone",
         "Speakerphone"},
        {NodeKind::phoneLine, guid(KSNODETYPE_PHONE_LINE), "phoneLine", "Phone line"},
        {NodeKind::telephone, guid(KSNODETYPE_TELEPHONE), "telephone", "Telephone"},
        {NodeKind::downLinePhone, guid(KSNODETYPE_DOWN_LINE_PHONE), "downLinePhone", "Telephone"},
        {NodeKind::analogConnector, guid(KSNODETYPE_ANALOG_CONNECTOR), "analogConnector", "Analog"},
        {NodeKind::digitalInterface, guid(KSNODETYPE_DIGITAL_AUDIO_INTERFACE), "digitalInterface", "Digital"},
        {NodeKind::line, guid(KSNODETYPE_LINE_CONNECTOR), "line", "Line"},
        {NodeKind::legacyConnector, guid(KSNODETYPE_LEGACY_AUDIO_CONNECTOR), "legacyConnector", "Board"},
        {NodeKind::spdif, guid(KSNODETYPE_SPDIF_INTERFACE), "spdif", "S/PDIF"},
        {NodeKind::firewire, guid(KSNODETYPE_1394_DA_STREAM), "firewire", "FireWire"},
        {NodeKind::hdmi, guid(KSNODETYPE_HDMI_INTERFACE), "hdmi", "HDMI"},
        {NodeKind::displayPort, guid(KSNODETYPE_DISPLAYPORT_INTERFACE), "displayPort", "DisplayPort"},
        {NodeKind::cdPlayer, guid(KSNODETYPE_CD_PLAYER), "cdPlayer", "CD player"},
        {NodeKind::phonograph, guid(KSNODETYPE_PHONOGRAPH), "phonograph", "Phono"},
        {NodeKind::radio, guid(KSNODETYPE_RADIO_RECEIVER), "radio", "Radio"},
        {NodeKind::synthesizer, guid(KSNODETYPE_SYNTHESIZER), "synthesizer", "Synthesizer"},
        {NodeKind::stream, guid(streamType), "stream", "Stream"},
        {NodeKind::toAnalog, guid(KSNODETYPE_DAC), "toAnalog", "To analog"},
        {NodeKind::toDigital, guid(KSNODETYPE_ADC), "toDigital", "To digital"},
        {NodeKind::selector, guid(KSNODETYPE_MUX), "selector", "Selector"},
        {NodeKind::distributor, guid(KSNODETYPE_DEMUX), "distributor", "Distributor"},
        {NodeKind::sum, guid(KSNODETYPE_SUM), "sum", "Sum"},
        {NodeKind::mute, guid(KSNODETYPE_MUTE), "mute", "Mute"},
        {NodeKind::volume, guid(KSNODETYPE_VOLUME), "volume", "Volume"},
        {NodeKind::tone, guid(KSNODETYPE_TONE), "tone", "Tone"},
        {NodeKind::equalizer, guid(KSNODETYPE_EQUALIZER), "equalizer", "Equalizer"},
        {NodeKind::automaticGain, guid(KSNODETYPE_AGC), "automaticGain", "Automatic gain"},
        {NodeKind::loudness, guid(KSNODETYPE_LOUDNESS), "loudness", "Loudness"},
        {NodeKind::peakMeter, guid(KSNODETYPE_PEAKMETER), "peakMeter", "Peak meter"},
    }};
    return table;
}

/// Null for `other` and for a number without a name.
const Known* find(NodeKind kind)
{
    const auto number = static_cast<unsigned>(kind);
    return number >= 1 && number <= knownKinds().size() ? &knownKinds()[number - 1] : nullptr;
}
}

NodeKind kindOf(const Guid& type) noexcept
{
    for (const Known& known : knownKinds())
    {
        if (known.type == type)
            return known.kind;
    }
    return NodeKind::other;
}

Guid guidOf(NodeKind kind) noexcept
{
    const Known* const known = find(kind);
    return known == nullptr ? Guid() : known->type;
}

const char* keyOf(NodeKind kind) noexcept
{
    const Known* const known = find(kind);
    return known == nullptr ? "other" : known->key;
}

const char* wordsOf(NodeKind kind) noexcept
{
    const Known* const known = find(kind);
    return known == nullptr ? "Other" : known->words;
}

bool isDigital(NodeKind kind) noexcept
{
    switch (kind)
    {
    case NodeKind::digitalInterface:
    case NodeKind::spdif:
    case NodeKind::firewire:
    case NodeKind::hdmi:
    case NodeKind::displayPort:
        return true;
    default:
        return false;
    }
}

std::ostream& operator<<(std::ostream& out, NodeKind kind)
{
    return out << wordsOf(kind);
}
}
}
