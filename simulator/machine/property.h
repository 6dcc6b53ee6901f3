/// Property stores as data.
#pragma once

#include "platform/coreaudio.h"

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace sim
{
/// A UTF-8 string that the platform returns; no value stands for a null pointer along with a success code.
using OptionalString = std::optional<std::string>;
using Text = OptionalString;

/// One value of a property store together with the tag under which the store hands it out.
///
/// A mistyped property is simply a value with another tag than its reader expects.
struct PropertyValue
{
    VARTYPE tag = VT_EMPTY;
    OptionalString text;             ///< VT_LPWSTR; no value: the tag comes with a null pointer
    std::uint32_t number = 0;        ///< VT_UI4 and the other numeric tags
    std::vector<std::uint8_t> bytes; ///< VT_BLOB

    static PropertyValue ofText(OptionalString value);
    static PropertyValue ofNumber(std::uint32_t value, VARTYPE tag = VT_UI4);
    static PropertyValue ofBytes(std::vector<std::uint8_t> value);
};

struct Property
{
    PROPERTYKEY key;
    PropertyValue value;
};

/// The content of a property store, in the store's order. A key that is absent is answered with S_OK and VT_EMPTY.
using Properties = std::vector<Property>;

const PropertyValue* findProperty(const Properties& properties, const PROPERTYKEY& key);
void setProperty(Properties& properties, const PROPERTYKEY& key, PropertyValue value);
void removeProperty(Properties& properties, const PROPERTYKEY& key);

bool sameKey(const PROPERTYKEY& left, const PROPERTYKEY& right);

bool operator==(const PropertyValue& left, const PropertyValue& right);
bool operator==(const Property& left, const Property& right);
}
