// What users read of the machines that ship, through the platform's objects.
#include "simulator/machine/file/machinefile.h"
#include "simulator/machine/propertykeys.h"
#include "simulator/machine/valuetext.h"
#include "simulator/simulation.h"
#include "tests/simulator/held.h"

#include <gmock/gmock.h>

#include <memory>
#include <string>
#include <vector>

namespace
{
using bench::Held;
using bench::textOf;
using testing::Contains;
using testing::EndsWith;
using testing::Matcher;
using testing::StartsWith;

template<class I>
const IID& idOf()
{
    return sim::InterfaceTraits<I>::iid();
}

/// The value with its tag and, of a blob, its size: "VT_LPWSTR Speakers", "VT_BLOB of 72 bytes".
std::string tagged(const PROPVARIANT& value)
{
    switch (value.vt)
    {
    case VT_EMPTY:
        return "VT_EMPTY";
    case VT_LPWSTR:
        return "VT_LPWSTR " + sim::utf8(value.pwszVal);
    case VT_UI4:
        return "VT_UI4 " + std::to_string(value.ulVal);
    case VT_CLSID:
        return "VT_CLSID " + sim::guidText(*value.puuid);
    case VT_BLOB:
        return "VT_BLOB of " + std::to_string(value.blob.cbSize) + " bytes";
    default:
        return "another tag";
    }
}

/// One of the machines that ship; nothing may be left of it.
class ShippedMachine : public testing::Test
{
protected:
    ShippedMachine() { EXPECT_EQ(S_OK, CoInitialize(nullptr)); }

    ~ShippedMachine() override
    {
        EXPECT_EQ(sim::Census(), simulation->census());
        simulation.reset();
        CoUninitialize();
    }

    void run(const std::string& name) { simulation = std::make_unique<sim::Simulation>(sim::findMachine(name)); }

    /// The first endpoint with a state of @p mask.
    Held<IMMDevice> endpoint(EDataFlow flow, DWORD mask)
    {
        const Held<IMMDeviceEnumerator> enumerator(simulation->enumerator());
        Held<IMMDeviceCollection> collection;
        Held<IMMDevice> found;
        EXPECT_EQ(S_OK, enumerator->EnumAudioEndpoints(flow, mask, collection.put()));
        EXPECT_EQ(S_OK, collection->Item(0, found.put()));
        return found;
    }

    /// The connector of an adapter that the endpoint's first connector is joined to.
    Held<IConnector> jackOf(const Held<IMMDevice>& device)
    {
        Held<IDeviceTopology> topology;
        Held<IConnector> connector;
        Held<IConnector> jack;
        EXPECT_EQ(S_OK, device->Activate(idOf<IDeviceTopology>(), CLSCTX_INPROC_SERVER, nullptr, topology.putVoid()));
        EXPECT_EQ(S_OK, topology->GetConnector(0, connector.put()));
        EXPECT_EQ(S_OK, connector->GetConnectedTo(jack.put()));
        return jack;
    }

    static Held<IDeviceTopology> topologyOf(const Held<IConnector>& connector)
    {
        Held<IDeviceTopology> topology;
        EXPECT_EQ(S_OK, connector.as<IPart>()->GetTopologyObject(topology.put()));
        return topology;
    }

    static Held<IPropertyStore> storeOf(const Held<IMMDevice>& device)
    {
        Held<IPropertyStore> store;
        EXPECT_EQ(S_OK, device->OpenPropertyStore(STGM_READ, store.put()));
        return store;
    }

    static std::string shown(const Held<IPropertyStore>& store, const PROPERTYKEY& key)
    {
        PROPVARIANT value;
        PropVariantInit(&value);
        EXPECT_EQ(S_OK, store->GetValue(key, &value));
        std::string text = tagged(value);
        PropVariantClear(&value);
        return text;
    }

