#include "tools/sonavit/windows/consolebuffer.h"

#include "tools/sonavit/windows/utf16.h"

#include <algorithm>
#include <utility>

namespace sonavit::program
{
namespace
{
/// Older consoles refuse more than 64 kB in one call.
constexpr std::size_t mostUnits = 8192;

bool isContinuation(char byte)
{
    return (static_cast<unsigned char>(byte) & 0xC0u) == 0x80;
}

/// Bytes of the character that begins with @p first; 1 for a byte that begins none.
std::size_t characterSize(char first)
{
    const auto byte = static_cast<unsigned char>(first);
    if (byte >= 0xF0)
        return 4;
    if (byte >= 0xE0)
        return 3;
    return byte >= 0xC0 ? 2 : 1;
}

/// The size of @p text without an incomplete character at its end.
std::size_t completeSize(std::string_view text)
{
    constexpr std::size_t longestRest = 3;
    for (std::size_t rest = 1; rest <= std::min(longestRest, text.size()); ++rest)
    {
        const char byte = text[text.size() - rest];
        if (!isContinuation(byte))
            return characterSize(byte) > rest ? text.size() - rest : text.size();
    }
    return text.size();
}

bool isHighSurrogate(wchar_t unit)
{
    return unit >= 0xD800 && unit <= 0xDBFF;
}
}

ConsoleBuffer::ConsoleBuffer(Write write) : m_write(std::move(write)) {}

ConsoleBuffer::~ConsoleBuffer()
{
    write(m_collected);
}

ConsoleBuffer::int_type ConsoleBuffer::overflow(int_type character)
{
    if (!traits_type::eq_int_type(character, traits_type::eof()))
        m_collected += traits_type::to_char_type(character);
    return traits_type::not_eof(character);
}

std::streamsize ConsoleBuffer::xsputn(const char* text, std::streamsize size)
{
    m_collected.append(text, static_cast<std::size_t>(size));
    return size;
}

int ConsoleBuffer::sync()
{
    const std::size_t size = completeSize(m_collected);
    const bool isWritten = write(std::string_view(m_collected).substr(0, size));
    m_collected.erase(0, size);
    return isWritten ? 0 : -1;
}

bool ConsoleBuffer::write(std::string_view text)
{
    const std::wstring units = utf16(text);
    std::wstring_view left = units;
    while (!left.empty())
    {
        std::size_t size = std::min(left.size(), mostUnits);
        if (size < left.size() && isHighSurrogate(left[size - 1]))
            --size;
        if (!m_write(left.substr(0, size)))
            return false;
        left.remove_prefix(size);
    }
    return true;
}
}
