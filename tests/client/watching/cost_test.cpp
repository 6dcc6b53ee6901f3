#include "tests/client/watching/watchtest.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstddef>
#include <string>
#include <thread>

using namespace sonavit;
using namespace testing;
using namespace std::chrono_literals;

namespace
{
/// What reading costs on a computer with 120 endpoints, in calls of the platform. The bounds are a tenth above what
/// was counted, and never above the limits in docs/performance.md.
class SystemRefreshCost : public support::WatchTest
{
protected:
    void SetUp() override
    {
        WatchTest::SetUp();
        watch("crowded");
        callsSince();
    }

    std::string endpoint(State state, Flow flow)
    {
        for (const Endpoint& each : audio().snapshot().endpoints())
        {
            if (each.state() == state && each.flow() == flow)
                return each.id().text();
        }
        ADD_FAILURE() << "the machine has no such endpoint";
        return {};
    }

    std::size_t callsOfRefresh()
    {
        callsSince();
        const Result<Snapshot> snapshot = audio().refresh();
        EXPECT_TRUE(snapshot);
        return callsSince();
    }

    std::size_t endpoints() { return audio().snapshot().endpoints().size(); }
};

TEST_F(SystemRefreshCost, IsNothingIfNothingHasHappened)
{
    EXPECT_EQ(0u, callsOfRefresh());
}

TEST_F(SystemRefreshCost, IsSmallAfterAChangeOfVolume)
{
    simulation().events().setVolume(endpoint(State::active, Flow::output), -12.0F);
    static_cast<void>(audio().refresh());

    const std::size_t calls = callsSince();

    EXPECT_GT(calls, 0u);
    EXPECT_LE(calls, 11u);
}

TEST_F(SystemRefreshCost, IsSmallAfterAChangeOfAProperty)
{
    simulation().events().announceProperty(endpoint(State::active, Flow::output), PKEY_Device_DeviceDesc);

    const std::size_t calls = callsOfRefresh();

    EXPECT_GT(calls, 0u);
    EXPECT_LE(calls, 13u);
}

TEST_F(SystemRefreshCost, IsSmallAfterAChangeOfState)
{
    for (const Flow flow : allFlows)
    {
        const std::string id = endpoint(State::active, flow);
        for (const DWORD state : {DEVICE_STATE_UNPLUGGED, DEVICE_STATE_ACTIVE, DEVICE_STATE_DISABLED,
                                  DEVICE_STATE_ACTIVE, DEVICE_STATE_NOTPRESENT, DEVICE_STATE_ACTIVE})
        {
            simulation().events().setState(id, state);

            const std::size_t calls = callsOfRefresh();

            EXPECT_GT(calls, 0u);
            EXPECT_LE(calls, 59u) << state;
            callsSince();
        }
    }
}

TEST_F(SystemRefreshCost, IsSmallAfterAChangeOfDefaults)
{
    const std::string id = endpoint(State::active, Flow::input);
    simulation().events().clearDefault(eCapture, eConsole);
    static_cast<void>(audio().refresh());
    simulation().events().setDefault(id, eConsole);

    const std::size_t calls = callsOfRefresh();

    EXPECT_GT(calls, 0u);
    EXPECT_LE(calls, 23u);
}

TEST_F(SystemRefreshCost, FollowsTheNumberOfEndpointsAfterAnAdditionOrRemoval)
{
    const std::string id = endpoint(State::active, Flow::output);
    const auto limit = static_cast<std::size_t>(2.1 * static_cast<double>(endpoints()) + 60);

    simulation().events().remove(id);
    const std::size_t removal = callsOfRefresh();
    simulation().events().add(id);
    const std::size_t addition = callsOfRefresh();

    EXPECT_GT(removal, endpoints());
    EXPECT_LE(removal, 297u);
    EXPECT_GT(addition, endpoints());
    EXPECT_LE(addition, limit);
}

TEST_F(SystemRefreshCost, SharesAllOtherCardsAfterAChangeOfVolume)
{
    const std::string id = endpoint(State::active, Flow::output);
    const Snapshot before = audio().snapshot();
    simulation().events().setVolume(id, -12.0F);

    const Result<Snapshot> after = audio().refresh();

    ASSERT_TRUE(after);
    ASSERT_EQ(before.cards().size(), after->cards().size());
    std::size_t shared = 0;
    for (std::size_t index = 0; index < before.cards().size(); ++index)
        shared += &before.cards()[index].content() == &after->cards()[index].content() ? 1 : 0;
    EXPECT_EQ(before.cards().size() - 1, shared);
}

TEST_F(SystemRefreshCost, OfTheFirstSnapshotIsLimited)
{
    endSystem();
    callsSince();

    System fresh(polledOptions());
    static_cast<void>(fresh.snapshot());
    settle();

    EXPECT_LE(callsSince(), 2289u);
}

TEST_F(SystemRefreshCost, OfTheFirstSnapshotIsThatOfOneQuestionEach)
{
    endSystem();
    callsSince();

    System fresh(polledOptions());
    const Snapshot snapshot = fresh.snapshot();
    settle();

    std::size_t present = 0; // those that can have a volume and jacks
    std::size_t volumes = 0;
    for (const Endpoint& endpoint : snapshot.endpoints())
    {
        present += endpoint.state() == State::active || endpoint.state() == State::unplugged ? 1 : 0;
        volumes += endpoint.volume() ? 1 : 0;
    }
    const sim::Journal& journal = simulation().journal();
    EXPECT_EQ(6u, journal.count("IMMDeviceEnumerator::GetDefaultAudioEndpoint"));
    EXPECT_EQ(1u, journal.count("waveOutGetNumDevs"));
    EXPECT_EQ(1u, journal.count("waveInGetNumDevs"));
    EXPECT_EQ(snapshot.endpoints().size(), journal.count("IMMDevice::OpenPropertyStore"));
    EXPECT_EQ(2 * present, journal.count("IMMDevice::Activate"));
    EXPECT_EQ(volumes, journal.count("IAudioEndpointVolume::RegisterControlChangeNotify"));
    EXPECT_LT(present, snapshot.endpoints().size());
}

TEST_F(SystemRefreshCost, OfTheControlsOfAllEndpointsIsLimited)
{
    std::size_t controls = 0;

    for (const Endpoint& endpoint : audio().snapshot().endpoints())
        controls += audio().controls(endpoint.id())->size();

    EXPECT_GT(controls, 0u);
    EXPECT_LE(callsSince(), 7195u);
}

TEST_F(SystemRefreshCost, OfANotificationIsNoCallOnItsThread)
{
    const std::string id = endpoint(State::active, Flow::output);
    const auto thread = std::this_thread::get_id();

    simulation().events().setVolume(id, -12.0F);
    simulation().events().announceProperty(id, PKEY_Device_DeviceDesc);
    simulation().events().setState(id, DEVICE_STATE_UNPLUGGED);

    const sim::JournalEntries calls = simulation().journal().entries().onThread(thread);
    EXPECT_FALSE(calls.empty());
    EXPECT_EQ(sim::JournalEntries().operations(),
              calls.without("IMMNotificationClient::*").without("IAudioEndpointVolumeCallback::*").operations());
}
}
