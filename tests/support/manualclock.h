/// @file
/// A clock for tests that moves only when it is told to.
#pragma once

#include "client/worker/clock.h"

#include <atomic>
#include <chrono>
#include <condition_variable>
#include <memory>
#include <mutex>

namespace support
{
/// Any thread may call any operation.
class ManualClock final : public sonavit::worker::Clock
{
public:
    Time now() const noexcept override { return Time(Time::duration(m_now.load())); }

    /// Returns often, for no reason, so that the caller looks at the clock again.
    void wait(std::condition_variable& changed, std::unique_lock<std::mutex>& lock, Time) override
    {
        changed.wait_for(lock, std::chrono::milliseconds(1));
    }

    void advance(std::chrono::milliseconds duration) { m_now += Time::duration(duration).count(); }

private:
    std::atomic<Time::rep> m_now{Time::duration(std::chrono::hours(1)).count()};
};
}
