/// @file
/// How problems name an id in a list of endpoints that no endpoint can have for itself. Not a public header.
#pragma once

#include "sonavit/problem.h"

#include <string>

namespace sonavit
{
/// Returns the id of an endpoint; in a problem the id itself is wrong if one of the next two is the call's argument.
inline constexpr const char* callForId = "IMMDevice::GetId";
inline constexpr const char* emptyId = "empty";
/// A second endpoint with the id.
inline constexpr const char* duplicateId = "duplicate";

/// Whether @p problem is about such an id. It hides no endpoint that has an id of its own.
inline bool isAboutOddId(const Problem& problem)
{
    const std::string call = std::string(callForId) + "(";
    return problem.operation() == call + emptyId + ")" || problem.operation() == call + duplicateId + ")";
}
}
