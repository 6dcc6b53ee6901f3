#include "simulator/machine/casefolding.h"

#include <algorithm>

namespace sim
{
std::string lowerCase(std::string text)
{
    for (char& character : text)
        character = lowerCase(character);
    return text;
}

char lowerCase(char character)
{
    return character >= 'A' && character <= 'Z' ? static_cast<char>(character - 'A' + 'a') : character;
}

std::string upperCase(std::string text)
{
    for (char& character : text)
        character = character >= 'a' && character <= 'z' ? static_cast<char>(character - 'a' + 'A') : character;
    return text;
}

bool equalNoCase(const std::string& left, const std::string& right)
{
    const auto same = [](char first, char second) { return lowerCase(first) == lowerCase(second); };
    return std::equal(left.begin(), left.end(), right.begin(), right.end(), same);
}
}
