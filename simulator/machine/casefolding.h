/// @file
/// Case of the letters A to Z. All other characters are as they are.
#pragma once

#include <string>
#include <string_view>

namespace sim
{
/// @p text with lower-case letters.
std::string lowerCase(std::string text);

constexpr char lowerCase(char character)
{
    return character >= 'A' && character <= 'Z' ? static_cast<char>(character - 'A' + 'a') : character;
}

/// @p text with upper-case letters.
std::string upperCase(std::string text);

/// Whether two strings are equal apart from case.
bool equalNoCase(std::string_view left, std::string_view right);
}
