#include "tests/faults/kept/rounds.h"

#include "client/reading/endpointreading.h"
#include "client/worker/worker.h"
#include "libSonavit/endpointdeviceenumerator.h"
#include "libSonavit/soundcardinterface.h"
#include "simulator/redirection.h"
#include "tests/faults/kept/balance.h"
#include "tests/faults/kept/holdings.h"
#include "tests/support/manualclock.h"
#include "tests/support/pace.h"

#include <algorithm>
#include <chrono>
#include <memory>
#include <thread>

namespace faults::kept
{
using namespace sonavit;

namespace
{
/// In which caches fill: so many operations are done once, at least.
unsigned firstRoundsOf(unsigned rounds)
{
    return std::clamp(rounds, 20U, 800U);
}

constexpr unsigned long few = 4;          ///< handles and threads that come and go by themselves
constexpr unsigned long kilobytes = 2048; ///< of noise: pages that the allocator keeps, and its arenas of threads

std::string grown(const char* what, unsigned long before, unsigned long after, unsigned long noise)
{
    if (after <= before + noise)
        return {};
    return std::string("; ") + what + " from " + std::to_string(before) + " to " + std::to_string(after);
}

/// Compares the process and the machine before and after.
class Watchman
{
public:
    explicit Watchman(const sim::Simulation& simulation) : m_simulation(simulation), m_census(simulation.census()) {}

    Growth growth() const
    {
        const Holdings now = holdingsAtRest();
        Growth text = grown("handles", m_holdings.handles, now.handles, few) +
                      grown("threads", m_holdings.threads, now.threads, few);
        if (!support::isInstrumented) // a sanitizer keeps what was freed, to find later uses of it
            text += grown("kilobytes", m_holdings.kilobytes, now.kilobytes, kilobytes);
        const sim::Census census = m_simulation.census() - m_census;
        if (!census.empty())
            text += "; " + census.describe();
        return text;
    }

private:
    bool areMore(const Holdings& now) const
    {
        return now.handles > m_holdings.handles + few || now.threads > m_holdings.threads + few;
    }

    /// The system counts threads and handles for a while after their end: asks again until they are few, or time is
    /// over.
    Holdings holdingsAtRest() const
    {
        Holdings now = holdings();
        for (int turn = 0; turn < 100 && areMore(now); ++turn)
        {
            std::this_thread::sleep_for(std::chrono::milliseconds(50));
            now = holdings();
        }
        return now;
    }

    const sim::Simulation& m_simulation;
    const sim::Census m_census;
    const Holdings m_holdings = holdings();
};

/// A machine for code on any thread, with notifications at once and no records, and a clock of its own.
class Stage
{
public:
    explicit Stage(const sim::Machine& machine)
        : m_isInitialized(SUCCEEDED(CoInitializeEx(nullptr, COINIT_MULTITHREADED))),
          m_simulation(std::make_unique<sim::Simulation>(machine))
    {
        worker::replaceClock(m_clock);
        m_simulation->deliverAtOnce(true);
        m_simulation->journal().record(false);
        m_simulation->latency().clear();
    }
    ~Stage()
    {
        libSonavit::AudioDeviceEnumeratorFactory::m_enumerator = nullptr; // as the end of the module does
        m_simulation.reset();
        worker::replaceClock(nullptr);
        if (m_isInitialized)
            CoUninitialize();
    }
    Stage(const Stage&) = delete;
    Stage& operator=(const Stage&) = delete;

    sim::Simulation& simulation() { return *m_simulation; }

    /// Options with which the worker meets the machine on Windows, too.
    System::Options options()
    {
        System::Options options = memory::polledOptions();
        options.onWorkerStart = [this] { static_cast<void>(m_simulation->registerOnThisThread()); };
        return options;
    }

    /// Lets as much time pass as between an announcement and its reading.
    void pass() { m_clock->advance(std::chrono::milliseconds(60)); }
    /// Lets so much time pass that the layer releases what it has kept for a while, and waits until it has.
    void rest()
    {
        m_clock->advance(std::chrono::seconds(10));
        worker::Worker::current()->settle();
    }

private:
    const bool m_isInitialized;
    const std::shared_ptr<support::ManualClock> m_clock = std::make_shared<support::ManualClock>();
    const sim::Redirection m_library{reinterpret_cast<const void*>(&enumerateSoundCards)};
    const sim::Redirection m_client{reinterpret_cast<const void*>(&reading::createEnumerator)};
    std::unique_ptr<sim::Simulation> m_simulation;
};
}

Growth growthOf(const Row& row, const sim::Machine& machine, unsigned rounds)
{
    Stage stage(machine);
    const std::function<void()> operation = row.prepare(stage.simulation());
    for (unsigned round = 0; round < firstRoundsOf(rounds); ++round)
        operation();
    const Watchman watchman(stage.simulation());
    for (unsigned round = 0; round < rounds; ++round)
        operation();
    return watchman.growth();
}

Growth growthOf(const std::vector<memory::ClientCase>& cases, const sim::Machine& machine, unsigned rounds)
{
    Stage stage(machine);
    System audio(stage.options());
    static_cast<void>(audio.snapshot());
    std::vector<std::unique_ptr<memory::ClientSubject>> subjects;
    for (const memory::ClientCase& each : cases)
        subjects.push_back(each.make(stage.simulation(), audio));
    const auto performAll = [&](unsigned count)
    {
        for (unsigned round = 0; round < count; ++round)
        {
            subjects[round % subjects.size()]->work();
            stage.pass();
            if (round % subjects.size() == 0)
                static_cast<void>(audio.refresh(Depth::everything));
        }
        static_cast<void>(audio.refresh(Depth::everything));
        stage.rest();
    };
    performAll(firstRoundsOf(rounds));
    const Watchman watchman(stage.simulation());
    performAll(rounds);
    return watchman.growth();
}

Growth growthOfSystems(const sim::Machine& machine, unsigned rounds)
{
    Stage stage(machine);
    const auto perform = [&]
    {
        System audio(stage.options());
        const Subscription heard = audio.subscribe([](const Change&) {});
        static_cast<void>(audio.refresh());
    };
    for (unsigned round = 0; round < firstRoundsOf(rounds); ++round)
        perform();
    const Watchman watchman(stage.simulation());
    for (unsigned round = 0; round < rounds; ++round)
        perform();
    return watchman.growth();
}
}
