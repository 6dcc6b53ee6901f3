/// @file
/// Codecs of the keys and values of a property store.
#pragma once

#include "simulator/machine/file/cursor.h"
#include "simulator/machine/property.h"

namespace sim
{
/// A property's name, or its key as keyText() writes it.
struct PropertyKeyCodec
{
    PROPERTYKEY read(const JsonCursor& cursor) const;
    JsonValue write(const PROPERTYKEY& key) const;
    JsonValue schema() const;
};

/// A plain string, number or null for the usual tags, an object for any other tag.
struct PropertyValueCodec
{
    PropertyValue read(const JsonCursor& cursor) const;
    JsonValue write(const PropertyValue& value) const;
    JsonValue schema() const;
};

/// An object whose keys are the properties' keys.
struct PropertiesCodec
{
    Properties read(const JsonCursor& cursor) const;
    JsonValue write(const Properties& properties) const;
    JsonValue schema() const;
};
}
