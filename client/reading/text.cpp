#include "client/reading/text.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <iterator>
#include <string_view>

namespace sonavit::reading
{
namespace
{
constexpr std::uint32_t replacement = 0xFFFD;

bool isHighSurrogate(std::uint32_t unit)
{
    return unit >= 0xD800 && unit < 0xDC00;
}

bool isLowSurrogate(std::uint32_t unit)
{
    return unit >= 0xDC00 && unit < 0xE000;
}

/// The character at @p text, which then points behind it.
std::uint32_t nextCharacter(const WCHAR*& text, const WCHAR* end)
{
    const std::uint32_t first = *text++;
    if (!isHighSurrogate(first))
        return isLowSurrogate(first) ? replacement : first;
    if (text == end || !isLowSurrogate(*text))
        return replacement;
    const std::uint32_t second = *text++;
    return 0x10000 + ((first - 0xD800) << 10) + (second - 0xDC00);
}

void append(std::string& bytes, std::uint32_t character)
{
    const auto follower = [&](unsigned shift)
    { bytes.push_back(static_cast<char>(0x80 | ((character >> shift) & 0x3F))); };
    if (character < 0x80)
        bytes.push_back(static_cast<char>(character));
    else if (character < 0x800)
    {
        bytes.push_back(static_cast<char>(0xC0 | (character >> 6)));
        follower(0);
    }
    else if (character < 0x10000)
    {
        bytes.push_back(static_cast<char>(0xE0 | (character >> 12)));
        follower(6);
        follower(0);
    }
    else
    {
        bytes.push_back(static_cast<char>(0xF0 | (character >> 18)));
        follower(12);
        follower(6);
        follower(0);
    }
}
}

namespace
{
/// Whether the unit is the same character in UTF-8, and not the end of a string.
bool isPlain(WCHAR unit)
{
    return static_cast<std::uint16_t>(unit - 1) < 0x7F;
}

/// UTF-8 of the string between @p text and @p end, which begins with @p plain units that are the same there.
std::string converted(const WCHAR* text, std::size_t plain, const WCHAR* end)
{
    std::string bytes(plain, '\0');
    std::transform(text, text + plain, bytes.begin(), [](WCHAR unit) { return static_cast<char>(unit); });
    for (const WCHAR* place = text + plain; place != end;)
        append(bytes, nextCharacter(place, end));
    return bytes;
}
}

/// Most strings of the platform are plain throughout, and found to be so on the way to their end.
std::string utf8(const WCHAR* text)
{
    if (text == nullptr)
        return {};
    std::size_t plain = 0;
    while (isPlain(text[plain]))
        ++plain;
    const WCHAR* end = text + plain;
    while (*end != 0)
        ++end;
    return converted(text, plain, end);
}

std::string utf8(const WCHAR* text, std::size_t length)
{
    const WCHAR* const end = text + length;
    const WCHAR* const special = std::find_if_not(text, end, isPlain);
    return converted(text, static_cast<std::size_t>(special - text), end);
}

std::optional<Guid> writtenGuid(const WCHAR* text)
{
    std::array<char, 38> characters = {}; // no GUID is longer
    std::size_t length = 0;
    for (; text[length] != 0; ++length)
    {
        if (length == characters.size() || text[length] >= 0x80)
            return std::nullopt;
        characters[length] = static_cast<char>(text[length]);
    }
    return Guid::parse(std::string_view(characters.data(), length));
}

Guid guidOf(const GUID& guid) noexcept
{
    Guid copy;
    copy.data1 = static_cast<std::uint32_t>(guid.Data1);
    copy.data2 = guid.Data2;
    copy.data3 = guid.Data3;
    std::copy(std::begin(guid.Data4), std::end(guid.Data4), copy.data4.begin());
    return copy;
}
}
