#include "tests/simulator/bench.h"

#include "simulator/machine/propertykeys.h"

namespace
{
using bench::Held;
using bench::poison;
using bench::textOf;
using bench::Wide;
using testing::ElementsAre;
using testing::IsEmpty;

constexpr HRESULT lost = AUDCLNT_E_DEVICE_INVALIDATED;

template<class I>
const IID& idOf()
{
    return sim::InterfaceTraits<I>::iid();
}

/// Objects that were handed out before the machine lost the devices that they belong to. The wires are left.
class LostDevice : public bench::SimulationTest
{
protected:
    LostDevice()
    {
        simulation.change(
            [&](sim::Machine& machine)
            {
                machine.endpoint(speakerId)->hasAudioClient = true;
                machine.endpoint(speakerId)->hasBaseFilter = true;
            });
    }

    void loseDevices()
    {
        simulation.change(
            [](sim::Machine& machine)
            {
                machine.endpoints.clear();
                machine.adapters.clear();
            });
    }

    template<class I>
    Held<I> activated(const std::string& id)
    {
        Held<I> object;
        EXPECT_EQ(S_OK, device(id)->Activate(idOf<I>(), CLSCTX_ALL, nullptr, object.putVoid()));
        return object;
    }
};

using LostDeviceDevice = LostDevice;
using LostDeviceEnumerator = LostDevice;
using LostDevicePropertyStore = LostDevice;
using LostDeviceTopology = LostDevice;
using LostDevicePart = LostDevice;
using LostDeviceConnector = LostDevice;
using LostDeviceControls = LostDevice;
using LostDeviceVolume = LostDevice;
using RemovedEndpoint = LostDevice;

TEST_F(LostDeviceDevice, ActivatesAndOpensNothing)
{
    const Held<IMMDevice> speaker = device(speakerId);
    loseDevices();

    for (const IID& iid : {idOf<IDeviceTopology>(), idOf<IAudioEndpointVolume>(), idOf<IAudioClient>(),
                           idOf<IBaseFilter>(), idOf<IPropertyStore>()})
    {
        void* object = poison<void>();
        EXPECT_EQ(lost, speaker->Activate(iid, CLSCTX_ALL, nullptr, &object));
        EXPECT_EQ(nullptr, object);
    }
    auto* store = poison<IPropertyStore>();
    EXPECT_EQ(lost, speaker->OpenPropertyStore(STGM_READWRITE, &store));
    EXPECT_EQ(nullptr, store);
}

TEST_F(LostDeviceDevice, KeepsItsIdAndItsFlowAndIsNotPresent)
{
    const Held<IMMDevice> lineIn = device(lineInId);
    const Held<IMMEndpoint> endpoint = lineIn.as<IMMEndpoint>();
    loseDevices();

    DWORD state = 0;
    EDataFlow flow = eAll;
    EXPECT_EQ(lineInId, textOf(lineIn, &IMMDevice::GetId));
    EXPECT_EQ(S_OK, lineIn->GetState(&state));
    EXPECT_EQ(DWORD(DEVICE_STATE_NOTPRESENT), state);
    EXPECT_EQ(S_OK, endpoint->GetDataFlow(&flow));
    EXPECT_EQ(eCapture, flow);
}

TEST_F(LostDeviceEnumerator, DoesNotFindItAndHasNoDefault)
{
    const Held<IMMDeviceEnumerator> enumerator(simulation.enumerator());
    loseDevices();

    auto* found = poison<IMMDevice>();
    EXPECT_EQ(E_NOTFOUND, enumerator->GetDevice(Wide(speakerId), &found));
    EXPECT_EQ(nullptr, found);
    found = poison<IMMDevice>();
    EXPECT_EQ(E_NOTFOUND, enumerator->GetDefaultAudioEndpoint(eRender, eConsole, &found));
    EXPECT_EQ(nullptr, found);
}

TEST_F(LostDeviceEnumerator, LeavesItsPlaceInACollectionEmpty)
{
    const Held<IMMDeviceEnumerator> enumerator(simulation.enumerator());
    Held<IMMDeviceCollection> collection;
    ASSERT_EQ(S_OK, enumerator->EnumAudioEndpoints(eRender, DEVICE_STATE_ACTIVE, collection.put()));
    loseDevices();

    UINT count = 0;
    auto* item = poison<IMMDevice>();
    EXPECT_EQ(S_OK, collection->GetCount(&count));
    EXPECT_EQ(2u, count);
    EXPECT_EQ(lost, collection->Item(0, &item));
    EXPECT_EQ(nullptr, item);
}

TEST_F(LostDevicePropertyStore, AnswersNothing)
{
    Held<IPropertyStore> store;
    ASSERT_EQ(S_OK, device(speakerId)->OpenPropertyStore(STGM_READWRITE, store.put()));
    loseDevices();

    DWORD count = 99;
    PROPERTYKEY key = sim::keys::endpointGuid;
    PROPVARIANT value;
    value.vt = VT_LPWSTR;
    value.pwszVal = poison<WCHAR>();
    EXPECT_EQ(lost, store->GetCount(&count));
    EXPECT_EQ(lost, store->GetAt(0, &key));
    EXPECT_EQ(lost, store->GetValue(sim::keys::friendlyName, &value));
    EXPECT_EQ(99u, count);
    EXPECT_TRUE(sim::sameKey(sim::keys::endpointGuid, key));
    EXPECT_EQ(VT_EMPTY, value.vt);
    EXPECT_EQ(nullptr, value.pwszVal);
}

TEST_F(LostDevicePropertyStore, WritesNothingAndNotifiesNoClient)
{
    simulation.deliverAtOnce(true);
    const Held<IMMDeviceEnumerator> enumerator(simulation.enumerator());
    bench::ClientListener client;
    ASSERT_EQ(S_OK, enumerator->RegisterEndpointNotificationCallback(&client));
    Held<IPropertyStore> store;
    ASSERT_EQ(S_OK, device(speakerId)->OpenPropertyStore(STGM_READWRITE, store.put()));
    PROPVARIANT value;
    PropVariantInit(&value);
    value.vt = VT_UI4;
    loseDevices();

    EXPECT_EQ(lost, store->SetValue(sim::keys::speakerConfig, value));
    EXPECT_EQ(lost, store->Commit());

    EXPECT_THAT(client.heard(), IsEmpty());
    EXPECT_EQ(S_OK, enumerator->UnregisterEndpointNotificationCallback(&client));
}

TEST_F(LostDeviceTopology, AnswersNothing)
{
    const Held<IDeviceTopology> codec = topology(codecId);
    const Held<IPart> stream = part(speakerStream);
    const Held<IPart> jack = part(speakerJack);
    loseDevices();

    UINT count = 99;
    auto* connector = poison<IConnector>();
    auto* subunit = poison<ISubunit>();
    auto* found = poison<IPart>();
    auto* text = poison<WCHAR>();
    auto* path = poison<IPartsList>();
    EXPECT_EQ(lost, codec->GetConnectorCount(&count));
    EXPECT_EQ(lost, codec->GetSubunitCount(&count));
    EXPECT_EQ(lost, codec->GetConnector(0, &connector));
    EXPECT_EQ(lost, codec->GetSubunit(0, &subunit));
    EXPECT_EQ(lost, codec->GetPartById(1, &found));
    EXPECT_EQ(lost, codec->GetDeviceId(&text));
    EXPECT_EQ(lost, codec->GetSignalPath(stream.get(), jack.get(), TRUE, &path));
    EXPECT_EQ(99u, count);
    EXPECT_EQ(nullptr, connector);
    EXPECT_EQ(nullptr, subunit);
    EXPECT_EQ(nullptr, found);
    EXPECT_EQ(nullptr, text);
    EXPECT_EQ(nullptr, path);
}

TEST_F(LostDeviceTopology, AnswersNothingEitherWhenOnlyTheGraphIsGone)
{
    const Held<IDeviceTopology> codec = topology(codecId);
    simulation.change([&](sim::Machine& machine) { machine.adapter(codecId)->topology.reset(); });

    UINT count = 99;
    auto* text = poison<WCHAR>();
    EXPECT_EQ(lost, codec->GetConnectorCount(&count));
    EXPECT_EQ(lost, codec->GetDeviceId(&text));
    EXPECT_EQ(99u, count);
    EXPECT_EQ(nullptr, text);
}

TEST_F(LostDevicePart, AnswersNothing)
{
    const Held<IPart> node = part(volumeId);
    loseDevices();

    auto* text = poison<WCHAR>();
    UINT number = 99;
    GUID subType = sim::nodetypes::speaker;
    auto* list = poison<IPartsList>();
    auto* found = poison<IDeviceTopology>();
    EXPECT_EQ(lost, node->GetName(&text));
    EXPECT_EQ(nullptr, text);
    text = poison<WCHAR>();
    EXPECT_EQ(lost, node->GetGlobalId(&text));
    EXPECT_EQ(nullptr, text);
    EXPECT_EQ(lost, node->GetLocalId(&number));
    EXPECT_EQ(lost, node->GetSubType(&subType));
    EXPECT_EQ(lost, node->EnumPartsIncoming(&list));
    EXPECT_EQ(nullptr, list);
    list = poison<IPartsList>();
    EXPECT_EQ(lost, node->EnumPartsOutgoing(&list));
    EXPECT_EQ(nullptr, list);
    EXPECT_EQ(lost, node->GetTopologyObject(&found));
    EXPECT_EQ(nullptr, found);
    EXPECT_EQ(99u, number);
    EXPECT_TRUE(IsEqualGUID(sim::nodetypes::speaker, subType));
}

TEST_F(LostDevicePart, HasNoControls)
{
    const Held<IPart> node = part(volumeId);
    bench::ControlListener listener;
    ASSERT_EQ(S_OK, node->RegisterControlChangeCallback(idOf<IAudioVolumeLevel>(), &listener));
    loseDevices();

    UINT count = 99;
    auto* control = poison<IControlInterface>();
    void* object = poison<void>();
    EXPECT_EQ(lost, node->GetControlInterfaceCount(&count));
    EXPECT_EQ(99u, count);
    EXPECT_EQ(lost, node->GetControlInterface(0, &control));
    EXPECT_EQ(nullptr, control);
    EXPECT_EQ(lost, node->Activate(CLSCTX_ALL, idOf<IAudioVolumeLevel>(), &object));
    EXPECT_EQ(nullptr, object);
    EXPECT_EQ(lost, node->RegisterControlChangeCallback(idOf<IAudioVolumeLevel>(), &listener));
    EXPECT_EQ(2u, listener.references);
    EXPECT_EQ(S_OK, node->UnregisterControlChangeCallback(&listener)); // a client can always be taken off
    EXPECT_EQ(1u, listener.references);
}

TEST_F(LostDevicePart, KeepsItsKindAndTheDescriptionOfAControl)
{
    const Held<IPart> node = part(volumeId);
    Held<IControlInterface> control;
    ASSERT_EQ(S_OK, node->GetControlInterface(0, control.put()));
    loseDevices();

    PartType type = ::Connector;
    GUID iid = {};
    EXPECT_EQ(S_OK, node->GetPartType(&type));
    EXPECT_EQ(::Subunit, type);
    EXPECT_EQ(S_OK, control->GetIID(&iid));
    EXPECT_TRUE(IsEqualGUID(idOf<IAudioVolumeLevel>(), iid));
    EXPECT_EQ("IAudioVolumeLevel", textOf(control, &IControlInterface::GetName));
}

TEST_F(LostDevicePart, LeavesItsPlaceInAListEmpty)
{
    Held<IPartsList> list;
    ASSERT_EQ(S_OK, part(volumeId)->EnumPartsOutgoing(list.put()));
    loseDevices();

    UINT count = 0;
    auto* item = poison<IPart>();
    EXPECT_EQ(S_OK, list->GetCount(&count));
    EXPECT_EQ(1u, count);
    EXPECT_EQ(lost, list->GetPart(0, &item));
    EXPECT_EQ(nullptr, item);
}

TEST_F(LostDeviceConnector, AnswersNothing)
{
    const Held<IConnector> jack = connector(speakerJack);
    loseDevices();

    ConnectorType type = Network;
    DataFlow direction = In;
    BOOL connected = 99;
    auto* peer = poison<IConnector>();
    auto* text = poison<WCHAR>();
    EXPECT_EQ(lost, jack->GetType(&type));
    EXPECT_EQ(lost, jack->GetDataFlow(&direction));
    EXPECT_EQ(lost, jack->IsConnected(&connected));
    EXPECT_EQ(lost, jack->GetConnectedTo(&peer));
    EXPECT_EQ(nullptr, peer);
    EXPECT_EQ(lost, jack->GetConnectorIdConnectedTo(&text));
    EXPECT_EQ(nullptr, text);
    text = poison<WCHAR>();
    EXPECT_EQ(lost, jack->GetDeviceIdConnectedTo(&text));
    EXPECT_EQ(nullptr, text);
    EXPECT_EQ(Network, type);
    EXPECT_EQ(In, direction);
    EXPECT_EQ(99, connected);
}

TEST_F(LostDeviceConnector, IsStillNamedByTheFarSideButCannotBeHad)
{
    simulation.change([](sim::Machine& machine) { machine.adapters.clear(); });

    auto* peer = poison<IConnector>();
    EXPECT_EQ(E_NOTFOUND, connector(speakerConnector)->GetConnectedTo(&peer));
    EXPECT_EQ(nullptr, peer);
    EXPECT_EQ(speakerJack, textOf(connector(speakerConnector), &IConnector::GetConnectorIdConnectedTo));
}

TEST_F(LostDeviceControls, AnswerNothing)
{
    const Held<IAudioVolumeLevel> level(simulation.volumeLevel(volumeId));
    const Held<IAudioMute> mute(simulation.mute(muteId));
    const Held<IAudioInputSelector> selector(simulation.inputSelector(selectorId));
    loseDevices();

    UINT number = 99;
    float decibels = 99.0f;
    float levels[] = {-1.0f, -2.0f};
    BOOL muted = 99;
    EXPECT_EQ(lost, level->GetChannelCount(&number));
    EXPECT_EQ(lost, level->GetLevelRange(0, &decibels, &decibels, &decibels));
    EXPECT_EQ(lost, level->GetLevel(0, &decibels));
    EXPECT_EQ(lost, level->SetLevel(0, -1.0f, nullptr));
    EXPECT_EQ(lost, level->SetLevelUniform(-1.0f, nullptr));
    EXPECT_EQ(lost, level->SetLevelAllChannels(levels, 2, nullptr));
    EXPECT_EQ(lost, mute->GetMute(&muted));
    EXPECT_EQ(lost, mute->SetMute(TRUE, nullptr));
    EXPECT_EQ(lost, selector->GetSelection(&number));
    EXPECT_EQ(lost, selector->SetSelection(1, nullptr));
    EXPECT_EQ(99u, number);
    EXPECT_EQ(99.0f, decibels);
    EXPECT_EQ(99, muted);
}

TEST_F(LostDeviceControls, AnswerNothingEitherWhenOnlyTheControlIsGone)
{
    const Held<IAudioVolumeLevel> level(simulation.volumeLevel(volumeId));
    const Held<IAudioMute> mute(simulation.mute(muteId));
    const Held<IAudioInputSelector> selector(simulation.inputSelector(selectorId));
    simulation.change(
        [&](sim::Machine& machine)
        {
            machine.part(volumeId)->volume.reset();
            machine.part(muteId)->mute.reset();
            machine.part(selectorId)->selector.reset();
        });

    UINT number = 99;
    BOOL muted = 99;
    EXPECT_EQ(lost, level->GetChannelCount(&number));
    EXPECT_EQ(lost, mute->GetMute(&muted));
    EXPECT_EQ(lost, selector->GetSelection(&number));
}

TEST_F(LostDeviceVolume, AnswersNothing)
{
    const Held<IAudioEndpointVolume> control = volume(speakerId);
    bench::VolumeListener listener;
    ASSERT_EQ(S_OK, control->RegisterControlChangeNotify(&listener));
    loseDevices();

    UINT number = 99;
    float level = 99.0f;
    BOOL muted = 99;
    DWORD support = 99;
    EXPECT_EQ(lost, control->RegisterControlChangeNotify(&listener));
    EXPECT_EQ(lost, control->GetChannelCount(&number));
    EXPECT_EQ(lost, control->SetMasterVolumeLevel(-1.0f, nullptr));
    EXPECT_EQ(lost, control->SetMasterVolumeLevelScalar(0.5f, nullptr));
    EXPECT_EQ(lost, control->GetMasterVolumeLevel(&level));
    EXPECT_EQ(lost, control->GetMasterVolumeLevelScalar(&level));
    EXPECT_EQ(lost, control->SetChannelVolumeLevel(0, -1.0f, nullptr));
    EXPECT_EQ(lost, control->SetChannelVolumeLevelScalar(0, 0.5f, nullptr));
    EXPECT_EQ(lost, control->GetChannelVolumeLevel(0, &level));
    EXPECT_EQ(lost, control->GetChannelVolumeLevelScalar(0, &level));
    EXPECT_EQ(lost, control->SetMute(TRUE, nullptr));
    EXPECT_EQ(lost, control->GetMute(&muted));
    EXPECT_EQ(lost, control->GetVolumeStepInfo(&number, &number));
    EXPECT_EQ(lost, control->VolumeStepUp(nullptr));
    EXPECT_EQ(lost, control->VolumeStepDown(nullptr));
    EXPECT_EQ(lost, control->QueryHardwareSupport(&support));
    EXPECT_EQ(lost, control->GetVolumeRange(&level, &level, &level));
    EXPECT_EQ(99u, number);
    EXPECT_EQ(99.0f, level);
    EXPECT_EQ(99, muted);
    EXPECT_EQ(99u, support);
    EXPECT_EQ(2u, listener.references);
    EXPECT_EQ(S_OK, control->UnregisterControlChangeNotify(&listener)); // a client can always be taken off
    EXPECT_EQ(1u, listener.references);
}

TEST_F(RemovedEndpoint, IsNoLongerListedButItsObjectsGoOnAnswering)
{
    const Held<IMMDevice> speaker = device(speakerId);
    const Held<IAudioEndpointVolume> control = volume(speakerId);
    const Held<IDeviceTopology> graph = topology(speakerId);
    Held<IPropertyStore> store;
    ASSERT_EQ(S_OK, speaker->OpenPropertyStore(STGM_READ, store.put()));

    simulation.events().remove(speakerId);

    DWORD state = 0;
    UINT count = 0;
    PROPVARIANT value;
    PropVariantInit(&value);
    EXPECT_EQ(S_OK, speaker->GetState(&state));
    EXPECT_EQ(DWORD(DEVICE_STATE_ACTIVE), state);
    EXPECT_EQ(S_OK, control->SetMute(TRUE, nullptr));
    EXPECT_EQ(S_OK, graph->GetConnectorCount(&count));
    EXPECT_EQ(1u, count);
    EXPECT_EQ(S_OK, store->GetValue(sim::keys::speakerConfig, &value));
    EXPECT_EQ(VT_UI4, value.vt);
    EXPECT_EQ(speakerConnector, textOf(connector(speakerJack), &IConnector::GetConnectorIdConnectedTo));
}

TEST_F(RemovedEndpoint, IsNoDefaultAnyMoreAlthoughTheMachineNamesIt)
{
    const Held<IMMDeviceEnumerator> enumerator(simulation.enumerator());

    simulation.events().remove(earphoneId);
    simulation.events().remove(speakerId);

    auto* found = poison<IMMDevice>();
    EXPECT_EQ(E_NOTFOUND, enumerator->GetDefaultAudioEndpoint(eRender, eConsole, &found));
    EXPECT_EQ(nullptr, found);
    simulation.events().add(speakerId);
    Held<IMMDevice> again;
    EXPECT_EQ(S_OK, enumerator->GetDefaultAudioEndpoint(eRender, eConsole, again.put()));
}
}
