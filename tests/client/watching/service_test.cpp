#include "tests/client/watching/watchtest.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <vector>

using namespace sonavit;
using namespace testing;
using namespace std::chrono_literals;

namespace
{
constexpr HRESULT noServer = static_cast<HRESULT>(0x800706BAU);

class SystemService : public support::WatchTest
{
protected:
    /// The platform answers as it does after the service has stopped.
    void stopService()
    {
        for (const char* const operation :
             {"CoCreateInstance", "IMMDeviceEnumerator::EnumAudioEndpoints",
              "IMMDeviceEnumerator::GetDefaultAudioEndpoint", "IMMDeviceEnumerator::GetDevice"})
            simulation().faults().fail(operation, noServer);
        simulation().events().announceDefault(eRender, eConsole, std::nullopt);
        advance(50ms);
    }

    void startService() { simulation().faults().clear(); }
};

std::size_t countOf(const std::vector<Event>& events, Event::Kind kind)
{
    return static_cast<std::size_t>(
        std::count_if(events.begin(), events.end(), [&](const Event& event) { return event.kind == kind; }));
}

TEST_F(SystemService, TellsWithOneChangeThatItHasStopped)
{
    watch("desktop");
    support::Receiver received(audio());
    const std::size_t endpoints = audio().snapshot().endpoints().size();

    stopService();

    EXPECT_EQ(Service::stopped, audio().snapshot().service());
    EXPECT_THAT(audio().snapshot().cards(), IsEmpty());
    ASSERT_EQ(1u, audio().snapshot().problems().size());
    EXPECT_EQ(noServer, audio().snapshot().problems()[0].code());
    const std::vector<Event> events = received.events();
    EXPECT_EQ(1u, countOf(events, Event::Kind::serviceChanged));
    EXPECT_EQ(endpoints, countOf(events, Event::Kind::endpointRemoved));
    for (const Event& event : events)
        EXPECT_TRUE(event.isByService) << event;
}

TEST_F(SystemService, IsLookedForEverySecond)
{
    watch("desktop");
    stopService();

    for (int second = 0; second < 5; ++second)
    {
        simulation().journal().clear();
        advance(999ms);
        EXPECT_EQ(0u, simulation().journal().count("CoCreateInstance"));
        advance(1ms);
        EXPECT_EQ(1u, simulation().journal().count("CoCreateInstance"));
    }
}

TEST_F(SystemService, IsLookedForIfARefreshFindsThatItHasStopped)
{
    watch("desktop");
    simulation().faults().fail("IMMDeviceEnumerator::EnumAudioEndpoints", noServer);
    ASSERT_TRUE(audio().refresh(Depth::everything));
    ASSERT_EQ(Service::stopped, audio().snapshot().service());
    startService();

    advance(1s);

    EXPECT_EQ(Service::running, audio().snapshot().service());
}

TEST_F(SystemService, IsLookedForEvery5SecondsAfterAMinute)
{
    watch("desktop");
    stopService();
    for (int second = 0; second < 61; ++second)
        advance(1s);
    simulation().journal().clear();

    for (int second = 0; second < 20; ++second)
        advance(1s);

    EXPECT_EQ(4u, simulation().journal().count("CoCreateInstance"));
}

TEST_F(SystemService, IsWatchedAgainWhenItReturns)
{
    watch("desktop");
    const Snapshot before = audio().snapshot();
    support::Receiver received(audio());
    stopService();
    static_cast<void>(received.take());

    startService();
    advance(1s);

    const Snapshot after = audio().snapshot();
    EXPECT_EQ(Service::running, after.service());
    EXPECT_EQ(before.endpoints().size(), after.endpoints().size());
    const std::vector<Event> events = received.events();
    EXPECT_EQ(1u, countOf(events, Event::Kind::serviceChanged));
    for (const Event& event : events)
        EXPECT_TRUE(event.isByService) << event;
    const std::string id = audio().defaultEndpoint(Flow::output)->id().text();
    simulation().events().setVolume(id, -7.0F);
    advance(20ms);
    EXPECT_EQ(-7.0, audio().endpoint(EndpointId(id))->volume()->master.decibels->value());
    EXPECT_EQ(1, simulation().census().clients.at("IMMNotificationClient"));
}

TEST_F(SystemService, ThatDoesNotRunIsFoundWhenItStarts)
{
    play("desktop").deliverAtOnce(true);
    simulation().faults().fail("CoCreateInstance", noServer);
    System late(polledOptions());
    EXPECT_EQ(Service::stopped, late.snapshot().service());

    startService();
    advance(1s);

    EXPECT_EQ(Service::running, late.snapshot().service());
    EXPECT_THAT(late.snapshot().cards(), Not(IsEmpty()));
}

TEST_F(SystemService, IsLookedForAtOnceByARefreshOfEverything)
{
    watch("desktop");
    stopService();
    startService();

    const Result<Snapshot> refreshed = audio().refresh(Depth::everything);

    ASSERT_TRUE(refreshed);
    EXPECT_EQ(Service::running, refreshed->service());
    EXPECT_THAT(refreshed->cards(), Not(IsEmpty()));
}

TEST_F(SystemService, ThatFailsInAnEndpointIsNoticed)
{
    watch("desktop");
    const std::string id = audio().defaultEndpoint(Flow::output)->id().text();
    simulation().faults().fail("CoCreateInstance", noServer);
    simulation().faults().fail("IMMDeviceEnumerator::EnumAudioEndpoints", noServer);
    simulation().faults().fail("IMMDevice::GetState", noServer);

    simulation().events().announceState(id, DEVICE_STATE_ACTIVE);
    advance(50ms);

    EXPECT_EQ(Service::stopped, audio().snapshot().service());
}
}
