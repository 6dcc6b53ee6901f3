#include "tests/faults/memory/allocationruns.h"

#include <algorithm>
#include <utility>

namespace faults::memory
{
AllocationRuns::AllocationRuns(Perform perform, std::vector<Side> sides, unsigned most)
    : m_perform(std::move(perform)),
      m_asked(2)
{
    for (const Side side : sides)
        add(side, std::max(1U, most));
}

/// The first run without a failure makes what stays for good, such as loggers.
void AllocationRuns::add(Side side, unsigned most)
{
    m_perform({side, Extent::once, endless});
    const Outcome clean = m_perform({side, Extent::once, endless});
    m_asked[static_cast<std::size_t>(side)] = clean.asked;
    const unsigned stride = std::max(1U, (clean.count + most - 1) / most);
    m_calls += clean.count;
    if (!clean.findings.empty())
        m_failures.push_back({side, Extent::once, endless}); // so that it is reported
    for (unsigned more = 0; more < clean.count; more += stride, ++m_tried)
        m_failures.push_back({side, Extent::once, more});
    for (unsigned more = stride / 2; more < clean.count; more += stride)
        m_failures.push_back({side, Extent::lasting, more});
}

std::string AllocationRuns::name(std::size_t index) const
{
    const Failure& failure = m_failures.at(index);
    const std::string place = failure.more == endless ? "none" : std::to_string(failure.more + 1);
    return place + (failure.extent == Extent::once ? ":once" : ":lasting") +
           (failure.side == Side::caller ? "" : ":others");
}

std::string AllocationRuns::detail(std::size_t index) const
{
    const Failure& failure = m_failures.at(index);
    const std::vector<Asked>& asked = m_asked[static_cast<std::size_t>(failure.side)];
    if (failure.more >= asked.size())
        return "an allocation";
    const Asked& first = asked[failure.more];
    return std::to_string(first.bytes) + " bytes" + (first.isNothrow ? ", null" : "") +
           (failure.extent == Extent::once ? "" : ", and all after them") +
           (failure.side == Side::caller ? "" : ", of the layer");
}

Result AllocationRuns::run(std::size_t index)
{
    Outcome outcome = m_perform(m_failures.at(index));
    return {outcome.hasStruck ? 1U : 0U, std::move(outcome.findings)};
}
}
