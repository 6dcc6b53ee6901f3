#include "tests/ends/client/ways.h"

#include "simulator/redirection.h"
#include "tests/ends/machine/preparation.h"

#include <atomic>
#include <optional>
#include <thread>

namespace ends
{
namespace
{
constexpr std::chrono::seconds usualPatience(20);

/// The last of the program's static objects, as the first of them.
class Witness
{
public:
    Witness() = default;
    Witness(const Witness&) = delete;
    Witness& operator=(const Witness&) = delete;

    ~Witness()
    {
        if (m_isAskedForReferences)
            tellReferences();
        if (m_properties)
            printLine(properties() == *m_properties ? "the former format" : "another format");
    }

    void ask(bool isForReferences)
    {
        m_isAskedForReferences = isForReferences;
        m_properties = properties();
    }

private:
    using Properties = decltype(sim::Endpoint::properties);

    static Properties properties() { return machine().machine().endpoints.front().properties; }

    static void tellReferences()
    {
        const sim::Census census = machine().census();
        printLine(("left: " + (census.empty() ? "nothing" : census.describe())).c_str());
    }

    bool m_isAskedForReferences = false;
    std::optional<Properties> m_properties;
};

[[gnu::init_priority(101)]] Witness witness;
}

Ways allWays()
{
    return returns() + statics() + handlers() + callbacks() + hangingDrivers() + endingThreads() + forks();
}

void prepareForTheMachine()
{
    [[maybe_unused]] static auto& lasting = *new sim::Redirection(reinterpret_cast<const void*>(&sonavit::refer));
}

void tellWhatIsLeft()
{
    witness.ask(true);
}

void tellTheFormat()
{
    witness.ask(false);
}

sonavit::System::Options withPatience(std::chrono::milliseconds patience)
{
    sonavit::System::Options options;
    options.patience = patience;
    return options;
}

std::unique_ptr<sonavit::System> beginSystem()
{
    machine();
    auto system = std::make_unique<sonavit::System>(withPatience(usualPatience));
    read(*system);
    return system;
}

void read(sonavit::System& system)
{
    while (system.snapshot().cards().empty())
        std::this_thread::yield();
    printLine((std::to_string(system.snapshot().cards().size()) + " cards").c_str());
}

sonavit::EndpointId speakersId()
{
    return sonavit::EndpointId(speakers());
}

void causeAnEvent()
{
    static std::atomic<int> count{0};
    machine().events().setVolume(speakers(), -6.0f - static_cast<float>(++count));
    machine().events().waitForClients();
}

void ignore(const sonavit::Change&) {}

void causeAnEventAndWait(sonavit::System& system)
{
    std::atomic<bool> isTold{false};
    const sonavit::Subscription heard = system.subscribe([&](const sonavit::Change&) { isTold = true; });
    causeAnEvent();
    while (!isTold)
        std::this_thread::yield();
}

sonavit::Format otherFormat()
{
    return sonavit::Format::integer(16, 96000, 2);
}
}
