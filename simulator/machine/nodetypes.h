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

/// The last one is an older name of the selector, which files may still use. Not an inline variable: on Windows the
/// platform's identifiers are no constants for the compiler, so the table is made when the program starts, once.
extern const Names<GUID, 46> nodeTypeNames;

/// The name of a kind of jack or node ("speaker", "volume"); for any other, the GUID as guidText() writes it.
/// nodeTypeFromText() reads both and returns no value for any other string.
std::string nodeTypeText(const GUID& nodeType);
std::optional<GUID> nodeTypeFromText(const std::string& text);
}
