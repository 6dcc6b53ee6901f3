#include "sonavit/change.h"

#include "tests/client/sonavit/supportsnapshots.h"
#include "tests/support/pace.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <set>
#include <sstream>

using namespace sonavit;
using testing::ElementsAre;
using testing::IsEmpty;

namespace
{
Endpoint endpoint(const std::string& id, const std::string& description = "Speakers")
{
    Endpoint::Content content;
    content.id = EndpointId(id);
    content.description = description;
    return Endpoint(content);
}

Endpoint withIncarnation(const Endpoint& endpoint, std::uint32_t incarnation)
{
    Endpoint::Content content = endpoint.content();
    content.incarnation = incarnation;
    return Endpoint(content);
}

Card card(const std::string& id, const std::vector<Endpoint>& endpoints)
{
    Card::Content content;
    content.id = CardId(id);
    content.title = "Card " + id;
    content.endpoints = endpoints;
    return Card(content);
}

Snapshot snapshot(const std::vector<Card>& cards)
{
    Snapshot::Content content;
    content.cards = cards;
    return Snapshot(content);
}

Snapshot withDefault(const Snapshot& snapshot, const std::string& id)
{
    Snapshot::Content content = snapshot.content();
    content.defaults[0][0] = EndpointId(id);
    return Snapshot(content);
}

std::vector<std::string> kindsOf(const std::vector<Event>& events)
{
    std::vector<std::string> kinds;
    for (const Event& event : events)
        kinds.emplace_back(keyOf(event.kind));
    return kinds;
}

/// What makes the events of a pair wrong; empty if they are right.
std::string flaw(const Snapshot& before, const Snapshot& after)
{
    const std::vector<Event> events = difference(before, after);
    if (events.empty() != (before == after))
        return before == after ? "equal snapshots differ" : "different snapshots do not differ";
    if (difference(before, after) != events)
        return "two differences of one pair differ";
    const Snapshot applied = sonavit::apply(before, events);
    if (applied != after)
        return "the events lead elsewhere";
    return difference(applied, after).empty() ? "" : "a difference is left";
}

/// @p before and @p after as text, for a failure.
std::string shown(const Snapshot& before, const Snapshot& after)
{
    std::ostringstream out;
    out << before << "\n" << after << "\n" << difference(before, after);
    return out.str();
}
}

TEST(SnapshotDifference, LeadsFromAnySnapshotToAnyOther)
{
    support::SnapshotGenerator generator(1);
    for (std::uint32_t i = 0; i < support::cases(2000, 400); ++i)
    {
        const Snapshot before = generator.snapshot();
        const Snapshot after = generator.snapshot();

        ASSERT_EQ("", flaw(before, after)) << i << "\n" << shown(before, after);
    }
}

TEST(SnapshotDifference, LeadsFromASnapshotToOneAfterAFewChanges)
{
    support::SnapshotGenerator generator(2);
    Snapshot before = generator.snapshot();
    for (int i = 0; i < 4000; ++i)
    {
        if (i % 20 == 0)
            before = generator.snapshot();
        const Snapshot after = generator.changed(before);

        ASSERT_EQ("", flaw(before, after)) << i << "\n" << shown(before, after);
        before = after;
    }
}

TEST(SnapshotDifference, HasEveryKindOfEventAmongItsRandomPairs)
{
    support::SnapshotGenerator generator(1);
    std::set<std::string> kinds;
    for (int i = 0; i < 500; ++i)
    {
        const Snapshot before = generator.snapshot();
        for (const std::string& kind : kindsOf(difference(before, generator.snapshot())))
            kinds.insert(kind);
    }

    EXPECT_EQ(13u, kinds.size());
    EXPECT_EQ(0u, kinds.count("unknown"));
}

TEST(SnapshotDifference, IsEmptyBetweenEqualSnapshots)
{
    const Snapshot one = snapshot({card("c", {endpoint("{a}")})});
    Card::Content content = one.cards()[0].content();
    content.id = CardId("C");
    content.endpoints = {endpoint("{A}")};
    const Snapshot otherCase = snapshot({Card(content)});

    EXPECT_THAT(difference(one, one), IsEmpty());
    EXPECT_THAT(difference(one, otherCase), IsEmpty());
    EXPECT_THAT(difference(Snapshot(), Snapshot()), IsEmpty());
}

