#include "simulator/machine/builder/machinebuilder.h"
#include "tests/client/watching/watchtest.h"
#include "tests/foundation/supportallocations.h"

#include <gtest/gtest.h>

#include <array>
#include <cstddef>
#include <functional>
#include <string>
#include <vector>

using namespace sonavit;

namespace
{
/// Active outputs with a volume and a mute in the hardware.
sim::Machine machineOf(std::size_t adapters, std::size_t onEachAdapter)
{
    sim::MachineBuilder builder;
    for (std::size_t adapter = 0; adapter < adapters; ++adapter)
    {
        sim::CardBuilder card = builder.card("Card " + std::to_string(adapter));
        for (std::size_t endpoint = 0; endpoint < onEachAdapter; ++endpoint)
            card.speaker("Speakers " + std::to_string(endpoint)).hardwareVolume({}).hardwareMute();
    }
    return builder.build();
}

sim::Machine machineOfAdapters(std::size_t count)
{
    return machineOf(count, 1);
}

sim::Machine machineOfEndpoints(std::size_t count)
{
    return machineOf(count / 5, 5);
}

sim::Machine machineOfConnectors(std::size_t count)
{
    return machineOf(1, count);
}

/// How the calls of the platform grow with the machine. They are counted at three sizes.
class SystemCostGrowth : public support::WatchTest
{
protected:
    /// Calls of the first snapshot, and of what follows it.
    struct Calls
    {
        std::size_t snapshot = 0;
        std::size_t volume = 0;
        std::size_t removal = 0;
        std::size_t addition = 0;
        std::size_t controls = 0; ///< without questions for signal paths
    };

    /// At 10, 20 and 30 of what the machine is made of.
    std::array<Calls, 3> callsOf(const std::function<sim::Machine(std::size_t)>& machine)
    {
        watch(machine(5));
        return {callsOn(machine(10)), callsOn(machine(20)), callsOn(machine(30))};
    }

    static void expectLinear(const std::array<Calls, 3>& calls)
    {
        const auto growsByTheSame = [&](std::size_t Calls::*member)
        {
            EXPECT_GT(calls[0].*member, 0u);
            EXPECT_EQ(calls[1].*member - calls[0].*member, calls[2].*member - calls[1].*member);
        };
        growsByTheSame(&Calls::snapshot);
        growsByTheSame(&Calls::removal);
        growsByTheSame(&Calls::addition);
        growsByTheSame(&Calls::controls);
        EXPECT_EQ(calls[0].volume, calls[2].volume);
    }

private:
    Calls callsOn(const sim::Machine& machine)
    {
        endSystem();
        simulation().change([&](sim::Machine& played) { played = machine; });
        callsSince();
        System fresh(polledOptions());
        Calls calls;
        calls.snapshot = callsOf([&] { static_cast<void>(fresh.snapshot()); });
        const std::string id = fresh.snapshot().endpoints().front().id().text();
        calls.volume = callsOf([&] { refresh(fresh, [&] { simulation().events().setVolume(id, -12.0F); }); });
        calls.removal = callsOf([&] { refresh(fresh, [&] { simulation().events().remove(id); }); });
        calls.addition = callsOf([&] { refresh(fresh, [&] { simulation().events().add(id); }); });
        for (const Endpoint& endpoint : fresh.snapshot().endpoints())
            EXPECT_TRUE(fresh.controls(endpoint.id()));
        const std::size_t paths = simulation().journal().count("IDeviceTopology::GetSignalPath");
        calls.controls = callsOf([] {}) - paths;
        return calls;
    }

    static void refresh(System& audio, const std::function<void()>& change)
    {
        change();
        EXPECT_TRUE(audio.refresh());
    }

    std::size_t callsOf(const std::function<void()>& work)
    {
        work();
        settle();
        return callsSince();
    }
};

TEST_F(SystemCostGrowth, IsTheSameForEachEndpoint)
{
    expectLinear(callsOf(machineOfEndpoints));
}

TEST_F(SystemCostGrowth, IsTheSameForEachAdapter)
{
    expectLinear(callsOf(machineOfAdapters));
}

TEST_F(SystemCostGrowth, IsTheSameForEachConnectorOfAnAdapter)
{
    expectLinear(callsOf(machineOfConnectors));
}

/// Each has the change put together and delivered on the thread that polls.
TEST_F(SystemCostGrowth, IsTheSameForEachSubscriberAndTakesNoCallOfThePlatform)
{
    watch(machineOfEndpoints(10));
    const std::string id = audio().snapshot().endpoints().front().id().text();
    std::vector<Subscription> subscriptions;
    std::size_t heard = 0;
    const auto refresh = [&](std::size_t subscribers, float level)
    {
        while (subscriptions.size() < subscribers)
            subscriptions.push_back(audio().subscribe([&](const Change&) { ++heard; }));
        heard = 0;
        callsSince();
        simulation().events().setVolume(id, level);
        EXPECT_TRUE(audio().refresh());
        const support::AllocationProbe probe;
        audio().poll();
        EXPECT_EQ(subscribers, heard);
        return probe.count();
    };
    refresh(10, -10.0F);
    const std::size_t calls = callsSince();

    const unsigned ofTen = refresh(10, -11.0F);
    const unsigned ofTwenty = refresh(20, -12.0F);
    const unsigned ofThirty = refresh(30, -13.0F);

    EXPECT_EQ(calls, callsSince());
    EXPECT_EQ(ofTwenty - ofTen, ofThirty - ofTwenty);
}
}
