/// @file
/// Property stores as data.
#pragma once

#include "platform/coreaudio.h"
#include "simulator/machine/equality.h"

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace sim
{
/// A UTF-8 string that the platform returns; no value stands for a null pointer along with a success code.
using OptionalString = std::optional<std::string>;
using Text = OptionalString;

/// The number of a VT_BOOL that is true; 0 is false.
inline constexpr std::uint32_t variantTrue = 0xFFFF;

/// One value of a property store and the tag with which the store returns it.
///
/// A mistyped property is a value with a tag that its reader does not expect.
struct PropertyValue
{
    VARTYPE tag = VT_EMPTY;
    OptionalString text;             ///< VT_LPWSTR; no value: the store returns the tag and a null pointer
    std::uint64_t number = 0;        ///< VT_UI4 and the other tags of whole numbers; more than 32 bits for VT_UI8 only
    float real = 0.0f;               ///< VT_R4
    GUID guid = {};                  ///< VT_CLSID
    std::vector<std::uint8_t> bytes; ///< VT_BLOB

    static PropertyValue ofText(OptionalString value);
    static PropertyValue ofNumber(std::uint64_t value, VARTYPE tag = VT_UI4);
    /// VT_BOOL, whose number is 0xFFFF for true: VARIANT_TRUE.
    static PropertyValue ofBoolean(bool value);
    static PropertyValue ofReal(float value);
    static PropertyValue ofGuid(const GUID& value);
    static PropertyValue ofBytes(std::vector<std::uint8_t> value);
};

struct Property
{
    PROPERTYKEY key;
    PropertyValue value;
};

/// The content of a property store, in the store's order. For an absent key, GetValue returns S_OK and VT_EMPTY.
using Properties = std::vector<Property>;

/// The value of @p key; null if it is absent. The pointer is valid until @p properties change.
const PropertyValue* findProperty(const Properties& properties, const PROPERTYKEY& key);
/// Replaces the value of @p key, or appends it if the key is absent.
void setProperty(Properties& properties, const PROPERTYKEY& key, PropertyValue value);
/// Removes @p key; does nothing if it is absent.
void removeProperty(Properties& properties, const PROPERTYKEY& key);

bool sameKey(const PROPERTYKEY& left, const PROPERTYKEY& right);
}
