#include "client/watching/watcher.h"

#include "client/reading/hardwarewalk.h"
#include "client/reading/judge.h"
#include "sonavit/listcalls.h"

#include <algorithm>
#include <mutex>
#include <utility>

namespace sonavit::watching
{
namespace
{
Problem notThere(const std::string& operation, const char* kind, const std::string& id)
{
    return Problem(Problem::Kind::notThere, operation, id, std::string("there is no ") + kind + " " + id);
}
}

Watcher::Watcher(std::shared_ptr<worker::Worker> worker, std::shared_ptr<Hub> hub)
    : m_worker(std::move(worker)),
      m_hub(std::move(hub)),
      m_inbox(std::make_shared<Inbox>(m_worker->alarm(), m_worker->sharedClock())),
      m_endpoints(m_inbox),
      m_watches(m_inbox)
{
}

Watcher::~Watcher() noexcept = default;

void Watcher::start()
{
    if (m_isStarted || m_isToEnd)
        return;
    m_worker->add(shared_from_this());
    m_isStarted = true;
    try
    {
        connect();
        if (m_enumerator.get() != nullptr)
            read(allNoted());
        publishRead();
    }
    catch (...)
    {
        startAgainLater();
        throw;
    }
}

/// In the order in which it was acquired, backwards, with the held formats in between: they need the enumerator.
void Watcher::end() noexcept
{
    dropObjects();
    for (auto action = m_actions.rbegin(); action != m_actions.rend(); ++action)
    {
        try
        {
            action->second();
        }
        catch (...)
        {
            continue; // the next one concerns something else
        }
    }
    m_actions.clear();
    m_enumerator = nullptr;
    m_worker->remove(*this);
}

void Watcher::endSoon() noexcept
{
    m_isToEnd = true;
    ring();
}

void Watcher::ring() const noexcept
{
    std::unique_lock<std::mutex> lock(m_worker->alarm()->mutex);
    m_worker->alarm()->ring(std::move(lock));
}

/// No callback comes after this.
void Watcher::dropObjects() noexcept
{
    m_recentWalk.release();
    m_watches.release();
    m_endpoints.clear();
    m_registration.end();
}

/// An endpoint without an id, and the second one with the same id, hide none that has an id of its own.
Problem Watcher::orUnlisted(const Problem& problem) const
{
    if (problem.kind() != Problem::Kind::notThere)
        return problem;
    if (m_enumerator.get() == nullptr) // nothing is listed at all
        return m_serviceProblem.value_or(problem);
    const auto found = std::find_if(m_listProblems.begin(), m_listProblems.end(),
                                    [](const Problem& failure)
                                    { return failure.kind() == Problem::Kind::platform && !isAboutOddId(failure); });
    return found == m_listProblems.end() ? problem : reading::hiding(*found, problem, "among those that can be read");
}

Result<reading::EndpointReading*> Watcher::endpoint(const std::string& operation, const EndpointId& id)
{
    const std::optional<std::size_t> place = m_endpoints.find(id);
    if (!place || !m_latest.endpoint(id))
        return orUnlisted(notThere(operation, "endpoint", id.text()));
    return &m_endpoints[*place];
}

Result<Card> Watcher::card(const std::string& operation, const CardId& id) const
{
    if (std::optional<Card> card = m_latest.card(id))
        return *std::move(card);
    return orUnlisted(notThere(operation, "card", id.text()));
}

Result<std::shared_ptr<reading::HardwareWalk>> Watcher::walk(const std::string& operation,
                                                             const std::vector<Card>& cards)
{
    if (m_enumerator.get() == nullptr)
        return m_serviceProblem.value_or(
            Problem(Problem::Kind::platform, operation, "", "the audio service does not answer"));
    auto made = std::make_shared<reading::HardwareWalk>(*m_enumerator, cards);
    if (made->hasProblems(&isOfService))
        doubtService();
    return made;
}

Result<std::shared_ptr<reading::HardwareWalk>> Watcher::recentWalk(const std::string& operation, const Card& card)
{
    const Clock::Time now = m_worker->clock().now();
    if (m_inbox->restDue() == Clock::never)
    {
        if (std::shared_ptr<reading::HardwareWalk> recent = m_recentWalk.find(card, now))
            return recent;
    }
    m_recentWalk.release();
    const Result<std::shared_ptr<reading::HardwareWalk>> made = walk(operation, {card});
    if (!made)
        return made;
    m_recentWalk.keep(card, *made, now);
    ring(); // step() tells the worker when it has to be released
    return made;
}

Result<std::uint64_t> Watcher::watch(const CardId& id)
{
    const Result<Card> meant = card("watch", id);
    if (!meant)
        return meant.problem();
    const std::uint64_t number = m_watches.begin(id);
    try
    {
        if (m_enumerator.get() != nullptr)
            m_watches.follow(*m_enumerator, m_latest.cards());
        publish(patched({}), {});
    }
    catch (...)
    {
        m_watches.end(number); // nobody has it
        throw;
    }
    return number;
}

void Watcher::unwatch(std::uint64_t number) noexcept
{
    m_watches.end(number);
    try
    {
        publish(patched({}), {});
    }
    catch (...)
    {
        startAgainLater();
    }
}

std::uint64_t Watcher::atEnd(std::function<void()> action)
{
    m_actions.emplace_back(++m_lastAction, std::move(action));
    return m_lastAction;
}

void Watcher::cancelAtEnd(std::uint64_t number)
{
    const auto isMeant = [number](const auto& action) { return action.first == number; };
    m_actions.erase(std::remove_if(m_actions.begin(), m_actions.end(), isMeant), m_actions.end());
}
}
