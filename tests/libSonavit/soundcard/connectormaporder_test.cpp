#include "libSonavit/soundcard.h"

#include "tests/libSonavit/soundcard/supportgraphs.h"
#include "tests/support/librarytest.h"

using testing::ElementsAre;

namespace
{
struct ConnectorMapOrder : support::LibraryTest
{
    support::GraphMachine graph;

    /// The calls that distinguish the two passes, without those that read the parts of each snapshot.
    std::vector<std::string> passes()
    {
        std::vector<std::string> calls;
        for (const sim::JournalEntry& entry : simulation().journal().entries())
        {
            for (const char* operation :
                 {"IMMDeviceEnumerator::GetDevice", "IConnector::GetDeviceIdConnectedTo", "IConnector::GetConnectedTo",
                  "IPart::GetTopologyObject", "IDeviceTopology::GetSignalPath"})
            {
                if (entry.operation == operation)
                    calls.push_back(entry.call() + " on " + entry.object);
            }
        }
        return calls;
    }
};
}

TEST_F(ConnectorMapOrder, OpensTheFarDeviceOfEachNodeBeforeItAsksForTheFarConnectorAndThenTestsAllPairs)
{
    graph.endpoint("out");
    graph.adapter("board", 2);
    graph.join("out/1", "board/1").path("board/1", "board/2");
    run(graph.machine);
    {
        const qor::Array<SoundCard> filed = SoundCard::enumerateSystemSoundDevices();
        simulation().journal().clear();
        SoundCard card(filed[0]);
        card.m_internalDevices->clear();

        card.initializeConnectorMap();

        EXPECT_THAT(
            passes(),
            ElementsAre(
                "IConnector::GetDeviceIdConnectedTo() on out/1", "IMMDeviceEnumerator::GetDevice(board) on enumerator",
                "IConnector::GetConnectedTo() on out/1", "IConnector::GetDeviceIdConnectedTo() on board/1",
                "IMMDeviceEnumerator::GetDevice(out) on enumerator", "IConnector::GetConnectedTo() on out/1",
                "IConnector::GetConnectedTo() on board/1", "IConnector::GetDeviceIdConnectedTo() on board/2",
                "IMMDeviceEnumerator::GetDevice() on enumerator", "IPart::GetTopologyObject() on board/2",
                "IConnector::GetConnectedTo() on board/2", "IPart::GetTopologyObject() on out/1",
                "IDeviceTopology::GetSignalPath(out/1, board/1, 1) on out",
                "IDeviceTopology::GetSignalPath(board/1, out/1, 1) on out",
                "IDeviceTopology::GetSignalPath(out/1, board/2, 1) on out",
                "IDeviceTopology::GetSignalPath(board/2, out/1, 1) on out", "IPart::GetTopologyObject() on board/1",
                "IDeviceTopology::GetSignalPath(board/1, board/2, 1) on board",
                "IPart::GetTopologyObject() on board/2"));
    }
}

TEST_F(ConnectorMapOrder, AsksForEveryPairOfConnectorsInBothDirectionsWhereNoPathJoinsThem)
{
    for (const unsigned int connectors : {1u, 2u, 7u, 20u})
    {
        support::GraphMachine lone;
        lone.endpoint("out", connectors);
        sim::Simulation machine(lone.machine);
        {
            const qor::Array<SoundCard> cards = SoundCard::enumerateSystemSoundDevices();
        }
        const std::size_t pairs = connectors * (connectors - 1) / 2;
        EXPECT_EQ(2 * pairs, machine.journal().count("IDeviceTopology::GetSignalPath")) << connectors;
        endModule();
    }
}
