/// Failures of the platform that are outside the contract of the object model.
#pragma once

#include "tests/faults/engine/finding.h"

#include <vector>

namespace faults::library
{
/// Each with its reason; a sweep tells an entry that no run needs.
std::vector<Excuse> excuses();
}
