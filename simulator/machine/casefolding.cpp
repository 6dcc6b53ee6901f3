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

std::string upperCase(std::string text)
{
    for (char& character : text)
        character = character >= 'a' && character <= 'z' ? static_cast<char>(character - 'a' + 'A') : character;
    return text;
}

bool equalNoCase(std::string_view left, std::string_view right)
{
    const auto same = [](char first, char second) { return lowerCase(first) == lowerCase(second); };
    return std::equal(left.begin(), left.end(), right.begin(), right.end(), same);
}
}
