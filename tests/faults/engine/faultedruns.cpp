#include "tests/faults/engine/faultedruns.h"

#include <algorithm>
#include <map>
#include <utility>

namespace faults
{
namespace
{
/// The kind of a call: what is asked of which kind of object.
std::string kindOf(const Call& call)
{
    return call.entry.operation + (call.entry.arguments.empty() ? "" : "(" + call.entry.arguments.front());
}
}

FaultedRuns::FaultedRuns(Sweep sweep) : m_sweep(std::move(sweep)), m_clean(m_sweep.perform({}))
{
    m_calls = callsThatCanFail(m_clean.calls);
    addSingles();
    addPairs();
}

Result FaultedRuns::run(std::size_t index)
{
    const std::vector<Fault>& faults = m_runs.at(index);
    const Record record = m_sweep.perform(faults);
    Result result;
    result.findings = record.findings;
    result.failures = static_cast<std::size_t>(std::count(record.fired.begin(), record.fired.end(), true));
    if (faults.size() == 1 && result.failures == 0)
        result.findings.push_back({Kind::unmet, "the call was not made"});
    for (Finding& finding : m_sweep.judge(m_clean, record))
        result.findings.push_back(std::move(finding));
    return result;
}

std::vector<bool> FaultedRuns::chosenCalls() const
{
    const std::size_t count = m_calls.size();
    const std::size_t callsOfRun = std::max(count, m_clean.allCalls.size()); // with those that prepare it
    const std::size_t most = std::max(m_sweep.extent.runsAtLeast, m_sweep.extent.platformCalls / (callsOfRun + 1));
    const std::size_t distance = count / most + 1;
    std::vector<bool> chosen(count, false);
    for (std::size_t i = m_sweep.extent.turn % distance; i < count; i += distance)
        chosen[i] = true;
    if (!m_sweep.extent.hasKinds)
        return chosen;
    std::map<std::string, std::size_t> last;
    for (std::size_t i = 0; i < count; ++i)
    {
        if (last.insert_or_assign(kindOf(m_calls[i]), i).second)
            chosen[i] = true;
    }
    for (const auto& [kind, place] : last)
        chosen[place] = true;
    return chosen;
}

void FaultedRuns::addSingles()
{
    const std::vector<bool> chosen = chosenCalls();
    for (std::size_t i = 0; i < m_calls.size(); ++i)
    {
        if (!chosen[i])
            continue;
        const std::size_t former = m_runs.size();
        for (const Mode mode : modesOf(m_calls[i]))
        {
            if (admits({m_calls[i], mode}))
                m_runs.push_back({{m_calls[i], mode}});
        }
        if (m_runs.size() > former)
            ++m_tried;
    }
}

void FaultedRuns::addPairs()
{
    const std::size_t count = m_calls.size();
    const std::size_t all = count < 2 ? 0 : count * (count - 1) / 2;
    if (m_sweep.extent.pairs == 0)
        return;
    const std::size_t distance = all / m_sweep.extent.pairs + 1;
    std::size_t pair = 0;
    for (std::size_t first = 0; first < count; ++first)
    {
        for (std::size_t second = first + 1; second < count; ++second, ++pair)
        {
            if (pair % distance == 0)
                addPair(m_calls[first], m_calls[second], pair / distance);
        }
    }
}

/// The combinations of two modes take turns. Two calls that throw are tried once: where the second one is made while
/// the first exception unwinds, the language ends the process.
void FaultedRuns::addPair(const Call& first, const Call& second, std::size_t turn)
{
    const std::vector<Mode> modes = modesOf(first);
    const std::vector<Mode> others = modesOf(second);
    const std::vector<Fault> pair = {{first, modes[turn % modes.size()]}, {second, others[turn / 2 % others.size()]}};
    const bool throwsTwice = pair[0].mode == Mode::raise && pair[1].mode == Mode::raise;
    if (!admits(pair[0]) || !admits(pair[1]))
        return;
    if (!throwsTwice || !m_hasPairThatThrows)
        m_runs.push_back(pair);
    m_hasPairThatThrows = m_hasPairThatThrows || throwsTwice;
}
}
