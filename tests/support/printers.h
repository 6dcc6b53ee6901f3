/// How GoogleTest shows the library's own value types in a failure.
#pragma once

#include "qor/string.h"

#include <ostream>

namespace qor
{
inline void PrintTo(const String& text, std::ostream* out)
{
    *out << '"' << text.toUtf8() << '"';
}
}
