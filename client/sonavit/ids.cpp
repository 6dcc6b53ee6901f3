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

constexpr std::uint8_t noDigit = 0xFF;

/// The values of all characters as hexadecimal digits.
constexpr std::array<std::uint8_t, 256> makeDigitValues()
{
    std::array<std::uint8_t, 256> values = {};
    for (std::uint8_t& value : values)
        value = noDigit;
    for (std::uint8_t digit = 0; digit < 10; ++digit)
        values['0' + digit] = digit;
    for (std::uint8_t letter = 0; letter < 6; ++letter)
    {
        values['A' + letter] = static_cast<std::uint8_t>(10 + letter);
        values['a' + letter] = static_cast<std::uint8_t>(10 + letter);
    }
    return values;
}

constexpr std::array<std::uint8_t, 256> digitValues = makeDigitValues();

std::string_view withoutBraces(std::string_view text)
{
    const bool hasBraces = text.size() >= 2 && text.front() == '{' && text.back() == '}';
    return hasBraces ? text.substr(1, text.size() - 2) : text;
}

/// The 16 bytes of a GUID in the order of its text.
using Bytes = std::array<std::uint8_t, 16>;

std::optional<Bytes> bytesOf(std::string_view text)
{
    static constexpr std::array<std::size_t, 16> places = {0, 2, 4, 6, 9, 11, 14, 16, 19, 21, 24, 26, 28, 30, 32, 34};
    if (text.size() != pattern.size() || text[8] != '-' || text[13] != '-' || text[18] != '-' || text[23] != '-')
        return std::nullopt;
    Bytes bytes = {};
    unsigned all = 0; // a value above 0xF if one of them is none
    for (std::size_t i = 0; i < bytes.size(); ++i)
    {
        const unsigned high = digitValues[static_cast<unsigned char>(text[places[i]])];
        const unsigned low = digitValues[static_cast<unsigned char>(text[places[i] + 1])];
        bytes[i] = static_cast<std::uint8_t>(high << 4 | low);
        all |= high | low;
    }
    return all > 0xF ? std::nullopt : std::optional<Bytes>(bytes);
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
    std::uint64_t word = 0;
    for (; text.size() >= sizeof word; text.remove_prefix(sizeof word))
    {
        std::memcpy(&word, text.data(), sizeof word);
        mix(word);
    }
    word = 0;
    if (!text.empty())
        std::memcpy(&word, text.data(), text.size());
    mix(word);
    return static_cast<std::size_t>(hash);
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
