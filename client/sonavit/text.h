/// @file
/// Strings for people: one line each, and numbers with their units. Not a public header.
///
/// Nothing here depends on the locale.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <ostream>
#include <string>
#include <string_view>
#include <type_traits>
#include <vector>

namespace sonavit::text
{
/// Shown in place of a value that cannot be read.
inline constexpr const char* nothing = "-";

/// "-18.00", and never "-0.00"; "inf" and "nan" for what is no finite number.
std::string decimal(double value, int decimals);

/// The same with as few digits as tell the number from all others: "-17.25".
std::string shortest(double value);

/// "0x80070005"
std::string hexCode(std::uint32_t code);

/// "1 card", "3 cards".
std::string counted(std::size_t count, std::string_view noun);

/// "a, b and c".
std::string enumeration(const std::vector<std::string>& texts);

/// @p text with U+FFFD for each byte that is not UTF-8, for each control character and for each mark that reverses the
/// direction of text, so that a name can neither break a line nor control a terminal.
std::string printable(std::string_view text);

/// @p text with an escape sequence (\n, \x1B, \u202E) for what printable() replaces. A backslash in @p text stays as it
/// is.
std::string escaped(std::string_view text);

/// Columns that quoted() gives a string at most.
inline constexpr std::size_t longestQuote = 100;

/// escaped() between quotation marks, cut after longestQuote columns: for messages that repeat what the caller wrote.
std::string quoted(std::string_view text);

/// The columns that @p text takes on a terminal: two for wide East Asian characters, none for combining ones.
std::size_t displayWidth(std::string_view text);

/// @p text if it fits into @p width columns of a terminal, otherwise its beginning and an ellipsis.
std::string shortened(const std::string& text, std::size_t width);

// These fold the letters A to Z alone, as the platform does with ids.
inline char lowerCase(char character) noexcept
{
    return character >= 'A' && character <= 'Z' ? static_cast<char>(character - 'A' + 'a') : character;
}
std::string lowerCase(std::string_view text);
bool equalNoCase(std::string_view left, std::string_view right) noexcept;

/// Prints the members of a structure that have a value on one line: "Jack(kind: Headphones, port: jack)".
class Fields
{
public:
    Fields(std::ostream& out, const char* type);
    ~Fields();
    Fields(const Fields&) = delete;
    Fields& operator=(const Fields&) = delete;

    template<class T>
    Fields& add(const char* name, const T& value)
    {
        write(begin(name), value);
        return *this;
    }
    Fields& add(const char* name, const std::string& value) { return addText(name, value); }
    Fields& add(const char* name, bool value);
    Fields& add(const char* name, double value);
    template<class T>
    Fields& add(const char* name, const std::optional<T>& value)
    {
        return value ? add(name, *value) : *this;
    }
    template<class T>
    Fields& add(const char* name, const std::vector<T>& values)
    {
        if (values.empty())
            return *this;
        std::ostream& out = begin(name);
        const char* before = "[";
        for (const T& value : values)
        {
            out << before;
            write(out, value);
            before = ", ";
        }
        out << "]";
        return *this;
    }

private:
    template<class T>
    static void write(std::ostream& out, const T& value)
    {
        if constexpr (std::is_integral_v<T>)
            out << std::to_string(value); // a stream may write 48000 as 48,000
        else
            out << value;
    }
    Fields& addText(const char* name, std::string_view value);
    std::ostream& begin(const char* name);

    std::ostream& m_out;
    bool m_isFirst = true;
};
}
