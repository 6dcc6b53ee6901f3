#include "qor/qorvalue.h"

namespace qor
{
QORValue::~QORValue() = default;

String QORValue::toString(unsigned int) const
{
    char digits[12];
    char* place = digits + sizeof(digits) - 1;
    *place = '\0';
    unsigned int rest = m_negative ? 0u - m_value : m_value;
    do
    {
        *--place = static_cast<char>('0' + rest % 10);
        rest /= 10;
    } while (rest != 0);
    if (m_negative)
        *--place = '-';
    return String(place);
}

String QORValue::toHexString(bool withPrefix) const
{
    char text[] = "0x00000000";
    for (int digit = 0; digit < 8; ++digit)
        text[9 - digit] = "0123456789ABCDEF"[(m_value >> (4 * digit)) & 0xF];
    return String(withPrefix ? text : text + 2);
}
}
