#include "sonavit/diagnosis.h"

#include "client/capturing/survey.h"
#include "client/diagnosing/findings.h"
#include "sonavit/text.h"

#include <algorithm>
#include <ostream>
#include <utility>

namespace sonavit
{
inline namespace v1
{
namespace
{
Result<std::vector<diagnosing::Entry>> entriesOf(System& system)
{
    const Result<capturing::Survey> survey = capturing::survey(system, "diagnose");
    if (!survey)
        return survey.problem();
    // A snapshot that is only late would look like a computer without endpoints.
    const Result<Snapshot> snapshot = system.refresh();
    if (!snapshot && snapshot.problem().kind() == Problem::Kind::noAnswer)
        return snapshot.problem();
    return diagnosing::findingsOf(*survey, snapshot ? *snapshot : system.snapshot());
}

bool concerns(const diagnosing::Entry& entry, const EndpointId& endpoint)
{
    const auto isIt = [&](const std::string& owner) { return EndpointId(owner) == endpoint; };
    return std::any_of(entry.owners.begin(), entry.owners.end(), isIt);
}
}

Result<std::vector<Finding>> diagnose(System& system)
{
    Result<std::vector<diagnosing::Entry>> entries = entriesOf(system);
    if (!entries)
        return entries.problem();
    std::vector<Finding> findings;
    for (diagnosing::Entry& entry : *entries)
        findings.push_back(std::move(entry.finding));
    return findings;
}

Result<std::vector<Finding>> diagnose(System& system, const EndpointId& endpoint)
{
    Result<std::vector<diagnosing::Entry>> entries = entriesOf(system);
    if (!entries)
        return entries.problem();
    std::vector<Finding> findings;
    for (diagnosing::Entry& entry : *entries)
    {
        if (concerns(entry, endpoint))
            findings.push_back(std::move(entry.finding));
    }
    if (findings.empty() && !system.snapshot().endpoint(endpoint))
        return Problem(Problem::Kind::notThere, "diagnose", endpoint.text(), "there is no endpoint " + endpoint.text());
    return findings;
}

bool operator==(const Finding& left, const Finding& right)
{
    return left.kind == right.kind && left.endpoint == right.endpoint && left.card == right.card &&
           left.subject == right.subject && left.rule == right.rule && left.sentence == right.sentence &&
           left.effect == right.effect && left.cause == right.cause && left.problem == right.problem;
}

std::ostream& operator<<(std::ostream& stream, const Finding& finding)
{
    return stream << finding.subject << ": " << finding.sentence << " [" << finding.rule << "]";
}

const char* keyOf(Finding::Kind kind) noexcept
{
    switch (kind)
    {
    case Finding::Kind::failure:
        return "failure";
    case Finding::Kind::data:
        return "data";
    case Finding::Kind::oddity:
        return "oddity";
    }
    return "unknown";
}
}
}