TEST(SnapshotDifference, IgnoresGenerationAndTime)
{
    Snapshot::Content content;
    content.generation = 7;
    content.time = std::chrono::system_clock::time_point(std::chrono::seconds(1));

    EXPECT_THAT(difference(Snapshot(), Snapshot(content)), IsEmpty());
}

TEST(SnapshotDifference, RemovesACardAfterItsEndpoints)
{
    const std::vector<Event> events = difference(snapshot({card("c", {endpoint("{a}"), endpoint("{b}")})}), Snapshot());

    ASSERT_THAT(kindsOf(events), ElementsAre("endpointRemoved", "endpointRemoved", "cardRemoved"));
    EXPECT_EQ(endpoint("{a}"), events[0].before);
    EXPECT_EQ(std::nullopt, events[0].after);
    EXPECT_EQ(CardId("c"), events[0].card);
    EXPECT_EQ("Card c", events[2].cardBefore->title());
}

TEST(SnapshotDifference, AddsACardBeforeItsEndpointsWithTheirPositions)
{
    const Snapshot after = snapshot({card("c", {}), card("d", {endpoint("{a}"), endpoint("{b}")})});

    const std::vector<Event> events = difference(snapshot({card("c", {})}), after);

    ASSERT_THAT(kindsOf(events), ElementsAre("cardAdded", "endpointAdded", "endpointAdded"));
    EXPECT_EQ(1u, events[0].position);
    EXPECT_THAT(events[0].cardAfter->endpoints(), IsEmpty());
    EXPECT_EQ(0u, events[1].position);
    EXPECT_EQ(1u, events[2].position);
    EXPECT_EQ(endpoint("{b}"), events[2].after);
    EXPECT_EQ(CardId("d"), events[2].card);
}

TEST(SnapshotDifference, MovesAsFewCardsAndEndpointsAsPossible)
{
    const Card first = card("1", {});
    const Card second = card("2", {});
    const Card third = card("3", {endpoint("{a}"), endpoint("{b}"), endpoint("{c}")});
    const Card turned = card("3", {endpoint("{b}"), endpoint("{c}"), endpoint("{a}")});

    const std::vector<Event> events = difference(snapshot({first, second, third}), snapshot({turned, first, second}));

    ASSERT_THAT(kindsOf(events), ElementsAre("cardMoved", "endpointMoved"));
    EXPECT_EQ(CardId("3"), events[0].card);
    EXPECT_EQ(0u, events[0].position);
    EXPECT_EQ(endpoint("{a}"), events[1].after);
    EXPECT_EQ(2u, events[1].position);
    EXPECT_EQ(std::nullopt, events[1].formerCard);
}

TEST(SnapshotDifference, MovesAnEndpointFromACardToAnother)
{
    const std::vector<Event> events =
        difference(snapshot({card("old", {endpoint("{a}")})}), snapshot({card("new", {endpoint("{a}", "Renamed")})}));

    ASSERT_THAT(kindsOf(events), ElementsAre("cardRemoved", "cardAdded", "endpointMoved", "endpointChanged"));
    EXPECT_EQ(CardId("new"), events[2].card);
    EXPECT_EQ(CardId("old"), events[2].formerCard);
    EXPECT_EQ(0u, events[2].position);
    EXPECT_EQ(EndpointField::description, events[3].field);
}

TEST(SnapshotDifference, DistinguishesEndpointsWithTheSameIdByTheirOccurrence)
{
    const Snapshot before = snapshot({card("c", {endpoint("", "one"), endpoint("", "two")})});
    const Snapshot after = snapshot({card("c", {endpoint("", "one"), endpoint("", "three")})});

    const std::vector<Event> events = difference(before, after);

    ASSERT_THAT(kindsOf(events), ElementsAre("endpointChanged"));
    EXPECT_EQ(1u, events[0].occurrence);
    EXPECT_EQ(after, sonavit::apply(before, events));
}

