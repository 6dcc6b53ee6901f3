#include "tests/simulator/bench.h"

namespace
{
using bench::Held;
using bench::poison;
using bench::textOf;

template<class I>
const IID& idOf()
{
    return sim::InterfaceTraits<I>::iid();
}

class SimulatedDevice : public bench::SimulationTest
{
protected:
    Held<IMMDevice> speaker = device(speakerId);
    Held<IMMDevice> codec = device(codecId);
};

using SimulatedDeviceActivate = SimulatedDevice;
using SimulatedDeviceState = SimulatedDevice;
using SimulatedDeviceIdentity = SimulatedDevice;

TEST_F(SimulatedDeviceActivate, GivesWhatTheMachineHas)
{
    simulation.change(
        [&](sim::Machine& machine)
        {
            machine.endpoint(speakerId)->hasAudioClient = true;
            machine.endpoint(speakerId)->hasBaseFilter = true;
        });

    for (const IID& iid :
         {idOf<IDeviceTopology>(), idOf<IAudioEndpointVolume>(), idOf<IAudioClient>(), idOf<IBaseFilter>()})
    {
        Held<IUnknown> object;
        EXPECT_EQ(S_OK, speaker->Activate(iid, CLSCTX_ALL, nullptr, object.putVoid()));
        EXPECT_NE(nullptr, object.get());
    }
}

TEST_F(SimulatedDeviceActivate, StoresNullForWhatTheMachineHasNot)
{
    simulation.change(
        [&](sim::Machine& machine)
        {
            machine.endpoint(speakerId)->topology.reset();
            machine.endpoint(speakerId)->volume.reset();
        });

    for (const IID& iid : {idOf<IDeviceTopology>(), idOf<IAudioEndpointVolume>(), idOf<IAudioClient>(),
                           idOf<IBaseFilter>(), idOf<IPropertyStore>()})
    {
        void* object = poison<void>();
        EXPECT_EQ(E_NOINTERFACE, speaker->Activate(iid, CLSCTX_ALL, nullptr, &object));
        EXPECT_EQ(nullptr, object);
    }
    EXPECT_EQ(E_POINTER, speaker->Activate(idOf<IDeviceTopology>(), CLSCTX_ALL, nullptr, nullptr));
}

TEST_F(SimulatedDeviceActivate, GivesAnAdapterNoEndpointVolume)
{
    Held<IDeviceTopology> topology;
    EXPECT_EQ(S_OK, codec->Activate(idOf<IDeviceTopology>(), CLSCTX_ALL, nullptr, topology.putVoid()));
    void* volume = poison<void>();
    EXPECT_EQ(E_NOINTERFACE, codec->Activate(idOf<IAudioEndpointVolume>(), CLSCTX_ALL, nullptr, &volume));
    EXPECT_EQ(nullptr, volume);
}

TEST_F(SimulatedDeviceActivate, RefusesParametersForAllButAFilterAndShowsThem)
{
    simulation.change(
        [&](sim::Machine& machine)
        {
            machine.endpoint(speakerId)->hasAudioClient = true;
            machine.endpoint(speakerId)->hasBaseFilter = true;
        });
    PROPVARIANT parameters = {};

    for (const IID& iid : {idOf<IDeviceTopology>(), idOf<IAudioEndpointVolume>(), idOf<IAudioClient>()})
    {
        void* object = poison<void>();
        EXPECT_EQ(E_INVALIDARG, speaker->Activate(iid, CLSCTX_ALL, &parameters, &object));
        EXPECT_EQ(nullptr, object);
    }
    Held<IBaseFilter> filter;
    EXPECT_EQ(S_OK, speaker->Activate(idOf<IBaseFilter>(), CLSCTX_ALL, &parameters, filter.putVoid()));

    EXPECT_NE(nullptr, filter.get());
    EXPECT_THAT(simulation.journal().of("IMMDevice::Activate").calls(),
                testing::ElementsAre("IMMDevice::Activate(IDeviceTopology, 23, object)",
                                     "IMMDevice::Activate(IAudioEndpointVolume, 23, object)",
                                     "IMMDevice::Activate(IAudioClient, 23, object)",
                                     "IMMDevice::Activate(IBaseFilter, 23, object)"));
}

TEST_F(SimulatedDeviceActivate, GivesFiltersThatDoNothing)
{
    simulation.change([&](sim::Machine& machine) { machine.endpoint(speakerId)->hasBaseFilter = true; });
    Held<IBaseFilter> filter;
    ASSERT_EQ(S_OK, speaker->Activate(idOf<IBaseFilter>(), CLSCTX_ALL, nullptr, filter.putVoid()));

    EXPECT_EQ(E_NOTIMPL, filter->Pause());
    EXPECT_NE(nullptr, filter.as<IPersist>().get());
}

TEST_F(SimulatedDeviceState, IsThatOfTheMachineAtThisMoment)
{
    const Held<IMMDevice> microphone = device(microphoneId);
    DWORD state = 0;
    EXPECT_EQ(S_OK, microphone->GetState(&state));
    EXPECT_EQ(DWORD(DEVICE_STATE_UNPLUGGED), state);

    simulation.events().plug(microphoneId);

    EXPECT_EQ(S_OK, microphone->GetState(&state));
    EXPECT_EQ(DWORD(DEVICE_STATE_ACTIVE), state);
    EXPECT_EQ(E_POINTER, microphone->GetState(nullptr));
}

TEST_F(SimulatedDeviceState, IsNotPresentForADeviceThatTheMachineHasLost)
{
    simulation.change([](sim::Machine& machine) { machine.endpoints.clear(); });

    DWORD state = 0;
    EXPECT_EQ(S_OK, speaker->GetState(&state));
    EXPECT_EQ(DWORD(DEVICE_STATE_NOTPRESENT), state);
    auto* store = poison<IPropertyStore>();
    EXPECT_EQ(AUDCLNT_E_DEVICE_INVALIDATED, speaker->OpenPropertyStore(STGM_READ, &store));
    EXPECT_EQ(nullptr, store);
    EXPECT_EQ(speakerId, textOf(speaker, &IMMDevice::GetId));
}

TEST_F(SimulatedDeviceIdentity, OffersItsFlowAsAnEndpoint)
{
    EDataFlow flow = EDataFlow_enum_count;
    EXPECT_EQ(S_OK, speaker.as<IMMEndpoint>()->GetDataFlow(&flow));
    EXPECT_EQ(eRender, flow);
    EXPECT_EQ(S_OK, device(lineInId).as<IMMEndpoint>()->GetDataFlow(&flow));
    EXPECT_EQ(eCapture, flow);
}

TEST_F(SimulatedDeviceIdentity, AnswersTrueCounts)
{
    EXPECT_EQ(2u, speaker->AddRef());
    EXPECT_EQ(3u, speaker->AddRef());
    EXPECT_EQ(2u, speaker->Release());
    EXPECT_EQ(1u, speaker->Release());
}

TEST_F(SimulatedDeviceIdentity, CountsReferencesOfAllItsInterfacesTogether)
{
    const Held<IMMEndpoint> endpoint = speaker.as<IMMEndpoint>();

    EXPECT_EQ(3u, speaker->AddRef());
    EXPECT_EQ(2u, endpoint->Release());
}

TEST_F(SimulatedDeviceIdentity, IsTheSameUnknownThroughAllInterfaces)
{
    const Held<IMMEndpoint> endpoint = speaker.as<IMMEndpoint>();

    EXPECT_EQ(speaker.as<IUnknown>().get(), endpoint.as<IUnknown>().get());
    EXPECT_EQ(speaker.get(), endpoint.as<IMMDevice>().get());
    EXPECT_NE(speaker.as<IUnknown>().get(), device(speakerId).as<IUnknown>().get());
}

TEST_F(SimulatedDeviceIdentity, RefusesANullPlaceForAnInterface)
{
    EXPECT_EQ(E_POINTER, speaker->QueryInterface(idOf<IUnknown>(), nullptr));
}
}
