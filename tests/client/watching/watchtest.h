/// @file
/// The fixture of the tests of watching.
#pragma once

#include "client/worker/worker.h"
#include "sonavit/system.h"
#include "tests/support/clienttest.h"
#include "tests/support/manualclock.h"

#include <chrono>
#include <future>
#include <memory>
#include <optional>
#include <string>
#include <thread>
#include <utility>
#include <vector>

namespace support
{
using namespace std::chrono_literals;

/// A test with a System that is polled, on a clock that stands still.
class WatchTest : public ClientTest
{
protected:
    void SetUp() override;
    void TearDown() override;

    /// Starts the machine and a System on it, with its first snapshot read; notifications come at once.
    sonavit::System& watch(const std::string& machineName);
    sonavit::System& watch(sim::Machine machine);
    sonavit::System& audio() { return *m_audio; }
    void endSystem() { m_audio.reset(); }
    sonavit::System::Options polledOptions();

    /// Waits until the worker has done all that is due now.
    void settle();
    /// Lets time pass, and waits until the worker has done all that is due then.
    void advance(std::chrono::milliseconds duration);
    /// Calls of the platform since the last question, without those that only free memory.
    std::size_t callsSince();

    /// Asks for a change on a thread of its own, and returns when it waits for the worker; to be called on the worker,
    /// in the middle of a reading.
    template<class Change>
    static auto begin(Change change)
    {
        auto answer = std::async(std::launch::async, std::move(change));
        while (!isChangeWaiting())
            std::this_thread::yield();
        return answer;
    }

    std::shared_ptr<ManualClock> clock = std::make_shared<ManualClock>();

private:
    static bool isChangeWaiting();

    std::unique_ptr<sonavit::System> m_audio;
};

/// The snapshot without the past, which a System that begins later does not know.
sonavit::Snapshot withoutPast(const sonavit::Snapshot& snapshot);

/// A subscriber that keeps its changes.
class Receiver
{
public:
    explicit Receiver(sonavit::System& audio);

    /// What poll() has brought since the last question.
    std::vector<sonavit::Change> take();
    /// The events of all that.
    std::vector<sonavit::Event> events();
    sonavit::Subscription& subscription() { return m_subscription; }

private:
    sonavit::System& m_audio;
    std::vector<sonavit::Change> m_changes;
    sonavit::Subscription m_subscription;
};
}
