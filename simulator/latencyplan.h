/// @file
/// The latency plan of a simulated machine: what each kind of call costs.
#pragma once

#include <atomic>
#include <chrono>
#include <mutex>
#include <string>
#include <unordered_map>

#include "simulator/machine/machine.h"
#include "simulator/mutex.h"

namespace sim
{
/// Makes calls slow. Any thread may call any operation. A machine without latency pays nothing for it.
///
/// Operations are named as in the journal. "*" stands for every operation that no other rule names; the operations of
/// IUnknown and CoTaskMemFree never cost anything.
class LatencyPlan
{
public:
    /// From now on each call of @p operation takes at least @p cost.
    void set(const std::string& operation, std::chrono::microseconds cost);
    /// A rule as a machine holds it; of two for one operation the later one counts.
    void add(const LatencyRule& rule);
    /// Calls cost nothing again.
    void clear();

    /// What a call of @p operation costs.
    std::chrono::microseconds cost(const std::string& operation) const;

    /// For the platform's objects: spends what a call of @p operation costs on the calling thread. Up to 200
    /// microseconds it keeps the processor, because a sleep would take longer than asked; beyond that it sleeps.
    void spend(const char* operation) const;

private:
    std::atomic<bool> m_hasRules{false};
    mutable Mutex m_mutex;
    std::unordered_map<std::string, std::chrono::microseconds> m_costs;
};
}
