#include "tests/faults/engine/finding.h"

#include <array>
#include <stdexcept>

namespace faults
{
namespace
{
constexpr std::array<const char*, 8> kindNames = {"crash",  "hang", "references", "exception",
                                                  "answer", "log",  "reuse",      "unmet"};
}

const char* nameOf(Kind kind)
{
    return kindNames.at(static_cast<std::size_t>(kind));
}

Kind kindNamed(const std::string& name)
{
    for (std::size_t i = 0; i < kindNames.size(); ++i)
    {
        if (name == kindNames[i])
            return static_cast<Kind>(i);
    }
    throw std::invalid_argument("no kind of finding: " + name);
}

bool isLike(const std::string& text, const std::string& pattern)
{
    // Greedy, with a way back to the latest star.
    std::size_t t = 0;
    std::size_t p = 0;
    std::size_t star = std::string::npos;
    std::size_t resume = 0;
    while (t < text.size())
    {
        if (p < pattern.size() && pattern[p] == '*')
        {
            star = p++;
            resume = t;
        }
        else if (p < pattern.size() && pattern[p] == text[t])
        {
            ++p;
            ++t;
        }
        else if (star != std::string::npos)
        {
            p = star + 1;
            t = ++resume;
        }
        else
        {
            return false;
        }
    }
    return pattern.find_first_not_of('*', p) == std::string::npos;
}

bool isAbout(const Excuse& excuse, const Place& place)
{
    return isLike(place.operation, excuse.operation) && isLike(place.machine, excuse.machine) &&
           isLike(place.run, excuse.run) && isLike(place.detail, excuse.detail);
}

bool excuses(const Excuse& excuse, const Place& place, const Finding& finding)
{
    return excuse.kind == finding.kind && isLike(finding.text, excuse.text) && isAbout(excuse, place);
}
}
