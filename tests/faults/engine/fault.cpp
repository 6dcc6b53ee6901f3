#include "tests/faults/engine/fault.h"

#include <map>

namespace faults
{
namespace
{
bool endsWith(const std::string& text, const std::string& ending)
{
    return text.size() >= ending.size() && text.compare(text.size() - ending.size(), ending.size(), ending) == 0;
}

/// Not those that the plan never meets, and not the machine's own calls of its clients.
bool canFail(const std::string& operation)
{
    return !endsWith(operation, "::AddRef") && operation != "CoTaskMemFree" && operation != "CoUninitialize" &&
           operation.find("::On") == std::string::npos;
}
}

const char* nameOf(Mode mode)
{
    switch (mode)
    {
    case Mode::fail:
        return "fail";
    case Mode::null:
        return "null";
    default:
        return "throw";
    }
}

std::string Call::text() const
{
    return entry.object.empty() ? entry.call() : entry.call() + " on " + entry.object;
}

std::vector<Call> callsThatCanFail(const sim::JournalEntries& entries)
{
    std::vector<Call> calls;
    std::map<std::string, std::uint32_t> numbers;
    for (const sim::JournalEntry& entry : entries)
    {
        if (canFail(entry.operation))
            calls.push_back({entry, calls.size() + 1, ++numbers[entry.operation]});
    }
    return calls;
}

std::vector<Mode> modesOf(const Call& call)
{
    if (endsWith(call.entry.operation, "::Release"))
        return {Mode::raise};
    return {Mode::fail, Mode::null};
}

std::string nameOf(const std::vector<Fault>& faults)
{
    std::string places;
    std::string modes;
    for (const Fault& fault : faults)
    {
        const char* const comma = places.empty() ? "" : ",";
        places.append(comma).append(std::to_string(fault.call.place));
        modes.append(comma).append(nameOf(fault.mode));
    }
    return places + ":" + modes;
}

std::string detailOf(const std::vector<Fault>& faults)
{
    std::string text;
    for (const Fault& fault : faults)
        text.append(text.empty() ? "" : " and ").append(fault.call.text());
    return text;
}

sim::PlannedFault plan(sim::FaultPlan& plan, const Fault& fault)
{
    const std::string& operation = fault.call.entry.operation;
    sim::PlannedFault planned = fault.mode == Mode::fail   ? plan.fail(operation)
                                : fault.mode == Mode::null ? plan.succeedWithNull(operation)
                                                           : plan.raise(operation);
    planned.at(fault.call.number);
    return planned;
}

void withdraw(sim::PlannedFault& fault)
{
    fault.on("nothing has this name");
}
}
