#include "simulator/core/notifier.h"

namespace sim
{
Notifier::~Notifier()
{
    stop();
}

void Notifier::prepare(std::weak_ptr<void> owner, Task enter, Task leave)
{
    m_owner = std::move(owner);
    m_enter = std::move(enter);
    m_leave = std::move(leave);
}

void Notifier::deliverAtOnce(bool on)
{
    const std::lock_guard<Mutex> lock(m_mutex);
    m_atOnce = on;
}

bool Notifier::deliversAtOnce() const
{
    const std::lock_guard<Mutex> lock(m_mutex);
    return m_atOnce;
}

void Notifier::post(Task task)
{
    postAt(Clock::now(), std::move(task));
}

void Notifier::postAt(Clock::time_point due, Task task)
{
    {
        const std::lock_guard<Mutex> lock(m_mutex);
        if (m_isStopped)
            return;
        if (!m_atOnce)
        {
            m_tasks.emplace(due, std::move(task)); // equal times keep their order
            if (!m_thread.joinable())
                m_thread = std::thread([this, owner = m_owner.lock()] { work(); });
            m_changed.notify_all();
            return;
        }
    }
    task();
}

void Notifier::waitUntilIdle()
{
    std::unique_lock<Mutex> lock(m_mutex);
    if (m_thread.get_id() == std::this_thread::get_id())
        return;
    m_changed.wait(lock, [this] { return m_tasks.empty() && !m_isRunning; });
}

void Notifier::stop()
{
    std::thread thread;
    {
        const std::lock_guard<Mutex> lock(m_mutex);
        m_isStopped = true;
        m_tasks.clear();
        thread.swap(m_thread);
        m_changed.notify_all();
    }
    if (!thread.joinable())
        return;
    if (thread.get_id() == std::this_thread::get_id())
        thread.detach(); // a callback ends the simulation: the thread ends when the callback has returned
    else
        thread.join();
}

void Notifier::work()
{
    m_enter();
    std::unique_lock<Mutex> lock(m_mutex);
    for (Task task; nextTask(lock, task); task = nullptr)
    {
        m_isRunning = true;
        lock.unlock();
        task();
        task = nullptr;
        lock.lock();
        m_isRunning = false;
        m_changed.notify_all();
    }
    lock.unlock();
    m_leave();
}

/// Waits for a task that is due; false after stop().
bool Notifier::nextTask(std::unique_lock<Mutex>& lock, Task& task)
{
    while (!m_isStopped)
    {
        if (m_tasks.empty())
        {
            m_changed.wait(lock);
            continue;
        }
        const auto due = m_tasks.begin()->first;
        if (due > Clock::now())
        {
            m_changed.wait_until(lock, due);
            continue;
        }
        task = std::move(m_tasks.begin()->second);
        m_tasks.erase(m_tasks.begin());
        return true;
    }
    return false;
}
}