    static std::vector<std::string> keysIn(const Held<IPropertyStore>& store)
    {
        DWORD count = 0;
        EXPECT_EQ(S_OK, store->GetCount(&count));
        std::vector<std::string> names;
        for (DWORD index = 0; index < count; ++index)
        {
            PROPERTYKEY key = {};
            EXPECT_EQ(S_OK, store->GetAt(index, &key));
            names.push_back(sim::keyText(key));
        }
        return names;
    }

    static ConnectorType typeOf(const Held<IConnector>& connector)
    {
        ConnectorType type = Unknown_Connector;
        EXPECT_EQ(S_OK, connector->GetType(&type));
        return type;
    }

    std::unique_ptr<sim::Simulation> simulation;
};

using PublishedFilters = ShippedMachine;
using PublishedJack = ShippedMachine;
using PublishedAbsentEndpoint = ShippedMachine;
using RemoteDesktopEndpoint = ShippedMachine;

/// A fixed software connection of an adapter, with the device and the type at its other end.
struct Bridge
{
    std::string farDevice;
    ConnectorType farType = Unknown_Connector;
};

std::vector<Bridge> bridgesOf(const Held<IDeviceTopology>& topology)
{
    UINT count = 0;
    EXPECT_EQ(S_OK, topology->GetConnectorCount(&count));
    std::vector<Bridge> bridges;
    for (UINT index = 0; index < count; ++index)
    {
        Held<IConnector> here;
        Held<IConnector> there;
        ConnectorType type = Unknown_Connector;
        Bridge bridge;
        EXPECT_EQ(S_OK, topology->GetConnector(index, here.put()));
        EXPECT_EQ(S_OK, here->GetType(&type));
        if (type != Software_Fixed)
            continue;
        EXPECT_EQ(S_OK, here->GetConnectedTo(there.put()));
        EXPECT_EQ(S_OK, there->GetType(&bridge.farType));
        bridge.farDevice = textOf(here, &IConnector::GetDeviceIdConnectedTo);
        bridges.push_back(bridge);
    }
    return bridges;
}

// Microsoft's documentation of device topologies: an adapter is a topology filter and a wave filter, which a fixed
// software connection joins.
TEST_F(PublishedFilters, AreTwoForEachAnalogJackThatAFixedSoftwareConnectionJoins)
{
    run("published");
    const Held<IMMDevice> analog[] = {endpoint(eRender, DEVICE_STATE_ACTIVE), endpoint(eCapture, DEVICE_STATE_ACTIVE)};
    for (const Held<IMMDevice>& device : analog)
    {
        const Held<IDeviceTopology> filter = topologyOf(jackOf(device));
        EXPECT_THAT(textOf(filter, &IDeviceTopology::GetDeviceId), EndsWith("topo"));

        const std::vector<Bridge> bridges = bridgesOf(filter);

        ASSERT_EQ(1u, bridges.size());
        EXPECT_THAT(bridges[0].farDevice, EndsWith("wave"));
        EXPECT_EQ(Software_Fixed, bridges[0].farType);
        const Held<IMMDeviceEnumerator> enumerator(simulation->enumerator());
        Held<IMMDevice> other;
        EXPECT_EQ(S_OK, enumerator->GetDevice(bench::Wide(bridges[0].farDevice), other.put()));
    }
}

// A published listing of 2015 of the speakers of an HD audio device: the part beyond the endpoint's has the number
// 0x10001 and one jack, whose KSJACK_DESCRIPTION has these values.
TEST_F(PublishedJack, IsDescribedAsThatOfTheSpeakersInTheListing)
{
    run("published");
    const Held<IPart> jack = jackOf(endpoint(eRender, DEVICE_STATE_ACTIVE)).as<IPart>();
    Held<IKsJackDescription> description;
    UINT localId = 0;
    UINT count = 0;
    KSJACK_DESCRIPTION found = {};

    EXPECT_EQ(S_OK, jack->GetLocalId(&localId));
    EXPECT_EQ(S_OK, jack->Activate(CLSCTX_INPROC_SERVER, idOf<IKsJackDescription>(), description.putVoid()));
    EXPECT_EQ(S_OK, description->GetJackCount(&count));
    EXPECT_EQ(S_OK, description->GetJackDescription(0, &found));

    EXPECT_EQ("Speakers", textOf(jack, &IPart::GetName));
    EXPECT_EQ(0x10001u, localId);
    EXPECT_EQ(1u, count);
    EXPECT_EQ(3u, found.ChannelMapping);
    EXPECT_EQ(0x00FF00u, found.Color);
    EXPECT_EQ(eConnType3Point5mm, found.ConnectionType);
    EXPECT_EQ(eGeoLocRear, found.GeoLocation);
    EXPECT_EQ(eGenLocPrimaryBox, found.GenLocation);
    EXPECT_EQ(ePortConnJack, found.PortConnection);
    EXPECT_EQ(TRUE, found.IsConnected);
}

// A published listing of 2011 of an HD audio endpoint that is not present, on Windows 7. Makers' numbers are other
// ones.
TEST_F(PublishedAbsentEndpoint, HasThePropertiesOfTheListingWithTheirTagsAndSizes)
{
    struct Row
    {
        const char* key;
        Matcher<std::string> value;
    };
    const Row listing[] = {
        {"{B3F8FA53-0004-438E-9003-51A46E139BFC}/15", "VT_BLOB of 16 bytes"}, // a time
        {"deviceDescription", "VT_LPWSTR Internal AUX Jack"},
        {"friendlyName", StartsWith("VT_LPWSTR ")},
        {"instancePath", StartsWith("VT_LPWSTR {1}.HDAUDIO\\FUNC_01&VEN_")},
        {"driverNodeStrongName", "VT_LPWSTR hdaudio.inf:Microsoft.ntamd64:HdAudModel:6.1.7600.16385::hdaudio\\func_01"},
        {"baseContainerId", "VT_CLSID {00000000-0000-0000-FFFF-FFFFFFFFFFFF}"},
        {"containerId", "VT_CLSID {00000000-0000-0000-FFFF-FFFFFFFFFFFF}"},
        {"enumeratorName", "VT_LPWSTR HDAUDIO"},
        {"{B3F8FA53-0004-438E-9003-51A46E139BFC}/1", "VT_BLOB of 72 bytes"},
        {"formFactor", "VT_UI4 10"}, // UnknownFormFactor
        {"jackSubType", "VT_LPWSTR {6994AD04-93EF-11D0-A3CC-00A0C9223196}"},
        {"{259ABFFC-50A7-47CE-AF08-68C9A7D73366}/12", "VT_LPWSTR %windir%\\system32\\mmres.dll,-3018"}, // its icon
        {"{840B8171-B0AD-410F-8581-CCCC0382CFEF}/0", "VT_BLOB of 300 bytes"},
    };
    run("published");

    const Held<IPropertyStore> store = storeOf(endpoint(eCapture, DEVICE_STATE_NOTPRESENT));
    const std::vector<std::string> keys = keysIn(store);

    for (const Row& row : listing)
    {
        EXPECT_THAT(keys, Contains(row.key));
        EXPECT_THAT(shown(store, *sim::keyFromText(row.key)), row.value) << row.key;
    }
}

// xbmc issue 25648: in a session over the network the enumerator name is an empty string.
TEST_F(RemoteDesktopEndpoint, HasAnEmptyEnumeratorName)
{
    run("remote-desktop");

    const Held<IPropertyStore> store = storeOf(endpoint(eRender, DEVICE_STATEMASK_ALL));

    EXPECT_EQ("VT_LPWSTR ", shown(store, sim::keys::enumeratorName));
    EXPECT_THAT(keysIn(store), Contains("enumeratorName"));
}
}
