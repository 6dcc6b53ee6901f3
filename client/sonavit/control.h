/// @file
/// Hardware controls and input selectors of a card.
#pragma once

#include "sonavit/export.h"
#include "sonavit/ids.h"
#include "sonavit/nodekind.h"
#include "sonavit/problem.h"
#include "sonavit/volume.h"

#include <cstdint>
#include <iosfwd>
#include <optional>
#include <string>
#include <vector>

namespace sonavit
{
inline namespace v1
{
/// One channel of a hardware control, as IAudioVolumeLevel reports it. What the platform fails to report has no value;
/// there is no percent without a finite range.
struct ControlChannel
{
    Level level;
    std::optional<LevelRange> range;
};

/// A level in a card's hardware that acts on an endpoint, with the mute next to it. It is next to a connector, or
/// between two other nodes on a way from one connector to another, as a microphone boost often is. A value that stays
/// as it was read; any thread may use it.
struct Control
{
    ControlId id;
    /// Of the node itself: "Mic Boost"; many drivers call all of them "Volume".
    std::optional<std::string> name;
    /// Of the connector next to it: "Line Out 1/2". No value for a level between two nodes.
    std::optional<std::string> ownerName;
    std::optional<Guid> ownerType; ///< kind of that connector, see kindOf(); likewise
    /// No value if their number cannot be read.
    std::optional<std::vector<ControlChannel>> channels;
    /// Whether a mute node is next to the level that can be switched. If that cannot be read, problems say why. A mute
    /// node next to several levels is that of the one next to a connector; between two nodes, of the one that feeds it.
    bool hasMute = false;
    std::optional<bool> isMuted;   ///< no value without a mute, too
    std::vector<Problem> problems; ///< what could not be read of it

    /// For a person, never empty: the owner's name and the node's, as far as they say something.
    SONAVIT_CLIENT_API std::string title() const;
};

/// One input of a selector.
struct SelectorInput
{
    /// The number by which the platform knows the input, inside its device.
    std::optional<std::uint32_t> number;
    std::optional<std::string> name;          ///< of the node that feeds the selector
    std::optional<std::string> connectorName; ///< of the nearest connector behind that node: "Line In"
    std::optional<Guid> connectorType;        ///< kind of that connector

    /// For a person, never empty.
    SONAVIT_CLIENT_API std::string title() const;
};

/// A switch in a card's hardware that chooses one of several inputs (IAudioInputSelector). A value that stays as it was
/// read; any thread may use it.
struct Selector
{
    SelectorId id;
    std::optional<std::string> name;
    std::optional<std::string> deviceId; ///< the device that it belongs to
    std::optional<std::string> deviceName;
    std::vector<SelectorInput> inputs;
    /// The number of the chosen input; it may be that of no input.
    std::optional<std::uint32_t> selection;
    std::vector<Problem> problems; ///< what could not be read of it

    /// The chosen input; null if the selection is that of no input, or unknown. It belongs to this selector.
    SONAVIT_CLIENT_API const SelectorInput* selected() const noexcept;
    /// For a person, never empty.
    SONAVIT_CLIENT_API std::string title() const;
};

SONAVIT_CLIENT_API bool operator==(const ControlChannel& left, const ControlChannel& right) noexcept;
SONAVIT_CLIENT_API bool operator==(const Control& left, const Control& right);
SONAVIT_CLIENT_API bool operator==(const SelectorInput& left, const SelectorInput& right);
SONAVIT_CLIENT_API bool operator==(const Selector& left, const Selector& right);
inline bool operator!=(const ControlChannel& left, const ControlChannel& right) noexcept
{
    return !(left == right);
}
inline bool operator!=(const Control& left, const Control& right)
{
    return !(left == right);
}
inline bool operator!=(const SelectorInput& left, const SelectorInput& right)
{
    return !(left == right);
}
inline bool operator!=(const Selector& left, const Selector& right)
{
    return !(left == right);
}
SONAVIT_CLIENT_API std::ostream& operator<<(std::ostream& out, const ControlChannel& channel);
SONAVIT_CLIENT_API std::ostream& operator<<(std::ostream& out, const Control& control);
SONAVIT_CLIENT_API std::ostream& operator<<(std::ostream& out, const SelectorInput& input);
SONAVIT_CLIENT_API std::ostream& operator<<(std::ostream& out, const Selector& selector);
}
}