TEST(SnapshotDifference, DistinguishesCardsWithTheSameIdByTheirOccurrence)
{
    const Snapshot before = snapshot({card("", {endpoint("{a}")}), card("", {endpoint("{b}")})});
    const Snapshot after = snapshot({card("", {endpoint("{a}")}), card("", {})});

    const std::vector<Event> events = difference(before, after);

    ASSERT_THAT(kindsOf(events), ElementsAre("endpointRemoved"));
    EXPECT_EQ(1u, events[0].cardOccurrence);
    EXPECT_EQ(after, sonavit::apply(before, events));
}

TEST(SnapshotDifference, ReportsAnEndpointThatWentAndCameBack)
{
    const Endpoint was = endpoint("{a}", "Speakers");
    const Endpoint is = withIncarnation(endpoint("{a}", "Headphones"), 1);

    const std::vector<Event> events = difference(snapshot({card("c", {was})}), snapshot({card("c", {is})}));

    ASSERT_THAT(kindsOf(events), ElementsAre("endpointReappeared", "endpointChanged"));
    EXPECT_EQ(was, events[0].before);
    EXPECT_EQ(is, events[0].after);
    EXPECT_EQ(EndpointField::description, events[1].field);
}

TEST(SnapshotDifference, ReportsEachFieldOfAnEndpointOnItsOwn)
{
    Endpoint::Content content = endpoint("{a}").content();
    content.state = State::active;
    content.waveId = 3;
    const Endpoint is(content);

    const std::vector<Event> events = difference(snapshot({card("c", {endpoint("{a}")})}), snapshot({card("c", {is})}));

    ASSERT_THAT(kindsOf(events), ElementsAre("endpointChanged", "endpointChanged"));
    EXPECT_EQ(EndpointField::state, events[0].field);
    EXPECT_EQ(EndpointField::waveId, events[1].field);
    EXPECT_EQ(endpoint("{a}"), events[1].before);
    EXPECT_EQ(is, events[1].after);
}

TEST(SnapshotDifference, ReportsEachFieldOfACardOnItsOwn)
{
    Card::Content content = card("c", {}).content();
    content.bus = "USB";
    content.title = "Renamed";

    const std::vector<Event> events = difference(snapshot({card("c", {})}), snapshot({Card(content)}));

    ASSERT_THAT(kindsOf(events), ElementsAre("cardChanged", "cardChanged"));
    EXPECT_EQ(CardField::bus, events[0].cardField);
    EXPECT_EQ(CardField::title, events[1].cardField);
    EXPECT_EQ("Card c", events[1].cardBefore->title());
    EXPECT_EQ("Renamed", events[1].cardAfter->title());
}

TEST(SnapshotDifference, ReportsADefaultWithItsEndpoints)
{
    const Snapshot without = snapshot({card("c", {endpoint("{a}")})});

    const std::vector<Event> chosen = difference(without, withDefault(without, "{A}"));
    const std::vector<Event> lost = difference(withDefault(without, "{a}"), without);

    ASSERT_THAT(kindsOf(chosen), ElementsAre("defaultChanged"));
    EXPECT_EQ(Flow::output, chosen[0].flow);
    EXPECT_EQ(Role::console, chosen[0].role);
    EXPECT_EQ(std::nullopt, chosen[0].before);
    EXPECT_EQ(endpoint("{a}"), chosen[0].after);
    ASSERT_THAT(kindsOf(lost), ElementsAre("defaultChanged"));
    EXPECT_EQ(endpoint("{a}"), lost[0].before);
    EXPECT_EQ(std::nullopt, lost[0].after);
}

TEST(SnapshotDifference, ReportsTheIdOfADefaultThatIsNotListed)
{
    const std::vector<Event> events = difference(Snapshot(), withDefault(Snapshot(), "{unlisted}"));

    ASSERT_THAT(kindsOf(events), ElementsAre("defaultChanged"));
    EXPECT_EQ(EndpointId("{unlisted}"), events[0].after->id());
}

