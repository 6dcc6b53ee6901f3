#include "tests/conformity/report.h"

#include "tests/conformity/system.h"

#include <array>
#include <exception>

namespace conformity
{
namespace
{
const char* word(Verdict verdict)
{
    switch (verdict)
    {
    case Verdict::agrees:
        return "agrees   ";
    case Verdict::differs:
        return "DIFFERS  ";
    case Verdict::notTried:
        break;
    }
    return "not tried";
}

/// A check that throws has found a difference: no call of Core Audio throws.
Finding tried(const Fact& fact, System& system)
{
    try
    {
        return fact.check(system);
    }
    catch (const std::exception& error)
    {
        return {Verdict::differs, error.what()};
    }
}
}

unsigned report(const std::string& name, const Facts& facts, System& system, bool isBrief, std::ostream& out)
{
    std::array<unsigned, 3> counts = {};
    out << "Core Audio of " << name << "\n\n";
    for (std::size_t index = 0; index < facts.size(); ++index)
    {
        const Fact& fact = facts[index];
        const Finding finding = tried(fact, system);
        ++counts[static_cast<std::size_t>(finding.verdict)];
        if (isBrief && finding.verdict != Verdict::differs)
            continue;
        out << (index < 9 ? " " : "") << index + 1 << "  " << word(finding.verdict) << "  " << fact.text << "\n"
            << "               expected  " << fact.expected << "\n"
            << "               found     " << finding.found << "\n"
            << "               source    " << fact.source << std::endl; // a crash loses no finding
    }
    const unsigned differences = counts[static_cast<std::size_t>(Verdict::differs)];
    out << "\n"
        << facts.size() << " facts: " << counts[static_cast<std::size_t>(Verdict::agrees)] << " agree, " << differences
        << (differences == 1 ? " difference, " : " differences, ")
        << counts[static_cast<std::size_t>(Verdict::notTried)] << " not tried\n";
    return differences;
}
}
