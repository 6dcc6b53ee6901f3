/// The kinds of jacks and nodes that a machine can have, by the names that a machine file gives them.
#pragma once

#include "platform/coreaudio.h"

#include <array>
#include <optional>
#include <string>
#include <string_view>

namespace sim
{
namespace nodetypes
{
/// Jacks share one family of GUIDs in which only the terminal's number differs.
constexpr GUID terminal(unsigned short number)
{
    return {0xDFF219E0u + number, 0xF70F, 0x11D0, {0xB9, 0x17, 0x00, 0xA0, 0xC9, 0x22, 0x31, 0x96}};
}

/// So do the classic nodes, which differ in the first two fields.
constexpr GUID node(unsigned long first, unsigned short second)
{
    return {
        static_cast<decltype(GUID::Data1)>(first), second, 0x11D0, {0x8A, 0x2B, 0x00, 0xA0, 0xC9, 0x25, 0x5A, 0xC1}};
}

inline constexpr GUID microphone = terminal(0x0201);
inline constexpr GUID microphoneArray = terminal(0x0205);
inline constexpr GUID speaker = terminal(0x0301);
inline constexpr GUID headphones = terminal(0x0302);
inline constexpr GUID headset = terminal(0x0402);
inline constexpr GUID analogConnector = terminal(0x0601);
inline constexpr GUID digitalInterface = terminal(0x0602);
inline constexpr GUID line = terminal(0x0603);
inline constexpr GUID spdif = terminal(0x0605);
inline constexpr GUID hdmi = {0xD1B9CC2A, 0xF519, 0x417F, {0x91, 0xC9, 0x55, 0xFA, 0x65, 0x48, 0x10, 0x01}};
inline constexpr GUID displayPort = {0xE47E4031, 0x3EA6, 0x418D, {0x8F, 0x9B, 0xB7, 0x38, 0x43, 0xCC, 0xBA, 0x97}};
/// The category of a connector that streams to or from software.
inline constexpr GUID stream = {0x6994AD04, 0x93EF, 0x11D0, {0xA3, 0xCC, 0x00, 0xA0, 0xC9, 0x22, 0x31, 0x96}};

inline constexpr GUID volume = node(0x3A5ACC00, 0xC557);
inline constexpr GUID mute = node(0x02B223C0, 0xC557);
inline constexpr GUID multiplexer = node(0x2CEAF780, 0xC556);
inline constexpr GUID sum = node(0xDA441A60, 0xC556);
inline constexpr GUID automaticGain = node(0xE88C9BA0, 0xC557);
inline constexpr GUID loudness = node(0x41887440, 0xC558);
inline constexpr GUID tone = node(0x7607E580, 0xC557);
inline constexpr GUID toDigital = node(0x4D837FE0, 0xC555);
inline constexpr GUID toAnalog = node(0x507AE360, 0xC554);
inline constexpr GUID peakMeter = {0xA085651E, 0x5F0D, 0x4B36, {0xA8, 0x69, 0xD1, 0x95, 0xD6, 0xAB, 0x4B, 0x9E}};
}

struct NamedNodeType
{
    std::string_view name;
    GUID type;
};

inline constexpr std::array<NamedNodeType, 22> namedNodeTypes = {{
    {"microphone", nodetypes::microphone},
    {"microphoneArray", nodetypes::microphoneArray},
    {"speaker", nodetypes::speaker},
    {"headphones", nodetypes::headphones},
    {"headset", nodetypes::headset},
    {"analogConnector", nodetypes::analogConnector},
    {"digitalInterface", nodetypes::digitalInterface},
    {"line", nodetypes::line},
    {"spdif", nodetypes::spdif},
    {"hdmi", nodetypes::hdmi},
    {"displayPort", nodetypes::displayPort},
    {"stream", nodetypes::stream},
    {"volume", nodetypes::volume},
    {"mute", nodetypes::mute},
    {"multiplexer", nodetypes::multiplexer},
    {"sum", nodetypes::sum},
    {"automaticGain", nodetypes::automaticGain},
    {"loudness", nodetypes::loudness},
    {"tone", nodetypes::tone},
    {"toDigital", nodetypes::toDigital},
    {"toAnalog", nodetypes::toAnalog},
    {"peakMeter", nodetypes::peakMeter},
}};

/// The kind of a jack or node by its name ("speaker", "volume"), or any other as a GUID text.
std::string nodeTypeText(const GUID& nodeType);
std::optional<GUID> nodeTypeFromText(const std::string& text);
}