TEST(SnapshotDifference, ReportsTheBeginTheChangeAndTheEndOfAWatch)
{
    Snapshot::Content content;
    content.hardware.resize(1);
    content.hardware[0].card = CardId("c");
    const Snapshot watched(content);
    content.hardware[0].selectors.resize(1);
    const Snapshot changed(content);

    const std::vector<Event> begun = difference(Snapshot(), watched);
    const std::vector<Event> different = difference(watched, changed);
    const std::vector<Event> ended = difference(changed, Snapshot());

    ASSERT_THAT(kindsOf(begun), ElementsAre("hardwareChanged"));
    EXPECT_FALSE(begun[0].hardwareBefore.has_value());
    EXPECT_EQ(0u, begun[0].position);
    ASSERT_THAT(kindsOf(different), ElementsAre("hardwareChanged"));
    EXPECT_EQ(CardId("c"), different[0].card);
    EXPECT_EQ(1u, different[0].hardwareAfter->selectors.size());
    ASSERT_THAT(kindsOf(ended), ElementsAre("hardwareChanged"));
    EXPECT_FALSE(ended[0].hardwareAfter.has_value());
}

TEST(SnapshotDifference, MarksWhatFollowsFromTheEndOfTheService)
{
    const Snapshot before = snapshot({card("c", {endpoint("{a}")})});
    Snapshot::Content content;
    content.service = Service::stopped;
    content.problems.push_back(Problem::ofCall("IMMDeviceEnumerator::EnumAudioEndpoints", "", -1));

    const std::vector<Event> events = difference(before, Snapshot(content));

    ASSERT_THAT(kindsOf(events), ElementsAre("endpointRemoved", "cardRemoved", "serviceChanged", "problemsChanged"));
    EXPECT_TRUE(events[0].isByService);
    EXPECT_EQ(Service::stopped, events[2].service);
    EXPECT_EQ(1u, events[3].problems.size());
}

TEST(SnapshotDifference, DoesNotLookIntoCardsThatBothSnapshotsShare)
{
    Endpoint poison;
    const Endpoint moved = std::move(poison); // an access to its content ends the test
    const Card shared = card("shared", {poison});
    const Snapshot before = snapshot({shared, card("c", {endpoint("{a}", "Speakers")})});
    const Snapshot after = snapshot({shared, card("c", {endpoint("{a}", "Headphones")})});

    const std::vector<Event> events = difference(before, after);
    const Snapshot applied = sonavit::apply(before, events);

    EXPECT_THAT(kindsOf(events), ElementsAre("endpointChanged"));
    EXPECT_EQ(after, applied);
    EXPECT_EQ(&shared.content(), &applied.cards()[0].content());
}

TEST(SnapshotApply, KeepsGenerationAndTime)
{
    Snapshot::Content content;
    content.generation = 7;
    content.time = std::chrono::system_clock::time_point(std::chrono::seconds(1));
    const Snapshot before(content);

    const Snapshot after = sonavit::apply(before, difference(before, snapshot({card("c", {})})));

    EXPECT_EQ(7u, after.generation());
    EXPECT_EQ(before.time(), after.time());
}

TEST(SnapshotApply, RefusesEventsThatDoNotFit)
{
    const Snapshot with = snapshot({card("c", {endpoint("{a}"), endpoint("{b}")})});
    const Snapshot without = snapshot({card("c", {endpoint("{b}")})});
    const std::vector<Event> removal = difference(with, without);
    const std::vector<Event> addition = difference(without, with);
    const std::vector<Event> change = difference(with, snapshot({card("c", {endpoint("{a}", "x"), endpoint("{b}")})}));

    EXPECT_THROW(sonavit::apply(without, removal), std::invalid_argument);
    EXPECT_THROW(sonavit::apply(Snapshot(), removal), std::invalid_argument);
    EXPECT_THROW(sonavit::apply(Snapshot(), addition), std::invalid_argument);
    EXPECT_THROW(sonavit::apply(without, change), std::invalid_argument);
    EXPECT_EQ(without, sonavit::apply(with, removal));
}

