#include "simulator/machine/property.h"

#include <algorithm>
#include <utility>

namespace sim
{
PropertyValue PropertyValue::ofText(OptionalString value)
{
    PropertyValue result;
    result.tag = VT_LPWSTR;
    result.text = std::move(value);
    return result;
}

PropertyValue PropertyValue::ofNarrowText(OptionalString value)
{
    PropertyValue result = ofText(std::move(value));
    result.tag = VT_LPSTR;
    return result;
}

PropertyValue PropertyValue::ofNumber(std::uint64_t value, VARTYPE tag)
{
    PropertyValue result;
    result.tag = tag;
    result.number = value;
    return result;
}

PropertyValue PropertyValue::ofBoolean(bool value)
{
    return ofNumber(value ? variantTrue : 0, VT_BOOL);
}

PropertyValue PropertyValue::ofReal(float value)
{
    PropertyValue result;
    result.tag = VT_R4;
    result.real = value;
    return result;
}

PropertyValue PropertyValue::ofLongReal(double value)
{
    PropertyValue result;
    result.tag = VT_R8;
    result.longReal = value;
    return result;
}

PropertyValue PropertyValue::ofGuid(const GUID& value)
{
    PropertyValue result;
    result.tag = VT_CLSID;
    result.guid = value;
    return result;
}

PropertyValue PropertyValue::ofBytes(std::vector<std::uint8_t> value)
{
    PropertyValue result;
    result.tag = VT_BLOB;
    result.bytes = std::move(value);
    return result;
}

PropertyValue PropertyValue::ofTag(VARTYPE tag)
{
    PropertyValue result;
    result.tag = tag;
    return result;
}

const PropertyValue* findProperty(const Properties& properties, const PROPERTYKEY& key)
{
    for (const Property& property : properties)
    {
        if (sameKey(property.key, key))
            return &property.value;
    }
    return nullptr;
}

void setProperty(Properties& properties, const PROPERTYKEY& key, PropertyValue value)
{
    for (Property& property : properties)
    {
        if (sameKey(property.key, key))
        {
            property.value = std::move(value);
            return;
        }
    }
    properties.push_back({key, std::move(value)});
}

void removeProperty(Properties& properties, const PROPERTYKEY& key)
{
    const auto matches = [&](const Property& property) { return sameKey(property.key, key); };
    properties.erase(std::remove_if(properties.begin(), properties.end(), matches), properties.end());
}

bool sameKey(const PROPERTYKEY& left, const PROPERTYKEY& right)
{
    return left.fmtid == right.fmtid && left.pid == right.pid;
}
}
