#include "tests/conformity/fact.h"

#include <utility>

namespace conformity
{
Facts allFacts()
{
    Facts all;
    for (Facts (*subject)() : {&identityFacts, &enumerationFacts, &notificationFacts, &propertyFacts, &formatFacts,
                               &topologyFacts, &partFacts, &volumeFacts, &streamFacts})
    {
        for (Fact& fact : subject())
            all.push_back(std::move(fact));
    }
    return all;
}

Finding compared(const std::string& found, const std::string& expected)
{
    return {found == expected ? Verdict::agrees : Verdict::differs, found};
}

void Observation::see(bool isRight, const std::string& seen, const std::string& place)
{
    ++m_trials;
    if (isRight && m_usual.empty())
        m_usual = seen;
    if (isRight)
        return;
    ++m_deviations;
    if (m_first.empty())
        m_first = seen + (place.empty() ? "" : " at " + place);
}

Finding Observation::finding(const std::string& absence) const
{
    const std::string trials = std::to_string(m_trials);
    if (m_trials == 0)
        return {Verdict::notTried, absence};
    if (m_deviations == 0)
        return {Verdict::agrees, m_usual + (m_trials > 1 ? ", at all of " + trials : "")};
    return {Verdict::differs, m_first + (m_trials > 1 ? ", in " + std::to_string(m_deviations) + " of " + trials : "")};
}
}
