/// @file
/// The latency plan of a simulated machine: how long each kind of call takes.
#pragma once

#include "simulator/machine/machine.h"
#include "simulator/mutex.h"

#include <atomic>
#include <chrono>
#include <mutex>
#include <string>
#include <unordered_map>

namespace sim
{
/// Makes calls slow. Any thread may call any operation. Without a rule a call costs one atomic read.
///
/// Operations have their names of the journal. "*" means every operation without a rule of its own. The operations of
/// IUnknown, CoTaskMemFree and CoUninitialize are never delayed.
class LatencyPlan
{
public:
    /// From now on each call of @p operation takes at least @p cost.
    void set(const std::string& operation, std::chrono::microseconds cost);
    /// A rule of a machine file; of two for one operation the later one counts.
    void add(const LatencyRule& rule);
    /// Removes all rules.
    void clear();

    /// The delay of a call of @p operation.
    std::chrono::microseconds cost(const std::string& operation) const;

    /// For the platform's objects: delays the calling thread. Up to 200 microseconds it polls the clock, because a
    /// sleep would take longer; above that it sleeps.
    void spend(const char* operation) const;

private:
    std::atomic<bool> m_hasRules{false};
    mutable Mutex m_mutex;
    std::unordered_map<std::string, std::chrono::microseconds> m_costs;
};
}
