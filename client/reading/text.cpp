#include "client/reading/text.h"

#include "platform/text.h"
#include "qor/string.h"
#include "sonavit/guidtext.h"

#include <algorithm>
#include <cstdint>
#include <iterator>

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

/// The first unit that is not plain. Four are looked at in each round, which takes fewer instructions.
const WCHAR* skipPlain(const WCHAR* text)
{
    for (;; text += 4)
    {
        if (!isPlain(text[0]))
            return text;
        if (!isPlain(text[1]))
            return text + 1;
        if (!isPlain(text[2]))
            return text + 2;
        if (!isPlain(text[3]))
            return text + 3;
    }
}

/// UTF-8 of the string between @p text and @p end, of which the units before @p special are the same there.
std::string converted(const WCHAR* text, const WCHAR* special, const WCHAR* end)
{
    std::string bytes(text, special);
    while (special != end)
        append(bytes, nextCharacter(special, end));
    return bytes;
}
}

/// Most strings of the platform are plain throughout, and found to be so on the way to their end.
std::string utf8(const WCHAR* text)
{
    if (text == nullptr)
        return {};
    const WCHAR* const special = skipPlain(text);
    const WCHAR* end = special;
    while (*end != 0)
        ++end;
    return converted(text, special, end);
}

std::string utf8(const WCHAR* text, std::size_t length)
{
    const WCHAR* const end = text + length;
    return converted(text, std::find_if_not(text, end, isPlain), end);
}

std::vector<WCHAR> wide(const std::string& utf8)
{
    std::vector<WCHAR> text;
    const auto isAscii = [](char character) { return static_cast<unsigned char>(character) < 0x80; };
    if (std::all_of(utf8.begin(), utf8.end(), isAscii))
    {
        text.reserve(utf8.size() + 1);
        text.assign(utf8.begin(), utf8.end());
    }
    else
    {
        const qor::String units = qor::String::fromUtf8(utf8);
        const WCHAR* const first = platform::wide(units.getUCS2Buffer());
        text.assign(first, first + units.size());
    }
    text.push_back(0);
    return text;
}

std::optional<Guid> writtenGuid(const WCHAR* text)
{
    const bool hasBraces = *text == '{';
    GuidReader<WCHAR> reader(hasBraces ? text + 1 : text);
    const std::optional<Guid> guid = reader.read();
    if (!guid || (hasBraces && *reader.end() != '}'))
        return std::nullopt;
    return reader.end()[hasBraces ? 1 : 0] == 0 ? guid : std::nullopt;
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
