#include "client/capturing/variant.h"

#include "client/reading/text.h"

#include <utility>

namespace sonavit::capturing
{
namespace
{
RecordedValue tagAlone(VARTYPE tag)
{
    return {sim::PropertyValue::ofTag(tag), false};
}

sim::OptionalString narrowText(const char* text)
{
    return text == nullptr ? sim::OptionalString() : sim::OptionalString(text);
}

sim::OptionalString wideText(const WCHAR* text)
{
    return text == nullptr ? sim::OptionalString() : reading::utf8(text);
}

RecordedValue recordedBlob(const BLOB& blob)
{
    if (blob.pBlobData == nullptr && blob.cbSize > 0)
        return tagAlone(VT_BLOB);
    std::vector<std::uint8_t> bytes;
    if (blob.cbSize > 0)
        bytes.assign(blob.pBlobData, blob.pBlobData + blob.cbSize);
    return {sim::PropertyValue::ofBytes(std::move(bytes))};
}

std::uint64_t numberOf(const FILETIME& time)
{
    return std::uint64_t{time.dwHighDateTime} << 32 | time.dwLowDateTime;
}
}

/// The only place that knows the tags.
RecordedValue recorded(const PROPVARIANT& variant)
{
    switch (variant.vt)
    {
    case VT_EMPTY:
        return {};
    case VT_LPWSTR:
        return {sim::PropertyValue::ofText(wideText(variant.pwszVal))};
    case VT_LPSTR:
        return {sim::PropertyValue::ofNarrowText(narrowText(variant.pszVal))};
    case VT_BLOB:
        return recordedBlob(variant.blob);
    case VT_CLSID:
        return variant.puuid == nullptr ? tagAlone(VT_CLSID)
                                        : RecordedValue{sim::PropertyValue::ofGuid(*variant.puuid)};
    case VT_R4:
        return {sim::PropertyValue::ofReal(variant.fltVal)};
    case VT_R8:
        return {sim::PropertyValue::ofLongReal(variant.dblVal)};
    case VT_I1:
    case VT_UI1:
        return {sim::PropertyValue::ofNumber(variant.bVal, variant.vt)};
    case VT_I2:
    case VT_UI2:
    case VT_BOOL:
        return {sim::PropertyValue::ofNumber(variant.uiVal, variant.vt)};
    case VT_I4:
    case VT_UI4:
    case VT_INT:
    case VT_UINT:
        return {sim::PropertyValue::ofNumber(static_cast<std::uint32_t>(variant.ulVal), variant.vt)};
    case VT_I8:
    case VT_UI8:
        return {sim::PropertyValue::ofNumber(variant.uhVal.QuadPart, variant.vt)};
    case VT_FILETIME:
        return {sim::PropertyValue::ofNumber(numberOf(variant.filetime), VT_FILETIME)};
    default:
        return tagAlone(variant.vt);
    }
}
}
