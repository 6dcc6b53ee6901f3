/// @file
/// Property values that machine files write as objects; the forms themselves are propertyValueForms().
#pragma once

#include "simulator/machine/file/cursor.h"
#include "simulator/machine/property.h"

#include <cstdint>
#include <vector>

namespace sim
{
/// The value of the object at @p cursor, whose keys say which form it has. Throws MachineFileError.
PropertyValue readPropertyForm(const JsonCursor& cursor);

/// @p value as an object, for any tag but VT_EMPTY and VT_UI4.
JsonValue writePropertyForm(const PropertyValue& value);

/// Bytes in an object, as pairs of hexadecimal digits: {"blob": "00FF"}.
struct BlobCodec
{
    std::vector<std::uint8_t> read(const JsonCursor& cursor) const;
    JsonValue write(const std::vector<std::uint8_t>& bytes) const;
    JsonValue schema() const;
};
}
