#include "tools/sonavit/nodekind.h"

#include "libModuleCommon/guid.h"
#include "simulator/machine/nodetypes.h"
#include "tools/sonavit/text.h"

#include <array>

namespace sonavit
{
namespace
{
struct KnownKind
{
    GUID type;
    NodeKind kind;
};

const std::array<KnownKind, 45> knownKinds = {{
    {KSNODETYPE_MICROPHONE, {"microphone", "Microphone"}},
    {KSNODETYPE_DESKTOP_MICROPHONE, {"desktopMicrophone", "Desk microphone"}},
    {KSNODETYPE_PERSONAL_MICROPHONE, {"personalMicrophone", "Personal microphone"}},
    {KSNODETYPE_OMNI_DIRECTIONAL_MICROPHONE, {"omnidirectionalMicrophone", "Omni microphone"}},
    {KSNODETYPE_MICROPHONE_ARRAY, {"microphoneArray", "Microphone array"}},
    {KSNODETYPE_PROCESSING_MICROPHONE_ARRAY, {"processingMicrophoneArray", "Microphone array"}},
    {KSNODETYPE_SPEAKER, {"speaker", "Speaker"}},
    {KSNODETYPE_HEADPHONES, {"headphones", "Headphones"}},
    {KSNODETYPE_DESKTOP_SPEAKER, {"desktopSpeaker", "Desk speaker"}},
    {KSNODETYPE_ROOM_SPEAKER, {"roomSpeaker", "Room speaker"}},
    {KSNODETYPE_COMMUNICATION_SPEAKER, {"communicationSpeaker", "Speech speaker"}},
    {KSNODETYPE_LOW_FREQUENCY_EFFECTS_SPEAKER, {"subwoofer", "Subwoofer"}},
    {KSNODETYPE_HANDSET, {"handset", "Handset"}},
    {KSNODETYPE_HEADSET, {"headset", "Headset"}},
    {KSNODETYPE_SPEAKERPHONE_NO_ECHO_REDUCTION, {"speakerphone", "Speakerphone"}},
    {KSNODETYPE_ECHO_SUPPRESSING_SPEAKERPHONE, {"echoSuppressingSpeakerphone", "Speakerphone"}},
    {KSNODETYPE_ECHO_CANCELING_SPEAKERPHONE, {"echoCancelingSpeakerphone", "Speakerphone"}},
    {KSNODETYPE_PHONE_LINE, {"phoneLine", "Phone line"}},
    {KSNODETYPE_TELEPHONE, {"telephone", "Telephone"}},
    {KSNODETYPE_DOWN_LINE_PHONE, {"downLinePhone", "Telephone"}},
    {KSNODETYPE_ANALOG_CONNECTOR, {"analogConnector", "Analog"}},
    {KSNODETYPE_DIGITAL_AUDIO_INTERFACE, {"digitalInterface", "Digital"}},
    {KSNODETYPE_LINE_CONNECTOR, {"line", "Line"}},
    {KSNODETYPE_LEGACY_AUDIO_CONNECTOR, {"legacyConnector", "Board"}},
    {KSNODETYPE_SPDIF_INTERFACE, {"spdif", "S/PDIF"}},
    {KSNODETYPE_1394_DA_STREAM, {"firewire", "FireWire"}},
    {KSNODETYPE_HDMI_INTERFACE, {"hdmi", "HDMI"}},
    {KSNODETYPE_DISPLAYPORT_INTERFACE, {"displayPort", "DisplayPort"}},
    {KSNODETYPE_CD_PLAYER, {"cdPlayer", "CD player"}},
    {KSNODETYPE_PHONOGRAPH, {"phonograph", "Phono"}},
    {KSNODETYPE_RADIO_RECEIVER, {"radio", "Radio"}},
    {KSNODETYPE_SYNTHESIZER, {"synthesizer", "Synthesizer"}},
    {sim::nodetypes::stream, {"stream", "Stream"}},
    {KSNODETYPE_DAC, {"toAnalog", "To analog"}},
    {KSNODETYPE_ADC, {"toDigital", "To digital"}},
    {KSNODETYPE_MUX, {"selector", "Selector"}},
    {KSNODETYPE_DEMUX, {"distributor", "Distributor"}},
    {KSNODETYPE_SUM, {"sum", "Sum"}},
    {KSNODETYPE_MUTE, {"mute", "Mute"}},
    {KSNODETYPE_VOLUME, {"volume", "Volume"}},
    {KSNODETYPE_TONE, {"tone", "Tone"}},
    {KSNODETYPE_EQUALIZER, {"equalizer", "Equalizer"}},
    {KSNODETYPE_AGC, {"automaticGain", "Automatic gain"}},
    {KSNODETYPE_LOUDNESS, {"loudness", "Loudness"}},
    {KSNODETYPE_PEAKMETER, {"peakMeter", "Peak meter"}},
}};
}

std::optional<GUID> typeOrNothing(const GUID& type)
{
    if (type == GUID{})
        return std::nullopt;
    return type;
}

NodeKind nodeKind(const GUID& type)
{
    for (const KnownKind& known : knownKinds)
    {
        if (known.type == type)
            return known.kind;
    }
    return {"other", "Other"};
}

std::optional<std::string> kindKey(const std::optional<GUID>& type)
{
    if (!type)
        return std::nullopt;
    return nodeKind(*type).key;
}

std::string kindWords(const std::optional<GUID>& type)
{
    return type ? nodeKind(*type).words : nothing;
}

std::optional<std::string> typeText(const std::optional<GUID>& type)
{
    if (!type)
        return std::nullopt;
    GUID copy = *type;
    return guidToString(&copy).toUtf8();
}

bool isDigitalJack(const GUID& type)
{
    return type == KSNODETYPE_SPDIF_INTERFACE || type == KSNODETYPE_HDMI_INTERFACE ||
           type == KSNODETYPE_DISPLAYPORT_INTERFACE || type == KSNODETYPE_DIGITAL_AUDIO_INTERFACE ||
           type == KSNODETYPE_1394_DA_STREAM;
}

bool isLineJack(const GUID& type)
{
    return type == KSNODETYPE_LINE_CONNECTOR;
}
}
