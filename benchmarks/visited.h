/// What a visit of an element computes: a number that depends on its content. Strings must not be empty.
#pragma once

#include "qor/string.h"

#include <string>

namespace bench
{
inline unsigned int visited(unsigned int number)
{
    return number;
}

/// The first unit.
inline unsigned int visited(const qor::String& text)
{
    return text.getUCS2Buffer()[0];
}

inline unsigned int visited(const std::u16string& text)
{
    return text[0];
}
}
