#include "tests/simulator/bench.h"

#include <map>
#include <sstream>
#include <string>
#include <vector>

namespace
{
using bench::Held;
using bench::taken;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::Pair;

class CensusOfSimulation : public bench::SimulationTest
{
protected:
    Held<IMMDevice> speaker = device(speakerId);
};

using CensusReferences = CensusOfSimulation;
using CensusTaskMemory = CensusOfSimulation;
using CensusDifference = CensusOfSimulation;

TEST_F(CensusReferences, AreCountedByInterfaceAndByObject)
{
    const Held<IMMDevice> again = device(speakerId);
    const Held<IMMEndpoint> endpoint = speaker.as<IMMEndpoint>();
    const Held<IPart> jack = part(speakerJack);

    const sim::Census census = simulation.census();

    EXPECT_THAT(census.byInterface, ElementsAre(Pair("IConnector", 1), Pair("IMMDevice", 3)));
    EXPECT_THAT(census.byObject, ElementsAre(Pair("IConnector " + speakerJack, 1), Pair("IMMDevice " + speakerId, 3)));
    EXPECT_THAT(census.objects, ElementsAre(Pair("IConnector", 1), Pair("IMMDevice", 2)));
    EXPECT_EQ(4, census.references());
    EXPECT_EQ(3, census.references("IMMDevice"));
    EXPECT_EQ(0, census.references("IPartsList"));
}

TEST_F(CensusReferences, AreThoseOfOneSimulationOnly)
{
    sim::Simulation other{sim::Machine()};

    EXPECT_TRUE(other.census().empty());
    EXPECT_FALSE(simulation.census().empty());
}

TEST_F(CensusTaskMemory, IsCountedUntilItIsFreed)
{
    LPWSTR id = nullptr;
    ASSERT_EQ(S_OK, speaker->GetId(&id));

    const sim::Census census = simulation.census();
    EXPECT_THAT(census.taskMemory, ElementsAre(Pair("IMMDevice::GetId " + speakerId, 1)));
    EXPECT_EQ(static_cast<long>(2 * (speakerId.size() + 1)), census.taskBytes);
    EXPECT_EQ(1, census.taskBlocks());

    EXPECT_EQ(speakerId, taken(id));
    EXPECT_EQ(0, simulation.census().taskBlocks());
}

TEST_F(CensusTaskMemory, IsThatOfOneSimulationOnly)
{
    const sim::Simulation other(simulation.machine());
    const Held<IMMDevice> its(other.device(speakerId));
    LPWSTR id = nullptr;
    ASSERT_EQ(S_OK, its->GetId(&id));

    EXPECT_EQ(1, other.census().taskBlocks());
    EXPECT_EQ(0, simulation.census().taskBlocks());

    taken(id);
}

TEST_F(CensusTaskMemory, IsGivenBackByPropVariantClear)
{
    Held<IPropertyStore> store;
    ASSERT_EQ(S_OK, speaker->OpenPropertyStore(STGM_READ, store.put()));
    const sim::Properties properties = simulation.machine().endpoint(speakerId)->properties;
    for (const sim::Property& property : properties)
    {
        PROPVARIANT value;
        PropVariantInit(&value);
        ASSERT_EQ(S_OK, store->GetValue(property.key, &value));
        const bool isOutside = value.vt == VT_LPWSTR || value.vt == VT_BLOB;
        EXPECT_EQ(isOutside ? 1 : 0, simulation.census().taskBlocks());

        EXPECT_EQ(S_OK, PropVariantClear(&value));

        EXPECT_EQ(VT_EMPTY, value.vt);
        EXPECT_EQ(0, simulation.census().taskBlocks());
    }
}

TEST_F(CensusDifference, HoldsWhatCameAndWhatWent)
{
    LPWSTR before = nullptr;
    speaker->GetId(&before);
    const sim::Census earlier = simulation.census();

    speaker->AddRef();
    const Held<IPart> jack = part(speakerJack);
    taken(before);
    const sim::Census difference = simulation.census() - earlier;

    EXPECT_THAT(difference.byInterface, ElementsAre(Pair("IConnector", 1), Pair("IMMDevice", 1)));
    EXPECT_THAT(difference.objects, ElementsAre(Pair("IConnector", 1)));
    EXPECT_THAT(difference.taskMemory, ElementsAre(Pair("IMMDevice::GetId " + speakerId, -1)));
    EXPECT_FALSE(difference.empty());
    speaker->Release();
}

TEST_F(CensusDifference, IsEmptyWhenAllWentBack)
{
    const sim::Census earlier = simulation.census();
    {
        const Held<IPart> jack = part(speakerJack);
        EXPECT_NE(earlier, simulation.census());
    }

    EXPECT_TRUE((simulation.census() - earlier).empty());
    EXPECT_EQ(earlier, simulation.census());
}

TEST_F(CensusDifference, IsNotEmptyForAnySingleCount)
{
    const std::map<std::string, long> one = {{"x", 1}};
    std::vector<sim::Census> censuses(6);
    censuses[0].byInterface = one;
    censuses[1].byObject = one;
    censuses[2].objects = one;
    censuses[3].taskMemory = one;
    censuses[4].taskBytes = 1;
    censuses[5].clients = one;

    for (const sim::Census& census : censuses)
    {
        EXPECT_FALSE(census.empty());
        EXPECT_NE(sim::Census(), census);
        EXPECT_FALSE((sim::Census() - census).empty());
        EXPECT_TRUE((census - census).empty());
    }
}

TEST_F(CensusDifference, ShowsRegisteredClients)
{
    bench::ClientListener client;
    const Held<IMMDeviceEnumerator> enumerator(simulation.enumerator());
    enumerator->RegisterEndpointNotificationCallback(&client);

    EXPECT_THAT(simulation.census().describe(), HasSubstr("registered IMMNotificationClient: 1\n"));

    enumerator->UnregisterEndpointNotificationCallback(&client);
}

TEST_F(CensusDifference, ReadsWellInAFailure)
{
    LPWSTR id = nullptr;
    speaker->GetId(&id);
    std::ostringstream text;
    text << simulation.census();
    taken(id);

    EXPECT_THAT(text.str(), HasSubstr("references on IMMDevice " + speakerId + ": 1\n"));
    EXPECT_THAT(text.str(), HasSubstr("task memory of IMMDevice::GetId " + speakerId + ": 1\n"));
    EXPECT_EQ("nothing", sim::Census().describe());
}
}
