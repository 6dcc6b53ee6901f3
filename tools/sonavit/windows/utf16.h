/// UTF-8 and the UTF-16 of Windows. Invalid input becomes U+FFFD.
#pragma once

#include <string>
#include <string_view>

namespace sonavit::program
{
std::wstring utf16(std::string_view text);
std::string utf8(std::wstring_view text);
}
