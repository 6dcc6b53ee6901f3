/// @file
/// The kinds of jacks and nodes, and their names in machine files.
#pragma once

#include "platform/coreaudio.h"
#include "simulator/machine/names.h"

#include <optional>
#include <string>

namespace sim
{
/// Short names for the platform's identifiers.
namespace nodetypes
{
inline const GUID& microphone = KSNODETYPE_MICROPHONE;
inline const GUID& microphoneArray = KSNODETYPE_MICROPHONE_ARRAY;
inline const GUID& speaker = KSNODETYPE_SPEAKER;
inline const GUID& headphones = KSNODETYPE_HEADPHONES;
inline const GUID& headset = KSNODETYPE_HEADSET;
inline const GUID& analogConnector = KSNODETYPE_ANALOG_CONNECTOR;
inline const GUID& digitalInterface = KSNODETYPE_DIGITAL_AUDIO_INTERFACE;
inline const GUID& line = KSNODETYPE_LINE_CONNECTOR;
inline const GUID& spdif = KSNODETYPE_SPDIF_INTERFACE;
inline const GUID& hdmi = KSNODETYPE_HDMI_INTERFACE;
inline const GUID& displayPort = KSNODETYPE_DISPLAYPORT_INTERFACE;
/// The category of a connector that streams to or from software.
inline constexpr GUID stream = {0x6994AD04, 0x93EF, 0x11D0, {0xA3, 0xCC, 0x00, 0xA0, 0xC9, 0x22, 0x31, 0x96}};

inline const GUID& volume = KSNODETYPE_VOLUME;
inline const GUID& mute = KSNODETYPE_MUTE;
inline const GUID& multiplexer = KSNODETYPE_MUX;
inline const GUID& sum = KSNODETYPE_SUM;
inline const GUID& automaticGain = KSNODETYPE_AGC;
inline const GUID& loudness = KSNODETYPE_LOUDNESS;
inline const GUID& tone = KSNODETYPE_TONE;
inline const GUID& toDigital = KSNODETYPE_ADC;
inline const GUID& toAnalog = KSNODETYPE_DAC;
inline const GUID& peakMeter = KSNODETYPE_PEAKMETER;
}

/// The last one is an older name of the selector, which files may still use.
inline const Names<GUID, 46> nodeTypeNames = {{
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

/// The name of a kind of jack or node ("speaker", "volume"); for any other, the GUID as guidText() writes it.
/// nodeTypeFromText() reads both and returns no value for any other string.
std::string nodeTypeText(const GUID& nodeType);
std::optional<GUID> nodeTypeFromText(const std::string& text);
}
