#include "tests/simulator/bench.h"

#include "simulator/machine/propertykeys.h"

#include <sstream>

namespace
{
using bench::Held;
using bench::textOf;
using testing::ElementsAre;
using testing::EndsWith;
using testing::HasSubstr;
using testing::IsEmpty;

class JournalOfSimulation : public bench::SimulationTest
{
protected:
    JournalOfSimulation() { simulation.journal().clear(); }

    sim::JournalEntries entries() const
    {
        return const_cast<JournalOfSimulation*>(this)->simulation.journal().entries();
    }

    Held<IMMDevice> speaker = device(speakerId);
};

using JournalRecord = JournalOfSimulation;
using JournalNarrow = JournalOfSimulation;
using JournalReferences = JournalOfSimulation;
using JournalSwitch = JournalOfSimulation;

TEST_F(JournalRecord, NamesEveryCallInOrder)
{
    Held<IDeviceTopology> topology;
    DWORD state = 0;
    speaker->Activate(sim::InterfaceTraits<IDeviceTopology>::iid(), CLSCTX_ALL, nullptr, topology.putVoid());
    speaker->GetState(&state);
    UINT count = 0;
    topology->GetConnectorCount(&count);

    EXPECT_THAT(simulation.journal().operations(),
                ElementsAre("IMMDevice::Activate", "IMMDevice::GetState", "IDeviceTopology::GetConnectorCount"));
}

TEST_F(JournalRecord, KeepsArgumentsObjectResultAndThread)
{
    void* client = nullptr;
    speaker->Activate(sim::InterfaceTraits<IAudioClient>::iid(), CLSCTX_ALL, nullptr, &client);

    const sim::JournalEntries journal = entries();
    ASSERT_EQ(1u, journal.size());
    EXPECT_THAT(journal[0].arguments, ElementsAre("IAudioClient", "23"));
    EXPECT_EQ(speakerId, journal[0].object);
    EXPECT_EQ(sim::CallEnd::returned, journal[0].end);
    EXPECT_EQ(E_NOINTERFACE, journal[0].result);
    EXPECT_EQ(std::this_thread::get_id(), journal[0].thread);
    EXPECT_THAT(journal.lines(),
                ElementsAre("IMMDevice::Activate(IAudioClient, 23) on " + speakerId + " -> 0x80004002"));
}

TEST_F(JournalRecord, WritesArgumentsReadably)
{
    const Held<IAudioEndpointVolume> control = volume(speakerId);
    const GUID context = {1, 2, 3, {4, 5, 6, 7, 8, 9, 10, 11}};
    Held<IPropertyStore> store;
    speaker->OpenPropertyStore(STGM_READ, store.put());
    PROPVARIANT value;
    PropVariantInit(&value);
    store->GetValue({{1, 2, 3, {4, 5, 6, 7, 8, 9, 10, 11}}, 12}, &value);
    store->GetValue(sim::keys::speakerConfig, &value);
    control->SetMute(TRUE, nullptr);
    control->SetChannelVolumeLevel(1, -0.1f, &context);
    Held<IPartsList> path;
    topology(codecId)->GetSignalPath(part(speakerStream).get(), part(speakerJack).get(), TRUE, path.put());

    EXPECT_THAT(entries().calls(),
                ElementsAre("IMMDevice::OpenPropertyStore(0)",
                            "IPropertyStore::GetValue({00000001-0002-0003-0405-060708090A0B}/12)",
                            "IPropertyStore::GetValue(speakerConfig)", "IAudioEndpointVolume::SetMute(1, null)",
                            "IAudioEndpointVolume::SetChannelVolumeLevel(1, -0.1, "
                            "{00000001-0002-0003-0405-060708090A0B})",
                            "IDeviceTopology::GetSignalPath(" + speakerStream + ", " + speakerJack + ", 1)"));
}

TEST_F(JournalRecord, ShowsTheEnumeratorsCallsAndItsCollections)
{
    const Held<IMMDeviceEnumerator> enumerator(simulation.enumerator());
    Held<IMMDeviceCollection> collection;
    enumerator->EnumAudioEndpoints(eCapture, 15, collection.put());
    Held<IMMDevice> found;
    collection->Item(0, found.put());
    enumerator->GetDefaultAudioEndpoint(eRender, eCommunications, found.put());

    EXPECT_THAT(entries().lines(),
                ElementsAre("IMMDeviceEnumerator::EnumAudioEndpoints(eCapture, 15) on enumerator -> 0x00000000",
                            "IMMDeviceCollection::Item(0) on endpoints(eCapture, 15) -> 0x00000000",
                            "IMMDeviceEnumerator::GetDefaultAudioEndpoint(eRender, eCommunications) on enumerator -> "
                            "0x00000000"));
}

TEST_F(JournalRecord, ShowsFlowsAndRolesThatDoNotExistAsNumbers)
{
    const Held<IMMDeviceEnumerator> enumerator(simulation.enumerator());
    Held<IMMDeviceCollection> collection;
    Held<IMMDevice> found;
    enumerator->EnumAudioEndpoints(eAll, 1, collection.put());
    enumerator->EnumAudioEndpoints(EDataFlow_enum_count, 1, collection.put());
    enumerator->GetDefaultAudioEndpoint(eRender, ERole_enum_count, found.put());

    EXPECT_THAT(entries().calls(), ElementsAre("IMMDeviceEnumerator::EnumAudioEndpoints(eAll, 1)",
                                               "IMMDeviceEnumerator::EnumAudioEndpoints(3, 1)",
                                               "IMMDeviceEnumerator::GetDefaultAudioEndpoint(eRender, 3)"));
}

TEST_F(JournalRecord, ShowsAnUnknownInterfaceAsItsIdentifier)
{
    void* object = nullptr;
    speaker->Activate(GUID{1, 2, 3, {4, 5, 6, 7, 8, 9, 10, 11}}, CLSCTX_ALL, nullptr, &object);

    EXPECT_THAT(entries().calls(), ElementsAre("IMMDevice::Activate({00000001-0002-0003-0405-060708090A0B}, 23)"));
}

TEST_F(JournalRecord, SaysOnWhichThreadACallWasMade)
{
    std::thread::id other;
    bench::onThread(
        [&]
        {
            other = std::this_thread::get_id();
            DWORD state = 0;
            speaker->GetState(&state);
        });
    DWORD state = 0;
    speaker->GetState(&state);

    EXPECT_EQ(1u, entries().onThread(other).size());
    EXPECT_EQ(1u, entries().onThread(std::this_thread::get_id()).size());
}

TEST_F(JournalRecord, ShowsACallAheadOfThoseThatItsCallbacksMake)
{
    simulation.deliverAtOnce(true);
    bench::VolumeListener listener;
    const Held<IAudioEndpointVolume> control = volume(speakerId);
    control->RegisterControlChangeNotify(&listener);
    control->SetMute(TRUE, nullptr);
    control->UnregisterControlChangeNotify(&listener);

    EXPECT_THAT(entries().operations(),
                ElementsAre("IAudioEndpointVolume::RegisterControlChangeNotify", "IAudioEndpointVolume::SetMute",
                            "IAudioEndpointVolumeCallback::OnNotify",
                            "IAudioEndpointVolume::UnregisterControlChangeNotify"));
}

TEST_F(JournalNarrow, PicksByOperationObjectArgumentAndOutcome)
{
    void* object = nullptr;
    DWORD state = 0;
    speaker->GetState(&state);
    device(earphoneId)->GetState(&state);
    speaker->Activate(sim::InterfaceTraits<IAudioClient>::iid(), CLSCTX_ALL, nullptr, &object);
    speaker->Activate(sim::InterfaceTraits<IBaseFilter>::iid(), CLSCTX_ALL, nullptr, &object);

    EXPECT_EQ(2u, entries().of("IMMDevice::GetState").size());
    EXPECT_EQ(4u, entries().of("IMMDevice::*").size());
    EXPECT_EQ(2u, entries().without("IMMDevice::Act*").size());
    EXPECT_EQ(2u, entries().of("IMMDevice::Ge*").size());
    EXPECT_EQ(0u, entries().of("IMMDevice::GetI*").size());
    EXPECT_EQ(4u, entries().of("*").size());
    EXPECT_EQ(1u, entries().on(earphoneId).size());
    EXPECT_THAT(entries().with("IBaseFilter").operations(), ElementsAre("IMMDevice::Activate"));
    EXPECT_EQ(2u, entries().failed().size());
    EXPECT_EQ(1u, entries().on(speakerId).of("IMMDevice::GetState").size());
    EXPECT_EQ(2u, simulation.journal().count("IMMDevice::Activate"));
    EXPECT_EQ(0u, simulation.journal().count("IMMDevice"));
    EXPECT_EQ(2u, simulation.journal().of("IMMDevice::Activate").size());
}

TEST_F(JournalReferences, AreLeftOutUnlessAskedFor)
{
    speaker->AddRef();
    speaker->Release();
    speaker.as<IMMEndpoint>();

    EXPECT_THAT(entries(), IsEmpty());
}

TEST_F(JournalReferences, AreRecordedWithTheirCountsWhenAskedFor)
{
    simulation.journal().recordReferences(true);

    speaker->AddRef();
    speaker->Release();
    speaker.as<IMMEndpoint>();
    void* object = nullptr;
    speaker->QueryInterface(sim::InterfaceTraits<IPart>::iid(), &object);
    speaker.reset();

    simulation.journal().recordReferences(false);
    EXPECT_THAT(entries().lines(),
                ElementsAre("IMMDevice::AddRef() on " + speakerId + " -> 0x00000002",
                            "IMMDevice::Release() on " + speakerId + " -> 0x00000001",
                            "IMMDevice::QueryInterface(IMMEndpoint) on " + speakerId + " -> 0x00000000",
                            "IMMDevice::Release() on " + speakerId + " -> 0x00000001",
                            "IMMDevice::QueryInterface(IPart) on " + speakerId + " -> 0x80004002",
                            "IMMDevice::Release() on " + speakerId + " -> 0x00000000"));
}

TEST_F(JournalSwitch, RecordsNothingWhileItIsOff)
{
    DWORD state = 0;
    simulation.journal().record(false);
    speaker->GetState(&state);
    simulation.journal().record(true);
    EXPECT_THAT(entries(), IsEmpty());

    speaker->GetState(&state);
    EXPECT_EQ(1u, simulation.journal().size());
}

TEST_F(JournalSwitch, ForgetsWhatIsClearedAndACallThatIsUnderWay)
{
    simulation.faults().run("IMMDevice::GetState", [&] { simulation.journal().clear(); });
    simulation.deliverAtOnce(true);
    bench::VolumeListener listener;
    DWORD state = 0;
    speaker->GetState(&state);
    speaker->GetState(&state);

    EXPECT_EQ(1u, entries().size());
}

TEST_F(JournalSwitch, KeepsLaterEntriesAsTheyAreWhenACallEndsThatBeganBeforeItWasCleared)
{
    simulation.deliverAtOnce(true);
    struct Clearing : bench::VolumeListener
    {
        HRESULT STDMETHODCALLTYPE OnNotify(AUDIO_VOLUME_NOTIFICATION_DATA*) override
        {
            journal->clear();
            DWORD state = 0;
            device->GetState(&state);
            device->GetState(&state);
            return E_ABORT;
        }
        sim::Journal* journal = nullptr;
        IMMDevice* device = nullptr;
    } clearing;
    clearing.journal = &simulation.journal();
    clearing.device = speaker.get();
    const Held<IAudioEndpointVolume> control = volume(speakerId);
    ASSERT_EQ(S_OK, control->RegisterControlChangeNotify(&clearing));
    simulation.journal().clear();

    EXPECT_EQ(S_OK, control->SetMute(TRUE, nullptr));

    const std::string line = "IMMDevice::GetState() on " + speakerId + " -> 0x00000000";
    EXPECT_THAT(entries().lines(), ElementsAre(line, line));
    EXPECT_EQ(S_OK, control->UnregisterControlChangeNotify(&clearing));
}

TEST_F(JournalSwitch, PrintsALineForEachCall)
{
    DWORD state = 0;
    speaker->GetState(&state);
    textOf(speaker, &IMMDevice::GetId);

    std::ostringstream text;
    text << entries().of("IMMDevice::*");

    EXPECT_THAT(text.str(), HasSubstr("\n  IMMDevice::GetState() on " + speakerId));
    EXPECT_THAT(text.str(), EndsWith("IMMDevice::GetId() on " + speakerId + " -> 0x00000000"));
}
}
