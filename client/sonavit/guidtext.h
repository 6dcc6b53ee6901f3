/// @file
/// Reading GUIDs that are written as text, of UTF-8 or of the platform's units. Not a public header.
#pragma once

#include "sonavit/ids.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <type_traits>

namespace sonavit
{
/// Reads "XXXXXXXX-XXXX-XXXX-XXXX-XXXXXXXXXXXX" unit by unit, and nothing after the first unit that does not fit.
template<class Unit>
class GuidReader
{
public:
    explicit GuidReader(const Unit* text) noexcept : m_text(text) {}

    /// No value for any other text. What follows the 36 units does not matter.
    std::optional<Guid> read() noexcept
    {
        Guid guid;
        bool isRead = number(guid.data1) && dash() && number(guid.data2) && dash() && number(guid.data3) && dash();
        for (std::size_t i = 0; isRead && i < guid.data4.size(); ++i)
            isRead = (i != 2 || dash()) && number(guid.data4[i]);
        return isRead ? std::optional<Guid>(guid) : std::nullopt;
    }

    const Unit* end() const noexcept { return m_text; } ///< after what was read

private:
    static constexpr std::uint8_t noDigit = 0xFF;

    /// The values of the ASCII characters as hexadecimal digits.
    static constexpr std::array<std::uint8_t, 0x80> makeDigitValues()
    {
        std::array<std::uint8_t, 0x80> values = {};
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

    static constexpr std::array<std::uint8_t, 0x80> digitValues = makeDigitValues();

    template<class Number>
    bool number(Number& result) noexcept
    {
        std::uint32_t all = 0;
        for (std::size_t i = 0; i < sizeof(Number); ++i)
        {
            const std::uint8_t high = digitAt(0);
            const std::uint8_t low = high == noDigit ? noDigit : digitAt(1);
            if (low == noDigit)
                return false;
            all = all << 8 | static_cast<std::uint32_t>(high << 4 | low);
            m_text += 2;
        }
        result = static_cast<Number>(all);
        return true;
    }

    std::uint8_t digitAt(std::size_t place) const noexcept
    {
        const auto unit = static_cast<std::make_unsigned_t<Unit>>(m_text[place]);
        return unit < digitValues.size() ? digitValues[unit] : noDigit;
    }

    bool dash() noexcept { return *m_text++ == '-'; }

    const Unit* m_text;
};
}
