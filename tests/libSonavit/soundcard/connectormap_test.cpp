#include "tests/libSonavit/endpointdeviceenumerator/supportendpoints.h"
#include "tests/libSonavit/soundcard/supportgraphcard.h"

#include <algorithm>

using support::cardChannel;
using support::idsOf;
using support::linksOf;
using support::nodesOf;
using support::nowhere;
using support::topologyLabel;
using testing::ElementsAre;
using testing::IsEmpty;

namespace
{
struct ConnectorMap : support::GraphCardTest
{
};
}

TEST_F(ConnectorMap, IsEmptyOnACardWithoutEndpointsAndLeavesTheInternalDevicesAlone)
{
    start();
    SoundCard card;
    card.m_internalDevices->append(AudioDevice());

    card.initializeConnectorMap();

    EXPECT_EQ(0u, card.m_connectorMap.size());
    EXPECT_EQ(1u, card.m_internalDevices->size());
}

TEST_F(ConnectorMap, HasPlaybackConnectorsFirstThenRecordConnectorsThenThoseOfTheDevicesBehindThem)
{
    graph.endpoint("mic", 1, eCapture);
    graph.endpoint("out", 2, eRender);
    graph.adapter("board", 2);
    graph.join("mic/1", "board/2").join("out/1", "board/1");

    SoundCard& card = discovered();

    EXPECT_THAT(nodesOf(card), ElementsAre("out/1", "out/2", "mic/1", "board/1", "board/2"));
    EXPECT_THAT(idsOf(*card.m_internalDevices), ElementsAre("board"));
}

TEST_F(ConnectorMap, RecordsAJoinOnceFromEachOfItsEnds)
{
    graph.endpoint("out");
    graph.adapter("board", 1);
    graph.join("out/1", "board/1");

    SoundCard& card = discovered();

    EXPECT_THAT(linksOf(card, 0), ElementsAre(1u));
    EXPECT_THAT(linksOf(card, 1), ElementsAre(0u));
}

TEST_F(ConnectorMap, HasOneNodeForAnAdapterConnectorThatTwoEndpointsShareAndLinksItBackOnlyToThePeerItNames)
{
    graph.endpoint("first");
    graph.endpoint("second");
    graph.adapter("board", 1);
    graph.join("first/1", "board/1").join("second/1", "board/1");

    SoundCard& card = discovered();

    EXPECT_THAT(nodesOf(card), ElementsAre("first/1", "second/1", "board/1"));
    EXPECT_THAT(linksOf(card, 0), ElementsAre(2u));
    EXPECT_THAT(linksOf(card, 1), ElementsAre(2u));
    EXPECT_THAT(linksOf(card, 2), ElementsAre(0u));
}

TEST_F(ConnectorMap, HasOneNodeForConnectorsThatDifferOnlyInTheCaseOfTheirId)
{
    graph.endpoint("out");
    graph.adapter("board", 2);
    graph.machine.adapters[0].topology->connectors[1].id = "BOARD/1";
    graph.join("out/1", "BOARD/1");

    SoundCard& card = discovered();

    EXPECT_THAT(nodesOf(card), ElementsAre("out/1", "board/1"));
    EXPECT_THAT(linksOf(card, 0), ElementsAre(1u));
}

TEST_F(ConnectorMap, TakesADeviceThatSeveralConnectorsLeadToOnce)
{
    graph.endpoint("first");
    graph.endpoint("second");
    graph.adapter("board", 2);
    graph.join("first/1", "board/1").join("second/1", "board/2");

    SoundCard& card = discovered();

    EXPECT_THAT(idsOf(*card.m_internalDevices), ElementsAre("board"));
    EXPECT_THAT(nodesOf(card), ElementsAre("first/1", "second/1", "board/1", "board/2"));
}

TEST_F(ConnectorMap, TakesADeviceOnceThatConnectorsNameInDifferentCase)
{
    graph.endpoint("first");
    graph.endpoint("second");
    graph.adapter("board", 2);
    graph.join("first/1", "board/1").join("second/1", "board/2");
    graph.machine.joins[1].toDevice = "BOARD";

    EXPECT_THAT(idsOf(*discovered().m_internalDevices), ElementsAre("board"));
}

TEST_F(ConnectorMap, RecordsAJoinBetweenTwoEndpointsWithoutTakingEitherForAnInternalDevice)
{
    graph.endpoint("first");
    graph.endpoint("second");
    graph.join("first/1", "second/1");

    SoundCard& card = discovered();

    EXPECT_EQ(0u, card.m_internalDevices->size());
    EXPECT_THAT(linksOf(card, 0), ElementsAre(1u));
    EXPECT_THAT(linksOf(card, 1), ElementsAre(0u));
}

