/// @file
/// The properties of a device as its store shows them: those of the machine, and those that the platform composes from
/// other data where the machine says nothing about them. VT_EMPTY in the machine suppresses a composed property,
/// Composition::none all of them.
#pragma once

#include "simulator/core/hardware.h"

#include <vector>

namespace sim
{
/// The value that the platform composes for @p key, about which the machine says nothing; VT_EMPTY if there is none.
PropertyValue composedProperty(const Hardware& hardware, const Device& device, const PROPERTYKEY& key);

/// The keys of all properties that are not VT_EMPTY and not unlisted: those of the machine in its order, then the
/// composed ones.
std::vector<PROPERTYKEY> shownKeys(const Hardware& hardware, const Device& device);

/// Whether the platform composes the property for some devices.
bool isComposed(const PROPERTYKEY& key);
}
