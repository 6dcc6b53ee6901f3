#include "plaintext.h"

#include <array>
#include <cstdint>
#include <cstdio>

namespace plain
{
std::string utf8(const WCHAR* text)
{
    if (text == nullptr)
        return {};
    const WCHAR* end = text;
    while (*end != 0 && *end < 0x80)
        ++end;
    std::string result(text, end); // most strings are ASCII throughout
    text = end;
    while (*end != 0)
        ++end;
    while (text != end)
    {
        std::uint32_t character = *text++;
        if (character >= 0xD800 && character < 0xE000)
        {
            const bool isPair = character < 0xDC00 && text != end && *text >= 0xDC00 && *text < 0xE000;
            character = isPair ? 0x10000 + ((character - 0xD800) << 10) + (*text++ - 0xDC00u) : 0xFFFD;
        }
        if (character < 0x80)
            result.push_back(static_cast<char>(character));
        else if (character < 0x800)
        {
            result.push_back(static_cast<char>(0xC0 | (character >> 6)));
            result.push_back(static_cast<char>(0x80 | (character & 0x3F)));
        }
        else if (character < 0x10000)
        {
            result.push_back(static_cast<char>(0xE0 | (character >> 12)));
            result.push_back(static_cast<char>(0x80 | ((character >> 6) & 0x3F)));
            result.push_back(static_cast<char>(0x80 | (character & 0x3F)));
        }
        else
        {
            result.push_back(static_cast<char>(0xF0 | (character >> 18)));
            result.push_back(static_cast<char>(0x80 | ((character >> 12) & 0x3F)));
            result.push_back(static_cast<char>(0x80 | ((character >> 6) & 0x3F)));
            result.push_back(static_cast<char>(0x80 | (character & 0x3F)));
        }
    }
    return result;
}

std::string lowerCase(std::string text)
{
    for (char& character : text)
    {
        if (character >= 'A' && character <= 'Z')
            character = static_cast<char>(character - 'A' + 'a');
    }
    return text;
}

namespace
{
int digitOf(WCHAR character)
{
    if (character >= '0' && character <= '9')
        return character - '0';
    if (character >= 'A' && character <= 'F')
        return character - 'A' + 10;
    return character >= 'a' && character <= 'f' ? character - 'a' + 10 : -1;
}
}

std::optional<GUID> guidIn(const WCHAR* text)
{
    static constexpr char pattern[] = "{hhhhhhhh-hhhh-hhhh-hhhh-hhhhhhhhhhhh}";
    std::array<unsigned, 16> bytes = {};
    std::size_t count = 0;
    for (std::size_t i = 0; i < sizeof pattern - 1; ++i)
    {
        if (pattern[i] == 'h')
        {
            const int digit = digitOf(text[i]);
            if (digit < 0)
                return std::nullopt;
            bytes[count / 2] = bytes[count / 2] * 16 + static_cast<unsigned>(digit);
            ++count;
        }
        else if (text[i] != static_cast<WCHAR>(pattern[i]))
            return std::nullopt;
    }
    if (text[sizeof pattern - 1] != 0)
        return std::nullopt;
    GUID guid = {};
    guid.Data1 = (bytes[0] << 24) | (bytes[1] << 16) | (bytes[2] << 8) | bytes[3];
    guid.Data2 = static_cast<unsigned short>((bytes[4] << 8) | bytes[5]);
    guid.Data3 = static_cast<unsigned short>((bytes[6] << 8) | bytes[7]);
    for (std::size_t i = 0; i < 8; ++i)
        guid.Data4[i] = static_cast<unsigned char>(bytes[8 + i]);
    return guid;
}

std::string textOf(const GUID& guid)
{
    std::array<char, 40> text = {};
    std::snprintf(text.data(), text.size(), "{%08lX-%04X-%04X-%02X%02X-%02X%02X%02X%02X%02X%02X}",
                  static_cast<unsigned long>(guid.Data1), guid.Data2, guid.Data3, guid.Data4[0], guid.Data4[1],
                  guid.Data4[2], guid.Data4[3], guid.Data4[4], guid.Data4[5], guid.Data4[6], guid.Data4[7]);
    return text.data();
}
}
