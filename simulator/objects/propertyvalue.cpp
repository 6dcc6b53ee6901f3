#include "simulator/objects/propertyvalue.h"

#include "simulator/core/utf16.h"

namespace sim
{
std::optional<PropertyValue> readVariant(const PROPVARIANT& variant)
{
    switch (variant.vt)
    {
    case VT_EMPTY:
        return PropertyValue();
    case VT_LPWSTR:
        return PropertyValue::ofText(variant.pwszVal == nullptr ? Text() : Text(utf8(variant.pwszVal)));
    case VT_LPSTR:
        return PropertyValue::ofNarrowText(variant.pszVal == nullptr ? Text() : Text(variant.pszVal));
    case VT_BLOB:
    {
        const BYTE* const bytes = variant.blob.pBlobData;
        if (bytes == nullptr)
            return PropertyValue::ofBytes({});
        return PropertyValue::ofBytes(std::vector<std::uint8_t>(bytes, bytes + variant.blob.cbSize));
    }
    case VT_I2:
    case VT_UI2:
    case VT_BOOL:
        return PropertyValue::ofNumber(variant.uiVal, variant.vt);
    case VT_I1:
    case VT_UI1:
        return PropertyValue::ofNumber(variant.bVal, variant.vt);
    case VT_I4:
    case VT_UI4:
    case VT_INT:
    case VT_UINT:
        return PropertyValue::ofNumber(static_cast<std::uint32_t>(variant.ulVal), variant.vt);
    case VT_UI8:
    case VT_I8:
        return PropertyValue::ofNumber(variant.uhVal.QuadPart, variant.vt);
    case VT_FILETIME:
        return PropertyValue::ofNumber(
            std::uint64_t{variant.filetime.dwHighDateTime} << 32 | variant.filetime.dwLowDateTime, VT_FILETIME);
    case VT_R4:
        return PropertyValue::ofReal(variant.fltVal);
    case VT_R8:
        return PropertyValue::ofLongReal(variant.dblVal);
    case VT_CLSID:
        return variant.puuid == nullptr ? std::nullopt : std::optional(PropertyValue::ofGuid(*variant.puuid));
    default:
        return std::nullopt;
    }
}
}
