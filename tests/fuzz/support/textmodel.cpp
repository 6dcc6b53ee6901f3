#include "tests/fuzz/support/textmodel.h"

#include <array>
#include <cstddef>

namespace fuzz
{
namespace
{
/// The characters that are written with that many bytes; Unicode calls this shape well-formed.
struct Shape
{
    std::size_t bytes;
    unsigned char lead; ///< the bits above the value in the first byte
    char32_t first;
    char32_t last;
};

constexpr std::array<Shape, 4> shapes = {
    {{1, 0x00, 0x0, 0x7F}, {2, 0xC0, 0x80, 0x7FF}, {3, 0xE0, 0x800, 0xFFFF}, {4, 0xF0, 0x10000, 0x10FFFF}}};

bool isSurrogate(char32_t point)
{
    return point >= 0xD800 && point <= 0xDFFF;
}

/// The character, written with so many bytes.
std::string written(char32_t point, const Shape& shape)
{
    std::string bytes(shape.bytes, '\0');
    for (std::size_t i = shape.bytes; i-- > 1; point >>= 6)
        bytes[i] = static_cast<char>(0x80 | (point & 0x3F));
    bytes[0] = static_cast<char>(shape.lead | point);
    return bytes;
}

std::string written(char32_t point)
{
    for (const Shape& shape : shapes)
    {
        if (point <= shape.last)
            return written(point, shape);
    }
    return {};
}

/// The value in the bytes if they are a character of that shape: writing it gives the same bytes.
bool isCharacter(std::string_view bytes, const Shape& shape, char32_t& point)
{
    if (bytes.size() < shape.bytes)
        return false;
    point = static_cast<unsigned char>(bytes[0]) & (shape.bytes == 1 ? 0x7F : 0xFF >> (shape.bytes + 1));
    for (std::size_t i = 1; i < shape.bytes; ++i)
        point = point << 6 | (static_cast<unsigned char>(bytes[i]) & 0x3F);
    return point >= shape.first && point <= shape.last && !isSurrogate(point) &&
           written(point, shape) == bytes.substr(0, shape.bytes);
}

void append(std::u16string& units, char32_t point)
{
    if (point < 0x10000)
    {
        units += static_cast<char16_t>(point);
        return;
    }
    units += static_cast<char16_t>(0xD800 + (point - 0x10000) / 0x400);
    units += static_cast<char16_t>(0xDC00 + (point - 0x10000) % 0x400);
}
}

char16_t folded(char16_t unit)
{
    return unit >= u'A' && unit <= u'Z' ? static_cast<char16_t>(unit - u'A' + u'a') : unit;
}

int comparedNoCase(const std::u16string& left, const std::u16string& right)
{
    for (std::size_t i = 0; i < left.size() && i < right.size(); ++i)
    {
        if (folded(left[i]) != folded(right[i]))
            return folded(left[i]) < folded(right[i]) ? -1 : 1;
    }
    if (left.size() == right.size())
        return 0;
    return left.size() < right.size() ? -1 : 1;
}

std::vector<std::u16string> piecesOf(const std::u16string& text, const std::u16string& delimiters)
{
    std::vector<std::u16string> pieces;
    std::u16string piece;
    const auto end = [&]
    {
        if (!piece.empty())
            pieces.push_back(piece);
        piece.clear();
    };
    for (const char16_t unit : text)
    {
        if (delimiters.find(unit) == std::u16string::npos)
            piece += unit;
        else
            end();
    }
    end();
    return pieces;
}

std::u16string widened(std::string_view latin1)
{
    std::u16string units;
    for (const char byte : latin1)
        units += static_cast<unsigned char>(byte);
    return units;
}

std::u16string unitsOfUtf8(std::string_view utf8)
{
    std::u16string units;
    while (!utf8.empty())
    {
        char32_t point = 0xFFFD;
        std::size_t bytes = 1;
        for (const Shape& shape : shapes)
        {
            char32_t value = 0;
            if (isCharacter(utf8, shape, value))
            {
                point = value;
                bytes = shape.bytes;
            }
        }
        append(units, point);
        utf8.remove_prefix(bytes);
    }
    return units;
}

std::string utf8Of(const std::u16string& units)
{
    std::string utf8;
    for (std::size_t i = 0; i < units.size(); ++i)
    {
        const char32_t unit = units[i];
        const char32_t next = i + 1 < units.size() ? units[i + 1] : 0;
        const bool isPair = unit >= 0xD800 && unit < 0xDC00 && next >= 0xDC00 && next < 0xE000;
        if (isPair)
        {
            utf8 += written(0x10000 + (unit - 0xD800) * 0x400 + (next - 0xDC00));
            ++i;
        }
        else
            utf8 += written(isSurrogate(unit) ? 0xFFFD : unit);
    }
    return utf8;
}

std::u16string unitsOf(const qor::String& text)
{
    std::u16string units;
    for (unsigned int i = 0; i < text.size(); ++i)
        units += static_cast<char16_t>(text.getUCS2Buffer()[i]);
    return units;
}
}