TEST(SnapshotApply, RefusesEventsWithoutTheirMembers)
{
    const Snapshot before = snapshot({card("c", {endpoint("{a}")})});
    for (int kind = 0; kind < static_cast<int>(Event::Kind::problemsChanged); ++kind)
    {
        Event event;
        event.kind = static_cast<Event::Kind>(kind);

        EXPECT_THROW(sonavit::apply(before, {event}), std::invalid_argument) << keyOf(event.kind);
    }
}

TEST(SnapshotApply, RefusesAPositionThatIsNotInTheListOrTakenTwice)
{
    Event event;
    event.kind = Event::Kind::cardAdded;
    event.cardAfter = card("c", {});
    event.position = 1;

    EXPECT_THROW(sonavit::apply(Snapshot(), {event}), std::invalid_argument);
    event.position = 0;
    EXPECT_THROW(sonavit::apply(Snapshot(), {event, event}), std::invalid_argument);
    EXPECT_EQ(1u, sonavit::apply(Snapshot(), {event}).cards().size());
}

TEST(SnapshotApply, RefusesToRemoveACardWithEndpoints)
{
    const Snapshot before = snapshot({card("c", {endpoint("{a}")})});
    const std::vector<Event> events = difference(before, Snapshot());

    EXPECT_THROW(sonavit::apply(before, {events.back()}), std::invalid_argument);
}

TEST(Event, IsEqualWithoutRegardToItsOrigin)
{
    Event one;
    Event other;
    other.origin = Origin::own;
    other.tokens = {3};
    other.isByService = true;

    EXPECT_EQ(one, other);
    other.position = 1;
    EXPECT_NE(one, other);
}

TEST(Event, HasKeysForItsKindsOriginsAndFields)
{
    EXPECT_STREQ("endpointReappeared", keyOf(Event::Kind::endpointReappeared));
    EXPECT_STREQ("problemsChanged", keyOf(Event::Kind::problemsChanged));
    EXPECT_STREQ("both", keyOf(Origin::both));
    EXPECT_STREQ("instanceId", keyOf(CardField::instanceId));
    EXPECT_STREQ("instance id", wordsOf(CardField::instanceId));
    EXPECT_STREQ("unknown", keyOf(static_cast<Event::Kind>(-1)));
    EXPECT_STREQ("unknown", keyOf(static_cast<Origin>(99)));
    EXPECT_STREQ("unknown", keyOf(static_cast<CardField>(99)));
    EXPECT_STREQ("unknown", wordsOf(static_cast<CardField>(99)));
}

TEST(Change, KeepsBothStatesAndTheEvents)
{
    const Snapshot before = snapshot({card("c", {})});

    const Change change(before, Snapshot(), difference(before, Snapshot()));

    EXPECT_EQ(before, change.before());
    EXPECT_EQ(Snapshot(), change.after());
    EXPECT_THAT(kindsOf(change.events()), ElementsAre("cardRemoved"));
}

TEST(Change, IsEqualIfBothStatesAndTheEventsAreAndIsPrintedWithItsEvents)
{
    Snapshot::Content content;
    content.service = Service::stopped;
    const Snapshot stopped(content);
    const Change change(Snapshot(), stopped, difference(Snapshot(), stopped));
    std::ostringstream out;
    out << change;

    EXPECT_EQ(change, Change(Snapshot(), stopped, difference(Snapshot(), stopped)));
    EXPECT_NE(change, Change(Snapshot(), stopped, {}));
    EXPECT_NE(change, Change(stopped, stopped, change.events()));
    EXPECT_NE(change, Change(Snapshot(), Snapshot(), change.events()));
    EXPECT_EQ("audio service: stopped\n", out.str());
}

TEST(EventEnumerations, ArePrinted)
{
    std::ostringstream out;
    out << Event::Kind::endpointMoved << ' ' << Origin::both << ' ' << CardField::instancePath << ' '
        << static_cast<Origin>(4);

    EXPECT_EQ("endpointMoved both instance path unknown", out.str());
}
