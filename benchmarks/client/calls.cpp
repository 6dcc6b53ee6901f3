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

/// Calls of questions about the hardware of all endpoints.
struct HardwareCalls
{
    std::size_t controls = 0;
    std::size_t graph = 0; ///< without questions for signal paths
    std::size_t signalPaths = 0;
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
    calls.signalPaths = played.simulation().journal().count("IDeviceTopology::GetSignalPath");
    calls.graph = played.calls() - calls.signalPaths;
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
    small("refresh after a change of default", [](sim::Events& events) { events.clearDefault(eCapture, eConsole); });
    good =
        print("refresh after a removal", calls.after([&](sim::Events& events) { events.remove(id); }), changes) && good;
    return print("refresh after an addition", calls.after([&](sim::Events& events) { events.add(id); }), changes) &&
           good;
}

/// Calls of the first snapshot, of all controls, of the graph, and of the signal paths in it.
using Growing = std::array<std::size_t, 4>;

Growing callsOn(const std::string& machine)
{
    PlayedMachine played(machine);
    sonavit::System audio(played.options());
    static_cast<void>(audio.snapshot());
    const std::size_t first = played.calls();
    const HardwareCalls hardware = callsOfHardware(played, audio);
    return {first, hardware.controls - hardware.signalPaths, hardware.graph, hardware.signalPaths};
}

/// How much faster calls grow from the second size to the third than from the first to the second; the sizes double,
/// so that 2 means linear.
double growthOf(const std::array<Growing, 3>& calls, std::size_t column)
{
    const auto step = [&](std::size_t size)
    { return static_cast<double>(calls[size + 1][column]) - static_cast<double>(calls[size][column]); };
    return step(0) == 0 ? 2 : step(1) / step(0);
}

/// Prints the calls on machines of three sizes. @return whether all but signal paths grow linearly
bool printGrowth(const std::string& kind, const std::array<int, 3>& sizes)
{
    std::array<Growing, 3> calls = {};
    for (std::size_t size = 0; size < sizes.size(); ++size)
    {
        const std::string machine = kind + ":" + std::to_string(sizes[size]);
        calls[size] = callsOn(machine);
        std::printf("%-22s %12zu %12zu %12zu %12zu\n", machine.c_str(), calls[size][0], calls[size][1], calls[size][2],
                    calls[size][3]);
    }
    std::printf("%-22s", "    growth of growth");
    bool good = true;
    for (std::size_t column = 0; column < calls[0].size(); ++column)
    {
        std::printf(" %12.2f", growthOf(calls, column));
        good = good && (column == 3 || growthOf(calls, column) <= 2.01);
    }
    std::printf("\n");
    return good;
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

bool printGrowthOfCalls()
{
    std::printf("\n%-22s %12s %12s %12s %12s\n", "Calls as machines grow", "snapshot", "controls", "graph",
                "signal paths");
    const bool good = printGrowth("endpoints", {100, 200, 400}) && printGrowth("adapters", {100, 200, 400});
    return printGrowth("connectors", {25, 50, 100}) && good;
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
