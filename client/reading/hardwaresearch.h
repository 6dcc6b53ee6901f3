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
    std::size_t mute = HardwarePart::none;  ///< the first mute node next to it, if that gives a mute
    std::size_t owner = HardwarePart::none; ///< the connector from which it was found
};

/// An input selector.
struct SelectorPlace
{
    std::size_t part = HardwarePart::none;
    std::size_t device = HardwarePart::none;
};

/// The first mute node next to a volume node; HardwarePart::none if there is none.
std::size_t muteNodeNextTo(const HardwareMap& map, std::size_t volume);
/// The same, or HardwarePart::none if it gives no mute.
std::size_t muteNextTo(HardwareMap& map, std::size_t volume);

/// The controls that act on an endpoint, in the order of a walk through the connectors that breadth-first follows joins
/// and then signal paths, those of each device in its order. A control that the walk meets twice is there once.
std::vector<ControlPlace> controlsOf(HardwareMap& map, const EndpointId& endpoint);

/// The selectors of the devices behind the connectors of endpoints, in the order in which a walk from the endpoints
/// meets the devices.
std::vector<SelectorPlace> selectorsOf(HardwareMap& map, const std::vector<EndpointId>& endpoints);

/// The devices that a walk from the endpoints meets, the endpoints' own first.
std::vector<std::size_t> devicesOf(const HardwareMap& map, const std::vector<EndpointId>& endpoints);
}
