#include "tools/sonavit/output/endpointproblems.h"

#include <optional>

namespace sonavit::program
{
std::vector<Problem> problemsWithDefaults(const Snapshot& snapshot, Flow flow)
{
    std::vector<Problem> problems;
    for (const Role role : allRoles)
    {
        if (const std::optional<Problem> problem = snapshot.problemWithDefault(flow, role))
            problems.push_back(*problem);
    }
    return problems;
}

std::vector<EndpointProblem> problemsOf(const Snapshot& snapshot, const Endpoint& endpoint)
{
    std::vector<EndpointProblem> problems = endpoint.problems();
    for (const Problem& problem : problemsWithDefaults(snapshot, endpoint.flow()))
        problems.push_back({EndpointField::roles, problem});
    return problems;
}
}