TEST_F(ConnectorMap, LeavesAConnectorWithoutAPeerWithoutLinks)
{
    graph.endpoint("out");

    SoundCard& card = discovered();

    EXPECT_THAT(nodesOf(card), ElementsAre("out/1"));
    EXPECT_THAT(linksOf(card, 0), IsEmpty());
}

TEST_F(ConnectorMap, FollowsAChainOfAdaptersToItsEnd)
{
    graph.endpoint("out");
    for (const char* id : {"a", "b", "c"})
        graph.adapter(id, 2);
    graph.join("out/1", "a/1").join("a/2", "b/1").join("b/2", "c/1");

    SoundCard& card = discovered();

    EXPECT_THAT(nodesOf(card), ElementsAre("out/1", "a/1", "a/2", "b/1", "b/2", "c/1", "c/2"));
    EXPECT_THAT(idsOf(*card.m_internalDevices), ElementsAre("a", "b", "c"));
}

TEST_F(ConnectorMap, HasJoinsAheadOfSignalPathsInTheLinksOfANodeAndKeepsRepeats)
{
    graph.endpoint("out", 3);
    graph.join("out/1", "out/2", true).path("out/2", "out/1").path("out/1", "out/3");

    SoundCard& card = discovered();

    EXPECT_THAT(linksOf(card, 0), ElementsAre(1u, 1u, 2u)) << "the join, then the two paths";
    EXPECT_THAT(linksOf(card, 1), ElementsAre(0u, 0u));
    EXPECT_THAT(linksOf(card, 2), ElementsAre(0u));
}

TEST_F(ConnectorMap, LosesTheAdaptersWhenItIsBuiltASecondTime)
{
    graph.endpoint("out");
    graph.adapter("board", 1);
    graph.join("out/1", "board/1");
    SoundCard& card = discovered();

    card.initializeConnectorMap();

    EXPECT_THAT(nodesOf(card), ElementsAre("out/1"));
    EXPECT_THAT(linksOf(card, 0), ElementsAre(nowhere));
    EXPECT_EQ(1u, card.m_internalDevices->size());
}

TEST_F(ConnectorMap, IsCopiedWithReferencesOfItsOwnAndIsNotSharedWithTheCopy)
{
    graph.endpoint("out");
    SoundCard& card = discovered();
    const long before = simulation().census().references("IConnector");

    SoundCard copy(card);

    EXPECT_GT(simulation().census().references("IConnector"), before);
    copy.m_connectorMap.clear();
    EXPECT_EQ(1u, card.m_connectorMap.size());
}

TEST_F(ConnectorMap, LogsItsThreeOperations)
{
    graph.endpoint("out");

    discovered();

    std::vector<std::string> labels;
    for (const std::string& label : log.entered(cardChannel))
    {
        if (label.find("onnector") != std::string::npos)
            labels.push_back(label);
    }
    EXPECT_THAT(labels, ElementsAre("SoundCard::initializeConnectorMap",
                                    "SoundCard::registerConnectors(const Array<AudioDevice>& deviceList)",
                                    "SoundCard::registerConnectors(const AudioDeviceTopology& deviceTopology)",
                                    "SoundCard::registerConnectors(const Array<AudioDevice>& deviceList)"));
}

TEST_F(ConnectorMap, TakesAnEndpointForAnInternalDeviceWhenAConnectorNamesItInAnotherCase)
{
    graph.endpoint("first");
    graph.endpoint("second");
    graph.join("first/1", "second/1", false);
    graph.machine.joins[0].toDevice = "SECOND";

    SoundCard& card = discovered();

    EXPECT_THAT(idsOf(*card.m_internalDevices), ElementsAre("second")) << "known ids are compared exactly";
    EXPECT_THAT(nodesOf(card), ElementsAre("first/1", "second/1"));
    EXPECT_THAT(linksOf(card, 0), ElementsAre(1u));
}

TEST_F(ConnectorMap, RegistersAllInternalDevicesAgainForEachNewOne)
{
    graph.endpoint("out");
    for (const char* id : {"a", "b", "c"})
        graph.adapter(id, 2);
    graph.join("out/1", "a/1").join("a/2", "b/1").join("b/2", "c/1");

    discovered();

    const std::vector<std::string> labels = log.entered(cardChannel);
    EXPECT_EQ(1 + 1 + 2 + 3, std::count(labels.begin(), labels.end(), topologyLabel));
}
