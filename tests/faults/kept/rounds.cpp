#include "tests/faults/kept/rounds.h"

#include "client/reading/endpointreading.h"
#include "libSonavit/endpointdeviceenumerator.h"
#include "simulator/redirection.h"
#include "tests/faults/kept/balance.h"
#include "tests/faults/kept/holdings.h"
#include "tests/support/pace.h"

#include <algorithm>
#include <memory>

namespace faults::kept
{
using namespace sonavit;

namespace
{
using CaptureFunction = sonavit::Result<Capture> (*)(System&, const CaptureOptions&); // one of the layer's module

/// In which caches fill: so many operations are done once, at least.
unsigned firstRoundsOf(unsigned rounds)
{
    return std::clamp(rounds, 20U, 800U);
}

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

    Growth growth(unsigned rounds) const
    {
        const Holdings now = holdings();
        const unsigned long few = std::max(4U, rounds / 2); // the system counts one for a moment after its end
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
    const sim::Simulation& m_simulation;
    const sim::Census m_census;
    const Holdings m_holdings = holdings();
};

/// A machine for code on any thread, with notifications at once and no records.
class Stage
{
public:
    explicit Stage(const sim::Machine& machine)
        : m_isInitialized(SUCCEEDED(CoInitializeEx(nullptr, COINIT_MULTITHREADED))),
          m_simulation(std::make_unique<sim::Simulation>(machine))
    {
        m_simulation->deliverAtOnce(true);
        m_simulation->journal().record(false);
        m_simulation->latency().clear();
    }
    ~Stage()
    {
        libSonavit::AudioDeviceEnumeratorFactory::m_enumerator = nullptr; // as the end of the module does
        m_simulation.reset();
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

private:
    const bool m_isInitialized;
    sim::Redirection m_redirection{reinterpret_cast<const void*>(static_cast<CaptureFunction>(&sonavit::capture))};
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
    return watchman.growth(rounds);
}

Growth growthOf(const std::vector<memory::ClientCase>& cases, const sim::Machine& machine, unsigned rounds)
{
    Stage stage(machine);
    System audio(stage.options());
    static_cast<void>(audio.snapshot());
    std::vector<std::unique_ptr<memory::ClientSubject>> subjects;
    for (const memory::ClientCase& each : cases)
        subjects.push_back(each.make(stage.simulation(), audio));
    const auto perform = [&](std::size_t round)
    {
        subjects[round % subjects.size()]->work();
        if (round % subjects.size() == 0)
            static_cast<void>(audio.refresh(Depth::everything));
    };
    for (std::size_t round = 0; round < firstRoundsOf(rounds); ++round)
        perform(round);
    static_cast<void>(audio.refresh(Depth::everything));
    static_cast<void>(audio.graph()); // the layer keeps the latest walk for a moment
    const Watchman watchman(stage.simulation());
    for (std::size_t round = 0; round < rounds; ++round)
        perform(round);
    static_cast<void>(audio.refresh(Depth::everything));
    Growth growth;
    for (unsigned attempt = 0; attempt < 20; ++attempt)
    {
        static_cast<void>(audio.graph());
        growth = watchman.growth(rounds);
        if (growth.empty())
            break;
    }
    return growth;
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
    return watchman.growth(rounds);
}
}
