#pragma once

#include <mutex>

namespace qor
{
/// A lock that one thread at a time holds; not recursive.
class Mutex
{
public:
    Mutex() = default;
    Mutex(const Mutex&) = delete;
    Mutex& operator=(const Mutex&) = delete;

    void lock() { m_mutex.lock(); }
    void unlock() { m_mutex.unlock(); }

private:
    std::mutex m_mutex;
};

/// Holds a Mutex for the length of a scope. A null mutex is held by doing nothing.
class AutoMutex
{
public:
    explicit AutoMutex(Mutex* mutex) : m_mutex(mutex)
    {
        if (m_mutex != nullptr)
            m_mutex->lock();
    }

    ~AutoMutex()
    {
        if (m_mutex != nullptr)
            m_mutex->unlock();
    }

    AutoMutex(const AutoMutex&) = delete;
    AutoMutex& operator=(const AutoMutex&) = delete;

private:
    Mutex* m_mutex;
};
} // namespace qor
