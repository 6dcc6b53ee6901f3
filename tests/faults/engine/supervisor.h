/// Runs jobs in processes of their own, several at a time, and outlives their crashes and hangs.
#pragma once

#include "tests/faults/engine/finding.h"
#include "tests/faults/engine/runs.h"

#include <chrono>
#include <cstddef>
#include <string>
#include <vector>

namespace faults
{
/// Hears what happens, on the supervisor's thread.
class Listener
{
public:
    virtual void onCalls(const std::string& part, const Job& job, std::size_t calls, std::size_t tried) = 0;
    /// A run has ended, whatever it found. @param failures calls that did fail; a run that crashed or hung counts as
    /// one
    virtual void onRun(const Place& place, std::size_t failures, const std::vector<Finding>& findings) = 0;

protected:
    ~Listener() = default;
};

/// A job and where it comes from.
struct Task
{
    std::string part;
    Job job;
};

class Supervisor
{
public:
    /// @param only the name of the only run; empty: all. @param patience how long a run may take
    Supervisor(Listener& listener, unsigned processes, std::chrono::milliseconds patience, std::string only = {});

    /// Does all tasks. A crash or a hang is a finding of the run in which it happened, and the runs after it go on.
    /// Memory that is lost is a finding of the run that lost it.
    void run(const std::vector<Task>& tasks);

private:
    Listener& m_listener;
    unsigned m_processes;
    std::chrono::milliseconds m_patience;
    std::string m_only;
};
}
