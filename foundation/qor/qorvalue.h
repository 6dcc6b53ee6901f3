#pragma once

#include "qor/export.h"
#include "qor/string.h"

namespace qor
{
/// Formats one integer; used as a temporary.
class QOR_API QORValue
{
public:
    /// The argument of toString() for plain decimal digits, the only format that exists.
    static constexpr unsigned int nilValue = 0xFFFFFFFFu;

    QORValue(int value) noexcept : m_value(static_cast<unsigned int>(value)), m_negative(value < 0) {}
    QORValue(unsigned int value) noexcept : m_value(value), m_negative(false) {}
    virtual ~QORValue();

    /// Decimal digits, with a minus sign for a negative int. @p format is ignored; callers pass nilValue.
    /// @exception std::bad_alloc without memory for the string
    String toString(unsigned int format) const;

    /// Eight upper-case hexadecimal digits of the 32-bit value, after "0x" if @p withPrefix is set.
    ///
    /// With the prefix this is how the library writes failure codes of platform calls: "0x80070005".
    /// @exception std::bad_alloc without memory for the string
    String toHexString(bool withPrefix) const;

private:
    unsigned int m_value;
    bool m_negative;
};
}
