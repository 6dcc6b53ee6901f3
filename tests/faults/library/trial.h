/// One run of an operation of the object model, from the initialisation of COM to the end of the module.
#pragma once

#include "tests/faults/engine/run.h"
#include "tests/faults/library/operation.h"

#include <vector>

namespace faults::library
{
/// Performs the operation on @p machine with these faults.
Record perform(const Operation& operation, const sim::Machine& machine, std::vector<Fault> faults);

/// Performs its model with the faults, which meet the same calls. @return what the operation must have answered
std::vector<std::string> performModel(const Operation& operation, const sim::Machine& machine,
                                      const std::vector<Fault>& faults);
}
