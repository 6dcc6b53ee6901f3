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
constexpr const char* machineOfTable = "crowded";

void print(const char* work, std::size_t calls)
{
    std::printf("%s\t%zu\n", work, calls);
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

std::size_t activeEndpoints(PlayedMachine& played)
{
    const std::vector<sim::Endpoint> all = played.simulation().machine().endpoints;
    return static_cast<std::size_t>(std::count_if(
        all.begin(), all.end(), [](const sim::Endpoint& endpoint) { return endpoint.state == DEVICE_STATE_ACTIVE; }));
}

void printRefreshes(PlayedMachine& played)
{
    sonavit::System audio(played.options());
    static_cast<void>(audio.snapshot());
    RefreshCalls calls(played, audio);
    const std::string id = played.activeOutput();
    const auto after = [&](const char* work, const std::function<void(sim::Events&)>& change)
    { print(work, calls.after(change)); };
    after("refresh after nothing", [](sim::Events&) {});
    after("refresh after a change of volume", [&](sim::Events& events) { events.setVolume(id, -12.0F); });
    after("refresh after a change of a property",
          [&](sim::Events& events) { events.announceProperty(id, platform::propertykeys::deviceDescription); });
    after("refresh after a change of state: unplugged",
          [&](sim::Events& events) { events.setState(id, DEVICE_STATE_UNPLUGGED); });
    after("refresh after a change of state: active",
          [&](sim::Events& events) { events.setState(id, DEVICE_STATE_ACTIVE); });
    after("refresh after a change of state: not present",
          [&](sim::Events& events) { events.setState(id, DEVICE_STATE_NOTPRESENT); });
    after("refresh after a change of state: active again",
          [&](sim::Events& events) { events.setState(id, DEVICE_STATE_ACTIVE); });
    after("refresh after a change of default", [](sim::Events& events) { events.clearDefault(eCapture, eConsole); });
    after("refresh after a removal", [&](sim::Events& events) { events.remove(id); });
    after("refresh after an addition", [&](sim::Events& events) { events.add(id); });
}

/// Calls on a machine: first snapshot, controls, graph, refresh after a change of volume and after an addition, and
/// questions for signal paths; then its endpoints, and how many of them are active.
using Growing = std::array<std::size_t, 8>;

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
    return {first,
            hardware.controls - hardware.signalPaths,
            hardware.graph,
            volume,
            addition,
            hardware.signalPaths,
            played.simulation().machine().endpoints.size(),
            activeEndpoints(played)};
}

/// Prints the calls on machines of three sizes, each twice the one before.
void printGrowth(const std::string& kind, const std::array<int, 3>& sizes)
{
    for (const int size : sizes)
    {
        const std::string machine = kind + ":" + std::to_string(size);
        std::printf("%s", machine.c_str());
        for (const std::size_t count : callsOn(machine))
            std::printf("\t%zu", count);
        std::printf("\n");
    }
}
}

void printCalls()
{
    {
        PlayedMachine played(machineOfTable);
        sonavit::System audio(played.options());
        static_cast<void>(audio.snapshot());
        print("first snapshot, registrations included", played.calls());
        print("controls of each endpoint", callsOfHardware(played, audio).controls);
    }
    PlayedMachine played(machineOfTable);
    printRefreshes(played);
}

void printGrowthOfCalls()
{
    printGrowth("endpoints", {100, 200, 400});
    printGrowth("adapters", {100, 200, 400});
    printGrowth("connectors", {25, 50, 100});
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
    std::printf("%zu\n", theirs.size());
    for (const std::string& each : found)
        std::printf("    %s\n", each.c_str());
    return found.empty();
}
}
