#include "client/watching/watcher.h"

#include <algorithm>

namespace sonavit::watching
{
/// Of an endpoint that is not in the list: either it has gone again or it cannot be listed yet.
void Watcher::judgeAbsence(const Noted::OfEndpoint& noted)
{
    const Clock::Time now = m_worker->clock().now();
    if (noted.isRetry)
        m_retries.fail(noted.id, now);
    else if ((noted.announced & (announcedArrival | announcedState)) != 0)
        m_retries.begin(noted.id, now);
    else if ((noted.announced & announcedRemoval) != 0)
        m_retries.succeed(noted.id);
}

/// Whether the endpoint could be read. If not, it is tried again after each announcement of its arrival or its state,
/// and after other readings if it has problems that were not there before.
/// @param announced what the reading follows from; nothing for all other readings
void Watcher::judgeReading(std::size_t index, const std::vector<EndpointProblem>& former, unsigned announced)
{
    const Endpoint::Content& content = m_endpoints[index].content;
    const auto isNew = [&](const EndpointProblem& problem)
    { return std::find(former.begin(), former.end(), problem) == former.end(); };
    m_isServiceDoubted =
        m_isServiceDoubted || std::any_of(content.problems.begin(), content.problems.end(),
                                          [](const auto& problem) { return isOfService(problem.problem); });
    if (content.problems.empty())
        return m_retries.succeed(content.id);
    const Clock::Time now = m_worker->clock().now();
    const bool isTried = m_retries.contains(content.id);
    const bool isDevice = (announced & (announcedArrival | announcedState)) != 0;
    const bool isWorse = std::any_of(content.problems.begin(), content.problems.end(), isNew);
    if (isDevice || (isTried ? announced != announcedNothing : isWorse))
        m_retries.begin(content.id, now);
    else
        m_retries.fail(content.id, now);
}

/// The same of the list, the defaults, the device numbers and the registration.
void Watcher::judgeComputer(const Noted& noted)
{
    std::vector<Problem> problems = m_listProblems;
    problems.insert(problems.end(), m_defaults.problems.begin(), m_defaults.problems.end());
    for (const reading::WaveIds& waveIds : m_waveIds)
        problems.insert(problems.end(), waveIds.problems.begin(), waveIds.problems.end());
    if (m_registrationProblem)
        problems.push_back(*m_registrationProblem);
    const EndpointId computer;
    const Clock::Time now = m_worker->clock().now();
    const bool isAnnounced = !noted.isRetryOfComputer && (noted.defaults[0] || noted.defaults[1]);
    if (problems.empty())
        m_retries.succeed(computer);
    else if (isAnnounced || (!m_retries.contains(computer) && problems != m_computerProblems))
        m_retries.begin(computer, now);
    else
        m_retries.fail(computer, now);
    m_computerProblems = std::move(problems);
}

/// The same of the hardware of watched cards. What was announced of it has begun its tries before.
void Watcher::judgeHardware()
{
    const Clock::Time now = m_worker->clock().now();
    for (const Watches::Reading& reading : m_watches.takeReadings())
    {
        judge(reading.problems);
        if (reading.problems.empty())
            m_hardwareRetries.succeed(reading.card);
        else if (reading.areNew && !m_hardwareRetries.contains(reading.card))
            m_hardwareRetries.begin(reading.card, now);
        else
            m_hardwareRetries.fail(reading.card, now);
    }
}
}
