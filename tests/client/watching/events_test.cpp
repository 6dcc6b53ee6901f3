#include "tests/client/watching/watchtest.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

using namespace sonavit;
using namespace testing;
using namespace std::chrono_literals;

namespace
{
class SystemSubscribe : public support::WatchTest
{
protected:
    /// The first endpoint with that state, of that flow.
    std::string endpoint(State state = State::active, Flow flow = Flow::output)
    {
        for (const Endpoint& each : audio().snapshot().endpoints())
        {
            if (each.state() == state && each.flow() == flow && (each.volume() || state != State::active))
                return each.id().text();
        }
        ADD_FAILURE() << "the machine has no such endpoint";
        return {};
    }

    double decibels(const std::string& id)
    {
        return audio().snapshot().endpoint(EndpointId(id))->volume()->master.decibels->value();
    }
};

std::vector<std::string> keysOf(const std::vector<Event>& events)
{
    std::vector<std::string> keys;
    for (const Event& event : events)
        keys.push_back(std::string(keyOf(event.kind)) + (event.field ? std::string(" ") + keyOf(*event.field) : ""));
    return keys;
}

TEST_F(SystemSubscribe, TellsTheFirstStepOfAVolumeAtOnce)
{
    watch("desktop");
    support::Receiver received(audio());
    const std::string id = endpoint();

    simulation().events().setVolume(id, -12.0F);
    settle();

    const std::vector<Change> changes = received.take();
    ASSERT_EQ(1u, changes.size());
    EXPECT_THAT(keysOf(changes[0].events()), ElementsAre("endpointChanged volume"));
    EXPECT_EQ(-12.0, decibels(id));
    EXPECT_EQ(Origin::other, changes[0].events()[0].origin);
}

TEST_F(SystemSubscribe, TellsFurtherStepsOfAVolumeEvery20MillisecondsAndTheLastOneAlways)
{
    watch("desktop");
    support::Receiver received(audio());
    const std::string id = endpoint();
    simulation().events().setVolume(id, -10.0F);
    settle();

    simulation().events().setVolume(id, -11.0F);
    advance(19ms);
    EXPECT_EQ(-10.0, decibels(id));
    simulation().events().setVolume(id, -12.0F);
    settle();
    EXPECT_EQ(-10.0, decibels(id));
    advance(1ms);
    EXPECT_EQ(-12.0, decibels(id));
    simulation().events().setVolume(id, -13.0F);
    advance(20ms);

    EXPECT_EQ(-13.0, decibels(id));
    EXPECT_EQ(4u, audio().snapshot().generation());
    const std::vector<Change> changes = received.take();
    ASSERT_EQ(1u, changes.size());
    EXPECT_EQ(1u, changes[0].before().generation());
    EXPECT_EQ(4u, changes[0].after().generation());
}

TEST_F(SystemSubscribe, TellsAllElseAfter50MillisecondsOfQuiet)
{
    watch("desktop");
    support::Receiver received(audio());
    const std::string id = endpoint();

    simulation().events().setState(id, DEVICE_STATE_DISABLED);
    advance(49ms);
    EXPECT_THAT(received.take(), IsEmpty());
    simulation().events().setState(id, DEVICE_STATE_UNPLUGGED);
    advance(49ms);
    EXPECT_THAT(received.take(), IsEmpty());
    advance(1ms);

    EXPECT_THAT(keysOf(received.events()), Contains("endpointChanged state"));
    EXPECT_EQ(State::unplugged, audio().endpoint(EndpointId(id))->state());
}

TEST_F(SystemSubscribe, TellsAllElse250MillisecondsAfterTheFirstAnnouncementAtTheLatest)
{
    watch("desktop");
    support::Receiver received(audio());
    const std::string id = endpoint();

    simulation().events().setState(id, DEVICE_STATE_DISABLED);
    for (int count = 0; count < 6; ++count)
    {
        advance(40ms);
        EXPECT_THAT(received.take(), IsEmpty());
        simulation().events().announceState(id, DEVICE_STATE_DISABLED);
    }
    advance(10ms);

    EXPECT_THAT(keysOf(received.events()), Contains("endpointChanged state"));
}

TEST_F(SystemSubscribe, MergesWhatASlowSubscriberHasMissedIntoOneChange)
{
    watch("desktop");
    support::Receiver fast(audio());
    const std::string id = endpoint();
    std::vector<Change> slow;
    const Subscription subscription = audio().subscribe([&](const Change& change) { slow.push_back(change); });

    simulation().events().setVolume(id, -12.0F);
    settle();
    simulation().events().setState(id, DEVICE_STATE_DISABLED);
    advance(50ms);
    audio().poll();

    ASSERT_EQ(1u, slow.size());
    EXPECT_EQ(subscription.initial(), slow[0].before());
    EXPECT_EQ(audio().snapshot(), slow[0].after());
    EXPECT_EQ(difference(slow[0].before(), slow[0].after()), slow[0].events());
    EXPECT_EQ(slow[0].after(), apply(slow[0].before(), slow[0].events()));
}

TEST_F(SystemSubscribe, BeginsEachChangeWhereTheLastOneEnded)
{
    watch("desktop");
    support::Receiver received(audio());
    const std::string id = endpoint();
    Snapshot known = received.subscription().initial();

    for (int count = 0; count < 3; ++count)
    {
        simulation().events().setVolume(id, -20.0F + static_cast<float>(count));
        advance(20ms);
        const std::vector<Change> changes = received.take();
        ASSERT_EQ(1u, changes.size());
        EXPECT_EQ(known, changes[0].before());
        known = changes[0].after();
    }
}

TEST_F(SystemSubscribe, TellsNothingIfWhatWasAnnouncedHasNotChanged)
{
    watch("desktop");
    support::Receiver received(audio());

    simulation().events().announceState(endpoint(), DEVICE_STATE_ACTIVE);
    simulation().events().announceProperty(endpoint(), PKEY_Device_DeviceDesc);
    advance(250ms);

    EXPECT_THAT(received.take(), IsEmpty());
    EXPECT_EQ(1u, audio().snapshot().generation());
}

TEST_F(SystemSubscribe, TellsOfAnEndpointThatIsRemovedAndAdded)
{
    watch("desktop");
    support::Receiver received(audio());
    const std::string id = endpoint();

    simulation().events().remove(id);
    advance(50ms);
    EXPECT_THAT(keysOf(received.events()), Contains("endpointRemoved"));
    simulation().events().add(id);
    advance(50ms);

    EXPECT_THAT(keysOf(received.events()), Contains("endpointAdded"));
    EXPECT_EQ(1u, audio().endpoint(EndpointId(id))->incarnation());
}

TEST_F(SystemSubscribe, TellsOfAnEndpointThatWentAndCameWithinOneWindow)
{
    watch("desktop");
    support::Receiver received(audio());
    const std::string id = endpoint();

    simulation().events().remove(id);
    simulation().events().add(id);
    advance(50ms);

    EXPECT_THAT(keysOf(received.events()), Contains("endpointReappeared"));
    EXPECT_EQ(1u, audio().endpoint(EndpointId(id))->incarnation());
}

TEST_F(SystemSubscribe, TellsOfADeviceThatWasReplacedWithinOneWindow)
{
    watch("desktop");
    support::Receiver received(audio());
    const std::string id = endpoint();

    simulation().events().driverUpdate(id);
    advance(50ms);

    EXPECT_THAT(keysOf(received.events()), Contains("endpointReappeared"));
    simulation().events().setVolume(id, -7.0F);
    advance(20ms);
    EXPECT_EQ(-7.0, decibels(id));
}

TEST_F(SystemSubscribe, CountsNoIncarnationOfAnEndpointThatComesForTheFirstTime)
{
    watch("desktop");
    support::Receiver received(audio());
    const std::string id = endpoint(State::notPresent);

    simulation().events().plugUsb(id);
    advance(250ms);

    EXPECT_EQ(State::active, audio().endpoint(EndpointId(id))->state());
    EXPECT_EQ(0u, audio().endpoint(EndpointId(id))->incarnation());
}

TEST_F(SystemSubscribe, TellsOfDefaults)
{
    watch("desktop");
    support::Receiver received(audio());
    const std::string id = audio().defaultEndpoint(Flow::output)->id().text();

    simulation().events().setState(id, DEVICE_STATE_DISABLED);
    advance(50ms);

    EXPECT_THAT(keysOf(received.events()), Contains("defaultChanged"));
    EXPECT_NE(EndpointId(id), audio().snapshot().content().defaults[0][0]);
}

TEST_F(SystemSubscribe, TriesAgainWhatWasAnnouncedAndCannotBeReadYet)
{
    watch("desktop");
    support::Receiver received(audio());
    const std::string id = endpoint();
    sim::PlannedFault fault = simulation().faults().fail("IMMDevice::GetState", E_NOTFOUND).on(id);
    simulation().events().setState(id, DEVICE_STATE_DISABLED);
    advance(50ms);
    EXPECT_THAT(received.events(), Not(IsEmpty()));
    EXPECT_EQ(1u, fault.fired());

    for (const auto pause : {250ms, 500ms, 1000ms, 2000ms, 4000ms})
    {
        const auto before = fault.fired();
        advance(pause - 1ms);
        EXPECT_EQ(before, fault.fired());
        advance(1ms);
        EXPECT_EQ(before + 1, fault.fired());
    }
    simulation().faults().clear();
    advance(8s);

    EXPECT_EQ(State::disabled, audio().endpoint(EndpointId(id))->state());
    EXPECT_THAT(audio().endpoint(EndpointId(id))->problems(), IsEmpty());
}

TEST_F(SystemSubscribe, GivesUpAfterTheLastTry)
{
    watch("desktop");
    const std::string id = endpoint();
    sim::PlannedFault fault = simulation().faults().fail("IMMDevice::GetState", E_NOTFOUND).on(id);
    simulation().events().setState(id, DEVICE_STATE_DISABLED);
    advance(50ms);

    for (int count = 0; count < 20; ++count)
        advance(10s);

    EXPECT_EQ(7u, fault.fired());
}

TEST_F(SystemSubscribe, TriesAgainWhatARefreshCouldNotRead)
{
    watch("desktop");
    const EndpointId id(endpoint());
    simulation().faults().fail("IMMDevice::GetState", E_NOTFOUND).on(id.text());
    ASSERT_TRUE(audio().refresh(Depth::everything));
    ASSERT_FALSE(audio().endpoint(id)->problems().empty());
    simulation().faults().clear();

    advance(250ms);

    EXPECT_THAT(audio().endpoint(id)->problems(), IsEmpty());
}

TEST_F(SystemSubscribe, SpendsNoTryOnARefresh)
{
    watch("desktop");
    const std::string id = endpoint();
    sim::PlannedFault fault = simulation().faults().fail("IMMDevice::GetState", E_NOTFOUND).on(id);
    simulation().events().setState(id, DEVICE_STATE_DISABLED);
    advance(50ms);

    for (int count = 0; count < 20; ++count)
        ASSERT_TRUE(audio().refresh());
    EXPECT_EQ(21u, fault.fired());
    for (const auto pause : {250ms, 500ms, 1000ms, 2000ms, 4000ms})
        advance(pause);
    EXPECT_EQ(26u, fault.fired());
    simulation().faults().clear();
    advance(8s);

    EXPECT_EQ(State::disabled, audio().endpoint(EndpointId(id))->state());
}

TEST_F(SystemSubscribe, TriesForItsWholeTimeAfterTheLastOfManyAnnouncements)
{
    watch("desktop");
    const std::string id = endpoint();
    simulation().faults().fail("IMMDevice::GetState", E_NOTFOUND).on(id);
    simulation().events().setState(id, DEVICE_STATE_DISABLED);
    advance(50ms);

    for (int count = 0; count < 20; ++count)
    {
        simulation().events().announceProperty(id, PKEY_Device_DeviceDesc);
        advance(50ms);
    }
    for (const auto pause : {250ms, 500ms, 1000ms, 2000ms, 4000ms})
        advance(pause);
    simulation().faults().clear();
    advance(8s);

    EXPECT_EQ(State::disabled, audio().endpoint(EndpointId(id))->state());
}

TEST_F(SystemSubscribe, TriesAgainWhatIsAnnouncedOnceMoreAfterTheLastTry)
{
    watch("desktop");
    const std::string id = endpoint();
    simulation().faults().fail("IMMDevice::GetState", E_NOTFOUND).on(id);
    simulation().events().setState(id, DEVICE_STATE_DISABLED);
    for (int count = 0; count < 20; ++count)
        advance(10s);

    simulation().events().announceState(id, DEVICE_STATE_DISABLED);
    advance(50ms);
    simulation().faults().clear();
    advance(250ms);

    EXPECT_EQ(State::disabled, audio().endpoint(EndpointId(id))->state());
}

TEST_F(SystemSubscribe, MakesNoTryForAnEndpointThatWasRemoved)
{
    watch("desktop");
    const std::string id = endpoint();
    simulation().faults().fail("IMMDevice::GetState", E_NOTFOUND).on(id);
    simulation().events().setState(id, DEVICE_STATE_DISABLED);
    advance(50ms);
    simulation().events().remove(id);
    advance(50ms);
    callsSince();

    advance(20s);

    EXPECT_EQ(0u, callsSince());
}

TEST_F(SystemSubscribe, MakesNoCallToThePlatformInACallback)
{
    watch("desktop");
    const std::string id = endpoint();
    callsSince();

    simulation().events().setState(id, DEVICE_STATE_DISABLED);
    simulation().events().announceProperty(id, PKEY_Device_DeviceDesc);
    settle();

    EXPECT_EQ(0u, callsSince());
}

TEST_F(SystemSubscribe, ReadsEverythingAfterMoreAnnouncementsThanCanBeNoted)
{
    watch("desktop");
    const std::string id = endpoint();
    callsSince();

    simulation().change(
        [&](sim::Machine& machine)
        {
            for (sim::Endpoint& each : machine.endpoints)
                if (each.id == id)
                    each.volume->channels.assign(each.volume->channels.size(), -5.0F);
        });
    for (int count = 0; count < 200; ++count)
        simulation().events().announceProperty("{0.0.0.00000000}.{" + std::to_string(count) + "}",
                                               PKEY_Device_DeviceDesc);
    advance(250ms);

    EXPECT_EQ(-5.0, decibels(id));
}
}
