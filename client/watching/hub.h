/// @file
/// The published states of a System and those who receive them.
#pragma once

#include "client/watching/causes.h"
#include "client/worker/clock.h"
#include "client/worker/thread.h"
#include "sonavit/change.h"
#include "sonavit/system.h"

#include <condition_variable>
#include <cstddef>
#include <exception>
#include <functional>
#include <memory>
#include <mutex>
#include <optional>
#include <vector>

namespace sonavit::watching
{
/// One subscriber. All members but the first two are guarded by the hub's mutex.
struct Subscriber
{
    std::function<void(const Change&)> call; ///< used by the thread that has set isRunning
    Snapshot initial;

    /// What it has not received yet: at most one change, into which later ones are merged.
    struct Waiting
    {
        Snapshot after;
        std::shared_ptr<const std::vector<Event>> events; ///< null once changes have been merged
        Causes causes;                                    ///< of merged changes
    };

    Snapshot known; ///< the after() of its last change
    std::optional<Waiting> waiting;
    bool isActive = true;
    bool isRunning = false;
    std::optional<Problem> problem;
};

/// Keeps the newest state and brings changes to subscribers, on a thread of its own or on that of poll().
///
/// Any thread may call any operation. No lock is held while a subscriber or one of the program's functions is called,
/// and the lock is never held during a platform call.
class Hub : public std::enable_shared_from_this<Hub>
{
public:
    Hub(const System::Options& options, std::shared_ptr<worker::Clock> clock);
    ~Hub();
    Hub(const Hub&) = delete;
    Hub& operator=(const Hub&) = delete;

    /// The newest published state; no value before the first one.
    std::optional<Snapshot> latest() const;
    /// Publishes @p next. @param events what leads to it from the state before; empty for the first state
    void publish(Snapshot next, std::vector<Event> events);
    /// Waits for the first state until @p deadline.
    std::optional<Snapshot> waitForFirst(worker::Clock::Time deadline);

    /// @param otherwise where the subscription starts if nothing has been published yet
    std::shared_ptr<Subscriber> subscribe(std::function<void(const Change&)> call, const Snapshot& otherwise);
    void stop(Subscriber& subscriber) noexcept;
    /// Waits for a call under way, unless this thread is inside a call.
    void waitFor(Subscriber& subscriber) noexcept;
    /// Throws std::bad_alloc if there is no memory for a change, which waits on.
    std::size_t poll(worker::Clock::Time deadline);
    bool isActive(const Subscriber& subscriber) const;
    std::optional<Problem> problemOf(const Subscriber& subscriber) const;

    /// Ends all subscriptions and the thread; waits for a call under way until @p deadline, unless this thread is
    /// inside a call.
    void close(worker::Clock::Time deadline);

private:
    void deliverUntilClosed();
    std::shared_ptr<Subscriber> nextSubscriber();
    enum class Delivered
    {
        nothing, ///< nobody has a change waiting
        noCall,  ///< what waited has become nothing
        call,
        lastCall, ///< one that ends its subscription
        failed    ///< there is no memory for the change, which waits on
    };

    Delivered deliverNext(std::unique_lock<std::mutex>& lock);
    static void letGo(Subscriber& subscriber, std::unique_lock<std::mutex>& lock);
    Delivered call(const Subscriber& subscriber, const Snapshot& before, const Subscriber::Waiting& waiting,
                   std::optional<Problem>& problem) const noexcept;
    bool isHandled(const std::exception_ptr& failure, std::optional<Problem>& problem) const noexcept;
    void wake() const noexcept;
    void startDispatcher();
    static void putBack(Subscriber& subscriber, Subscriber::Waiting waiting) noexcept;
    static void gatherCauses(Subscriber& subscriber, const std::shared_ptr<const std::vector<Event>>& events);
    static void merge(Subscriber& subscriber, const Snapshot& next,
                      const std::shared_ptr<const std::vector<Event>>& events);

    const std::function<void()> m_wake;
    const std::function<void(std::exception_ptr)> m_onException;
    const bool m_hasThread;
    const std::shared_ptr<worker::Clock> m_clock;

    mutable std::mutex m_mutex;
    std::condition_variable m_changed; ///< something was published, a call ended, or the hub was closed
    // Guarded by m_mutex.
    std::optional<Snapshot> m_latest;
    std::vector<std::shared_ptr<Subscriber>> m_subscribers;
    std::size_t m_next = 0; ///< who is looked at first
    bool m_isClosed = false;
    bool m_isWoken = false; ///< m_wake was called and poll() not yet
    bool m_dispatcherHasEnded = true;
    std::unique_ptr<worker::Thread> m_dispatcher;
};
}
