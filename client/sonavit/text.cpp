#include "sonavit/text.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <utility>

namespace sonavit::text
{
namespace
{
constexpr const char* replacement = "\xEF\xBF\xBD";
constexpr const char* ellipsis = "\xE2\x80\xA6";

struct Range
{
    char32_t first;
    char32_t last;
};

constexpr std::array<Range, 9> wideCharacters = {{{0x1100, 0x115F},
                                                  {0x2E80, 0x303E},
                                                  {0x3041, 0xA4CF},
                                                  {0xAC00, 0xD7A3},
                                                  {0xF900, 0xFAFF},
                                                  {0xFE30, 0xFE6F},
                                                  {0xFF00, 0xFF60},
                                                  {0xFFE0, 0xFFE6},
                                                  {0x1F300, 0x1FAFF}}};
constexpr std::array<Range, 3> combiningCharacters = {{{0x0300, 0x036F}, {0x200B, 0x200F}, {0xFE00, 0xFE0F}}};

/// Control characters, line and paragraph separators, and the marks that reverse the direction of text.
constexpr std::array<Range, 6> controlCharacters = {
    {{0x00, 0x1F}, {0x7F, 0x9F}, {0x200E, 0x200F}, {0x2028, 0x2029}, {0x202A, 0x202E}, {0x2066, 0x2069}}};

template<std::size_t Size>
bool isIn(const std::array<Range, Size>& ranges, char32_t character)
{
    return std::any_of(ranges.begin(), ranges.end(),
                       [&](const Range& range) { return character >= range.first && character <= range.last; });
}

/// A character of a string, or a byte of it that is not part of one.
struct Character
{
    std::string_view bytes;
    std::optional<char32_t> value; ///< none for a byte that is not UTF-8
};

/// Bytes of the character that begins with @p first; 1 for a byte that begins none.
std::size_t characterLength(unsigned char first)
{
    if (first >= 0xF0)
        return 4;
    if (first >= 0xE0)
        return 3;
    return first >= 0xC0 ? 2 : 1;
}

/// What the bytes of @p character stand for: no value if one is missing, or if there is a shorter form.
std::optional<char32_t> decoded(std::string_view character, std::size_t length)
{
    constexpr std::array<char32_t, 5> smallest = {0, 0, 0x80, 0x800, 0x10000};
    const auto first = static_cast<unsigned char>(character[0]);
    if (length == 1)
        return first < 0x80 ? std::optional<char32_t>(first) : std::nullopt;
    if (character.size() < length || first > 0xF4)
        return std::nullopt;
    char32_t value = first & (0xFFu >> (length + 1));
    for (std::size_t i = 1; i < length; ++i)
    {
        const auto next = static_cast<unsigned char>(character[i]);
        if ((next & 0xC0u) != 0x80)
            return std::nullopt;
        value = (value << 6) | (next & 0x3Fu);
    }
    const bool isSurrogate = value >= 0xD800 && value <= 0xDFFF;
    if (value < smallest[length] || value > 0x10FFFF || isSurrogate)
        return std::nullopt;
    return value;
}

Character characterAt(std::string_view text, std::size_t position)
{
    const std::size_t length = characterLength(static_cast<unsigned char>(text[position]));
    const std::string_view bytes = text.substr(position, length);
    const std::optional<char32_t> value = decoded(bytes, length);
    return {value ? bytes : bytes.substr(0, 1), value};
}

std::size_t widthOf(const Character& character)
{
    if (!character.value)
        return 1;
    if (isIn(combiningCharacters, *character.value))
        return 0;
    return isIn(wideCharacters, *character.value) ? 2 : 1;
}

std::string hexDigits(std::uint32_t number, std::size_t digits)
{
    std::string result(digits, '0');
    for (auto digit = result.rbegin(); digit != result.rend(); ++digit, number >>= 4)
        *digit = "0123456789ABCDEF"[number & 0xFu];
    return result;
}

/// The escape sequence of a character that is not printable.
std::string escapeOf(const Character& character)
{
    if (character.value == U'\n')
        return "\\n";
    if (character.value == U'\t')
        return "\\t";
    if (character.value && *character.value > 0x7F)
        return "\\u" + hexDigits(*character.value, 4);
    return "\\x" + hexDigits(static_cast<unsigned char>(character.bytes[0]), 2);
}

/// @p text with what @p replace returns in place of each character that is not printable.
template<class Replace>
std::string withReplacements(std::string_view text, const Replace& replace)
{
    std::string result;
    for (std::size_t position = 0; position < text.size();)
    {
        const Character character = characterAt(text, position);
        if (character.value && !isIn(controlCharacters, *character.value))
            result += character.bytes;
        else
            result += replace(character);
        position += character.bytes.size();
    }
    return result;
}

std::string withoutSignOfZero(std::string number)
{
    const bool isZero = number.find_first_not_of("-0.") == std::string::npos;
    return isZero && number[0] == '-' ? number.substr(1) : number;
}
}

std::string decimal(double value, int decimals)
{
    std::array<char, 400> buffer{}; // the largest number has 309 digits before its point
    const std::to_chars_result end =
        std::to_chars(buffer.data(), buffer.data() + buffer.size(), value, std::chars_format::fixed, decimals);
    return withoutSignOfZero(std::string(buffer.data(), end.ptr));
}

std::string shortest(double value)
{
    std::array<char, 40> buffer{};
    const std::to_chars_result end = std::to_chars(buffer.data(), buffer.data() + buffer.size(), value);
    return withoutSignOfZero(std::string(buffer.data(), end.ptr));
}

std::string hexCode(std::uint32_t code)
{
    return "0x" + hexDigits(code, 8);
}

std::string counted(std::size_t count, std::string_view noun)
{
    return std::to_string(count) + " " + std::string(noun) + (count == 1 ? "" : "s");
}

std::string enumeration(const std::vector<std::string>& texts)
{
    std::string result;
    for (std::size_t i = 0; i < texts.size(); ++i)
    {
        if (i > 0)
            result += i + 1 == texts.size() ? " and " : ", ";
        result += texts[i];
    }
    return result;
}

std::string printable(std::string_view text)
{
    return withReplacements(text, [](const Character&) { return replacement; });
}

std::string escaped(std::string_view text)
{
    return withReplacements(text, escapeOf);
}

std::string quoted(std::string_view text)
{
    return "\"" + shortened(escaped(text), longestQuote) + "\"";
}

std::size_t displayWidth(std::string_view text)
{
    const auto isAscii = [](char byte) { return static_cast<unsigned char>(byte) < 0x80; };
    const auto start = std::find_if_not(text.begin(), text.end(), isAscii); // each byte before it takes one column
    auto width = static_cast<std::size_t>(start - text.begin());
    for (std::size_t position = width; position < text.size();)
    {
        const Character character = characterAt(text, position);
        width += widthOf(character);
        position += character.bytes.size();
    }
    return width;
}

std::string shortened(const std::string& text, std::size_t width)
{
    if (displayWidth(text) <= width)
        return text;
    if (width == 0)
        return {};
    std::size_t taken = 1; // the ellipsis
    std::size_t position = 0;
    while (position < text.size())
    {
        const Character character = characterAt(text, position);
        taken += widthOf(character);
        if (taken > width)
            break;
        position += character.bytes.size();
    }
    std::string start = text.substr(0, position);
    while (!start.empty() && start.back() == ' ')
        start.pop_back();
    return start + ellipsis;
}

std::string lowerCase(std::string_view text)
{
    std::string result(text);
    for (char& character : result)
        character = lowerCase(character);
    return result;
}

bool equalNoCase(std::string_view left, std::string_view right) noexcept
{
    return left.size() == right.size() && std::equal(left.begin(), left.end(), right.begin(),
                                                     [](char a, char b) { return lowerCase(a) == lowerCase(b); });
}

Fields::Fields(std::ostream& out, const char* type) : m_out(out)
{
    m_out << type << "(";
}

Fields::~Fields()
{
    m_out << ")";
}

Fields& Fields::add(const char* name, bool value)
{
    begin(name) << (value ? "yes" : "no");
    return *this;
}

Fields& Fields::add(const char* name, double value)
{
    begin(name) << shortest(value);
    return *this;
}

Fields& Fields::addText(const char* name, std::string_view value)
{
    begin(name) << '"' << printable(value) << '"';
    return *this;
}

std::ostream& Fields::begin(const char* name)
{
    m_out << (m_isFirst ? "" : ", ") << name << ": ";
    m_isFirst = false;
    return m_out;
}
}
