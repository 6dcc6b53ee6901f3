/// @file
/// The runs of some work in which its allocations fail, one in each run or all from one on.
#pragma once

#include "tests/faults/engine/runs.h"
#include "tests/faults/memory/heap.h"

#include <functional>
#include <string>
#include <vector>

namespace faults::memory
{
/// Where memory runs out.
struct Failure
{
    Side side = Side::caller;
    Extent extent = Extent::once;
    unsigned more = 0; ///< allocations that succeed before
};

/// Of no allocation that anything makes.
constexpr unsigned endless = 0x7FFFFFFF;

/// What one run has shown.
struct Outcome
{
    unsigned count = 0;
    std::vector<Asked> asked;
    bool hasStruck = false;
    std::vector<Finding> findings;
};

/// Each allocation of the work fails; of a work with more of them than there may be runs those at equal distances.
class AllocationRuns final : public Runs
{
public:
    /// Does the work once, on a machine of its own.
    using Perform = std::function<Outcome(const Failure&)>;

    /// @param sides on which threads the work allocates
    /// @param most runs for each side and extent
    AllocationRuns(Perform perform, std::vector<Side> sides, unsigned most);

    std::size_t size() const override { return m_failures.size(); }
    std::string name(std::size_t index) const override;
    std::string detail(std::size_t index) const override;
    Result run(std::size_t index) override;
    std::size_t calls() const override { return m_calls; }
    std::size_t callsTried() const override { return m_tried; }

private:
    void add(Side side, unsigned most);

    Perform m_perform;
    std::vector<Failure> m_failures;
    std::vector<std::vector<Asked>> m_asked; ///< by side
    std::size_t m_calls = 0;
    std::size_t m_tried = 0;
};
}
