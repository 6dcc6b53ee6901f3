#include "simulator/latencyplan.h"

#include <thread>

namespace sim
{
namespace
{
using std::chrono::microseconds;
using std::chrono::milliseconds;
}

void LatencyPlan::set(const std::string& operation, microseconds cost)
{
    set(operation, {}, cost);
}

void LatencyPlan::set(const std::string& operation, const std::string& firstArgument, microseconds cost)
{
    const std::lock_guard<Mutex> lock(m_mutex);
    m_costs[{operation, firstArgument}] = cost;
    m_hasRules = true;
}

/// The figures and what they are made from:
///
/// - NAudio issue 1127 saw 5 ms to more than 4,000 ms for an IAudioClient, depending on the device. cpal issue 867 saw
///   99 ms and 108 ms for each device that it listed, which includes a client for each.
/// - NAudio issue 1205 saw 233 ms to 245 ms to read one name, its change 1208 130 ms to 250 ms before and 0.2 ms after.
///   Before it, NAudio went twice through all properties for each name, with GetCount and GetAt at each step: with 60
///   properties 240 calls, so about 1 ms each. The change reads the value by its key.
void LatencyPlan::usePreset(LatencyPreset preset)
{
    const std::lock_guard<Mutex> lock(m_mutex);
    m_preset.clear();
    if (preset == LatencyPreset::windows)
    {
        m_preset = {{{"IMMDevice::Activate", "IAudioClient"}, milliseconds(100)},
                    {{"IMMDevice::Activate", "IAudioClient2"}, milliseconds(100)},
                    {{"IMMDevice::Activate", "IAudioClient3"}, milliseconds(100)},
                    {{"IPropertyStore::GetCount", ""}, milliseconds(1)},
                    {{"IPropertyStore::GetAt", ""}, milliseconds(1)},
                    {{"IPropertyStore::GetValue", ""}, microseconds(200)}};
    }
    m_hasRules = !m_preset.empty() || !m_costs.empty();
}

void LatencyPlan::add(const LatencyRule& rule)
{
    set(rule.operation, rule.argument, microseconds(rule.microseconds));
}

void LatencyPlan::clear()
{
    const std::lock_guard<Mutex> lock(m_mutex);
    m_costs.clear();
    m_preset.clear();
    m_hasRules = false;
}

microseconds LatencyPlan::cost(const std::string& operation, const std::string& firstArgument) const
{
    const std::lock_guard<Mutex> lock(m_mutex);
    for (const Costs* const costs : {&m_costs, &m_preset})
    {
        for (const Call& call : {Call(operation, firstArgument), Call(operation, "")})
        {
            const auto found = costs->find(call);
            if (found != costs->end())
                return found->second;
        }
    }
    const auto other = m_costs.find({"*", ""});
    return other == m_costs.end() ? microseconds(0) : other->second;
}

void LatencyPlan::wait(microseconds cost)
{
    const auto end = std::chrono::steady_clock::now() + cost;
    if (cost > microseconds(200))
        std::this_thread::sleep_until(end);
    while (std::chrono::steady_clock::now() < end)
        continue;
}
}
