#include "client/watching/watcher.h"

#include <algorithm>
#include <array>
#include <chrono>

namespace sonavit::watching
{
namespace
{
using namespace std::chrono_literals;

/// When to try again what was announced and cannot be read.
constexpr std::array<std::chrono::milliseconds, 6> retryAfter = {250ms, 500ms, 1000ms, 2000ms, 4000ms, 8000ms};
}

void Watcher::takeDueRetries(Clock::Time now, Noted& noted)
{
    for (auto& [id, retry] : m_retries)
    {
        if (retry.due > now)
            continue;
        retry.due = Clock::never;
        if (id.isEmpty() && m_listProblems.empty() && !m_registrationProblem)
            noted.defaults = {true, true};
        else if (id.isEmpty())
            noted.isEverything = true;
        else
            noted.endpoints.push_back({id, announcedAll & ~announcedRemoval, Cause()});
    }
}

/// Of an endpoint that is not in the list: either it has gone again or it cannot be listed yet.
void Watcher::judgeAbsence(const Noted::OfEndpoint& noted)
{
    if ((noted.announced & (announcedArrival | announcedState)) != 0)
        retryLater(noted.id);
}

/// Whether what was announced could be read: tries again later if there are problems that were not there before, or
/// that have been the reason for earlier tries.
void Watcher::judgeReading(std::size_t index, const std::vector<EndpointProblem>& former)
{
    const Endpoint::Content& content = m_endpoints[index].content;
    const auto isNew = [&](const EndpointProblem& problem)
    { return std::find(former.begin(), former.end(), problem) == former.end(); };
    m_isServiceDoubted =
        m_isServiceDoubted || std::any_of(content.problems.begin(), content.problems.end(),
                                          [](const auto& problem) { return isOfService(problem.problem); });
    const bool isRetried = m_retries.count(content.id) > 0 && !content.problems.empty();
    if (isRetried || std::any_of(content.problems.begin(), content.problems.end(), isNew))
        retryLater(content.id);
    else
        m_retries.erase(content.id);
}

/// The same of the list, the defaults, the device numbers and the registration.
void Watcher::judgeComputer()
{
    std::vector<Problem> problems = m_listProblems;
    problems.insert(problems.end(), m_defaults.problems.begin(), m_defaults.problems.end());
    for (const reading::WaveIds& waveIds : m_waveIds)
        problems.insert(problems.end(), waveIds.problems.begin(), waveIds.problems.end());
    if (m_registrationProblem)
        problems.push_back(*m_registrationProblem);
    const bool isRetried = m_retries.count(EndpointId()) > 0;
    if (!problems.empty() && (isRetried || problems != m_computerProblems))
        retryLater(EndpointId());
    else
        m_retries.erase(EndpointId());
    m_computerProblems = std::move(problems);
}

/// @param id empty for the computer as a whole
void Watcher::retryLater(const EndpointId& id)
{
    Retry& retry = m_retries[id];
    if (retry.attempts == retryAfter.size())
    {
        m_retries.erase(id);
        return;
    }
    retry.due = m_worker->clock().now() + retryAfter[retry.attempts++];
}
}
