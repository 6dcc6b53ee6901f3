/// @file
/// The latency plan of a simulated machine: how long each kind of call takes.
#pragma once

#include "simulator/machine/machine.h"
#include "simulator/mutex.h"

#include <atomic>
#include <chrono>
#include <map>
#include <mutex>
#include <string>
#include <utility>

namespace sim
{
/// Makes calls slow. Any thread may call any operation. Without a rule a call costs one atomic read.
///
/// Operations have their names of the journal. Of the rules that match a call the first of these counts: one with its
/// operation and first argument, one with its operation, one of the preset, and "*", which means every operation. The
/// operations of IUnknown, CoTaskMemFree and CoUninitialize are never delayed.
class LatencyPlan
{
public:
    /// From now on each call of @p operation takes at least @p cost.
    void set(const std::string& operation, std::chrono::microseconds cost);
    /// The same for calls with this first argument, as the journal records it.
    void set(const std::string& operation, const std::string& firstArgument, std::chrono::microseconds cost);
    /// From now on the calls that @p preset names take as long as it says. LatencyPreset::windows contains published
    /// figures; simulator/README.md has them with their sources.
    void usePreset(LatencyPreset preset);
    /// A rule of a machine file; of two for one operation the later one counts.
    void add(const LatencyRule& rule);
    /// Removes all rules and the preset.
    void clear();

    /// The delay of a call of @p operation with this first argument.
    std::chrono::microseconds cost(const std::string& operation, const std::string& firstArgument = {}) const;

    /// For the platform's objects: delays the calling thread. @p firstArgument returns the first argument; it is called
    /// only if there are rules. Up to 200 microseconds the thread polls the clock, because a sleep would take longer;
    /// above that it sleeps.
    template<class FirstArgument>
    void spend(const char* operation, const FirstArgument& firstArgument) const
    {
        if (m_hasRules.load(std::memory_order_relaxed))
            wait(cost(operation, firstArgument()));
    }

private:
    using Call = std::pair<std::string, std::string>;
    using Costs = std::map<Call, std::chrono::microseconds>;

    static void wait(std::chrono::microseconds cost);

    std::atomic<bool> m_hasRules{false};
    mutable Mutex m_mutex;
    Costs m_costs;
    Costs m_preset;
};
}
