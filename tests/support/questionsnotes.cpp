#include "tests/support/questionsnotes.h"

#include "simulator/machine/valuetext.h"

#include <algorithm>
#include <cstddef>
#include <cstdio>

namespace support
{
namespace
{
constexpr UINT mostItems = 1000;

std::string hexadecimal(const void* bytes, std::size_t size)
{
    static constexpr char digits[] = "0123456789ABCDEF";
    const auto* const first = static_cast<const unsigned char*>(bytes);
    std::string text;
    for (std::size_t index = 0; index < size; ++index)
    {
        text += digits[first[index] / 16];
        text += digits[first[index] % 16];
    }
    return text;
}

std::string valueOf(const PROPVARIANT& value)
{
    switch (value.vt)
    {
    case VT_EMPTY:
    case VT_NULL:
        return "";
    case VT_LPWSTR:
        return value.pwszVal == nullptr ? "null" : '"' + sim::utf8(value.pwszVal) + '"';
    case VT_CLSID:
        return value.puuid == nullptr ? "null" : sim::guidText(*value.puuid);
    case VT_BLOB:
        return std::to_string(value.blob.cbSize) + " bytes " +
               (value.blob.pBlobData == nullptr ? "null" : hexadecimal(value.blob.pBlobData, value.blob.cbSize));
    case VT_I1:
    case VT_UI1:
        return std::to_string(value.bVal);
    case VT_I2:
    case VT_UI2:
    case VT_BOOL:
        return std::to_string(value.uiVal);
    case VT_I4:
    case VT_UI4:
    case VT_INT:
    case VT_UINT:
    case VT_R4:
        return std::to_string(value.ulVal);
    default:
        return std::to_string(value.uhVal.QuadPart);
    }
}
}

std::string answerText(float value)
{
    char text[32] = {};
    std::snprintf(text, sizeof text, "%.9g", static_cast<double>(value));
    return text;
}

std::string answerText(const GUID& value)
{
    return sim::guidText(value);
}

std::string answerText(const PROPERTYKEY& value)
{
    return sim::guidText(value.fmtid) + "/" + std::to_string(value.pid);
}

std::string answerText(const PROPVARIANT& value)
{
    return "tag " + std::to_string(value.vt) + " " + valueOf(value);
}

std::string answerText(const KSJACK_DESCRIPTION& value)
{
    return hexadecimal(&value, sizeof value);
}

std::string answerText(const KSJACK_DESCRIPTION2& value)
{
    return hexadecimal(&value, sizeof value);
}

std::string answerText(const WAVEFORMATEX& value)
{
    return hexadecimal(&value, sizeof value + value.cbSize);
}

std::string answerText(const std::string& value)
{
    return value;
}

std::string answerText(const void* object)
{
    return object == nullptr ? "null" : "object";
}

std::string callText(const std::string& operation, const std::string& first, const std::string& second,
                     const std::string& third)
{
    std::string text = operation + "(" + first;
    for (const std::string* const argument : {&second, &third})
        text += argument->empty() ? "" : ", " + *argument;
    return text + ")";
}

std::optional<std::string> Notes::addText(const std::string& call, const std::string& object, HRESULT result,
                                          const LPWSTR& text)
{
    if (!add(call, object, result, text == nullptr ? std::string("null") : '"' + sim::utf8(text) + '"') ||
        text == nullptr)
        return std::nullopt;
    return bench::taken(text);
}

void Notes::write(const std::string& call, const std::string& object, HRESULT result, const std::string& value)
{
    m_transcript.push_back(call + " on " + object + " -> " + sim::resultText(result) + " " + value);
}

UINT believable(UINT count)
{
    return std::min(count, mostItems);
}
}
