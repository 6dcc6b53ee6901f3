#include "client/watching/calls.h"
#include "client/watching/hub.h"

#include <chrono>
#include <new>
#include <utility>

namespace sonavit::watching
{
namespace
{
constexpr std::chrono::milliseconds pauseWithoutMemory(250);

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

std::optional<Problem> problemWith(const char* operation, const std::exception_ptr& failure) noexcept
{
    try
    {
        return Problem(Problem::Kind::internal, operation, "", textOf(failure));
    }
    catch (...)
    {
        return std::nullopt;
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
        const Delivered delivered = deliverNext(lock);
        if (delivered == Delivered::nothing && !m_isClosed)
            m_changed.wait(lock);
        else if (delivered == Delivered::failed)
            worker::waitUntil(*m_clock, m_changed, lock, worker::deadlineAfter(m_clock->now(), pauseWithoutMemory),
                              [this] { return m_isClosed; });
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
    {
        const Delivered delivered = deliverNext(lock);
        if (delivered == Delivered::failed)
            throw std::bad_alloc();
        calls += delivered == Delivered::call || delivered == Delivered::lastCall ? 1 : 0;
    }
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
    Subscriber::Waiting waiting = *std::exchange(subscriber->waiting, std::nullopt);
    const Snapshot before = subscriber->known;
    lock.unlock();
    std::optional<Problem> problem;
    const Delivered delivered = call(*subscriber, before, waiting, problem);
    lock.lock();
    if (delivered == Delivered::failed)
        putBack(*subscriber, std::move(waiting));
    else
        subscriber->known = std::move(waiting.after);
    if (delivered == Delivered::lastCall)
    {
        subscriber->isActive = false;
        subscriber->problem = std::move(problem);
        subscriber->waiting.reset();
    }
    if (!subscriber->isActive)
        letGo(*subscriber, lock);
    subscriber->isRunning = false;
    m_changed.notify_all();
    return delivered;
}

/// Lets a change wait again that could not be delivered, before what has come meanwhile. The mutex is held.
void Hub::putBack(Subscriber& subscriber, Subscriber::Waiting waiting) noexcept
{
    if (!subscriber.isActive)
        return;
    if (!subscriber.waiting)
    {
        subscriber.waiting.emplace(std::move(waiting));
        return;
    }
    subscriber.waiting->events = nullptr; // who caused what is not known any more
    subscriber.waiting->causes = Causes();
}

/// Destroys the function of a subscription that ended during its call. What the function owns may use the System, so
/// the mutex is not held meanwhile; and no thread that waits for the end of the call continues before that, as it may
/// unload the code.
void Hub::letGo(Subscriber& subscriber, std::unique_lock<std::mutex>& lock)
{
    lock.unlock();
    {
        const CallScope scope;
        subscriber.call = nullptr;
    }
    lock.lock();
}

/// Calls the subscriber, if anything has changed for it. @param problem why its subscription ends
Hub::Delivered Hub::call(const Subscriber& subscriber, const Snapshot& before, const Subscriber::Waiting& waiting,
                         std::optional<Problem>& problem) const noexcept
{
    const CallScope scope;
    std::optional<Change> change;
    try
    {
        change = changeFrom(before, waiting);
    }
    catch (...)
    {
        return Delivered::failed;
    }
    if (!change)
        return Delivered::noCall;
    try
    {
        subscriber.call(*change);
        return Delivered::call;
    }
    catch (...)
    {
        return isHandled(std::current_exception(), problem) ? Delivered::call : Delivered::lastCall;
    }
}

/// Whether the program's handler has received the exception. An exception of that handler has nowhere to go.
/// @param problem what to tell otherwise; without memory for it nothing
bool Hub::isHandled(const std::exception_ptr& failure, std::optional<Problem>& problem) const noexcept
{
    if (!m_onException)
    {
        problem = problemWith("subscribe", failure);
        return false;
    }
    try
    {
        m_onException(failure);
        return true;
    }
    catch (...)
    {
        problem = problemWith("Options::onException", std::current_exception());
        return false;
    }
}
}
