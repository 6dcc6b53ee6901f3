/// A failing call of an operation.
#pragma once

#include "simulator/faultplan.h"
#include "simulator/journal.h"

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

namespace faults
{
/// How a call fails.
enum class Mode
{
    fail,  ///< it returns a failure code, and null in its out-pointers
    null,  ///< it succeeds, with null and zero in its out-parameters
    raise, ///< it throws; only Release does
};

/// "fail", "null", "throw".
const char* nameOf(Mode mode);

/// A call that an operation makes, as a run without faults has shown it.
struct Call
{
    sim::JournalEntry entry;
    std::size_t place = 0;    ///< among all calls of the operation that can fail, from 1
    std::uint32_t number = 0; ///< among those of the same platform operation, from 1

    /// "IMMDevice::Activate(IAudioClient, 23, null) on {0.0.0.00000000}.{…}"
    std::string text() const;
};

/// Those of @p entries that a fault plan can let fail.
std::vector<Call> callsThatCanFail(const sim::JournalEntries& entries);

/// The ways in which a call can fail: Release throws, QueryInterface and all others fail or find nothing.
std::vector<Mode> modesOf(const Call& call);

/// A call and how it fails.
struct Fault
{
    Call call;
    Mode mode = Mode::fail;
};

/// "12:null"; "12,15:fail,null".
std::string nameOf(const std::vector<Fault>& faults);
/// The texts of the calls, with " and " between them.
std::string detailOf(const std::vector<Fault>& faults);

/// Plans it. The n-th call of that platform operation fails, counted from now on.
sim::PlannedFault plan(sim::FaultPlan& plan, const Fault& fault);
/// A planned fault that has not fired never will.
void withdraw(sim::PlannedFault& fault);
}
