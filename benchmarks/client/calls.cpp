#include "calls.h"

#include "comparison.h"
#include "platform/propertykeys.h"
#include "playedmachine.h"

#include <algorithm>
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
    RefreshCalls(PlayedMachine& played, sonavit::System& audio) : m_played(played), m_audio(audio) {}

    std::size_t after(const std::function<void(sim::Events&)>& change)
    {
        static_cast<void>(m_played.calls());
        change(m_played.simulation().events());
        static_cast<void>(m_audio.refresh());
        return m_played.calls();
    }

private:
    PlayedMachine& m_played;
    sonavit::System& m_audio;
};

/// Of the calls of a refresh after an addition or a removal.
std::size_t limitOfAddition(PlayedMachine& played)
{
    const std::size_t endpoints = played.simulation().machine().endpoints.size();
    return static_cast<std::size_t>(2.1 * static_cast<double>(endpoints) + smallRefresh);
}

/// The number of each is asked for with two calls, as numbers shift.
std::size_t activeEndpoints(PlayedMachine& played)
{
    const std::vector<sim::Endpoint> all = played.simulation().machine().endpoints;
    return static_cast<std::size_t>(std::count_if(
        all.begin(), all.end(), [](const sim::Endpoint& endpoint) { return endpoint.state == DEVICE_STATE_ACTIVE; }));
}

bool printRefreshes(PlayedMachine& played)
{
    sonavit::System audio(played.options());
    static_cast<void>(audio.snapshot());
    RefreshCalls calls(played, audio);
    const std::string id = played.activeOutput();
    const std::size_t changes = limitOfAddition(played);
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

/// Calls on a machine, by column.
struct Growing
{
    std::array<std::size_t, 6> calls = {};
    bool isWithinLimits = false;
};

constexpr std::array<const char*, 6> columns = {"snapshot", "controls", "graph", "volume", "addition", "paths"};
constexpr std::size_t signalPaths = 5; ///< the column that need not be linear

Growing callsOn(const std::string& machine)
{
    PlayedMachine played(machine);
    sonavit::System audio(played.options());
    static_cast<void>(audio.snapshot());
    const std::size_t first = played.calls();
    const HardwareCalls hardware = callsOfHardware(played, audio);
    RefreshCalls refreshes(played, audio);
    const std::string id = played.activeOutput();
    const std::size_t volume = refreshes.after([&](sim::Events& events) { events.setVolume(id, -12.0F); });
    static_cast<void>(refreshes.after([&](sim::Events& events) { events.remove(id); }));
    const std::size_t addition = refreshes.after([&](sim::Events& events) { events.add(id); });
    return {{first, hardware.controls - hardware.signalPaths, hardware.graph, volume, addition, hardware.signalPaths},
            volume <= smallRefresh && addition <= limitOfAddition(played) + 2 * activeEndpoints(played)};
}

/// How much faster calls grow from the second size to the third than from the first to the second; the sizes double,
/// so that 2 means linear. 0 if they do not grow.
double growthOf(const std::array<Growing, 3>& sizes, std::size_t column)
{
    const auto step = [&](std::size_t size)
    { return static_cast<double>(sizes[size + 1].calls[column]) - static_cast<double>(sizes[size].calls[column]); };
    return step(1) == 0 ? 0 : step(1) / step(0);
}

/// Prints the calls on machines of three sizes. @return whether all but signal paths grow linearly within their limits
bool printGrowth(const std::string& kind, const std::array<int, 3>& sizes)
{
    std::array<Growing, 3> growing = {};
    bool good = true;
    for (std::size_t size = 0; size < sizes.size(); ++size)
    {
        const std::string machine = kind + ":" + std::to_string(sizes[size]);
        growing[size] = callsOn(machine);
        std::printf("%-20s", machine.c_str());
        for (const std::size_t calls : growing[size].calls)
            std::printf(" %9zu", calls);
        std::printf("%s\n", growing[size].isWithinLimits ? "" : "  MORE");
        good = good && growing[size].isWithinLimits;
    }
    std::printf("%-20s", "    growth of growth");
    bool isLinear = true;
    for (std::size_t column = 0; column < columns.size(); ++column)
    {
        const double growth = growthOf(growing, column);
        std::printf(" %9.2f", growth);
        isLinear = isLinear && (column == signalPaths || growth <= 2.01);
    }
    std::printf("%s\n", isLinear ? "" : "  MORE");
    return good && isLinear;
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
    std::printf("\n%-20s", "Calls grow");
    for (const char* const column : columns)
        std::printf(" %9s", column);
    std::printf("\n");
    bool good = printGrowth("endpoints", {100, 200, 400});
    good = printGrowth("adapters", {100, 200, 400}) && good;
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
