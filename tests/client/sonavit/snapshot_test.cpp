#include "sonavit/snapshot.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <sstream>

using namespace sonavit;
using testing::IsEmpty;

namespace
{
Endpoint endpoint(const std::string& id)
{
    Endpoint::Content content;
    content.id = EndpointId(id);
    return Endpoint(content);
}

Card card(const std::string& id, const std::vector<Endpoint>& endpoints)
{
    Card::Content content;
    content.id = CardId(id);
    content.endpoints = endpoints;
    return Card(content);
}

/// Two cards with three endpoints, one of them the default output for communications.
Snapshot::Content someContent()
{
    Snapshot::Content content;
    content.cards = {card("one", {endpoint("{a}"), endpoint("")}), card("two", {endpoint("{b}")})};
    content.defaults[0][2] = EndpointId("{B}");
    return content;
}
}

TEST(Snapshot, IsEmptyAtGeneration0ByDefault)
{
    const Snapshot snapshot;

    EXPECT_THAT(snapshot.cards(), IsEmpty());
    EXPECT_EQ(0u, snapshot.generation());
    EXPECT_EQ(Service::running, snapshot.service());
}

TEST(Snapshot, ListsAllEndpointsInTheOrderOfTheCards)
{
    const std::vector<Endpoint> endpoints = Snapshot(someContent()).endpoints();

    ASSERT_EQ(3u, endpoints.size());
    EXPECT_EQ(EndpointId("{a}"), endpoints[0].id());
    EXPECT_EQ(EndpointId("{b}"), endpoints[2].id());
}

TEST(Snapshot, FindsEndpointsAndCardsByTheirIds)
{
    const Snapshot snapshot(someContent());

    EXPECT_EQ(EndpointId("{b}"), snapshot.endpoint(EndpointId("{B}"))->id());
    EXPECT_EQ(CardId("two"), snapshot.cardOf(EndpointId("{b}"))->id());
    EXPECT_EQ(CardId("one"), snapshot.card(CardId("ONE"))->id());
    EXPECT_EQ(std::nullopt, snapshot.endpoint(EndpointId("{c}")));
    EXPECT_EQ(std::nullopt, snapshot.cardOf(EndpointId("{c}")));
    EXPECT_EQ(std::nullopt, snapshot.card(CardId("three")));
}

TEST(Snapshot, FindsNothingByTheIdOfNothing)
{
    const Snapshot snapshot(someContent());

    EXPECT_EQ(std::nullopt, snapshot.endpoint(EndpointId()));
    EXPECT_EQ(std::nullopt, snapshot.cardOf(EndpointId()));
    EXPECT_EQ(std::nullopt, snapshot.card(CardId()));
}

TEST(Snapshot, FindsDefaultsByFlowAndRole)
{
    const Snapshot snapshot(someContent());

    EXPECT_EQ(EndpointId("{b}"), snapshot.defaultEndpoint(Flow::output, Role::communications)->id());
    EXPECT_EQ(std::nullopt, snapshot.defaultEndpoint(Flow::output));
    EXPECT_EQ(std::nullopt, snapshot.defaultEndpoint(Flow::input, Role::communications));
}

TEST(Snapshot, SaysWhichDefaultsAreNotKnown)
{
    Snapshot::Content content = someContent();
    content.problems = {Problem::ofCall("IMMDevice::GetId", "", 1),
                        Problem::ofCall("IMMDeviceEnumerator::GetDefaultAudioEndpoint(eCapture, eConsole)", "", 2),
                        Problem::ofCall("IMMDevice::GetId(eCapture, eCommunications)", "", 3)};
    const Snapshot snapshot(content);

    EXPECT_EQ(content.problems[1], snapshot.problemWithDefault(Flow::input));
    EXPECT_EQ(content.problems[2], snapshot.problemWithDefault(Flow::input, Role::communications));
    EXPECT_EQ(std::nullopt, snapshot.problemWithDefault(Flow::input, Role::multimedia));
    EXPECT_EQ(std::nullopt, snapshot.problemWithDefault(Flow::output));
    EXPECT_EQ(std::nullopt, snapshot.problemWithDefault(static_cast<Flow>(2)));
    EXPECT_EQ(std::nullopt, snapshot.problemWithDefault(Flow::input, static_cast<Role>(-1)));
}

TEST(Snapshot, HasNoDefaultForNumbersWithoutNames)
{
    const Snapshot snapshot(someContent());

    EXPECT_EQ(std::nullopt, snapshot.defaultEndpoint(static_cast<Flow>(2), Role::console));
    EXPECT_EQ(std::nullopt, snapshot.defaultEndpoint(static_cast<Flow>(-1), Role::console));
    EXPECT_EQ(std::nullopt, snapshot.defaultEndpoint(Flow::output, static_cast<Role>(3)));
    EXPECT_EQ(std::nullopt, snapshot.defaultEndpoint(Flow::output, static_cast<Role>(-1)));
}

