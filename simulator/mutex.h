/// @file
/// The lock of the simulated machine.
#pragma once

#include <mutex>

namespace sim
{
/// A mutex that is never waited for while the process ends.
///
/// When a process ends on Windows, all of its threads but one are gone before its libraries are told, and a thread may
/// have been taken away while it held a lock. Libraries that call the machine then are alone with it: they need no lock
/// and must not wait for one. Elsewhere this is a plain std::mutex.
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

    /// Whether the process ends and has only this thread left. Always false off Windows, where threads run to the end.
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
