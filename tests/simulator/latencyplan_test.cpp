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
}
