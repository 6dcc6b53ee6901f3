// A removed endpoint on a machine that does not know removed endpoints any more. Microsoft's documentation of
// IMMDeviceEnumerator::GetDevice: E_NOTFOUND for an id that no device has; the objects of a device that is gone answer
// AUDCLNT_E_DEVICE_INVALIDATED.
#include "tests/simulator/bench.h"

#include "simulator/machine/propertykeys.h"

#include <stdexcept>

namespace
{
using bench::Held;
using bench::poison;
using bench::textOf;
using bench::Wide;
using testing::ElementsAre;

constexpr HRESULT lost = AUDCLNT_E_DEVICE_INVALIDATED;

class GoneEndpoint : public bench::SimulationTest
{
protected:
    GoneEndpoint()
    {
        simulation.change([](sim::Machine& machine) { machine.removedEndpoints = sim::RemovedEndpoints::unknown; });
    }

    HRESULT opened(const std::string& id)
    {
        Held<IMMDevice> found;
        return enumerator->GetDevice(Wide(id), found.put());
    }

    Held<IMMDeviceEnumerator> enumerator{simulation.enumerator()};
};

TEST_F(GoneEndpoint, IsNotFoundByItsIdUntilItIsAddedAgain)
{
    simulation.events().remove(speakerId);
    EXPECT_EQ(E_NOTFOUND, opened(speakerId));
    EXPECT_EQ(nullptr, simulation.device(speakerId));
    EXPECT_EQ(nullptr, simulation.machine().openDevice(speakerId));

    simulation.events().add(speakerId);
    EXPECT_EQ(S_OK, opened(speakerId));
}

TEST_F(GoneEndpoint, IsNotFoundBeforeItIsAddedForTheFirstTime)
{
    simulation.change([&](sim::Machine& machine) { machine.endpoint(lineInId)->installed = false; });

    EXPECT_EQ(E_NOTFOUND, opened(lineInId));
    EXPECT_EQ(S_OK, opened(codecId)); // its adapter is no endpoint
}

TEST_F(GoneEndpoint, IsNotPresentForThoseWhoHoldItsDevice)
{
    const Held<IMMDevice> speaker = device(speakerId);
    const Held<IMMEndpoint> endpoint = speaker.as<IMMEndpoint>();

    simulation.events().remove(speakerId);

    DWORD state = 0;
    EDataFlow flow = eAll;
    void* object = poison<void>();
    auto* store = poison<IPropertyStore>();
    EXPECT_EQ(S_OK, speaker->GetState(&state));
    EXPECT_EQ(DWORD(DEVICE_STATE_NOTPRESENT), state);
    EXPECT_EQ(lost, speaker->Activate(sim::InterfaceTraits<IAudioEndpointVolume>::iid(), CLSCTX_ALL, nullptr, &object));
    EXPECT_EQ(nullptr, object);
    EXPECT_EQ(lost, speaker->OpenPropertyStore(STGM_READ, &store));
    EXPECT_EQ(nullptr, store);
    EXPECT_EQ(speakerId, textOf(speaker, &IMMDevice::GetId));
    EXPECT_EQ(S_OK, endpoint->GetDataFlow(&flow));
    EXPECT_EQ(eRender, flow);
}

TEST_F(GoneEndpoint, InvalidatesItsOtherObjectsUntilItIsAddedAgain)
{
    const Held<IAudioEndpointVolume> control = volume(speakerId);
    const Held<IDeviceTopology> graph = topology(speakerId);
    const Held<IConnector> plug = connector(speakerConnector);
    Held<IPropertyStore> store;
    ASSERT_EQ(S_OK, device(speakerId)->OpenPropertyStore(STGM_READ, store.put()));

    simulation.events().remove(speakerId);

    UINT count = 0;
    BOOL isConnected = FALSE;
    PROPVARIANT value;
    PropVariantInit(&value);
    EXPECT_EQ(lost, control->SetMute(TRUE, nullptr));
    EXPECT_EQ(lost, graph->GetConnectorCount(&count));
    EXPECT_EQ(lost, plug->IsConnected(&isConnected));
    EXPECT_EQ(lost, store->GetValue(sim::keys::speakerConfig, &value));

    simulation.events().add(speakerId);
    EXPECT_EQ(S_OK, control->SetMute(TRUE, nullptr));
    EXPECT_EQ(S_OK, graph->GetConnectorCount(&count));
    EXPECT_EQ(S_OK, plug->IsConnected(&isConnected));
    EXPECT_EQ(S_OK, store->GetValue(sim::keys::speakerConfig, &value));
}

TEST_F(GoneEndpoint, LeavesItsJackWithoutAConnectorOnTheFarSide)
{
    const Held<IConnector> jack = connector(speakerJack);
    simulation.events().remove(speakerId);

    auto* peer = poison<IConnector>();
    EXPECT_EQ(E_NOTFOUND, jack->GetConnectedTo(&peer));
    EXPECT_EQ(nullptr, peer);
    EXPECT_EQ(speakerId, textOf(jack, &IConnector::GetDeviceIdConnectedTo));
}

TEST_F(GoneEndpoint, LeavesItsPlaceInACollectionEmpty)
{
    Held<IMMDeviceCollection> collection;
    ASSERT_EQ(S_OK, enumerator->EnumAudioEndpoints(eRender, DEVICE_STATE_ACTIVE, collection.put()));
    simulation.events().remove(speakerId);

    auto* item = poison<IMMDevice>();
    EXPECT_EQ(lost, collection->Item(0, &item));
    EXPECT_EQ(nullptr, item);
}

TEST_F(GoneEndpoint, StillTakesTheMachinesEvents)
{
    simulation.events().remove(speakerId);

    simulation.events().unplug(speakerId);
    simulation.events().setVolume(speakerId, -12.0f);

    EXPECT_EQ(sim::stateUnplugged, simulation.machine().endpoint(speakerId)->state);
    EXPECT_THROW(simulation.events().add(*simulation.machine().endpoint(speakerId)), std::invalid_argument);
}

TEST_F(GoneEndpoint, CanSignItsClientsOff)
{
    const Held<IAudioEndpointVolume> control = volume(speakerId);
    bench::VolumeListener listener;
    ASSERT_EQ(S_OK, control->RegisterControlChangeNotify(&listener));
    simulation.deliverAtOnce(true);
    simulation.events().remove(speakerId);

    simulation.events().setVolume(speakerId, -12.0f);

    EXPECT_THAT(listener.heard(), ElementsAre());
    EXPECT_EQ(S_OK, control->UnregisterControlChangeNotify(&listener));
    EXPECT_EQ(1u, listener.references);
}
}
