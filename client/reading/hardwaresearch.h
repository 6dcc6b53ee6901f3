/// @file
/// What of the walked hardware acts on an endpoint or belongs to a card.
#pragma once

#include "client/reading/hardwaremap.h"

#include <cstddef>
#include <vector>

namespace sonavit::reading
{
/// A volume node that gives a level, with what is next to it.
struct ControlPlace
{
    std::size_t level = HardwarePart::none;
    std::size_t mute = HardwarePart::none;  ///< its mute node, if that gives a mute
    std::size_t owner = HardwarePart::none; ///< the connector next to it; none for a level between two nodes
    /// How many connectors the search has met before the one next to it, or before the first one with a way to it.
    std::size_t distance = 0;
};

/// An input selector.
struct SelectorPlace
{
    std::size_t part = HardwarePart::none;
    std::size_t device = HardwarePart::none;
};

/// Whether the platform has failed to report the type of a part.
bool isTypeUnknown(const HardwarePart& part);

/// The parts on whose types it depends which mute node a volume node has.
std::vector<std::size_t> possibleMuteParts(const HardwareMap& map, std::size_t volume);

/// The mute node of a volume node; HardwarePart::none if there is none. Next to a connector it is the first mute node
/// next to it, those that feed it first. Between two nodes it is the first of them that no other volume node has: a
/// volume node next to a connector goes first, then the one that feeds the mute node. A part of unknown type may be
/// such a volume node.
std::size_t muteNodeNextTo(const HardwareMap& map, std::size_t volume);
/// The same, or HardwarePart::none if it gives no mute.
std::size_t muteNextTo(HardwareMap& map, std::size_t volume);

/// A volume node between two nodes.
struct VolumeBetween
{
    std::size_t part = HardwarePart::none;
    std::size_t distance = 0; ///< the position of the first connector that wires lead from or to
};

/// The volume nodes that wires lead to from one of the connectors and from there to another one, and that are next to
/// no connector: the nearest to the first connector first, then in the order of the parts of their device. It asks the
/// platform nothing, so it finds none in a device that cannot be opened, whose wires are not known.
std::vector<VolumeBetween> volumesBetween(const HardwareMap& map, const std::vector<std::size_t>& connectors);

/// The controls that act on an endpoint. First those next to connectors, in the order of a walk through the connectors
/// that breadth-first follows joins and then signal paths, those of each device in its order; a control that the walk
/// meets twice is there once. Then those between two nodes on a way from one of these connectors to another one.
std::vector<ControlPlace> controlsOf(HardwareMap& map, const EndpointId& endpoint);

/// The selectors of the devices behind the connectors of endpoints, in the order in which a walk from the endpoints
/// meets the devices.
std::vector<SelectorPlace> selectorsOf(HardwareMap& map, const std::vector<EndpointId>& endpoints);

/// The devices that a walk from the endpoints meets, the endpoints' own first.
std::vector<std::size_t> devicesOf(const HardwareMap& map, const std::vector<EndpointId>& endpoints);
}
