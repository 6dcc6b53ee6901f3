#pragma once

#include "sonavit/endpoint.h"
#include "sonavit/snapshot.h"

#include <vector>

namespace sonavit::program
{
/// Why it is not known for which roles an endpoint of that flow is the default: one for each role that is not known.
std::vector<Problem> problemsWithDefaults(const Snapshot& snapshot, Flow flow);
/// All that could not be read of an endpoint, its roles included, which are read for the computer as a whole.
std::vector<EndpointProblem> problemsOf(const Snapshot& snapshot, const Endpoint& endpoint);
}
