/// @file
/// Kinds of jacks and of nodes in a hardware graph.
#pragma once

#include "sonavit/export.h"
#include "sonavit/ids.h"

#include <iosfwd>
#include <string>

namespace sonavit
{
inline namespace v1
{
/// The kinds that have names. A jack or a node has the GUID of its kind, a KSNODETYPE_ constant of the platform, see
/// kindOf().
enum class NodeKind : int
{
    other, ///< any kind that is not in this list
    microphone,
    desktopMicrophone,
    personalMicrophone,
    omnidirectionalMicrophone,
    microphoneArray,
    processingMicrophoneArray,
    speaker,
    headphones,
    desktopSpeaker,
    roomSpeaker,
    communicationSpeaker,
    subwoofer,
    handset,
    headset,
    speakerphone,
    echoSuppressingSpeakerphone,
    echoCancelingSpeakerphone,
    phoneLine,
    telephone,
    downLinePhone,
    analogConnector,
    digitalInterface,
    line,
    legacyConnector,
    spdif,
    firewire,
    hdmi,
    displayPort,
    cdPlayer,
    phonograph,
    radio,
    synthesizer,
    stream,
    toAnalog,
    toDigital,
    selector,
    distributor,
    sum,
    mute,
    volume,
    tone,
    equalizer,
    automaticGain,
    loudness,
    peakMeter
};

/// The kind that a node type of the platform stands for; NodeKind::other for an unknown one.
SONAVIT_CLIENT_API NodeKind kindOf(const Guid& type) noexcept;
/// The GUID of a kind; the null GUID for NodeKind::other.
SONAVIT_CLIENT_API Guid guidOf(NodeKind kind) noexcept;
/// "spdif", as in JSON and machine files.
SONAVIT_CLIENT_API const char* keyOf(NodeKind kind) noexcept;
/// "S/PDIF", for people.
SONAVIT_CLIENT_API const char* wordsOf(NodeKind kind) noexcept;
/// Whether a jack of that kind carries digital audio.
SONAVIT_CLIENT_API bool isDigital(NodeKind kind) noexcept;
/// Writes wordsOf().
SONAVIT_CLIENT_API std::ostream& operator<<(std::ostream& out, NodeKind kind);
}
}
