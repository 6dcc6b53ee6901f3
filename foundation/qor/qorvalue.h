#pragma once

#include "qor/export.h"
#include "qor/string.h"

namespace qor
{
/// One integer to be written as text: made as a temporary, asked for one text, destroyed.
class QOR_API QORValue
{
public:
    /// The argument of toString() that selects the plain decimal form, the only form there is.
    static constexpr unsigned int nilValue = 0xFFFFFFFFu;

    QORValue(int value) noexcept : m_value(static_cast<unsigned int>(value)), m_negative(value < 0) {}
    QORValue(unsigned int value) noexcept : m_value(value), m_negative(false) {}
    virtual ~QORValue();

    /// Decimal text, with a minus sign where the value was given as a negative int. Callers pass nilValue.
    String toString(unsigned int format) const;

    /// Eight upper-case hexadecimal digits of the 32-bit value, behind "0x" when @p withPrefix is set.
    ///
    /// With the prefix this is the library's form for the failure codes of platform calls: "0x80070005".
    String toHexString(bool withPrefix) const;

private:
    unsigned int m_value;
    bool m_negative;
};
} // namespace qor
