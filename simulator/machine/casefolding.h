/// @file
/// Case of the letters A to Z. All other characters are as they are.
#pragma once

#include <string>

namespace sim
{
/// @p text with lower-case letters.
std::string lowerCase(std::string text);
char lowerCase(char character);

/// @p text with upper-case letters.
std::string upperCase(std::string text);

/// Whether two strings are equal apart from case.
bool equalNoCase(const std::string& left, const std::string& right);
}
