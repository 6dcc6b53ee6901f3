#include "client/worker/clock.h"

#include <algorithm>
#include <utility>

namespace sonavit::worker
{
namespace
{
class SteadyClock final : public Clock
{
public:
    Time now() const noexcept override { return std::chrono::steady_clock::now(); }

    void wait(std::condition_variable& changed, std::unique_lock<std::mutex>& lock, Time deadline) override
    {
        // A wait for a very late time overflows in some runtimes; callers look at the clock again anyway.
        changed.wait_until(lock, std::min(deadline, now() + std::chrono::hours(1)));
    }
};

struct Current
{
    std::mutex mutex;
    std::shared_ptr<Clock> clock = std::make_shared<SteadyClock>();
};

/// It is never destroyed, because a worker may outlive the static objects of the program.
Current& current()
{
    static Current& only = *new Current;
    return only;
}
}

std::shared_ptr<Clock> currentClock()
{
    const std::lock_guard<std::mutex> lock(current().mutex);
    return current().clock;
}

void replaceClock(std::shared_ptr<Clock> clock)
{
    if (clock == nullptr)
        clock = std::make_shared<SteadyClock>();
    const std::lock_guard<std::mutex> lock(current().mutex);
    current().clock = std::move(clock);
}

Clock::Time deadlineAfter(Clock::Time now, std::chrono::milliseconds duration)
{
    const auto left = std::chrono::duration_cast<std::chrono::milliseconds>(Clock::never - now);
    return duration >= left ? Clock::never : now + duration;
}
}
