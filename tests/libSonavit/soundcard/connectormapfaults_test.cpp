// The graph of connectors on a platform whose calls fail, throw, or succeed without a result.
#include "tests/libSonavit/endpointdeviceenumerator/supportendpoints.h"
#include "tests/libSonavit/soundcard/supportgraphcard.h"
#include "tests/libSonavit/soundcard/supportscriptedparts.h"

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
struct ConnectorMapFaults : support::GraphCardTest
{
    /// An endpoint with two connectors, whose first one the platform does not give.
    sim::PlannedFault startWithoutTheFirstConnector()
    {
        graph.endpoint("out", 2);
        graph.adapter("board", 1);
        graph.join("out/2", "board/1");
        start();
        return simulation().faults().succeedWithNull("IDeviceTopology::GetConnector").on("out").with("0");
    }
};
}

TEST_F(ConnectorMapFaults, LinksTo0xFFFFFFFFWhereTheFarDeviceCannotBeOpened)
{
    graph.endpoint("out", 2);
    graph.adapter("board", 1).openable = false;
    graph.join("out/1", "board/1").path("out/1", "out/2");

    SoundCard& card = discovered();

    EXPECT_EQ(0u, card.m_internalDevices->size());
    EXPECT_THAT(nodesOf(card), ElementsAre("out/1", "out/2"));
    EXPECT_THAT(linksOf(card, 0), ElementsAre(nowhere, 1u));
    EXPECT_THAT(linksOf(card, 1), ElementsAre(0u));
}

TEST_F(ConnectorMapFaults, RegistersTheTopologyOnThisSideOfAConnectorWhoseFarDeviceCannotBeOpened)
{
    graph.endpoint("out");
    graph.adapter("board", 2);
    graph.machine.adapters[0].topology->deviceId = "board under another name";
    graph.join("out/1", "board/1", false);
    graph.machine.joins.push_back({"board/1", "", "nobody", true});
    start();
    const sim::PlannedFault hidden = simulation().faults().fail("IDeviceTopology::GetConnector").on("board").at(2);
    SoundCard& card = discovered();

    EXPECT_EQ(1u, hidden.fired()) << "the adapter's own snapshot lacks its second connector";
    EXPECT_THAT(nodesOf(card), ElementsAre("out/1", "board/1", "board/2")) << "the topology behind board/1 has it";
    EXPECT_EQ(qor::String("Plug board/2"), card.m_connectorMap[2].connector.name());
}

TEST_F(ConnectorMapFaults, RegistersItsOwnSideOnceForTwoConnectorsToADeviceThatCannotBeOpened)
{
    graph.endpoint("out", 2).topology->deviceId = "out under another name";
    graph.machine.joins.push_back({"out/1", "", "nobody", true});
    graph.machine.joins.push_back({"out/2", "", "nobody", true});

    discovered();

    EXPECT_EQ(2u + 2u, simulation().journal().count("IPart::GetTopologyObject")) << "one a node in each pass";
    const std::vector<std::string> labels = log.entered(cardChannel);
    EXPECT_EQ(2, std::count(labels.begin(), labels.end(), topologyLabel));
}

TEST_F(ConnectorMapFaults, TakesFarDeviceAndPeerThatCameWithAFailure)
{
    graph.adapter("board", 1);
    start();
    support::ScriptedConnector connector("out/1");
    connector.farDevice = "board";
    connector.peer = simulation().connector("board/1");
    {
        AudioDevice endpoint;
        endpoint.m_topology.m_connectors.append(AudioComponent<IConnector>(connector.handle()));
        SoundCard card;
        card.m_playbackDevices->append(endpoint);

        card.initializeConnectorMap();

        EXPECT_THAT(idsOf(*card.m_internalDevices), ElementsAre("board"));
        EXPECT_THAT(nodesOf(card), ElementsAre("out/1", "board/1"));
        EXPECT_THAT(linksOf(card, 0), ElementsAre(1u));
        endModule(); // while the connector exists
    }
    EXPECT_EQ(1u, connector.references);
    EXPECT_EQ(1u, connector.part.references);
}

TEST_F(ConnectorMapFaults, PassesOverAConnectorThatThePlatformReportedAndDidNotGive)
{
    const sim::PlannedFault missing = startWithoutTheFirstConnector();
    SoundCard& card = discovered();

    EXPECT_GT(missing.fired(), 0u);
    EXPECT_THAT(nodesOf(card), ElementsAre("", "out/2", "board/1"));
    EXPECT_THAT(linksOf(card), ElementsAre(IsEmpty(), ElementsAre(2u), ElementsAre(1u)));
    EXPECT_THAT(log.texts(cardChannel), IsEmpty());
}

TEST_F(ConnectorMapFaults, LinksNoConnectorThatThePlatformDidNotGiveWhileTheLogIsSilent)
{
    const sim::PlannedFault missing = startWithoutTheFirstConnector();
    qor::LogFactory::setPriority(qor::LoggerPriority::LOG_ERROR);
    SoundCard& card = discovered();

    EXPECT_GT(missing.fired(), 0u);
    EXPECT_THAT(nodesOf(card), ElementsAre("", "out/2", "board/1"));
    EXPECT_THAT(linksOf(card), ElementsAre(IsEmpty(), ElementsAre(2u), ElementsAre(1u)));
}

TEST_F(ConnectorMapFaults, MakesNothingOfASuccessWithoutFarDeviceAndPeer)
{
    graph.endpoint("out");
    graph.adapter("board", 1);
    graph.join("out/1", "board/1");
    SoundCard& card = discovered();
    const sim::PlannedFault id = simulation().faults().succeedWithNull("IConnector::GetDeviceIdConnectedTo");
    const sim::PlannedFault peer = simulation().faults().succeedWithNull("IConnector::GetConnectedTo");
    card.m_internalDevices->clear();

    card.initializeConnectorMap();

    EXPECT_GT(id.fired(), 0u);
    EXPECT_GT(peer.fired(), 0u);
    EXPECT_THAT(nodesOf(card), ElementsAre("out/1"));
    EXPECT_THAT(linksOf(card, 0), IsEmpty());
}

TEST_F(ConnectorMapFaults, ReleasesAPeerWhoseNearSideThrowsAtItsRelease)
{
    graph.endpoint("out");
    graph.adapter("board", 1);
    graph.join("out/1", "board/1");
    SoundCard& card = discovered();
    card.m_internalDevices->clear();
    throwAtTheReleaseAfter("IConnector::GetConnectedTo", "out/1");

    EXPECT_THROW(card.initializeConnectorMap(), sim::InjectedException);

    cards.clear();
    EXPECT_EQ(0u, simulation().census().byObject.count("IConnector board/1")) << simulation().census();
}
