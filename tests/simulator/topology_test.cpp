#include "tests/simulator/bench.h"

namespace
{
using bench::Held;
using bench::poison;
using bench::textOf;
using testing::ElementsAre;

class SimulatedTopology : public bench::SimulationTest
{
protected:
    std::vector<std::string> idsOf(const Held<IPartsList>& list)
    {
        UINT count = 0;
        EXPECT_EQ(S_OK, list->GetCount(&count));
        std::vector<std::string> ids;
        for (UINT index = 0; index < count; ++index)
        {
            Held<IPart> item;
            EXPECT_EQ(S_OK, list->GetPart(index, item.put()));
            ids.push_back(textOf(item, &IPart::GetGlobalId));
        }
        return ids;
    }

    Held<IDeviceTopology> codec = topology(codecId);
};

using SimulatedTopologyParts = SimulatedTopology;
using SimulatedTopologyPath = SimulatedTopology;

TEST_F(SimulatedTopologyParts, CountsAndGivesConnectorsAndSubunitsInOrder)
{
    UINT connectors = 0;
    UINT subunits = 0;
    EXPECT_EQ(S_OK, codec->GetConnectorCount(&connectors));
    EXPECT_EQ(S_OK, codec->GetSubunitCount(&subunits));
    EXPECT_EQ(6u, connectors);
    EXPECT_EQ(3u, subunits);

    Held<IConnector> connector;
    EXPECT_EQ(S_OK, codec->GetConnector(0, connector.put()));
    EXPECT_EQ(speakerJack, textOf(connector.as<IPart>(), &IPart::GetGlobalId));
    Held<ISubunit> subunit;
    EXPECT_EQ(S_OK, codec->GetSubunit(2, subunit.put()));
    EXPECT_EQ(selectorId, textOf(subunit.as<IPart>(), &IPart::GetGlobalId));
}

TEST_F(SimulatedTopologyParts, RefusesIndexesPastTheEndAndStoresNull)
{
    auto* connector = poison<IConnector>();
    EXPECT_EQ(E_INVALIDARG, codec->GetConnector(6, &connector));
    EXPECT_EQ(nullptr, connector);
    auto* subunit = poison<ISubunit>();
    EXPECT_EQ(E_INVALIDARG, codec->GetSubunit(3, &subunit));
    EXPECT_EQ(nullptr, subunit);
    EXPECT_EQ(E_POINTER, codec->GetConnectorCount(nullptr));
    EXPECT_EQ(E_POINTER, codec->GetConnector(0, nullptr));
}

TEST_F(SimulatedTopologyParts, FindsPartsByTheirLocalId)
{
    const UINT localId = simulation.machine().part(selectorId)->localId;

    Held<IPart> found;
    EXPECT_EQ(S_OK, codec->GetPartById(localId, found.put()));
    EXPECT_EQ(selectorId, textOf(found, &IPart::GetGlobalId));
    EXPECT_EQ(S_OK, codec->GetPartById(simulation.machine().part(lineInJack)->localId, found.put()));
    EXPECT_EQ(lineInJack, textOf(found, &IPart::GetGlobalId));

    auto* unknown = poison<IPart>();
    EXPECT_EQ(E_NOTFOUND, codec->GetPartById(0x7777, &unknown));
    EXPECT_EQ(nullptr, unknown);
}

TEST_F(SimulatedTopologyParts, NamesTheDeviceThatTheMachineSays)
{
    EXPECT_EQ(codecId, textOf(codec, &IDeviceTopology::GetDeviceId));

    simulation.change([&](sim::Machine& machine) { machine.adapter(codecId)->topology->deviceId.reset(); });

    EXPECT_EQ("null", textOf(codec, &IDeviceTopology::GetDeviceId));
}

// Microsoft's documentation of IDeviceTopology::GetSignalPath: the part at which the path ends is item 0 of the list,
// the part at which it begins the last item.
TEST_F(SimulatedTopologyPath, IsListedFromItsEndToItsBeginning)
{
    Held<IPartsList> path;
    ASSERT_EQ(S_OK, codec->GetSignalPath(part(speakerStream).get(), part(speakerJack).get(), TRUE, path.put()));

    EXPECT_THAT(idsOf(path), ElementsAre(speakerJack, volumeId, muteId, speakerStream));
}

TEST_F(SimulatedTopologyPath, DoesNotLeadBack)
{
    auto* path = poison<IPartsList>();
    EXPECT_EQ(E_NOTFOUND, codec->GetSignalPath(part(speakerJack).get(), part(speakerStream).get(), TRUE, &path));
    EXPECT_EQ(nullptr, path);
}

TEST_F(SimulatedTopologyPath, IsNotFoundInAnotherDevicesTopology)
{
    const Held<IDeviceTopology> speaker = topology(speakerId);

    auto* path = poison<IPartsList>();
    EXPECT_EQ(E_NOTFOUND, speaker->GetSignalPath(part(speakerStream).get(), part(speakerJack).get(), TRUE, &path));
    EXPECT_EQ(nullptr, path);
    EXPECT_EQ(E_NOTFOUND, codec->GetSignalPath(part(speakerConnector).get(), part(speakerJack).get(), TRUE, &path));
}

TEST_F(SimulatedTopologyPath, IsRefusedWhereItIsMixedAndTheCallerSaysSo)
{
    simulation.change(
        [&](sim::Machine& machine)
        {
            for (sim::SignalPath& path : machine.adapter(codecId)->topology->signalPaths)
                path.mixed = true;
        });

    Held<IPartsList> path;
    EXPECT_EQ(E_NOTFOUND, codec->GetSignalPath(part(speakerStream).get(), part(speakerJack).get(), TRUE, path.put()));
    EXPECT_EQ(S_OK, codec->GetSignalPath(part(speakerStream).get(), part(speakerJack).get(), FALSE, path.put()));
}

TEST_F(SimulatedTopologyPath, IsNotFoundAfterTheMachineHasLostIt)
{
    simulation.change([&](sim::Machine& machine) { machine.adapter(codecId)->topology->signalPaths.clear(); });

    auto* path = poison<IPartsList>();
    EXPECT_EQ(E_NOTFOUND, codec->GetSignalPath(part(speakerStream).get(), part(speakerJack).get(), TRUE, &path));
    EXPECT_EQ(nullptr, path);
}

TEST_F(SimulatedTopologyPath, IsNotFoundToAPartOfAnotherDevice)
{
    simulation.change(
        [&](sim::Machine& machine) {
            machine.adapter(codecId)->topology->signalPaths = {{speakerStream, speakerConnector, {}, false}};
        });

    auto* path = poison<IPartsList>();
    EXPECT_EQ(E_NOTFOUND, codec->GetSignalPath(part(speakerStream).get(), part(speakerConnector).get(), FALSE, &path));
    EXPECT_EQ(nullptr, path);
    const Held<IDeviceTopology> speaker = topology(speakerId);
    EXPECT_EQ(E_NOTFOUND,
              speaker->GetSignalPath(part(speakerStream).get(), part(speakerConnector).get(), FALSE, &path));
}

TEST_F(SimulatedTopologyPath, RefusesNullPartsAndPartsOfOtherProviders)
{
    const Held<IPart> jack = part(speakerJack);
    auto* path = poison<IPartsList>();

    EXPECT_EQ(E_POINTER, codec->GetSignalPath(nullptr, jack.get(), TRUE, &path));
    EXPECT_EQ(nullptr, path);
    EXPECT_EQ(E_POINTER, codec->GetSignalPath(jack.get(), nullptr, TRUE, &path));
    EXPECT_EQ(E_POINTER, codec->GetSignalPath(jack.get(), jack.get(), TRUE, nullptr));
    bench::ClientListener foreign; // GetSignalPath calls nothing but QueryInterface, which this object refuses
    EXPECT_EQ(E_NOINTERFACE, codec->GetSignalPath(reinterpret_cast<IPart*>(&foreign), jack.get(), TRUE, &path));
    EXPECT_EQ(E_NOINTERFACE, codec->GetSignalPath(jack.get(), reinterpret_cast<IPart*>(&foreign), TRUE, &path));
    EXPECT_EQ(nullptr, path);
}

TEST_F(SimulatedTopologyPath, GivesAListThatRefusesAnIndexPastItsEnd)
{
    Held<IPartsList> path;
    ASSERT_EQ(S_OK, codec->GetSignalPath(part(speakerStream).get(), part(speakerJack).get(), TRUE, path.put()));

    auto* past = poison<IPart>();
    EXPECT_EQ(E_INVALIDARG, path->GetPart(4, &past));
    EXPECT_EQ(nullptr, past);
    EXPECT_EQ(E_POINTER, path->GetPart(0, nullptr));
    EXPECT_EQ(E_POINTER, path->GetCount(nullptr));
}
}
