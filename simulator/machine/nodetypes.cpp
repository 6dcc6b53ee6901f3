#include "simulator/machine/nodetypes.h"

#include "simulator/machine/valuetext.h"

namespace sim
{
const Names<GUID, 46> nodeTypeNames = {{
    {"microphone", nodetypes::microphone},
    {"desktopMicrophone", KSNODETYPE_DESKTOP_MICROPHONE},
    {"personalMicrophone", KSNODETYPE_PERSONAL_MICROPHONE},
    {"omnidirectionalMicrophone", KSNODETYPE_OMNI_DIRECTIONAL_MICROPHONE},
    {"microphoneArray", nodetypes::microphoneArray},
    {"processingMicrophoneArray", KSNODETYPE_PROCESSING_MICROPHONE_ARRAY},
    {"speaker", nodetypes::speaker},
    {"headphones", nodetypes::headphones},
    {"desktopSpeaker", KSNODETYPE_DESKTOP_SPEAKER},
    {"roomSpeaker", KSNODETYPE_ROOM_SPEAKER},
    {"communicationSpeaker", KSNODETYPE_COMMUNICATION_SPEAKER},
    {"subwoofer", KSNODETYPE_LOW_FREQUENCY_EFFECTS_SPEAKER},
    {"handset", KSNODETYPE_HANDSET},
    {"headset", nodetypes::headset},
    {"speakerphone", KSNODETYPE_SPEAKERPHONE_NO_ECHO_REDUCTION},
    {"echoSuppressingSpeakerphone", KSNODETYPE_ECHO_SUPPRESSING_SPEAKERPHONE},
    {"echoCancelingSpeakerphone", KSNODETYPE_ECHO_CANCELING_SPEAKERPHONE},
    {"phoneLine", KSNODETYPE_PHONE_LINE},
    {"telephone", KSNODETYPE_TELEPHONE},
    {"downLinePhone", KSNODETYPE_DOWN_LINE_PHONE},
    {"analogConnector", nodetypes::analogConnector},
    {"digitalInterface", nodetypes::digitalInterface},
    {"line", nodetypes::line},
    {"legacyConnector", KSNODETYPE_LEGACY_AUDIO_CONNECTOR},
    {"spdif", nodetypes::spdif},
    {"firewire", KSNODETYPE_1394_DA_STREAM},
    {"hdmi", nodetypes::hdmi},
    {"displayPort", nodetypes::displayPort},
    {"cdPlayer", KSNODETYPE_CD_PLAYER},
    {"phonograph", KSNODETYPE_PHONOGRAPH},
    {"radio", KSNODETYPE_RADIO_RECEIVER},
    {"synthesizer", KSNODETYPE_SYNTHESIZER},
    {"stream", nodetypes::stream},
    {"toAnalog", nodetypes::toAnalog},
    {"toDigital", nodetypes::toDigital},
    {"selector", nodetypes::multiplexer},
    {"distributor", KSNODETYPE_DEMUX},
    {"sum", nodetypes::sum},
    {"mute", nodetypes::mute},
    {"volume", nodetypes::volume},
    {"tone", nodetypes::tone},
    {"equalizer", KSNODETYPE_EQUALIZER},
    {"automaticGain", nodetypes::automaticGain},
    {"loudness", nodetypes::loudness},
    {"peakMeter", nodetypes::peakMeter},
    {"multiplexer", nodetypes::multiplexer},
}};

std::string nodeTypeText(const GUID& nodeType)
{
    const std::string name = nameOf(nodeTypeNames, nodeType);
    return name.empty() ? guidText(nodeType) : name;
}

std::optional<GUID> nodeTypeFromText(const std::string& text)
{
    const std::optional<GUID> named = valueOf(nodeTypeNames, text);
    return named ? named : guidFromText(text);
}
}
