#include "tests/simulator/bench.h"

// Microsoft's documentation of IKsJackDescription and IKsJackDescription2: a connector to the outside returns them from
// IPart::Activate and describes each of its jacks.
namespace
{
using bench::Held;
using bench::poison;

template<class I>
const IID& idOf()
{
    return sim::InterfaceTraits<I>::iid();
}

/// Two jacks at the speaker's connector, the first of which is described in full.
class JackDescription : public bench::SimulationTest
{
protected:
    JackDescription()
    {
        sim::Jack green;
        green.channels = 3;
        green.colour = 0x00FF00;
        green.connection = eConnType3Point5mm;
        green.geometricLocation = eGeoLocFront;
        green.generalLocation = eGenLocInternal;
        green.portConnection = ePortConnUnknown;
        green.detectsPresence = true;
        setJacks({green, sim::Jack()});
    }

    void setJacks(const std::vector<sim::Jack>& jacks)
    {
        simulation.change([&](sim::Machine& machine) { machine.part(speakerJack).connector->jacks = jacks; });
    }

    void setState(const std::string& endpointId, std::uint32_t state)
    {
        simulation.events().setState(endpointId, state);
    }

    template<class I>
    Held<I> activated(const std::string& partId)
    {
        Held<I> description;
        EXPECT_EQ(S_OK, part(partId)->Activate(CLSCTX_INPROC_SERVER, idOf<I>(), description.putVoid()));
        return description;
    }

