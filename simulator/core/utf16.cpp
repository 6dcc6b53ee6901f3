#include "simulator/core/utf16.h"

#include "qor/string.h"

namespace sim
{
std::vector<WCHAR> utf16(const std::string& text)
{
    const qor::String units = qor::String::fromUtf8(text);
    const WCHAR* const first = platform::wide(units.getUCS2Buffer());
    return std::vector<WCHAR>(first, first + units.size() + 1);
}

std::string utf8(const WCHAR* text)
{
    return qor::String(platform::ucs2(text)).toUtf8();
}
}
