/// @file
/// Tells the machine's own work from that of the code that uses it.
#pragma once

namespace sim
{
/// Whether this thread does a simulated machine's own work: it is inside a call of Core Audio that a machine answers,
/// or delivers an event, and not in a client that the machine calls from there. An action of FaultPlan::run() is a part
/// of the call.
///
/// For tests that replace `operator new` to let memory run out. Windows reports that it has no memory by a failure code
/// and never by an exception, so such a test lets the allocations of the machine succeed. Takes no lock and allocates
/// nothing; any thread may call it.
bool isAnswering() noexcept;
}
