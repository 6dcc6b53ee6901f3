/// @file
/// Property values between the machine and the platform's variants.
#pragma once

#include "simulator/core/simulatedobject.h"

#include <optional>

namespace sim
{
/// The value of @p variant; no value if a property store does not accept its tag.
std::optional<PropertyValue> readVariant(const PROPVARIANT& variant);
}
