#pragma once

#include <mutex>

namespace qor
{
/// A lock that one thread at a time can hold; not recursive.
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

/// Holds a Mutex until the end of a scope. With a null mutex it does nothing.
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
}
