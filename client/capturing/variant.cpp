#include "client/capturing/variant.h"

#include "client/reading/text.h"

#include <utility>

namespace sonavit::capturing
{
namespace
{
std::optional<sim::PropertyValue> blobOf(const BLOB& blob)
{
    if (blob.pBlobData == nullptr && blob.cbSize > 0)
        return std::nullopt;
    std::vector<std::uint8_t> bytes;
    if (blob.cbSize > 0)
        bytes.assign(blob.pBlobData, blob.pBlobData + blob.cbSize);
    return sim::PropertyValue::ofBytes(std::move(bytes));
}
}

/// The only place that knows the tags.
std::optional<sim::PropertyValue> valueOf(const PROPVARIANT& variant)
{
    switch (variant.vt)
    {
    case VT_LPWSTR:
        return sim::PropertyValue::ofText(variant.pwszVal == nullptr ? sim::OptionalString()
                                                                     : reading::utf8(variant.pwszVal));
    case VT_BLOB:
        return blobOf(variant.blob);
    case VT_CLSID:
        return variant.puuid == nullptr ? std::nullopt : std::optional(sim::PropertyValue::ofGuid(*variant.puuid));
    case VT_R4:
        return sim::PropertyValue::ofReal(variant.fltVal);
    case VT_I1:
    case VT_UI1:
        return sim::PropertyValue::ofNumber(variant.bVal, variant.vt);
    case VT_I2:
    case VT_UI2:
    case VT_BOOL:
        return sim::PropertyValue::ofNumber(variant.uiVal, variant.vt);
    case VT_I4:
    case VT_UI4:
    case VT_INT:
    case VT_UINT:
        return sim::PropertyValue::ofNumber(static_cast<std::uint32_t>(variant.ulVal), variant.vt);
    case VT_UI8:
        return sim::PropertyValue::ofNumber(variant.uhVal.QuadPart, variant.vt);
    default:
        return std::nullopt;
    }
}
}
