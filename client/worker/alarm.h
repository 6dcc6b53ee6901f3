/// @file
/// How the worker is woken.
#pragma once

#include <condition_variable>
#include <mutex>

namespace sonavit::worker
{
/// Rung by the threads that have something for the worker; callbacks that ring it may outlive the worker. Locks are
/// short: no platform call is made while the mutex is held.
struct Alarm
{
    std::mutex mutex;
    std::condition_variable changed;
    bool isRung = false; ///< guarded by mutex

    /// @p lock holds the mutex, and is released.
    void ring(std::unique_lock<std::mutex> lock)
    {
        const bool isNew = !isRung;
        isRung = true;
        lock.unlock();
        if (isNew)
            changed.notify_all();
    }
};
}
