#include "tests/conformity/report.h"

#include "tests/conformity/system.h"

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

Printout::Printout(std::ostream& out, bool isBrief) : m_out(out), m_isBrief(isBrief) {}

unsigned Printout::report(const std::string& name, const Facts& facts, System& system) const
{
    std::array<unsigned, 3> counts = {};
    m_out << "Core Audio of " << name << "\n";
    for (std::size_t index = 0; index < facts.size(); ++index)
    {
        const Finding finding = tried(facts[index], system);
        ++counts[static_cast<std::size_t>(finding.verdict)];
        if (!m_isBrief || finding.verdict == Verdict::differs)
            print(index + 1, facts[index], finding);
    }
    const unsigned differences = counts[static_cast<std::size_t>(Verdict::differs)];
    m_out << "\n"
          << facts.size() << " facts: " << counts[static_cast<std::size_t>(Verdict::agrees)] << " agree, "
          << differences << (differences == 1 ? " difference, " : " differences, ")
          << counts[static_cast<std::size_t>(Verdict::notTried)] << " not tried\n";
    return differences;
}

/// Each finding is written at once: if a system crashes in the next check, it is not lost.
void Printout::print(std::size_t number, const Fact& fact, const Finding& finding) const
{
    m_out << "\n"
          << (number < 10 ? " " : "") << number << "  " << word(finding.verdict) << "  " << fact.text << "\n"
          << "               expected  " << fact.expected << "\n"
          << "               found     " << finding.found << "\n"
          << "               source    " << fact.source << std::endl;
}
}