TEST(Snapshot, HasTheHardwareOfWatchedCards)
{
    Snapshot::Content content = someContent();
    content.hardware.resize(1);
    content.hardware[0].card = CardId("two");
    const Snapshot snapshot(content);

    EXPECT_EQ(CardId("two"), snapshot.hardware(CardId("TWO"))->card);
    EXPECT_EQ(std::nullopt, snapshot.hardware(CardId("one")));
}

TEST(Snapshot, IsEqualIfAllButGenerationAndTimeIs)
{
    const auto differs = [](auto change)
    {
        Snapshot::Content content = someContent();
        change(content);
        return Snapshot(content) != Snapshot(someContent()) && Snapshot(content) == Snapshot(content);
    };

    EXPECT_FALSE(differs([](Snapshot::Content& content) { content.generation = 1; }));
    EXPECT_FALSE(differs([](Snapshot::Content& content) { content.time += std::chrono::seconds(1); }));
    EXPECT_TRUE(differs([](Snapshot::Content& content) { content.cards.pop_back(); }));
    EXPECT_TRUE(differs([](Snapshot::Content& content) { content.defaults[1][1] = EndpointId("{a}"); }));
    EXPECT_TRUE(differs([](Snapshot::Content& content) { content.hardware.resize(1); }));
    EXPECT_TRUE(differs([](Snapshot::Content& content) { content.service = Service::stopped; }));
    EXPECT_TRUE(differs([](Snapshot::Content& content)
                        { content.problems.emplace_back(Problem::Kind::internal, "", "", ""); }));
}

TEST(Hardware, IsEqualIfEachMemberIs)
{
    const auto differs = [](auto change)
    {
        Hardware hardware;
        change(hardware);
        return hardware != Hardware() && hardware == Hardware(hardware);
    };

    EXPECT_TRUE(differs([](Hardware& hardware) { hardware.card = CardId("x"); }));
    EXPECT_TRUE(differs([](Hardware& hardware) { hardware.controls.resize(1); }));
    EXPECT_TRUE(differs([](Hardware& hardware) { hardware.selectors.resize(1); }));
    EXPECT_TRUE(
        differs([](Hardware& hardware) { hardware.problems.emplace_back(Problem::Kind::internal, "", "", ""); }));
    Hardware::EndpointControls controls;
    controls.controls.resize(1);
    EXPECT_NE(controls, Hardware::EndpointControls());
}

TEST(Snapshot, IsPrintedWithAllThatItHas)
{
    Snapshot::Content content;
    content.cards = {card("one", {})};
    content.defaults[0][2] = EndpointId("{b}");
    content.hardware.resize(1);
    content.hardware[0].card = CardId("one");
    content.hardware[0].controls.resize(1);
    content.generation = 1234;
    std::ostringstream out;
    out << Snapshot(content);

    EXPECT_EQ("Snapshot(cards: [Card(id: \"one\", title: \"Unnamed card\")], default output for communications: "
              "\"{b}\", hardware: [Hardware(card: \"one\", endpoint: \"\")], service: running, generation: 1234)",
              out.str());
}

TEST(SnapshotEnumerations, HaveKeysAndWords)
{
    EXPECT_STREQ("running", keyOf(Service::running));
    EXPECT_STREQ("stopped", keyOf(Service::stopped));
    EXPECT_STREQ("unknown", keyOf(static_cast<Service>(2)));
    EXPECT_STREQ("endpointId", keyOf(IdKind::endpointId));
    EXPECT_STREQ("parent", keyOf(IdKind::parent));
    EXPECT_STREQ("DirectSound id", wordsOf(IdKind::directSoundId));
    EXPECT_STREQ("unknown", keyOf(static_cast<IdKind>(7)));
    EXPECT_STREQ("unknown", wordsOf(static_cast<IdKind>(-1)));
}

TEST(Match, IsPrintedWithTheKindOfItsIdAndTheTitles)
{
    std::ostringstream out;
    out << Match{{card("one", {}), endpoint("{a}")}, IdKind::directSoundId};

    EXPECT_EQ("DirectSound id: Unnamed card / unnamed output {a}", out.str());
}

TEST(Hardware, HasControlsThatArePrintedWithTheirEndpoint)
{
    Hardware::EndpointControls controls;
    controls.endpoint = EndpointId("{a}");
    controls.controls.resize(1);
    std::ostringstream out;
    out << controls;

    EXPECT_EQ("EndpointControls(endpoint: \"{a}\", controls: [Control(id: \"\", hasMute: no)])", out.str());
}

TEST(SnapshotEnumerations, ArePrintedInWords)
{
    std::ostringstream out;
    out << Service::stopped << ' ' << IdKind::instanceId << ' ' << static_cast<IdKind>(7) << static_cast<Service>(-1);

    EXPECT_EQ("stopped instance id unknownunknown", out.str());
}

/// The documented operations of a value that was moved from.
TEST(Snapshot, CanBeAssignedToAndDestroyedAfterItWasMovedFrom)
{
    Snapshot snapshot(someContent());
    const Snapshot moved = std::move(snapshot);
    Snapshot forgotten(someContent());
    static_cast<void>(Snapshot(std::move(forgotten)));

    snapshot = moved;

    EXPECT_EQ(moved, snapshot);
}
