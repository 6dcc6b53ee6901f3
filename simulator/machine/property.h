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
/// A mistyped property is a value with a tag that its reader does not expect. With a tag that none of the members
/// names, the store returns zeros: a null pointer, no elements.
struct PropertyValue
{
    VARTYPE tag = VT_EMPTY;
    OptionalString text;      ///< VT_LPWSTR, and the bytes of a VT_LPSTR, which need not be UTF-8; no value: the store
                              ///< returns the tag and a null pointer
    std::uint64_t number = 0; ///< VT_UI4 and the other tags of whole numbers, VT_FILETIME; the bits of negative ones;
                              ///< more than 32 bits for VT_UI8, VT_I8 and VT_FILETIME only
    float real = 0.0f;        ///< VT_R4
    GUID guid = {};           ///< VT_CLSID
    std::vector<std::uint8_t> bytes; ///< VT_BLOB
    double longReal = 0.0;           ///< VT_R8

    static PropertyValue ofText(OptionalString value);
    /// VT_LPSTR, whose bytes are in no particular encoding.
    static PropertyValue ofNarrowText(OptionalString value);
    static PropertyValue ofNumber(std::uint64_t value, VARTYPE tag = VT_UI4);
    /// VT_BOOL, whose number is 0xFFFF for true: VARIANT_TRUE.
    static PropertyValue ofBoolean(bool value);
    static PropertyValue ofReal(float value);
    static PropertyValue ofLongReal(double value);
    static PropertyValue ofGuid(const GUID& value);
    static PropertyValue ofBytes(std::vector<std::uint8_t> value);
    /// Any other tag, with zeros.
    static PropertyValue ofTag(VARTYPE tag);
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
