#include "simulator/machine/nearestname.h"

#include "simulator/machine/casefolding.h"

#include <algorithm>

namespace sim
{
namespace
{
constexpr std::size_t longestName = 100;

/// How many characters must be inserted, removed or replaced to turn one name into the other, apart from case.
std::size_t distance(const std::string& left, const std::string& right)
{
    std::vector<std::size_t> row(right.size() + 1);
    for (std::size_t column = 0; column < row.size(); ++column)
        row[column] = column;
    for (std::size_t line = 1; line <= left.size(); ++line)
    {
        std::size_t diagonal = row[0];
        row[0] = line;
        for (std::size_t column = 1; column < row.size(); ++column)
        {
            const bool isSame = lowerCase(left[line - 1]) == lowerCase(right[column - 1]);
            const std::size_t replaced = diagonal + (isSame ? 0 : 1);
            diagonal = row[column];
            row[column] = std::min({replaced, row[column] + 1, row[column - 1] + 1});
        }
    }
    return row.back();
}
}

std::string nearestName(const std::string& name, const std::vector<std::string>& names)
{
    if (name.empty() || name.size() > longestName)
        return {};
    std::string nearest;
    std::size_t least = name.size() / 3 + 1;
    for (const std::string& candidate : names)
    {
        const std::size_t current = distance(name, candidate);
        if (current < least)
        {
            least = current;
            nearest = candidate;
        }
    }
    return nearest;
}

std::string suggestion(const std::string& name, const std::vector<std::string>& names, const std::string& what)
{
    const std::string nearest = nearestName(name, names);
    if (!nearest.empty())
        return " (did you mean \"" + nearest + "\"?)";
    std::string list;
    for (const std::string& candidate : names)
        list += (list.empty() ? "" : ", ") + candidate;
    return " (" + what + ": " + list + ")";
}
}
