/// @file
/// The lock of the simulated machine.
#pragma once

#include <mutex>

namespace sim
{
/// A mutex that does not lock while the process ends.
///
/// When a process ends on Windows, the system terminates all threads but one before it notifies the libraries, and a
/// terminated thread may still hold a lock. A library that calls the machine then runs on the only thread: it needs no
/// lock and must not wait for one. Elsewhere this is a plain std::mutex.
class Mutex
{
public:
    Mutex() = default;
    Mutex(const Mutex&) = delete;
    Mutex& operator=(const Mutex&) = delete;

    void lock()
    {
        if (!otherThreadsAreGone())
            m_mutex.lock();
    }

    void unlock()
    {
        if (!otherThreadsAreGone())
            m_mutex.unlock();
    }

    /// Whether the process is ending and only this thread is left. Always false off Windows.
#if defined(_WIN32)
    static bool otherThreadsAreGone() noexcept;
#else
    static constexpr bool otherThreadsAreGone() noexcept
    {
        return false;
    }
#endif

private:
    std::mutex m_mutex;
};
}
