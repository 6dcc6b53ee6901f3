/// What the object model leaves with the platform for good, on purpose, computed from the calls that it made.
#pragma once

#include "tests/faults/engine/run.h"

namespace faults::library
{
/// One list for each walk to the neighbours of a part that found any; one string for each refresh that read a
/// DirectSound GUID and for each question for the default endpoint that was answered; clients whose unregistration
/// failed; values whose PropVariantClear failed. Nothing else.
/// @return references by interface, task memory by origin, and clients; the other counts are left out
sim::Census keptAfter(const Record& run, const sim::Machine& machine);

/// Without what keptAfter() leaves out.
sim::Census comparable(sim::Census census);
}
