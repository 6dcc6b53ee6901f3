#include "tests/client/watching/watchtest.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <future>
#include <string>
#include <vector>

using namespace sonavit;
using namespace testing;
using namespace std::chrono_literals;

namespace
{
class EventOrigin : public support::WatchTest
{
protected:
    void SetUp() override
    {
        WatchTest::SetUp();
        watch("desktop");
        m_id = audio().defaultEndpoint(Flow::output)->id();
    }

    EndpointId m_id;
};

TEST_F(EventOrigin, IsOwnWithTheTokenAfterAChangeByTheSystem)
{
    support::Receiver received(audio());

    const Result<Volume> changed = audio().setVolume(m_id, Decibels(-12));
    advance(20ms);

    ASSERT_TRUE(changed);
    const std::vector<Event> events = received.events();
    ASSERT_EQ(1u, events.size());
    EXPECT_EQ(Origin::own, events[0].origin);
    EXPECT_THAT(events[0].tokens, ElementsAre(changed.token()));
    EXPECT_NE(0u, changed.token());
}

TEST_F(EventOrigin, IsSeenInTheSnapshotWhenTheChangeReturns)
{
    const Result<Volume> changed = audio().setVolume(m_id, Decibels(-12));

    ASSERT_TRUE(changed);
    EXPECT_EQ(*changed, audio().endpoint(m_id)->volume());
    EXPECT_EQ(2u, audio().snapshot().generation());
}

TEST_F(EventOrigin, IsOtherAfterAChangeByAnotherSystem)
{
    System another(polledOptions());
    support::Receiver received(audio());

    ASSERT_TRUE(another.setVolume(m_id, Decibels(-12)));
    settle();

    const std::vector<Event> events = received.events();
    ASSERT_EQ(1u, events.size());
    EXPECT_EQ(Origin::other, events[0].origin);
    EXPECT_THAT(events[0].tokens, IsEmpty());
}

TEST_F(EventOrigin, IsBothIfOneChangeContainsBoth)
{
    support::Receiver received(audio());

    const Result<Volume> changed = audio().setVolume(m_id, Decibels(-12));
    settle(); // what is announced of it is read before the other change is there
    simulation().events().setVolume(m_id.text(), -20.0F);
    advance(20ms);

    const std::vector<Event> events = received.events();
    ASSERT_EQ(1u, events.size());
    EXPECT_EQ(Origin::both, events[0].origin);
    EXPECT_THAT(events[0].tokens, ElementsAre(changed.token()));
}

TEST_F(EventOrigin, IsOtherIfTheOwnChangeWasToldBefore)
{
    support::Receiver received(audio());
    ASSERT_TRUE(audio().setVolume(m_id, Decibels(-12)));
    EXPECT_EQ(1u, received.events().size());
    settle(); // what is announced of it is read before the other change is there

    simulation().events().setVolume(m_id.text(), -20.0F);
    advance(20ms);

    const std::vector<Event> events = received.events();
    ASSERT_EQ(1u, events.size());
    EXPECT_EQ(Origin::other, events[0].origin);
    EXPECT_THAT(events[0].tokens, IsEmpty());
}

/// Two other programs' changes are read in one go; in the middle of that this System changes a third endpoint.
TEST_F(EventOrigin, StaysWithWhatIsReadAroundAnOwnChange)
{
    std::vector<EndpointId> ids;
    for (const Endpoint& endpoint : audio().snapshot().endpoints())
    {
        if (endpoint.isActive() && endpoint.volume())
            ids.push_back(endpoint.id());
    }
    ASSERT_LE(3u, ids.size());
    simulation().events().setVolume(ids[0].text(), -19.0F);
    settle(); // the next levels are read together, 20 ms later
    support::Receiver received(audio());
    std::future<Result<Volume>> changed;
    simulation()
        .faults()
        .run("IAudioEndpointVolume::GetMute", [&] { changed = begin([&] { return audio().toggleMute(ids[2]); }); })
        .on(ids[0].text())
        .at(1);

    simulation().events().setVolume(ids[0].text(), -20.0F);
    simulation().events().setVolume(ids[1].text(), -21.0F);
    advance(20ms);

    ASSERT_TRUE(changed.valid());
    ASSERT_TRUE(changed.get());
    const std::vector<Event> events = received.events();
    ASSERT_EQ(3u, events.size());
    for (const Event& event : events)
        EXPECT_EQ(event.after->id() == ids[2] ? Origin::own : Origin::other, event.origin) << event;
}

TEST_F(EventOrigin, IsUnknownWhereThePlatformDoesNotSay)
{
    support::Receiver received(audio());

    simulation().events().setState(m_id.text(), DEVICE_STATE_DISABLED);
    advance(50ms);

    for (const Event& event : received.events())
        EXPECT_EQ(Origin::unknown, event.origin) << event;
}

TEST_F(EventOrigin, HasTheTokensOfAllChangesThatWereMerged)
{
    support::Receiver received(audio());

    const Result<Volume> first = audio().setVolume(m_id, Decibels(-12));
    const Result<Volume> second = audio().setVolume(m_id, Decibels(-20));

    const std::vector<Event> events = received.events();
    ASSERT_EQ(1u, events.size());
    EXPECT_EQ(Origin::own, events[0].origin);
    EXPECT_THAT(events[0].tokens, UnorderedElementsAre(first.token(), second.token()));
}
}
