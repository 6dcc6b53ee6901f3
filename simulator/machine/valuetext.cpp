#include "simulator/machine/valuetext.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <cstdio>
#include <string_view>

namespace sim
{
namespace
{
/// The number of @p digits hexadecimal digits of @p text from @p at on.
std::uint32_t hexNumber(const std::string& text, std::size_t at, std::size_t digits)
{
    std::uint32_t value = 0;
    for (std::size_t index = at; index < at + digits; ++index)
        value = value << 4 | static_cast<std::uint32_t>(hexDigit(text[index]));
    return value;
}

/// Writes @p value over the @p digits characters of @p text from @p at on, in upper case.
void writeHex(std::string& text, std::size_t at, std::size_t digits, std::uint32_t value)
{
    for (std::size_t index = at + digits; index > at; value >>= 4)
        text[--index] = "0123456789ABCDEF"[value & 0xF];
}

/// Where the bytes of GUID::Data4 begin in the text of a GUID.
constexpr std::array<std::size_t, 8> lastBytes = {20, 22, 25, 27, 29, 31, 33, 35};

template<class Real>
std::string shortestDecimal(Real value)
{
    char text[32] = {};
    return std::string(text, std::to_chars(text, text + sizeof text, value).ptr);
}

template<class Real>
std::optional<Real> realFromDecimal(const std::string& text)
{
    Real value = 0;
    const char* const end = text.data() + text.size();
    const std::from_chars_result result = std::from_chars(text.data(), end, value);
    const bool isNumber = result.ec == std::errc() && result.ptr == end && std::isfinite(value);
    return isNumber ? std::optional<Real>(value) : std::nullopt;
}
}

std::string decimal(float value)
{
    return shortestDecimal(value);
}

std::optional<float> fromDecimal(const std::string& text)
{
    return realFromDecimal<float>(text);
}

std::string longDecimal(double value)
{
    return shortestDecimal(value);
}

std::optional<double> doubleFromDecimal(const std::string& text)
{
    return realFromDecimal<double>(text);
}

int hexDigit(char character)
{
    if (character >= '0' && character <= '9')
        return character - '0';
    if (character >= 'A' && character <= 'F')
        return character - 'A' + 10;
    if (character >= 'a' && character <= 'f')
        return character - 'a' + 10;
    return -1;
}

std::string guidText(const GUID& guid)
{
    std::string text = "{XXXXXXXX-XXXX-XXXX-XXXX-XXXXXXXXXXXX}";
    writeHex(text, 1, 8, static_cast<std::uint32_t>(guid.Data1));
    writeHex(text, 10, 4, guid.Data2);
    writeHex(text, 15, 4, guid.Data3);
    for (std::size_t index = 0; index < lastBytes.size(); ++index)
        writeHex(text, lastBytes[index], 2, guid.Data4[index]);
    return text;
}

std::optional<GUID> guidFromText(const std::string& text)
{
    constexpr std::string_view form = "{XXXXXXXX-XXXX-XXXX-XXXX-XXXXXXXXXXXX}";
    const auto fits = [](char wanted, char found) { return wanted == 'X' ? hexDigit(found) >= 0 : wanted == found; };
    if (!std::equal(form.begin(), form.end(), text.begin(), text.end(), fits))
        return std::nullopt;

    GUID guid = {};
    guid.Data1 = hexNumber(text, 1, 8);
    guid.Data2 = static_cast<unsigned short>(hexNumber(text, 10, 4));
    guid.Data3 = static_cast<unsigned short>(hexNumber(text, 15, 4));
    for (std::size_t index = 0; index < lastBytes.size(); ++index)
        guid.Data4[index] = static_cast<unsigned char>(hexNumber(text, lastBytes[index], 2));
    return guid;
}

std::optional<std::uint64_t> largeNumberFromText(const std::string& text)
{
    std::uint64_t value = 0;
    const char* const end = text.data() + text.size();
    const std::from_chars_result result = std::from_chars(text.data(), end, value);
    const bool isNumber = result.ec == std::errc() && result.ptr == end;
    const bool isPlain = text.size() == 1 || (!text.empty() && text.front() != '0');
    return isNumber && isPlain ? std::optional<std::uint64_t>(value) : std::nullopt;
}

std::optional<std::uint32_t> numberFromText(const std::string& text)
{
    const std::optional<std::uint64_t> value = largeNumberFromText(text);
    return value && *value <= UINT32_MAX ? std::optional<std::uint32_t>(static_cast<std::uint32_t>(*value))
                                         : std::nullopt;
}

std::optional<std::uint64_t> fromHexText(const std::string& text, std::size_t digits)
{
    const bool hasForm = text.size() == 2 + digits && text.compare(0, 2, "0x") == 0;
    if (!hasForm || !std::all_of(text.begin() + 2, text.end(), [](char unit) { return hexDigit(unit) >= 0; }))
        return std::nullopt;
    std::uint64_t value = 0;
    for (std::size_t index = 2; index < text.size(); ++index)
        value = value << 4 | static_cast<std::uint64_t>(hexDigit(text[index]));
    return value;
}

std::string hexText(std::uint64_t value, std::size_t digits)
{
    std::string text(2 + digits, '0');
    text[1] = 'x';
    for (std::size_t index = text.size(); index > 2; value >>= 4)
        text[--index] = "0123456789ABCDEF"[value & 0xF];
    return text;
}

std::optional<HRESULT> resultFromText(const std::string& text)
{
    const std::optional<std::uint64_t> value = fromHexText(text, 8);
    return value ? std::optional(static_cast<HRESULT>(static_cast<std::uint32_t>(*value))) : std::nullopt;
}

std::string resultText(HRESULT result)
{
    char text[11] = {};
    std::snprintf(text, sizeof text, "0x%08lX", static_cast<unsigned long>(static_cast<std::uint32_t>(result)));
    return text;
}
}
