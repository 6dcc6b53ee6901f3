#include "tests/simulator/bench.h"

#include <chrono>
#include <stdexcept>

// Faults that hold for a time. SDL's source retries GetDevice for 8 s, because drivers of built-in codecs answer
// E_NOTFOUND for as long as that after a device was connected or the computer has woken up.
namespace
{
using bench::Held;
using std::chrono::milliseconds;
using std::chrono::seconds;

class FaultPlanTime : public bench::SimulationTest
{
protected:
    FaultPlanTime()
    {
        simulation.faults().useClock([this] { return now; });
    }

    HRESULT find(const std::string& id)
    {
        const Held<IMMDeviceEnumerator> enumerator(simulation.enumerator());
        Held<IMMDevice> found;
        return enumerator->GetDevice(bench::Wide(id), found.put());
    }

    sim::FaultPlan::Clock::time_point now{};
};

TEST_F(FaultPlanTime, EndsAFaultThatHoldsForATime)
{
    const sim::PlannedFault fault =
        simulation.faults().fail("IMMDeviceEnumerator::GetDevice", E_NOTFOUND).during(seconds(8));

    EXPECT_EQ(E_NOTFOUND, find(speakerId));
    now += milliseconds(7999);
    EXPECT_EQ(E_NOTFOUND, find(speakerId));
    now += milliseconds(1);
    EXPECT_EQ(S_OK, find(speakerId));

    EXPECT_EQ(2u, fault.fired());
    EXPECT_EQ(2u, fault.met());
}

TEST_F(FaultPlanTime, BeginsWhenTheTimeIsAskedForNotWhenTheFaultIsPlanned)
{
    sim::PlannedFault fault = simulation.faults().fail("IMMDeviceEnumerator::GetDevice", E_NOTFOUND);
    now += seconds(60);

    fault.during(seconds(8));
    now += seconds(7);

    EXPECT_EQ(E_NOTFOUND, find(speakerId));
}

TEST_F(FaultPlanTime, BeginsWithAnEventAndAgainWithTheNext)
{
    simulation.faults()
        .fail("IMMDeviceEnumerator::GetDevice", E_NOTFOUND)
        .after(sim::ScriptEvent::Kind::plugged)
        .during(seconds(8));
    EXPECT_EQ(S_OK, find(speakerId));

    simulation.events().plug(earphoneId);
    EXPECT_EQ(E_NOTFOUND, find(speakerId));
    now += seconds(8);
    EXPECT_EQ(S_OK, find(speakerId));
    simulation.events().unplug(earphoneId);
    EXPECT_EQ(S_OK, find(speakerId));
    simulation.events().plug(earphoneId);
    EXPECT_EQ(E_NOTFOUND, find(speakerId));
}

TEST_F(FaultPlanTime, LastsToTheEndAfterAnEventWithoutATime)
{
    simulation.faults().fail("IMMDeviceEnumerator::GetDevice", E_NOTFOUND).after(sim::ScriptEvent::Kind::removed);
    EXPECT_EQ(S_OK, find(speakerId));

    simulation.events().remove(earphoneId);
    now += std::chrono::hours(24 * 365);

    EXPECT_EQ(E_NOTFOUND, find(speakerId));
}

TEST_F(FaultPlanTime, HasBegunWhenTheClientsHearOfTheEvent)
{
    simulation.deliverAtOnce(true);
    simulation.faults().fail("IMMDeviceEnumerator::GetDevice", E_NOTFOUND).after(sim::ScriptEvent::Kind::unplugged);
    struct Asking : bench::ClientListener
    {
        HRESULT STDMETHODCALLTYPE OnDeviceStateChanged(LPCWSTR id, DWORD) override
        {
            Held<IMMDevice> found;
            result = owner->GetDevice(id, found.put());
            return S_OK;
        }
        IMMDeviceEnumerator* owner = nullptr;
        HRESULT result = S_OK;
    } asking;
    const Held<IMMDeviceEnumerator> enumerator(simulation.enumerator());
    asking.owner = enumerator.get();
    ASSERT_EQ(S_OK, enumerator->RegisterEndpointNotificationCallback(&asking));

    simulation.events().unplug(earphoneId);

    EXPECT_EQ(E_NOTFOUND, asking.result);
    EXPECT_EQ(S_OK, enumerator->UnregisterEndpointNotificationCallback(&asking));
}

TEST_F(FaultPlanTime, DoesNotBeginWithAnEventThatIsRefused)
{
    simulation.faults().fail("IMMDeviceEnumerator::GetDevice", E_NOTFOUND).after(sim::ScriptEvent::Kind::plugged);

    EXPECT_THROW(simulation.events().plug("{unknown}"), std::invalid_argument);

    EXPECT_EQ(S_OK, find(speakerId));
}

TEST_F(FaultPlanTime, CountsOnlyTheCallsWithinIt)
{
    simulation.faults().fail("IMMDeviceEnumerator::GetDevice", E_NOTFOUND).after(sim::ScriptEvent::Kind::plugged).at(2);
    find(speakerId);
    find(speakerId);

    simulation.events().plug(earphoneId);

    EXPECT_EQ(S_OK, find(speakerId));
    EXPECT_EQ(E_NOTFOUND, find(speakerId));
}

TEST_F(FaultPlanTime, BeginsAnewWithAnotherClock)
{
    simulation.faults().fail("IMMDeviceEnumerator::GetDevice", E_NOTFOUND).during(seconds(8));
    now += seconds(100);

    simulation.faults().useClock([this] { return now; });

    EXPECT_EQ(E_NOTFOUND, find(speakerId));
}

TEST_F(FaultPlanTime, IsPartOfAMachinesRules)
{
    sim::Machine machine = simulation.machine();
    sim::FaultRule rule;
    rule.operation = "IMMDeviceEnumerator::GetDevice";
    rule.result = E_NOTFOUND;
    rule.forMilliseconds = 500;
    machine.faults = {rule};
    sim::Simulation other(machine);
    other.faults().useClock([this] { return now; });
    const Held<IMMDeviceEnumerator> enumerator(other.enumerator());
    Held<IMMDevice> early;
    EXPECT_EQ(E_NOTFOUND, enumerator->GetDevice(bench::Wide(speakerId), early.put()));

    now += milliseconds(500);

    Held<IMMDevice> late;
    EXPECT_EQ(S_OK, enumerator->GetDevice(bench::Wide(speakerId), late.put()));
}

TEST_F(FaultPlanTime, StandsInTheReportOfRulesThatNeverFired)
{
    simulation.faults().fail("IMMDevice::GetId").after(sim::ScriptEvent::Kind::plugged).during(milliseconds(20));

    EXPECT_THAT(simulation.faults().unmet(),
                testing::ElementsAre("IMMDevice::GetId on *, after plugged, for 20 ms: met 0 times"));
}

TEST_F(FaultPlanTime, IsAtLeastAMillisecond)
{
    sim::PlannedFault fault = simulation.faults().fail("IMMDevice::GetId");

    EXPECT_THROW(fault.during(milliseconds(0)), std::invalid_argument);
    EXPECT_THROW(fault.during(milliseconds(-1)), std::invalid_argument);
    EXPECT_THROW(fault.during(milliseconds(4294967296)), std::invalid_argument);
    EXPECT_EQ(0u, fault.rule().forMilliseconds);
}

TEST(FaultPlanClock, IsTheSteadyClockUnlessReplaced)
{
    sim::FaultPlan plan;
    plan.fail("IMMDevice::GetId").during(std::chrono::hours(24));

    EXPECT_TRUE(plan.judge("IMMDevice::GetId", "", {}).outcome.has_value());
}
}