    KSJACK_DESCRIPTION first()
    {
        KSJACK_DESCRIPTION found = {};
        EXPECT_EQ(S_OK, activated<IKsJackDescription>(speakerJack)->GetJackDescription(0, &found));
        return found;
    }
};

TEST_F(JackDescription, SaysWhatTheMachineSays)
{
    const KSJACK_DESCRIPTION found = first();

    EXPECT_EQ(3u, found.ChannelMapping);
    EXPECT_EQ(0x00FF00u, found.Color);
    EXPECT_EQ(eConnType3Point5mm, found.ConnectionType);
    EXPECT_EQ(eGeoLocFront, found.GeoLocation);
    EXPECT_EQ(eGenLocInternal, found.GenLocation);
    EXPECT_EQ(ePortConnUnknown, found.PortConnection);
    EXPECT_EQ(TRUE, found.IsConnected);
}

TEST_F(JackDescription, IsThereForEachJack)
{
    const Held<IKsJackDescription> description = activated<IKsJackDescription>(speakerJack);
    UINT count = 0;
    KSJACK_DESCRIPTION found = {};

    EXPECT_EQ(S_OK, description->GetJackCount(&count));
    EXPECT_EQ(2u, count);
    EXPECT_EQ(S_OK, description->GetJackDescription(1, &found));
    EXPECT_EQ(0u, found.ChannelMapping);
    EXPECT_EQ(E_INVALIDARG, description->GetJackDescription(2, &found));
    EXPECT_EQ(E_POINTER, description->GetJackDescription(0, nullptr));
    EXPECT_EQ(E_POINTER, description->GetJackCount(nullptr));
}

TEST_F(JackDescription, KnowsNoPlugOfAnEndpointThatWasRemoved)
{
    simulation.events().remove(speakerId);
    EXPECT_EQ(FALSE, first().IsConnected);

    simulation.events().add(speakerId);
    EXPECT_EQ(TRUE, first().IsConnected);
}

// Without detection of presence a jack counts as connected.
TEST_F(JackDescription, SaysWhetherTheEndpointIsPluggedInIfTheHardwareKnows)
{
    EXPECT_EQ(TRUE, first().IsConnected);
    setState(speakerId, sim::stateUnplugged);
    EXPECT_EQ(FALSE, first().IsConnected);
    setState(speakerId, sim::stateNotPresent);
    EXPECT_EQ(FALSE, first().IsConnected);
    setState(speakerId, sim::stateDisabled);
    EXPECT_EQ(TRUE, first().IsConnected);

    setJacks({sim::Jack()});
    setState(speakerId, sim::stateUnplugged);
    EXPECT_EQ(TRUE, first().IsConnected);

    sim::Jack loose;
    loose.connected = false;
    setJacks({loose});
    EXPECT_EQ(FALSE, first().IsConnected);
}

TEST_F(JackDescription, HasASecondPartWithTheCapabilities)
{
    const Held<IKsJackDescription2> description = activated<IKsJackDescription2>(speakerJack);
    UINT count = 0;
    KSJACK_DESCRIPTION2 found = {9, 9};

    EXPECT_EQ(S_OK, description->GetJackCount(&count));
    EXPECT_EQ(2u, count);
    EXPECT_EQ(S_OK, description->GetJackDescription2(0, &found));
    EXPECT_EQ(0u, found.DeviceStateInfo);
    EXPECT_EQ(1u, found.JackCapabilities); // JACKDESC2_PRESENCE_DETECT_CAPABILITY
    EXPECT_EQ(S_OK, description->GetJackDescription2(1, &found));
    EXPECT_EQ(0u, found.JackCapabilities);
    EXPECT_EQ(E_INVALIDARG, description->GetJackDescription2(2, &found));

    sim::Jack dynamic;
    dynamic.changesFormat = true;
    setJacks({dynamic});
    EXPECT_EQ(S_OK, description->GetJackDescription2(0, &found));
    EXPECT_EQ(2u, found.JackCapabilities); // JACKDESC2_DYNAMIC_FORMAT_CHANGE_CAPABILITY
}

TEST_F(JackDescription, IsNotThereForConnectorsWithoutJacksAndForSubunits)
{
    for (const std::string& id : {speakerStream, microphoneJack, volumeId})
    {
        for (const IID& iid : {idOf<IKsJackDescription>(), idOf<IKsJackDescription2>()})
        {
            void* object = poison<void>();
            EXPECT_EQ(E_NOINTERFACE, part(id)->Activate(CLSCTX_INPROC_SERVER, iid, &object));
            EXPECT_EQ(nullptr, object);
        }
    }
}

TEST_F(JackDescription, IsNotThereForAConnectorInside)
{
    simulation.change([&](sim::Machine& machine) { machine.part(speakerJack).connector->type = Software_IO; });

    void* object = poison<void>();
    EXPECT_EQ(E_NOINTERFACE, part(speakerJack)->Activate(CLSCTX_INPROC_SERVER, idOf<IKsJackDescription>(), &object));
}

TEST_F(JackDescription, IsNoControl)
{
    UINT count = 99;
    bench::ControlListener listener;

    EXPECT_EQ(S_OK, part(speakerJack)->GetControlInterfaceCount(&count));
    EXPECT_EQ(0u, count);
    EXPECT_EQ(E_NOINTERFACE, part(speakerJack)->RegisterControlChangeCallback(idOf<IKsJackDescription>(), &listener));
}

TEST_F(JackDescription, EndsWithItsConnector)
{
    const Held<IKsJackDescription> description = activated<IKsJackDescription>(speakerJack);
    const Held<IKsJackDescription2> second = activated<IKsJackDescription2>(speakerJack);
    simulation.change([&](sim::Machine& machine) { machine.adapter(codecId)->topology.reset(); });
    UINT count = 0;
    KSJACK_DESCRIPTION found = {};
    KSJACK_DESCRIPTION2 found2 = {};

    EXPECT_EQ(AUDCLNT_E_DEVICE_INVALIDATED, description->GetJackCount(&count));
    EXPECT_EQ(AUDCLNT_E_DEVICE_INVALIDATED, description->GetJackDescription(0, &found));
    EXPECT_EQ(AUDCLNT_E_DEVICE_INVALIDATED, second->GetJackDescription2(0, &found2));
}
}
