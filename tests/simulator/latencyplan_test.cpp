#include "tests/simulator/bench.h"

#include <chrono>

namespace
{
using bench::Held;
using std::chrono::microseconds;
using std::chrono::milliseconds;

class LatencyPlanOfSimulation : public bench::SimulationTest
{
protected:
    template<class Action>
    static microseconds timeOf(const Action& action)
    {
        const auto start = std::chrono::steady_clock::now();
        action();
        return std::chrono::duration_cast<microseconds>(std::chrono::steady_clock::now() - start);
    }

    void getState()
    {
        DWORD state = 0;
        EXPECT_EQ(S_OK, speaker->GetState(&state));
    }

    Held<IMMDevice> speaker = device(speakerId);
};

using LatencyPlanSpend = LatencyPlanOfSimulation;
using LatencyPlanRules = LatencyPlanOfSimulation;

TEST_F(LatencyPlanSpend, TakesAtLeastWhatTheCallCosts)
{
    simulation.latency().set("IMMDevice::GetState", milliseconds(20));

    EXPECT_GE(timeOf([&] { getState(); }), milliseconds(20));
}

TEST_F(LatencyPlanSpend, TakesShortTimesToo)
{
    simulation.latency().set("IMMDevice::GetState", microseconds(50));

    const microseconds time = timeOf(
        [&]
        {
            for (int call = 0; call < 20; ++call)
                getState();
        });

    EXPECT_GE(time, microseconds(20 * 50));
}

TEST_F(LatencyPlanSpend, DelaysFailingCallsAndFunctionsAsWell)
{
    simulation.latency().set("*", milliseconds(10));
    simulation.faults().fail("IMMDevice::GetState");
    DWORD state = 0;

    EXPECT_GE(timeOf([&] { speaker->GetState(&state); }), milliseconds(10));
    EXPECT_GE(timeOf([&] { createdEnumerator(); }), milliseconds(10));
}

TEST_F(LatencyPlanRules, PreferTheOperationsOwnCost)
{
    simulation.latency().set("*", microseconds(30));
    simulation.latency().set("IMMDevice::GetState", microseconds(7));

    EXPECT_EQ(microseconds(7), simulation.latency().cost("IMMDevice::GetState"));
    EXPECT_EQ(microseconds(30), simulation.latency().cost("IMMDevice::GetId"));
    simulation.latency().clear();
    EXPECT_EQ(microseconds(0), simulation.latency().cost("IMMDevice::GetId"));
}

TEST_F(LatencyPlanRules, StartWithThoseOfTheMachine)
{
    sim::Machine machine;
    machine.latency = {{"IMMDevice::Activate", 120}, {"*", 5}};
    sim::Simulation other(machine);

    EXPECT_EQ(microseconds(120), other.latency().cost("IMMDevice::Activate"));
    EXPECT_EQ(microseconds(5), other.latency().cost("CoCreateInstance"));
}

TEST_F(LatencyPlanSpend, DelaysOnlyCallsWithTheFirstArgumentOfTheRule)
{
    simulation.latency().set("IMMDevice::Activate", "IAudioClient", milliseconds(20));
    const Held<IMMDevice> earphone = device(earphoneId);
    Held<IUnknown> topology;
    Held<IUnknown> client;
    const auto activate = [&](REFIID iid, Held<IUnknown>& object)
    { EXPECT_EQ(S_OK, earphone->Activate(iid, CLSCTX_INPROC_SERVER, nullptr, object.putVoid())); };

    activate(sim::InterfaceTraits<IDeviceTopology>::iid(), topology);
    EXPECT_EQ(microseconds(0), simulation.latency().cost("IMMDevice::Activate", "IDeviceTopology"));
    EXPECT_GE(timeOf([&] { activate(sim::InterfaceTraits<IAudioClient>::iid(), client); }), milliseconds(20));
}

TEST(LatencyPlanPreset, IsNoneUnlessAskedFor)
{
    const sim::LatencyPlan plan;

    EXPECT_EQ(microseconds(0), plan.cost("IMMDevice::Activate", "IAudioClient"));
}

// NAudio issue 1127: 5 ms to more than 4,000 ms for an IAudioClient; cpal issue 867: about 100 ms for each device.
TEST(LatencyPlanPreset, OfWindowsMakesAnAudioClientSlowAndNoOtherInterface)
{
    sim::LatencyPlan plan;
    plan.usePreset(sim::LatencyPreset::windows);

    for (const char* const client : {"IAudioClient", "IAudioClient2", "IAudioClient3"})
        EXPECT_EQ(milliseconds(100), plan.cost("IMMDevice::Activate", client)) << client;
    EXPECT_EQ(microseconds(0), plan.cost("IMMDevice::Activate", "IDeviceTopology"));
}

// NAudio issue 1205 and its change 1208: 130 ms to 250 ms for a name that is looked for among all properties, twice,
// and 0.2 ms for one that is read by its key.
TEST(LatencyPlanPreset, OfWindowsMakesANameSlowThatIsLookedForAmongAllProperties)
{
    sim::LatencyPlan plan;
    plan.usePreset(sim::LatencyPreset::windows);
    constexpr int properties = 60;

    const microseconds step = plan.cost("IPropertyStore::GetCount") + plan.cost("IPropertyStore::GetAt", "0");
    const microseconds byKey = plan.cost("IPropertyStore::GetValue", "fullName");

    EXPECT_GE(2 * properties * step + byKey, milliseconds(130));
    EXPECT_LE(2 * properties * step + byKey, milliseconds(250));
    EXPECT_EQ(microseconds(200), byKey);
}

TEST(LatencyPlanPreset, GivesWayToRulesButNotToTheOneForAllCalls)
{
    sim::LatencyPlan plan;
    plan.set("*", microseconds(1));
    plan.set("IPropertyStore::GetValue", microseconds(2));
    plan.usePreset(sim::LatencyPreset::windows);

    EXPECT_EQ(microseconds(2), plan.cost("IPropertyStore::GetValue", "fullName"));
    EXPECT_EQ(milliseconds(1), plan.cost("IPropertyStore::GetCount"));
    EXPECT_EQ(microseconds(1), plan.cost("IMMDevice::GetState"));
    plan.set("IMMDevice::Activate", microseconds(3));
    EXPECT_EQ(microseconds(3), plan.cost("IMMDevice::Activate", "IAudioClient"));
    plan.usePreset(sim::LatencyPreset::none);
    EXPECT_EQ(microseconds(1), plan.cost("IPropertyStore::GetCount"));
    plan.clear();
    EXPECT_EQ(microseconds(0), plan.cost("IPropertyStore::GetCount"));
}

TEST(LatencyPlanPreset, IsRemovedWithTheRules)
{
    sim::LatencyPlan plan;
    plan.usePreset(sim::LatencyPreset::windows);

    plan.clear();

    EXPECT_EQ(microseconds(0), plan.cost("IPropertyStore::GetCount"));
    EXPECT_EQ(microseconds(0), plan.cost("IMMDevice::Activate", "IAudioClient"));
}

TEST(LatencyPlanPreset, IsPartOfAMachine)
{
    sim::Machine machine;
    machine.latencyPreset = sim::LatencyPreset::windows;
    machine.latency = {{"IMMDevice::Activate", 4000000, "IAudioClient"}};
    sim::Simulation simulation(machine);

    EXPECT_EQ(std::chrono::seconds(4), simulation.latency().cost("IMMDevice::Activate", "IAudioClient"));
    EXPECT_EQ(microseconds(200), simulation.latency().cost("IPropertyStore::GetValue"));
}
}
