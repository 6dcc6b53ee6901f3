#include "tests/simulator/bench.h"

namespace
{
using bench::Held;
using bench::poison;
using bench::textOf;

class SimulatedConnector : public bench::SimulationTest
{
protected:
    std::string peerOf(const std::string& id)
    {
        Held<IConnector> peer;
        EXPECT_EQ(S_OK, connector(id)->GetConnectedTo(peer.put()));
        return textOf(peer.as<IPart>(), &IPart::GetGlobalId);
    }

    static void unjoin(sim::Machine& machine) { machine.joins.clear(); }
};

using SimulatedConnectorJoin = SimulatedConnector;

TEST_F(SimulatedConnector, TellsItsTypeAndDirection)
{
    ConnectorType type = Unknown_Connector;
    DataFlow direction = In;
    EXPECT_EQ(S_OK, connector(speakerJack)->GetType(&type));
    EXPECT_EQ(S_OK, connector(speakerJack)->GetDataFlow(&direction));
    EXPECT_EQ(Physical_External, type);
    EXPECT_EQ(Out, direction);
}

TEST_F(SimulatedConnectorJoin, LeadsToTheFarSideAndBack)
{
    EXPECT_EQ(speakerJack, peerOf(speakerConnector));
    EXPECT_EQ(speakerConnector, peerOf(speakerJack));
    EXPECT_EQ(codecId, textOf(connector(speakerConnector), &IConnector::GetDeviceIdConnectedTo));
    EXPECT_EQ(speakerJack, textOf(connector(speakerConnector), &IConnector::GetConnectorIdConnectedTo));
    BOOL connected = FALSE;
    EXPECT_EQ(S_OK, connector(speakerConnector)->IsConnected(&connected));
    EXPECT_EQ(TRUE, connected);
}

TEST_F(SimulatedConnectorJoin, FailsWithNullWhereNothingIsConnected)
{
    simulation.change(unjoin);
    const Held<IConnector> lonely = connector(speakerConnector);

    auto* peer = poison<IConnector>();
    EXPECT_EQ(E_NOTFOUND, lonely->GetConnectedTo(&peer));
    EXPECT_EQ(nullptr, peer);
    auto* text = poison<WCHAR>();
    EXPECT_EQ(E_NOTFOUND, lonely->GetDeviceIdConnectedTo(&text));
    EXPECT_EQ(nullptr, text);
    text = poison<WCHAR>();
    EXPECT_EQ(E_NOTFOUND, lonely->GetConnectorIdConnectedTo(&text));
    EXPECT_EQ(nullptr, text);
    BOOL connected = TRUE;
    EXPECT_EQ(S_OK, lonely->IsConnected(&connected));
    EXPECT_EQ(FALSE, connected);
    EXPECT_EQ(E_POINTER, lonely->GetConnectedTo(nullptr));
}

TEST_F(SimulatedConnectorJoin, CanBeKnownOnOneSideOnly)
{
    simulation.change([&](sim::Machine& machine) { machine.joins = {{speakerConnector, speakerJack, {}, false}}; });

    EXPECT_EQ(speakerJack, peerOf(speakerConnector));
    auto* peer = poison<IConnector>();
    EXPECT_EQ(E_NOTFOUND, connector(speakerJack)->GetConnectedTo(&peer));
    EXPECT_EQ(nullptr, peer);
}

TEST_F(SimulatedConnectorJoin, CanNameAFarDeviceWhoseConnectorIsNotToBeHad)
{
    simulation.change([&](sim::Machine& machine) { machine.joins = {{speakerConnector, "", "{2}.gone", true}}; });
    const Held<IConnector> connected = connector(speakerConnector);

    EXPECT_EQ("{2}.gone", textOf(connected, &IConnector::GetDeviceIdConnectedTo));
    auto* text = poison<WCHAR>();
    EXPECT_EQ(E_NOTFOUND, connected->GetConnectorIdConnectedTo(&text));
    EXPECT_EQ(nullptr, text);
    auto* peer = poison<IConnector>();
    EXPECT_EQ(E_NOTFOUND, connected->GetConnectedTo(&peer));
    EXPECT_EQ(nullptr, peer);
}

TEST_F(SimulatedConnectorJoin, CountsTheFirstJoinOfAConnector)
{
    simulation.change(
        [&](sim::Machine& machine) {
            machine.joins = {{speakerConnector, speakerJack, {}, true}, {microphoneJack, speakerJack, {}, true}};
        });

    EXPECT_EQ(speakerConnector, peerOf(speakerJack));
    EXPECT_EQ(speakerJack, peerOf(microphoneJack));
}

TEST_F(SimulatedConnectorJoin, CannotBeChangedByUsers)
{
    EXPECT_EQ(E_NOTIMPL, connector(speakerConnector)->Disconnect());
    EXPECT_EQ(E_NOTIMPL, connector(speakerConnector)->ConnectTo(connector(lineInJack).get()));
    EXPECT_EQ(speakerJack, peerOf(speakerConnector));
}
}
