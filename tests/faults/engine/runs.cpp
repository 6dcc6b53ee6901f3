#include "tests/faults/engine/runs.h"

#include <algorithm>

namespace faults
{
namespace
{
std::vector<Part (*)()>& makers()
{
    static std::vector<Part (*)()> all;
    return all;
}
}

Registration::Registration(Part (*make)())
{
    makers().push_back(make);
}

std::vector<Part> parts()
{
    std::vector<Part> all;
    for (Part (*make)() : makers())
        all.push_back(make());
    std::sort(all.begin(), all.end(), [](const Part& left, const Part& right) { return left.name < right.name; });
    return all;
}
}
