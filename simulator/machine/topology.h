/// @file
/// Hardware graphs as data: parts, their controls, and the paths between them.
///
/// Parts refer to each other by global id.
#pragma once

#include "platform/coreaudio.h"
#include "simulator/machine/equality.h"
#include "simulator/machine/property.h"

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace sim
{
/// Level and range of one channel of a hardware volume node, in decibels.
struct ChannelLevel
{
    float minimum = -96.0f;
    float maximum = 0.0f;
    float step = 1.5f;
    float level = 0.0f;
};

/// IAudioVolumeLevel of a part.
struct VolumeControl
{
    std::vector<ChannelLevel> channels;
};

/// IAudioMute of a part.
struct MuteControl
{
    bool muted = false;
};

/// IAudioInputSelector of a part.
struct SelectorControl
{
    std::uint32_t selection = 0; ///< local id of the selected incoming part; 0: none
};

/// A control that a part lists and that the machine does not answer for: Activate returns E_NOINTERFACE.
struct FurtherControl
{
    GUID interfaceId = {};
    OptionalString name; ///< what IControlInterface::GetName returns
};

/// The common data of connectors and subunits of a topology.
struct Part
{
    std::string id;            ///< global id, stable over all topology objects; unique in the machine
    std::uint32_t localId = 0; ///< unique in the topology
    bool reportsId = true;     ///< false: GetGlobalId stores null; other data still refer to the part by @ref id
    OptionalString name;
    GUID subType = {};
    std::vector<std::string> incoming; ///< ids of the neighbours that feed this part, in the platform's order
    std::vector<std::string> outgoing; ///< ids of the neighbours that this part feeds
    std::optional<VolumeControl> volume;
    std::optional<MuteControl> mute;
    std::optional<SelectorControl> selector;
    std::vector<FurtherControl> furtherControls; ///< listed after the others
};

/// IKsJackDescription and IKsJackDescription2 of one jack.
struct Jack
{
    std::uint32_t channels = 0; ///< mask of the speakers that it carries
    std::uint32_t colour = 0;   ///< 0x00RRGGBB
    EPcxConnectionType connection = eConnTypeUnknown;
    EPcxGeoLocation geometricLocation = eGeoLocRear;
    EPcxGenLocation generalLocation = eGenLocPrimaryBox;
    EPxcPortConnection portConnection = ePortConnJack;
    bool detectsPresence = false; ///< the hardware knows whether something is plugged in
    bool changesFormat = false;   ///< the formats depend on what is plugged in
    /// Whether something is plugged in. No value: as the endpoints at the connector say by their states if the hardware
    /// detects presence, otherwise true.
    std::optional<bool> connected;
};

/// A plug of a device: a jack, or the bridge between the topologies of two devices.
struct Connector : Part
{
    ConnectorType type = Physical_External;
    DataFlow direction = Out;
    std::vector<Jack> jacks; ///< of a physical connector; empty: Activate(IKsJackDescription) fails
};

/// A node inside a device: volume, mute, selector, sum, converter.
struct Subunit : Part
{
};

/// A signal path inside one topology, from one part to another, in this direction only.
struct SignalPath
{
    std::string from;
    std::string to;
    std::vector<std::string> through; ///< ids of the parts in between, in the signal's order
    bool mixed = false;               ///< it passes a sum: a caller that rejects mixed paths does not get it
};

/// The hardware graph of one device.
struct Topology
{
    OptionalString deviceId; ///< what GetDeviceId returns; no value: null
    std::vector<Connector> connectors;
    std::vector<Subunit> subunits;
    std::vector<SignalPath> signalPaths;
};
}
