/// @file
/// A simulated machine with a System on it.
#pragma once

#include "client/worker/clock.h"
#include "simulator/redirection.h"
#include "simulator/simulation.h"
#include "sonavit/system.h"

#include <atomic>
#include <chrono>
#include <condition_variable>
#include <mutex>
#include <optional>
#include <string>

namespace bench
{
/// A clock that stands still unless it is moved: nothing is read because time passes.
class StandingClock final : public sonavit::worker::Clock
{
public:
    Time now() const noexcept override { return Time(Time::duration(m_now.load())); }
    void wait(std::condition_variable& changed, std::unique_lock<std::mutex>& lock, Time) override
    {
        changed.wait_for(lock, std::chrono::milliseconds(1));
    }

private:
    std::atomic<Time::rep> m_now{Time::duration(std::chrono::hours(1)).count()};
};

/// A simulated machine whose events are delivered at once, and Systems that are polled, on a clock that stands still.
class PlayedMachine
{
public:
    explicit PlayedMachine(const std::string& name);
    ~PlayedMachine();
    PlayedMachine(const PlayedMachine&) = delete;
    PlayedMachine& operator=(const PlayedMachine&) = delete;

    sim::Simulation& simulation() { return m_simulation; }
    sonavit::System::Options options();
    /// The first active output.
    std::string activeOutput() const;
    /// Calls of the platform since the last question, without those that only free memory.
    std::size_t calls();
    /// Waits until the worker has done all that is due.
    static void settle();

private:
    sim::Redirection m_redirection;
    sim::Simulation m_simulation;
};
}
