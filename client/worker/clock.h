/// @file
/// The time of the worker and of those who wait for it.
#pragma once

#include <chrono>
#include <condition_variable>
#include <memory>
#include <mutex>

namespace sonavit::worker
{
/// A steady clock, and how to wait on it. Tests replace it. Any thread may call any operation.
class Clock
{
public:
    using Time = std::chrono::steady_clock::time_point;
    static constexpr Time never = Time::max();

    virtual ~Clock() = default;
    virtual Time now() const noexcept = 0;
    /// Waits until @p changed is notified or @p deadline has come, or for no reason. @p lock is held before and after.
    virtual void wait(std::condition_variable& changed, std::unique_lock<std::mutex>& lock, Time deadline) = 0;
};

/// The clock that Systems and workers take when they begin: the computer's, unless a test has replaced it.
std::shared_ptr<Clock> currentClock();
/// For tests. Null stands for the computer's clock.
void replaceClock(std::shared_ptr<Clock> clock);

/// @p now + @p duration, or Clock::never if that is beyond what the clock can express.
Clock::Time deadlineAfter(Clock::Time now, std::chrono::milliseconds duration);

/// Waits until @p isDone or @p deadline. @return the last answer of @p isDone
template<class Question>
bool waitUntil(Clock& clock, std::condition_variable& changed, std::unique_lock<std::mutex>& lock, Clock::Time deadline,
               const Question& isDone)
{
    while (!isDone())
    {
        if (clock.now() >= deadline)
            return false;
        clock.wait(changed, lock, deadline);
    }
    return true;
}
}
