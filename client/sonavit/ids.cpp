#include "sonavit/ids.h"

#include "sonavit/guidtext.h"
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

std::string_view withoutBraces(std::string_view text)
{
    const bool hasBraces = text.size() >= 2 && text.front() == '{' && text.back() == '}';
    return hasBraces ? text.substr(1, text.size() - 2) : text;
}

/// The 16 bytes of a GUID in the order of its text.
using Bytes = std::array<std::uint8_t, 16>;

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

/// Eight characters at a time. The bit in which upper and lower case differ is set in all characters: that makes some
/// others equal, too, which costs nothing but a rare collision.
std::size_t hashId(std::string_view text) noexcept
{
    constexpr std::uint64_t caseBits = 0x2020202020202020;
    std::uint64_t hash = text.size();
    const auto mix = [&](std::uint64_t word)
    {
        hash = (hash ^ (word | caseBits)) * 0x9E3779B97F4A7C15;
        hash ^= hash >> 32;
    };
    const auto wordAt = [&](std::size_t place)
    {
        std::uint64_t word = 0;
        std::memcpy(&word, text.data() + place, sizeof word);
        return word;
    };
    constexpr std::size_t length = sizeof(std::uint64_t);
    if (text.size() < length)
    {
        std::uint64_t word = 0;
        if (!text.empty())
            std::memcpy(&word, text.data(), text.size());
        mix(word);
        return static_cast<std::size_t>(hash);
    }
    for (std::size_t place = 0; place + length < text.size(); place += length)
        mix(wordAt(place));
    mix(wordAt(text.size() - length)); // may overlap the one before
    return static_cast<std::size_t>(hash);
}

std::optional<Guid> Guid::parse(std::string_view text)
{
    const std::string_view inner = withoutBraces(text);
    return inner.size() == pattern.size() ? GuidReader<char>(inner.data()).read() : std::nullopt;
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

std::size_t hashGuid(const Guid& guid) noexcept
{
    std::array<char, sizeof guid> bytes = {};
    std::memcpy(bytes.data(), static_cast<const void*>(&guid), bytes.size());
    return std::hash<std::string_view>()({bytes.data(), bytes.size()});
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
