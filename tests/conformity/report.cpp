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

void Counts::add(Verdict verdict)
{
    switch (verdict)
    {
    case Verdict::agrees:
        ++agreeing;
        break;
    case Verdict::differs:
        ++differing;
        break;
    case Verdict::notTried:
        ++notTried;
        break;
    }
}

Counts Printout::report(const std::string& name, const Facts& facts, System& system) const
{
    Counts counts;
    m_out << "Core Audio of " << name << "\n";
    for (std::size_t index = 0; index < facts.size(); ++index)
    {
        const Finding finding = tried(facts[index], system);
        counts.add(finding.verdict);
        if (!m_isBrief || finding.verdict == Verdict::differs)
            print(index + 1, facts[index], finding);
    }
    m_out << "\n"
          << facts.size() << " facts: " << counts.agreeing << " agree, " << counts.differing
          << (counts.differing == 1 ? " difference, " : " differences, ") << counts.notTried << " not tried\n";
    return counts;
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
