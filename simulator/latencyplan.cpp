#include "simulator/latencyplan.h"

#include <thread>

namespace sim
{
void LatencyPlan::set(const std::string& operation, std::chrono::microseconds cost)
{
    const std::lock_guard<Mutex> lock(m_mutex);
    m_costs[operation] = cost;
    m_hasRules = true;
}

void LatencyPlan::add(const LatencyRule& rule)
{
    set(rule.operation, std::chrono::microseconds(rule.microseconds));
}

void LatencyPlan::clear()
{
    const std::lock_guard<Mutex> lock(m_mutex);
    m_costs.clear();
    m_hasRules = false;
}

std::chrono::microseconds LatencyPlan::cost(const std::string& operation) const
{
    const std::lock_guard<Mutex> lock(m_mutex);
    auto found = m_costs.find(operation);
    if (found == m_costs.end())
        found = m_costs.find("*");
    return found == m_costs.end() ? std::chrono::microseconds(0) : found->second;
}

void LatencyPlan::spend(const char* operation) const
{
    if (!m_hasRules.load(std::memory_order_relaxed))
        return;
    const auto end = std::chrono::steady_clock::now() + cost(operation);
    if (end - std::chrono::steady_clock::now() > std::chrono::microseconds(200))
        std::this_thread::sleep_until(end);
    while (std::chrono::steady_clock::now() < end)
        continue;
}
}
