/// @file
/// The machine's notification thread.
#pragma once

#include "simulator/mutex.h"

#include <chrono>
#include <condition_variable>
#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <mutex>
#include <thread>
#include <utility>

namespace sim
{
/// Runs tasks one after another on its own thread, which the first task starts.
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

    /// Call it before the first task. The thread keeps @p owner, which holds this object, alive, so that a task may end
    /// the simulation. @p enter and @p leave run on the thread before the first and after the last task.
    void prepare(std::weak_ptr<void> owner, Task enter, Task leave);

    /// Whether post() runs its task on the calling thread before it returns.
    void deliverAtOnce(bool on);
    bool deliversAtOnce() const;

    /// Queues @p task after those that are due, or runs it; see deliverAtOnce().
    void post(Task task);
    /// Queues @p task for @p due. With deliverAtOnce() it runs now, whatever @p due is.
    void postAt(Clock::time_point due, Task task);

    /// Waits until no task is queued or runs, tasks that are not due yet included. On the notification thread it
    /// returns at once.
    void waitUntilIdle();

    /// Drops the queued tasks, waits for the running task and ends the thread. Later tasks are dropped.
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
