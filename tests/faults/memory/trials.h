/// @file
/// Performs a case while memory runs out, and judges what is left.
#pragma once

#include "simulator/machine/machine.h"
#include "tests/faults/memory/allocationruns.h"
#include "tests/faults/memory/clientsubject.h"
#include "tests/faults/memory/subject.h"

namespace faults::memory
{
/// The case of the object model on @p machine. The result is called in one process after the other, and judges each run
/// by the first ones, without a failure.
AllocationRuns::Perform trialOf(const Case& each, const sim::Machine& machine);

/// The case of the client layer. Nothing may be left after a System.
AllocationRuns::Perform trialOf(const ClientCase& each, const sim::Machine& machine);
}
