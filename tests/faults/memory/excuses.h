/// @file
/// What a shortage of memory may leave behind, and why.
#pragma once

#include "tests/faults/engine/finding.h"

#include <vector>

namespace faults::memory
{
std::vector<Excuse> excuses();
}
