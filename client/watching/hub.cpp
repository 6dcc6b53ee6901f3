#include "client/watching/hub.h"

#include "client/watching/calls.h"

#include <algorithm>
#include <utility>

namespace sonavit::watching
{
Hub::Hub(const System::Options& options, std::shared_ptr<worker::Clock> clock)
    : m_wake(options.wake),
      m_onException(options.onException),
      m_hasThread(options.delivery == Delivery::thread),
      m_clock(std::move(clock))
{
}

Hub::~Hub() = default;

std::optional<Snapshot> Hub::latest() const
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    return m_latest;
}

void Hub::publish(Snapshot next, std::vector<Event> events)
{
    const auto shared = std::make_shared<const std::vector<Event>>(std::move(events));
    bool isWaiting = false;
    {
        const std::lock_guard<std::mutex> lock(m_mutex);
        const auto leading = m_latest ? shared : nullptr;
        for (const std::shared_ptr<Subscriber>& subscriber : m_subscribers)
            gatherCauses(*subscriber, leading);
        // Nothing below fails: all subscribers get the change, or none does.
        for (const std::shared_ptr<Subscriber>& subscriber : m_subscribers)
        {
            if (!subscriber->isActive)
                continue;
            merge(*subscriber, next, leading);
            isWaiting = true;
        }
        m_latest = std::move(next);
        m_changed.notify_all();
        isWaiting = isWaiting && m_wake && !std::exchange(m_isWoken, true);
    }
    if (isWaiting)
        wake();
}

/// The program's functions have nowhere to throw to: the state has been published.
void Hub::wake() const noexcept
{
    try
    {
        m_wake();
    }
    catch (...)
    {
        std::optional<Problem> problem;
        static_cast<void>(isHandled(std::current_exception(), problem));
    }
}

/// Before merge(): a second call with the same events changes nothing. @param events null if they do not lead from what
/// the subscriber knows
void Hub::gatherCauses(Subscriber& subscriber, const std::shared_ptr<const std::vector<Event>>& events)
{
    if (!subscriber.waiting)
        return;
    Subscriber::Waiting& waiting = *subscriber.waiting;
    if (waiting.events != nullptr)
        waiting.causes.add(*waiting.events);
    if (events != nullptr)
        waiting.causes.add(*events);
}

void Hub::merge(Subscriber& subscriber, const Snapshot& next, const std::shared_ptr<const std::vector<Event>>& events)
{
    if (!subscriber.waiting)
    {
        subscriber.waiting.emplace(Subscriber::Waiting{next, events, Causes()});
        return;
    }
    subscriber.waiting->events = nullptr;
    subscriber.waiting->after = next;
}

std::optional<Snapshot> Hub::waitForFirst(worker::Clock::Time deadline)
{
    std::unique_lock<std::mutex> lock(m_mutex);
    worker::waitUntil(*m_clock, m_changed, lock, deadline, [this] { return m_latest || m_isClosed; });
    return m_latest;
}

std::shared_ptr<Subscriber> Hub::subscribe(std::function<void(const Change&)> call, const Snapshot& otherwise)
{
    auto subscriber = std::make_shared<Subscriber>();
    subscriber->call = std::move(call);
    const std::lock_guard<std::mutex> lock(m_mutex);
    if (m_hasThread)
        startDispatcher();
    subscriber->initial = m_latest.value_or(otherwise);
    subscriber->known = subscriber->initial;
    m_subscribers.push_back(subscriber);
    return subscriber;
}

/// The mutex is held.
void Hub::startDispatcher()
{
    if (m_dispatcher != nullptr || m_isClosed)
        return;
    m_dispatcher = worker::startThread([hub = shared_from_this()] { hub->deliverUntilClosed(); });
    m_dispatcherHasEnded = false;
}

void Hub::stop(Subscriber& subscriber) noexcept
{
    std::optional<Subscriber::Waiting> waiting; // ends after the lock
    std::shared_ptr<Subscriber> kept;
    const std::lock_guard<std::mutex> lock(m_mutex);
    subscriber.isActive = false;
    waiting.swap(subscriber.waiting);
    const auto isMeant = [&](const auto& each) { return each.get() == &subscriber; };
    const auto found = std::find_if(m_subscribers.begin(), m_subscribers.end(), isMeant);
    if (found == m_subscribers.end())
        return;
    kept = std::move(*found);
    m_subscribers.erase(found);
}

void Hub::waitFor(Subscriber& subscriber) noexcept
{
    if (isInsideCall())
        return;
    std::unique_lock<std::mutex> lock(m_mutex);
    while (subscriber.isRunning)
        m_changed.wait(lock);
}

bool Hub::isActive(const Subscriber& subscriber) const
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    return subscriber.isActive;
}

std::optional<Problem> Hub::problemOf(const Subscriber& subscriber) const
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    return subscriber.problem;
}

void Hub::close(worker::Clock::Time deadline)
{
    std::vector<std::shared_ptr<Subscriber>> ended; // end after the lock
    std::unique_ptr<worker::Thread> dispatcher;
    bool hasEnded = false;
    {
        std::unique_lock<std::mutex> lock(m_mutex);
        m_isClosed = true;
        for (const std::shared_ptr<Subscriber>& subscriber : m_subscribers)
            subscriber->isActive = false;
        m_changed.notify_all();
        const auto isQuiet = [this]
        {
            const auto isRunning = [](const auto& each) { return each->isRunning; };
            return m_dispatcherHasEnded && std::none_of(m_subscribers.begin(), m_subscribers.end(), isRunning);
        };
        hasEnded = !isInsideCall() && worker::waitUntil(*m_clock, m_changed, lock, deadline, isQuiet);
        ended.swap(m_subscribers);
        dispatcher = std::move(m_dispatcher);
    }
    if (dispatcher == nullptr)
        return;
    if (hasEnded)
        dispatcher->join();
    else
        dispatcher->detach(); // it shares this hub, and ends when the call has returned
}
}
