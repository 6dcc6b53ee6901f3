#include "tools/sonavit/nodekind.h"

#include "libModuleCommon/guid.h"
#include "simulator/machine/nodetypes.h"
#include "tools/sonavit/output/text.h"

#include <array>

namespace sonavit::program
{
namespace
{
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

std::optional<GUID> typeOrNothing(const GUID& type)
{
    if (type == GUID{})
        return std::nullopt;
    return type;
}

std::optional<std::string> kindKey(const std::optional<GUID>& type)
{
    if (!type)
        return std::nullopt;
    const std::string name = sim::nameOf(sim::nodeTypeNames, *type);
    return name.empty() ? "other" : name;
}

std::string kindWords(const std::optional<GUID>& type)
{
    return type ? wordsOf(*type) : nothing;
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
