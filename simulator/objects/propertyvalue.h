/// @file
/// Property values between the machine and the platform's variants.
#pragma once

#include <optional>

#include "simulator/core/simulatedobject.h"

namespace sim
{
/// The value of @p variant; no value for a tag that a property store does not take.
std::optional<PropertyValue> readVariant(const PROPVARIANT& variant);
}
