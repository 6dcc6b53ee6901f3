#include "client/reading/grouping.h"

#include "tests/client/reading/readingtest.h"

namespace
{
using sonavit::Card;
using sonavit::Flow;
using sonavit::Guid;
using testing::ElementsAre;
using testing::IsEmpty;

const Guid headset = *Guid::parse("{8C7ED206-3F8A-4827-B3AB-AE9E1FAEFC6C}");
const Guid ownContainer = *Guid::parse("{00000000-0000-0000-FFFF-FFFFFFFFFFFF}");

/// A reading without platform objects.
reading::EndpointReading endpoint(const std::string& id, Flow flow)
{
    reading::EndpointReading reading;
    reading.content.id = sonavit::EndpointId(id);
    reading.content.flow = flow;
    return reading;
}

reading::EndpointReading endpoint(const std::string& id, Flow flow, const std::string& path)
{
    reading::EndpointReading reading = endpoint(id, flow);
    reading.content.instancePath = path;
    return reading;
}

std::vector<std::string> idsOf(const Card& card)
{
    std::vector<std::string> ids;
    for (const sonavit::Endpoint& each : card.endpoints())
        ids.push_back(each.id().text());
    return ids;
}

class Grouping : public ReadingTest
{
protected:
    std::vector<Card> group(const std::vector<reading::EndpointReading>& readings, const std::vector<Card>& former = {})
    {
        return reading::groupIntoCards(readings, former, m_parents);
    }

