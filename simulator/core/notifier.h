/// @file
/// The machine's notification thread.
#pragma once

#include <chrono>
#include <condition_variable>
#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <mutex>
#include <thread>
#include <utility>

#include "simulator/mutex.h"

namespace sim
{
/// Runs tasks one after the other on a thread of its own, which is started by the first task and has COM.
///
/// A task may post further tasks. No lock is held while a task runs.
class Notifier
{
public:
    using Task = std::function<void()>;
    using Clock = std::chrono::steady_clock;

    Notifier() = default;
    Notifier(const Notifier&) = delete;
    Notifier& operator=(const Notifier&) = delete;
    ~Notifier();

    /// To be called before the first task. @p owner holds this object and lives at least as long as the thread, so that
    /// a task may end the simulation; @p enter and @p leave run on the thread before the first and after the last task.
    void prepare(std::weak_ptr<void> owner, Task enter, Task leave);

    /// From now on post() runs its task at once, on the calling thread.
    void deliverAtOnce(bool on);
    bool deliversAtOnce() const;

    /// Queues @p task behind those that are due, or runs it; see deliverAtOnce().
    void post(Task task);
    /// Queues @p task for @p due; at once it runs now, whenever it is due.
    void postAt(Clock::time_point due, Task task);

    /// Returns when no task waits or runs, those that are not due yet included; at once on the notification thread.
    void settle();

    /// Drops what waits, lets the running task end and ends the thread. Later tasks are dropped.
    void stop();

private:
    void work();
    bool nextTask(std::unique_lock<Mutex>& lock, Task& task);

    mutable Mutex m_mutex;
    std::condition_variable_any m_changed;
    std::multimap<Clock::time_point, Task> m_tasks;
    std::thread m_thread;
    std::weak_ptr<void> m_owner;
    Task m_enter;
    Task m_leave;
    bool m_atOnce = false;
    bool m_isRunning = false;
    bool m_isStopped = false;
};
}
