/// The runs of an operation in which its calls fail, one in each run, or two.
#pragma once

#include "tests/faults/engine/run.h"
#include "tests/faults/engine/runs.h"

#include <functional>
#include <vector>

namespace faults
{
/// How far a sweep goes.
struct Extent
{
    std::size_t platformCalls = 400'000; ///< about as many as all runs together may make; decides how many calls fail
    std::size_t runsAtLeast = 60;        ///< however many calls the operation makes
    std::size_t pairs = 0;               ///< runs with two failing calls, at most
    bool hasKinds = true;                ///< whether the first and the last call of each kind fail in any case
    std::size_t turn = 0;                ///< where calls at equal distances begin, so that operations share them
};

/// An operation as this class needs it.
struct Sweep
{
    /// Performs the operation on a new machine, with these faults.
    std::function<Record(std::vector<Fault>)> perform;
    /// What is wrong with a run; @p clean is a run without faults.
    std::function<std::vector<Finding>(const Record& clean, const Record& run)> judge;
    Extent extent;
    /// Which failures are tried; without a function, all.
    std::function<bool(const Fault&)> admits = {};
};

/// Each call of the operation fails in each of its modes; of an operation with many calls the first and the last of
/// each kind do, and calls at equal distances.
class FaultedRuns final : public Runs
{
public:
    explicit FaultedRuns(Sweep sweep);

    std::size_t size() const override { return m_runs.size(); }
    std::string name(std::size_t index) const override { return nameOf(m_runs.at(index)); }
    std::string detail(std::size_t index) const override { return detailOf(m_runs.at(index)); }
    Result run(std::size_t index) override;
    std::size_t calls() const override { return m_calls.size(); }
    std::size_t callsTried() const override { return m_tried; }

private:
    std::vector<bool> chosenCalls() const;
    void addSingles();
    void addPairs();
    bool admits(const Fault& fault) const { return !m_sweep.admits || m_sweep.admits(fault); }
    void addPair(const Call& first, const Call& second, std::size_t turn);

    Sweep m_sweep;
    Record m_clean;
    std::vector<Call> m_calls;
    std::size_t m_tried = 0;
    std::vector<std::vector<Fault>> m_runs;
    bool m_hasPairThatThrows = false;
};
}
