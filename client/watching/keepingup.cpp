#include "client/watching/watcher.h"

#include <algorithm>
#include <chrono>
#include <utility>

namespace sonavit::watching
{
namespace
{
using namespace std::chrono_literals;

constexpr auto pauseAfterException = 250ms;
}

worker::Clock::Time Watcher::step(Clock::Time now) noexcept
{
    if (m_isToEnd)
    {
        end();
        return Clock::never;
    }
    if (!m_isStarted)
        return Clock::never;
    try
    {
        keepUp(now);
    }
    catch (...)
    {
        startAgainLater();
    }
    return nextDue();
}

void Watcher::startAgainLater() noexcept
{
    const Clock::Time now = m_worker->clock().now();
    m_inbox->noteEverything();
    m_afterFailure = now + pauseAfterException;
    m_retries.hurry(m_afterFailure); // some were taken by the reading that failed
    m_hardwareRetries.hurry(m_afterFailure);
    if (m_enumerator.get() != nullptr || m_serviceDue != Clock::never)
        return;
    m_serviceLostAt = now;
    m_serviceDue = m_afterFailure;
}

void Watcher::keepUp(Clock::Time now)
{
    if (now >= m_recentWalk.due())
        m_recentWalk.release();
    if (m_afterFailure != Clock::never && now < m_afterFailure)
        return;
    m_afterFailure = Clock::never;
    if (m_enumerator.get() == nullptr)
    {
        if (now >= m_serviceDue)
            lookForService();
        return;
    }
    const bool isAll = now >= m_inbox->restDue();
    const bool areLevels = now >= m_inbox->levelsDue(m_lastLevels);
    Noted noted;
    if (isAll || areLevels)
        noted = m_inbox->take(isAll);
    if (areLevels)
        m_lastLevels = now;
    noteRetries(now, false, noted);
    if (noted.isEmpty() && !m_isServiceDoubted)
        return;
    read(noted);
    publishRead();
}

worker::Clock::Time Watcher::nextDue() const noexcept
{
    if (m_afterFailure != Clock::never)
        return m_afterFailure;
    if (m_enumerator.get() == nullptr)
        return m_serviceDue;
    return std::min({m_recentWalk.due(), m_inbox->restDue(), m_inbox->levelsDue(m_lastLevels), m_retries.due(),
                     m_hardwareRetries.due()});
}

Result<Snapshot> Watcher::refresh(Depth depth)
{
    if (m_enumerator.get() == nullptr && depth == Depth::everything)
    {
        lookForService();
        return m_latest;
    }
    if (m_enumerator.get() == nullptr)
        return m_latest;
    Noted noted = m_inbox->take(true);
    if (depth == Depth::everything)
        noted.isEverything = true;
    noteRetries(m_worker->clock().now(), true, noted);
    if (noted.isEmpty() && !m_isServiceDoubted)
        return m_latest;
    read(noted);
    publishRead();
    return m_latest;
}

/// Adds what is to be tried again now to what was noted. @param areAll also what is not due yet, whose turn stays
void Watcher::noteRetries(Clock::Time now, bool areAll, Noted& noted)
{
    const std::vector<EndpointId> due = m_retries.take(now);
    for (const EndpointId& id : areAll ? m_retries.all() : due)
    {
        if (!id.isEmpty())
        {
            noted.endpoints.push_back({id, announcedAll & ~announcedRemoval, Cause(), true});
            continue;
        }
        noted.isRetryOfComputer = !noted.defaults[0] && !noted.defaults[1];
        if (m_listProblems.empty() && !m_registrationProblem)
            noted.defaults = {true, true};
        else
            noted.isEverything = true;
    }
    const std::vector<CardId> dueCards = m_hardwareRetries.take(now);
    for (const CardId& card : areAll ? m_hardwareRetries.all() : dueCards)
    {
        if (const std::optional<std::uint32_t> key = m_watches.keyOf(card))
            noted.hardware.push_back({*key, Cause(), true});
        else
            m_hardwareRetries.succeed(card); // it is not watched any more
    }
}
}