    reading::Parents m_parents;
};

TEST_F(Grouping, PutsEndpointsWithOnePathIntoOneCardOutputsFirst)
{
    const std::vector<Card> cards =
        group({endpoint("in 1", Flow::input, "{1}.A"), endpoint("out 1", Flow::output, "{1}.A"),
               endpoint("in 2", Flow::input, "{1}.A"), endpoint("out 2", Flow::output, "{1}.A")});

    ASSERT_EQ(1u, cards.size());
    EXPECT_EQ("{1}.A", cards[0].id().text());
    EXPECT_EQ("{1}.A", cards[0].instancePath());
    EXPECT_THAT(idsOf(cards[0]), ElementsAre("out 1", "out 2", "in 1", "in 2"));
}

TEST_F(Grouping, ComparesPathsExactly)
{
    EXPECT_EQ(2u, group({endpoint("1", Flow::output, "{1}.A"), endpoint("2", Flow::output, "{1}.a")}).size());
}

TEST_F(Grouping, BeginsWithTheCardsThatHaveInputs)
{
    const std::vector<Card> cards = group({endpoint("1", Flow::output, "{1}.A"), endpoint("2", Flow::output, "{1}.B"),
                                           endpoint("3", Flow::output, "{1}.C"), endpoint("4", Flow::input, "{1}.C"),
                                           endpoint("5", Flow::input, "{1}.D"), endpoint("6", Flow::input, "{1}.B")});

    ASSERT_EQ(4u, cards.size());
    EXPECT_EQ("{1}.C", cards[0].id().text());
    EXPECT_EQ("{1}.D", cards[1].id().text());
    EXPECT_EQ("{1}.B", cards[2].id().text());
    EXPECT_EQ("{1}.A", cards[3].id().text());
}

TEST_F(Grouping, TakesTheContainerWithoutAPath)
{
    reading::EndpointReading earphones = endpoint("1", Flow::output);
    reading::EndpointReading microphone = endpoint("2", Flow::input);
    earphones.content.container = microphone.content.container = headset;
    earphones.adapter = "adapter 1";
    microphone.adapter = "adapter 2";

    const std::vector<Card> cards = group({earphones, microphone});

    ASSERT_EQ(1u, cards.size());
    EXPECT_EQ(headset.text(), cards[0].id().text());
    EXPECT_FALSE(cards[0].instancePath());
    EXPECT_EQ(headset, cards[0].container());
}

TEST_F(Grouping, TakesTheAdapterIfTheContainerIsTheComputerOrNull)
{
    reading::EndpointReading first = endpoint("1", Flow::output);
    reading::EndpointReading second = endpoint("2", Flow::input);
    reading::EndpointReading third = endpoint("3", Flow::input);
    first.content.container = ownContainer;
    second.content.container = Guid();
    third.content.container = ownContainer;
    first.adapter = "{2}.Adapter";
    second.adapter = "{2}.ADAPTER";
    third.adapter = "{2}.Other";

    const std::vector<Card> cards = group({first, second, third});

    ASSERT_EQ(2u, cards.size());
    EXPECT_THAT(idsOf(cards[0]), ElementsAre("1", "2"));
    EXPECT_THAT(idsOf(cards[1]), ElementsAre("3"));
    EXPECT_EQ("{2}.Other", cards[1].id().text());
    EXPECT_FALSE(cards[0].container()) << "the two do not share one";
}

TEST_F(Grouping, MakesAnyOtherEndpointACardOfItsOwn)
{
    reading::EndpointReading joined = endpoint("2", Flow::input);
    joined.adapter = "";

    const std::vector<Card> cards = group({endpoint("1", Flow::output), joined});

    ASSERT_EQ(2u, cards.size());
    EXPECT_EQ("2", cards[0].id().text());
    EXPECT_EQ("1", cards[1].id().text());
}

TEST_F(Grouping, DoesNotMixKindsThatHaveTheSameText)
{
    reading::EndpointReading joined = endpoint("1", Flow::output);
    joined.adapter = "same";

    EXPECT_EQ(3u, group({endpoint("2", Flow::output, "same"), joined, endpoint("same", Flow::output)}).size());
}

TEST_F(Grouping, NamesACardAfterItsFirstEndpointThatKnowsTheDevice)
{
    reading::EndpointReading nameless = endpoint("1", Flow::output, "{1}.A");
    nameless.content.description = "Speakers";
    reading::EndpointReading named = endpoint("2", Flow::input, "{1}.A");
    named.content.interfaceName = "USB Audio";

    EXPECT_EQ("USB Audio", group({nameless, named})[0].title());
    EXPECT_EQ("Unnamed card", group({nameless})[0].title());
}

TEST_F(Grouping, TakesTheInstanceIdBetweenTheFullStopsOfThePath)
{
    const auto instanceId = [&](const std::string& path)
    { return group({endpoint("1", Flow::output, path)})[0].instanceId().value_or("-"); };

    EXPECT_EQ("USB\\VID_1", instanceId("{1}.USB\\VID_1"));
    EXPECT_EQ("USB\\VID_1", instanceId("{1}.USB\\VID_1.2"));
    EXPECT_EQ("b", instanceId("..a..b.c"));
    EXPECT_EQ("-", instanceId("USB\\VID_1"));
    EXPECT_EQ("-", instanceId("{1}."));
    EXPECT_EQ("-", instanceId("..."));
}

TEST_F(Grouping, HasNoParentOfADeviceThatTheSystemDoesNotKnow)
{
    const std::vector<Card> cards = group({endpoint("1", Flow::output, "{1}.USB\\X")});

    EXPECT_FALSE(cards[0].parent());
    EXPECT_THAT(cards[0].problems(), IsEmpty());
}

TEST_F(Grouping, TakesTheBusFromAnyEndpointAndSaysWhyThereIsNone)
{
    reading::EndpointReading failing = endpoint("1", Flow::output, "{1}.A");
    failing.busProblems = {sonavit::Problem::ofCall("IPropertyStore::GetValue(enumeratorName)", "1", E_FAIL)};
    reading::EndpointReading knowing = endpoint("2", Flow::output, "{1}.A");
    knowing.bus = "USB";

    const Card both = group({failing, knowing})[0];
    const Card one = group({failing})[0];

    EXPECT_EQ("USB", both.bus());
    EXPECT_THAT(both.problems(), IsEmpty());
    EXPECT_FALSE(one.bus());
    EXPECT_EQ(failing.busProblems, one.problems());
}

/// A failing property of one endpoint takes nothing from the card.
TEST_F(Grouping, HasTheContainerOfTheEndpointsWhoseContainerCanBeRead)
{
    reading::EndpointReading unread = endpoint("out", Flow::output, "{1}.A");
    unread.propertyProblems.push_back(
        {sonavit::EndpointField::container,
         sonavit::Problem::ofCall("IPropertyStore::GetValue(containerId)", "out", static_cast<std::int32_t>(E_ABORT))});
    reading::EndpointReading one = endpoint("in", Flow::input, "{1}.A");
    one.content.container = headset;
    const reading::EndpointReading without = endpoint("other", Flow::input, "{1}.A");

    EXPECT_EQ(headset, group({unread, one}).at(0).container());
    EXPECT_EQ(std::nullopt, group({unread}).at(0).container());
    EXPECT_EQ(std::nullopt, group({unread, one, without}).at(0).container());
}

TEST_F(Grouping, SharesACardWhoseTitleContainsControlCharacters)
{
    reading::EndpointReading one = endpoint("out", Flow::output, "{1}.A");
    one.content.interfaceName = "Evil\nCard";
    const std::vector<Card> before = group({one});

    const std::vector<Card> after = group({one}, before);

    EXPECT_EQ("Evil\xEF\xBF\xBD"
              "Card",
              after.at(0).title());
    EXPECT_EQ(&before.at(0).content(), &after.at(0).content());
}

TEST_F(Grouping, SharesWhatDidNotChange)
{
    start("desktop");
    Everything all = readEverything();
    const std::vector<Card> former = group(all.listing.endpoints);
    const sonavit::EndpointId changed = former[1].endpoints()[0].id();
    for (reading::EndpointReading& each : all.listing.endpoints)
    {
        if (each.content.id == changed)
            each.content.description = "Renamed";
    }

    const std::vector<Card> cards = group(all.listing.endpoints, former);

    ASSERT_EQ(former.size(), cards.size());
    for (std::size_t index = 0; index < cards.size(); ++index)
        EXPECT_EQ(index != 1, &cards[index].content() == &former[index].content()) << index;
    for (std::size_t index = 0; index < cards[1].endpoints().size(); ++index)
        EXPECT_EQ(index != 0, &cards[1].endpoints()[index].content() == &former[1].endpoints()[index].content());
    EXPECT_EQ("Renamed", cards[1].endpoints()[0].description());
}

TEST_F(Grouping, NoticesAChangeOfEachPartOfAnEndpoint)
{
    using Content = sonavit::Endpoint::Content;
    const std::vector<void (*)(Content&)> changes = {
        [](Content& content) { content.description = "new"; },
        [](Content& content) { content.interfaceName = "new"; },
        [](Content& content) { content.state = sonavit::State::disabled; },
        [](Content& content) { content.roles.add(sonavit::Role::console); },
        [](Content& content) { content.jacks.emplace_back(); },
        [](Content& content) { content.volume.emplace(); },
        [](Content& content) { content.format.emplace(); },
        [](Content& content) { content.speakers = 3; },
        [](Content& content) { content.waveId = 0; },
        [](Content& content) { content.directSoundId = headset; },
        [](Content& content) { content.driverNode = "new"; },
        [](Content& content) { content.container = headset; },
        [](Content& content) { content.incarnation = 1; },
        [](Content& content) {
            content.problems.push_back({sonavit::EndpointField::state, sonavit::Problem::ofCall("call", "", E_FAIL)});
        }};
    const reading::EndpointReading before = endpoint("1", Flow::output, "{1}.A");
    const std::vector<Card> former = group({before});

    for (std::size_t index = 0; index < changes.size(); ++index)
    {
        reading::EndpointReading after = before;
        changes[index](after.content);
        EXPECT_EQ(after.content.problems, group({after}, former)[0].endpoints()[0].content().problems) << index;
        EXPECT_NE(former, group({after}, former)) << index;
    }
    EXPECT_EQ(former, group({before}, former));
}

TEST_F(Grouping, NoticesAChangeOfTheCardAlone)
{
    reading::EndpointReading known = endpoint("1", Flow::output, "{1}.A");
    const std::vector<Card> former = group({known});

    known.bus = "USB";

    EXPECT_EQ("USB", group({known}, former)[0].bus());
}
}
