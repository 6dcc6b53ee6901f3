/// What an operation of the object model may do when its calls fail.
#pragma once

#include "tests/faults/engine/run.h"
#include "tests/faults/library/operation.h"

#include <vector>

namespace faults::library
{
/// Compares a run with what is documented: exceptions, log records, references, answers, and the objects' later work.
std::vector<Finding> judge(const Operation& operation, const sim::Machine& machine, const Record& clean,
                           const Record& run);
}
