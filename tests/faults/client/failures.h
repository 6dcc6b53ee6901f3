/// @file
/// Which failures an answer of the client layer must name.
#pragma once

#include "sonavit/problem.h"
#include "tests/faults/engine/run.h"

#include <vector>

namespace faults::client
{
/// Whether a platform may fail like that: success without an object only where there is an object to give.
bool isWithinContract(const Fault& fault);

/// Whether one of @p problems names one of the calls, with the code that it has returned.
bool isTold(const std::vector<sonavit::Problem>& problems, const std::vector<Fault>& faults);

/// Whether the failure of each call has a code that a problem can name, and whether it is one.
bool mustBeTold(const std::vector<Fault>& faults);

/// Whether a call succeeds and stores 0 where it promises a number, so that 0 is what the platform says.
bool liesAboutValues(const std::vector<Fault>& faults);

/// Whether calls of Release throw and nothing else fails.
bool onlyReleasesFail(const std::vector<Fault>& faults);

/// The values that the platform has failed to free, and that may have memory of their own.
long unfreedValues(const sim::JournalEntries& calls);

/// The listeners that the platform has not let go.
long refusedUnregistrations(const Record& record);

/// The clients of all interfaces.
long registeredClients(const sim::Census& census);
}
