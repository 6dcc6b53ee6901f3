#include "sonavit/ids.h"

#include "sonavit/text.h"

#include <algorithm>
#include <cstring>
#include <ostream>
#include <tuple>

namespace sonavit
{
inline namespace v1
{
namespace
{
constexpr const char* digits = "0123456789ABCDEF";
constexpr std::string_view pattern = "XXXXXXXX-XXXX-XXXX-XXXX-XXXXXXXXXXXX";

std::optional<std::uint8_t> digitOf(char character)
{
    if (character >= '0' && character <= '9')
        return static_cast<std::uint8_t>(character - '0');
    const char lower = text::lowerCase(character);
    if (lower >= 'a' && lower <= 'f')
        return static_cast<std::uint8_t>(lower - 'a' + 10);
    return std::nullopt;
}

std::string_view withoutBraces(std::string_view text)
{
    const bool hasBraces = text.size() >= 2 && text.front() == '{' && text.back() == '}';
    return hasBraces ? text.substr(1, text.size() - 2) : text;
}

/// The 16 bytes of a GUID in the order of its text.
using Bytes = std::array<std::uint8_t, 16>;

std::optional<Bytes> bytesOf(std::string_view text)
{
    if (text.size() != pattern.size())
        return std::nullopt;
    Bytes bytes = {};
    std::size_t count = 0;
    for (std::size_t i = 0; i < text.size(); ++i)
    {
        if (pattern[i] == '-')
        {
            if (text[i] != '-')
                return std::nullopt;
            continue;
        }
        const std::optional<std::uint8_t> digit = digitOf(text[i]);
        if (!digit)
            return std::nullopt;
        bytes[count / 2] = static_cast<std::uint8_t>(bytes[count / 2] << 4 | *digit);
        ++count;
    }
    return bytes;
}

Bytes bytesOf(const Guid& guid)
{
    Bytes bytes = {};
    for (std::size_t i = 0; i < 4; ++i)
        bytes[i] = static_cast<std::uint8_t>(guid.data1 >> (24 - 8 * i));
    for (std::size_t i = 0; i < 2; ++i)
    {
        bytes[4 + i] = static_cast<std::uint8_t>(guid.data2 >> (8 - 8 * i));
        bytes[6 + i] = static_cast<std::uint8_t>(guid.data3 >> (8 - 8 * i));
    }
    std::copy(guid.data4.begin(), guid.data4.end(), bytes.begin() + 8);
    return bytes;
}
}

int compareIds(std::string_view left, std::string_view right) noexcept
{
    if (left.size() == right.size() && (left.empty() || std::memcmp(left.data(), right.data(), left.size()) == 0))
        return 0;
    const std::size_t common = std::min(left.size(), right.size());
    for (std::size_t i = 0; i < common; ++i)
    {
        const auto one = static_cast<unsigned char>(text::lowerCase(left[i]));
        const auto other = static_cast<unsigned char>(text::lowerCase(right[i]));
        if (one != other)
            return one < other ? -1 : 1;
    }
    if (left.size() == right.size())
        return 0;
    return left.size() < right.size() ? -1 : 1;
}

std::size_t hashId(std::string_view text) noexcept
{
    std::uint64_t hash = 0xCBF29CE484222325; // FNV-1a
    for (const char character : text)
        hash = (hash ^ static_cast<unsigned char>(text::lowerCase(character))) * 0x100000001B3;
    return static_cast<std::size_t>(hash ^ hash >> 32);
}

std::optional<Guid> Guid::parse(std::string_view text)
{
    const std::optional<Bytes> bytes = bytesOf(withoutBraces(text));
    if (!bytes)
        return std::nullopt;
    Guid guid;
    for (std::size_t i = 0; i < 4; ++i)
        guid.data1 = guid.data1 << 8 | (*bytes)[i];
    guid.data2 = static_cast<std::uint16_t>((*bytes)[4] << 8 | (*bytes)[5]);
    guid.data3 = static_cast<std::uint16_t>((*bytes)[6] << 8 | (*bytes)[7]);
    std::copy(bytes->begin() + 8, bytes->end(), guid.data4.begin());
    return guid;
}

std::string Guid::text() const
{
    const Bytes bytes = bytesOf(*this);
    std::string result = "{";
    std::size_t count = 0;
    for (const char character : pattern)
    {
        const std::uint8_t byte = bytes[std::min(count / 2, bytes.size() - 1)];
        result += character == '-' ? '-' : digits[count % 2 == 0 ? byte >> 4 : byte & 0xF];
        count += character == '-' ? 0 : 1;
    }
    return result + "}";
}

bool Guid::isNull() const noexcept
{
    return *this == Guid();
}

bool operator==(const Guid& left, const Guid& right) noexcept
{
    return left.data1 == right.data1 && left.data2 == right.data2 && left.data3 == right.data3 &&
           left.data4 == right.data4;
}

bool operator<(const Guid& left, const Guid& right) noexcept
{
    return std::tie(left.data1, left.data2, left.data3, left.data4) <
           std::tie(right.data1, right.data2, right.data3, right.data4);
}

std::ostream& operator<<(std::ostream& out, const Guid& guid)
{
    return out << guid.text();
}
}
}
