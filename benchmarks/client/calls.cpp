#include "calls.h"

#include "comparison.h"
#include "platform/propertykeys.h"
#include "playedmachine.h"

#include <array>
#include <cstdio>
#include <functional>
#include <vector>

namespace bench
{
namespace
{
constexpr std::size_t smallRefresh = 60;
constexpr const char* machineOfTable = "crowded";

bool print(const char* work, std::size_t calls, std::size_t limit)
{
    std::printf("%-58s %7zu %7zu  %s\n", work, calls, limit, calls <= limit ? "" : "MORE");
    return calls <= limit;
}

/// Calls of everything that reads the hardware.
struct HardwareCalls
{
    std::size_t controls = 0;
    std::size_t graph = 0;
};

HardwareCalls callsOfHardware(PlayedMachine& played, sonavit::System& audio)
{
    HardwareCalls calls;
    const sonavit::Snapshot snapshot = audio.snapshot();
    static_cast<void>(played.calls());
    for (const sonavit::Endpoint& endpoint : snapshot.endpoints())
        static_cast<void>(audio.controls(endpoint.id()));
    calls.controls = played.calls();
    static_cast<void>(audio.graph());
    calls.graph = played.calls();
    return calls;
}

/// Calls of a refresh after @p change.
class RefreshCalls
{
public:
    explicit RefreshCalls(PlayedMachine& played) : m_played(played), m_audio(played.options())
    {
        static_cast<void>(m_audio.snapshot());
    }

    std::size_t after(const std::function<void(sim::Events&)>& change)
    {
        static_cast<void>(m_played.calls());
        change(m_played.simulation().events());
        static_cast<void>(m_audio.refresh());
        return m_played.calls();
    }

private:
    PlayedMachine& m_played;
    sonavit::System m_audio;
};

bool printRefreshes(PlayedMachine& played)
{
    RefreshCalls calls(played);
    const std::string id = played.activeOutput();
    const std::size_t endpoints = played.simulation().machine().endpoints.size();
    const auto changes = static_cast<std::size_t>(2.1 * static_cast<double>(endpoints) + smallRefresh);
    bool good = print("refresh after nothing", calls.after([](sim::Events&) {}), 0);
    const auto small = [&](const char* work, const std::function<void(sim::Events&)>& change)
    { good = print(work, calls.after(change), smallRefresh) && good; };
    small("refresh after a change of volume", [&](sim::Events& events) { events.setVolume(id, -12.0F); });
    small("refresh after a change of a property",
          [&](sim::Events& events) { events.announceProperty(id, platform::propertykeys::deviceDescription); });
    small("refresh after a change of state: unplugged",
          [&](sim::Events& events) { events.setState(id, DEVICE_STATE_UNPLUGGED); });
    small("refresh after a change of state: active",
          [&](sim::Events& events) { events.setState(id, DEVICE_STATE_ACTIVE); });
    small("refresh after a change of state: not present",
          [&](sim::Events& events) { events.setState(id, DEVICE_STATE_NOTPRESENT); });
    small("refresh after a change of state: active again",
          [&](sim::Events& events) { events.setState(id, DEVICE_STATE_ACTIVE); });
    small("refresh after a change of default",
          [](sim::Events& events) { events.clearDefault(eCapture, eConsole); });
    good = print("refresh after a removal", calls.after([&](sim::Events& events) { events.remove(id); }), changes) && good;
    return print("refresh after an addition", calls.after([&](sim::Events& events) { events.add(id); }), changes) && good;
}

/// Calls of the first snapshot, of all controls and of the graph of a machine.
std::array<std::size_t, 3> callsOn(const std::string& machine)
{
    PlayedMachine played(machine);
    sonavit::System audio(played.options());
    static_cast<void>(audio.snapshot());
    const std::size_t first = played.calls();
    const HardwareCalls hardware = callsOfHardware(played, audio);
    return {first, hardware.controls, hardware.graph};
}
}

bool printCalls()
{
    std::printf("%-58s %7s %7s\n", "Platform calls on the machine \"crowded\"", "calls", "limit");
    bool good = true;
    {
        PlayedMachine played(machineOfTable);
        sonavit::System audio(played.options());
        static_cast<void>(audio.snapshot());
        good = print("first snapshot, registrations included", played.calls(), 4200);
        good = print("controls of each endpoint", callsOfHardware(played, audio).controls, 8000) && good;
    }
    PlayedMachine played(machineOfTable);
    return printRefreshes(played) && good;
}

/// Linear means: from the second size to the third one calls grow as they do from the first to the second, twice.
bool printGrowthOfCalls()
{
    std::printf("\n%-22s %12s %12s %12s\n", "Calls as machines grow", "snapshot", "controls", "graph");
    bool good = true;
    for (const std::string kind : {"endpoints", "adapters", "connectors"})
    {
        std::vector<std::array<std::size_t, 3>> all;
        for (const int size : {50, 100, 200})
        {
            const std::string machine = kind + ":" + std::to_string(size);
            all.push_back(callsOn(machine));
            std::printf("%-22s %12zu %12zu %12zu\n", machine.c_str(), all.back()[0], all.back()[1], all.back()[2]);
            std::fflush(stdout);
        }
        for (std::size_t column = 0; column < 3; ++column)
        {
            const double first = static_cast<double>(all[1][column]) - static_cast<double>(all[0][column]);
            const double second = static_cast<double>(all[2][column]) - static_cast<double>(all[1][column]);
            const bool isLinear = second <= 2.02 * first;
            good = good && isLinear;
            std::printf("%s%s", column == 0 ? "    growth of the growth  " : "", "");
            std::printf(" %12.2f%s", second / first, isLinear ? " " : "!");
        }
        std::printf("\n");
    }
    return good;
}

bool printComparison()
{
    PlayedMachine played(machineOfTable);
    std::vector<std::string> ours;
    std::vector<std::string> theirs;
    const auto take = [&]
    {
        std::vector<std::string> calls = played.simulation().journal().entries().without("CoInitializeEx").calls();
        played.simulation().journal().clear();
        return calls;
    };
    played.simulation().journal().clear();
    std::vector<std::string> found;
    {
        plain::Client client;
        client.read();
        theirs = take();
        sonavit::System audio(played.options());
        const sonavit::Snapshot snapshot = audio.snapshot();
        PlayedMachine::settle();
        ours = take();
        found = differences(client, snapshot);
    }
    for (std::size_t index = 0; index < std::max(ours.size(), theirs.size()); ++index)
    {
        if (index < ours.size() && index < theirs.size() && ours[index] == theirs[index])
            continue;
        found.push_back("call " + std::to_string(index) + ": " + (index < ours.size() ? ours[index] : "-") + ", " +
                        (index < theirs.size() ? theirs[index] : "-"));
        break;
    }
    std::printf("\nA client without the layer reads the same values with the same %zu calls in the same order: %s\n",
                theirs.size(), found.empty() ? "yes" : "NO");
    for (const std::string& each : found)
        std::printf("    %s\n", each.c_str());
    return found.empty();
}
}
