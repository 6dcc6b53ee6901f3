#include "client/watching/calls.h"
#include "client/watching/hub.h"

#include <utility>

namespace sonavit::watching
{
namespace
{
thread_local unsigned callsHere = 0;

/// What leads from @p before to the state that waits; no value if nothing does any more.
std::optional<Change> changeFrom(const Snapshot& before, const Subscriber::Waiting& waiting)
{
    if (waiting.events != nullptr)
        return Change(before, waiting.after, *waiting.events);
    std::vector<Event> events = difference(before, waiting.after);
    if (events.empty())
        return std::nullopt;
    waiting.causes.giveTo(events);
    return Change(before, waiting.after, std::move(events));
}

std::string textOf(const std::exception_ptr& failure)
{
    try
    {
        std::rethrow_exception(failure);
    }
    catch (const std::exception& exception)
    {
        return exception.what();
    }
    catch (...)
    {
        return "an exception that is no std::exception";
    }
}
}

bool isInsideCall() noexcept
{
    return callsHere > 0;
}

CallScope::CallScope() noexcept
{
    ++callsHere;
}

CallScope::~CallScope()
{
    --callsHere;
}

void Hub::deliverUntilClosed()
{
    std::unique_lock<std::mutex> lock(m_mutex);
    while (!m_isClosed)
    {
        if (deliverNext(lock) == Delivered::nothing && !m_isClosed)
            m_changed.wait(lock);
    }
    m_dispatcherHasEnded = true;
    m_changed.notify_all();
}

std::size_t Hub::poll(worker::Clock::Time deadline)
{
    std::unique_lock<std::mutex> lock(m_mutex);
    const auto isWaiting = [this] { return m_isClosed || nextSubscriber() != nullptr; };
    worker::waitUntil(*m_clock, m_changed, lock, deadline, isWaiting);
    m_isWoken = false;
    std::size_t calls = 0;
    // As many as there are subscribers now, so that one whose calls cause changes does not keep the thread for ever.
    for (std::size_t left = m_subscribers.size(); left > 0; --left)
        calls += deliverNext(lock) == Delivered::call ? 1 : 0;
    return calls;
}

/// The next subscriber, in turn, for which a change waits; null if there is none. The mutex is held.
std::shared_ptr<Subscriber> Hub::nextSubscriber()
{
    for (std::size_t count = 0; count < m_subscribers.size(); ++count)
    {
        const std::shared_ptr<Subscriber>& subscriber = m_subscribers[(m_next + count) % m_subscribers.size()];
        if (!subscriber->waiting || subscriber->isRunning || !subscriber->isActive)
            continue;
        m_next = (m_next + count) % m_subscribers.size();
        return subscriber;
    }
    return nullptr;
}

/// Makes the next call. @p lock is held before and after, not during the call.
Hub::Delivered Hub::deliverNext(std::unique_lock<std::mutex>& lock)
{
    const std::shared_ptr<Subscriber> subscriber = nextSubscriber();
    if (subscriber == nullptr)
        return Delivered::nothing;
    ++m_next;
    subscriber->isRunning = true;
    const Snapshot before = std::exchange(subscriber->known, subscriber->waiting->after);
    const Subscriber::Waiting waiting = *std::exchange(subscriber->waiting, std::nullopt);
    lock.unlock();
    std::optional<Problem> problem;
    const bool isCalled = call(*subscriber, before, waiting, problem);
    lock.lock();
    if (problem)
    {
        subscriber->isActive = false;
        subscriber->problem = problem;
        subscriber->waiting.reset();
    }
    if (!subscriber->isActive)
        letGo(*subscriber, lock);
    subscriber->isRunning = false;
    m_changed.notify_all();
    return isCalled ? Delivered::call : Delivered::noCall;
}

/// Destroys the function of a subscription that ended during its call. What the function owns may use the System, so
/// the mutex is not held meanwhile; and nobody is told before that the call is over, as its code may go away then.
void Hub::letGo(Subscriber& subscriber, std::unique_lock<std::mutex>& lock)
{
    lock.unlock();
    {
        const CallScope scope;
        subscriber.call = nullptr;
    }
    lock.lock();
}

/// Calls the subscriber, if anything has changed for it. @return whether it was called
/// @param problem why its subscription ends
bool Hub::call(const Subscriber& subscriber, const Snapshot& before, const Subscriber::Waiting& waiting,
               std::optional<Problem>& problem) const
{
    const CallScope scope;
    try
    {
        const std::optional<Change> change = changeFrom(before, waiting);
        if (!change)
            return false;
        subscriber.call(*change);
    }
    catch (...)
    {
        problem = judge(std::current_exception());
    }
    return true;
}

/// An exception of the program's own handler has nowhere to go.
std::optional<Problem> Hub::judge(const std::exception_ptr& failure) const
{
    if (!m_onException)
        return Problem(Problem::Kind::internal, "subscribe", "", textOf(failure));
    try
    {
        m_onException(failure);
    }
    catch (...)
    {
        return Problem(Problem::Kind::internal, "Options::onException", "", textOf(std::current_exception()));
    }
    return std::nullopt;
}
}
