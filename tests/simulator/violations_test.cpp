// What a client must not do in a callback: Microsoft's documentation of IMMNotificationClient,
// IAudioEndpointVolumeCallback and IControlChangeNotify; NAudio issue 989, miniaudio issue 1149.
#include "tests/simulator/eventstest.h"
#include "tests/simulator/visit.h"

#include <chrono>
#include <functional>
#include <sstream>
#include <stdexcept>
#include <thread>
#include <utility>

namespace
{
using bench::Held;
using bench::Wide;
using sim::Violation;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

using Action = std::function<void()>;

/// A client that does something in the callback of its choice.
struct ActingClient : bench::ClientListener
{
    HRESULT STDMETHODCALLTYPE OnDeviceStateChanged(LPCWSTR, DWORD) override { return act(onState); }
    HRESULT STDMETHODCALLTYPE OnDeviceAdded(LPCWSTR) override { return act(onAdded); }
    HRESULT STDMETHODCALLTYPE OnDeviceRemoved(LPCWSTR) override { return act(onRemoved); }

    static HRESULT act(const Action& action)
    {
        if (action)
            action();
        return S_OK;
    }

    Action onState, onAdded, onRemoved;
};

struct ActingVolumeClient : bench::VolumeListener
{
    HRESULT STDMETHODCALLTYPE OnNotify(AUDIO_VOLUME_NOTIFICATION_DATA*) override { return ActingClient::act(onNotify); }
    Action onNotify;
};

struct ActingControlClient : bench::ControlListener
{
    HRESULT STDMETHODCALLTYPE OnNotify(DWORD, LPCGUID) override { return ActingClient::act(onNotify); }
    Action onNotify;
};

/// A registered client that acts. What it does wrong is looked at by the test.
class ViolationTest : public bench::SimulationTest
{
protected:
    ViolationTest()
    {
        expectViolations();
        EXPECT_EQ(S_OK, enumerator->RegisterEndpointNotificationCallback(&acting));
    }

    ~ViolationTest() override { EXPECT_EQ(S_OK, enumerator->UnregisterEndpointNotificationCallback(&acting)); }

    /// Runs @p action in the client's OnDeviceAdded.
    void inCallback(Action action)
    {
        acting.onAdded = std::move(action);
        simulation.events().announceAdded(earphoneId);
        simulation.events().waitForClients();
    }

    std::vector<Violation::Kind> kinds() const
    {
        std::vector<Violation::Kind> result;
        for (const Violation& violation : simulation.violations())
            result.push_back(violation.kind);
        return result;
    }

    Held<IMMDevice> opened(const std::string& id)
    {
        Held<IMMDevice> found;
        EXPECT_EQ(S_OK, enumerator->GetDevice(Wide(id), found.put()));
        return found;
    }

    Held<IMMDeviceEnumerator> enumerator{simulation.enumerator()};
    ActingClient acting;
    bench::ClientListener other;
    bench::VolumeListener volumeClient;
    bench::ControlListener controlClient;
};

using ViolationRegistration = ViolationTest;
using ViolationLastRelease = ViolationTest;
using ViolationWait = ViolationTest;
using ViolationReport = ViolationTest;

TEST_F(ViolationRegistration, IsReportedForEveryKindOfClient)
{
    const Held<IAudioEndpointVolume> control = volume(speakerId);
    const Held<IPart> node = part(muteId);
    const IID& iid = sim::InterfaceTraits<IAudioMute>::iid();

    inCallback(
        [&]
        {
            EXPECT_EQ(S_OK, enumerator->RegisterEndpointNotificationCallback(&other));
            EXPECT_EQ(S_OK, control->RegisterControlChangeNotify(&volumeClient));
            EXPECT_EQ(S_OK, node->RegisterControlChangeCallback(iid, &controlClient));
            EXPECT_EQ(S_OK, enumerator->UnregisterEndpointNotificationCallback(&other));
            EXPECT_EQ(S_OK, control->UnregisterControlChangeNotify(&volumeClient));
            EXPECT_EQ(S_OK, node->UnregisterControlChangeCallback(&controlClient));
        });

    constexpr auto in = Violation::Kind::registration;
    constexpr auto out = Violation::Kind::unregistration;
    EXPECT_THAT(kinds(), ElementsAre(in, in, in, out, out, out));
}

TEST_F(ViolationRegistration, IsReportedInCallbacksOfVolumesAndControls)
{
    const Held<IAudioEndpointVolume> control = volume(speakerId);
    const Held<IPart> node = part(muteId);
    const Held<IAudioMute> mute(simulation.mute(muteId));
    ActingVolumeClient ofVolume;
    ActingControlClient ofControl;
    ofVolume.onNotify = [&] { control->UnregisterControlChangeNotify(&ofVolume); };
    ofControl.onNotify = [&] { node->UnregisterControlChangeCallback(&ofControl); };
    ASSERT_EQ(S_OK, control->RegisterControlChangeNotify(&ofVolume));
    ASSERT_EQ(S_OK, node->RegisterControlChangeCallback(sim::InterfaceTraits<IAudioMute>::iid(), &ofControl));

    EXPECT_EQ(S_OK, control->SetMute(TRUE, nullptr));
    EXPECT_EQ(S_OK, mute->SetMute(TRUE, nullptr));
    simulation.events().waitForClients();

    const std::vector<Violation> found = simulation.violations();
    ASSERT_EQ(2u, found.size());
    EXPECT_THAT(found[0].callback, HasSubstr("IAudioEndpointVolumeCallback::OnNotify("));
    EXPECT_EQ("IAudioEndpointVolume::UnregisterControlChangeNotify(object) on " + speakerId, found[0].call);
    EXPECT_EQ("IControlChangeNotify::OnNotify(null)", found[1].callback);
    EXPECT_EQ("IPart::UnregisterControlChangeCallback(object) on " + muteId, found[1].call);
}

TEST_F(ViolationRegistration, IsFreeWhileAnotherThreadIsInACallback)
{
    bench::Visit visit;
    acting.onAdded = [&] { visit.stay(); };
    simulation.events().announceAdded(earphoneId);
    visit.waitUntilInside();

    EXPECT_EQ(S_OK, enumerator->RegisterEndpointNotificationCallback(&other));
    EXPECT_EQ(S_OK, enumerator->UnregisterEndpointNotificationCallback(&other));
    device(speakerId).reset();
    visit.leave();
    simulation.events().waitForClients();

    EXPECT_THAT(simulation.violations(), IsEmpty());
}

TEST_F(ViolationRegistration, IsFreeWithAnotherMachine)
{
    sim::Simulation another(simulation.machine());
    const Held<IMMDeviceEnumerator> its(another.enumerator());

    inCallback(
        [&]
        {
            EXPECT_EQ(S_OK, its->RegisterEndpointNotificationCallback(&other));
            EXPECT_EQ(S_OK, its->UnregisterEndpointNotificationCallback(&other));
        });

    EXPECT_THAT(simulation.violations(), IsEmpty());
    EXPECT_THAT(another.violations(), IsEmpty());
}

TEST_F(ViolationRegistration, IsFreeOutsideCallbacksAlsoAfterOneHasThrown)
{
    simulation.deliverAtOnce(true);
    EXPECT_THROW(inCallback([] { throw std::runtime_error("client"); }), std::runtime_error);

    EXPECT_EQ(S_OK, enumerator->RegisterEndpointNotificationCallback(&other));
    EXPECT_EQ(S_OK, enumerator->UnregisterEndpointNotificationCallback(&other));

    EXPECT_THAT(simulation.violations(), IsEmpty());
}

TEST_F(ViolationLastRelease, IsReportedForAnObjectFromBeforeTheCallback)
{
    Held<IMMDevice> speaker = device(speakerId);
    Held<IAudioEndpointVolume> control = volume(speakerId);
    Held<IPart> node = part(muteId);

    inCallback(
        [&]
        {
            speaker.reset();
            control.reset();
            node.reset();
        });

    std::vector<std::string> calls;
    for (const Violation& violation : simulation.violations())
        calls.push_back(violation.call);
    EXPECT_THAT(calls,
                ElementsAre("IMMDevice::Release() on " + speakerId, "IAudioEndpointVolume::Release() on " + speakerId,
                            "ISubunit::Release() on " + muteId));
    constexpr auto last = Violation::Kind::lastRelease;
    EXPECT_THAT(kinds(), ElementsAre(last, last, last));
}

TEST_F(ViolationLastRelease, IsFreeForWhatWasOpenedInTheCallback)
{
    inCallback(
        [&]
        {
            const Held<IMMDevice> speaker = opened(speakerId);
            Held<IPropertyStore> store;
            EXPECT_EQ(S_OK, speaker->OpenPropertyStore(STGM_READ, store.put()));
            Held<IMMDeviceCollection> all;
            EXPECT_EQ(S_OK, enumerator->EnumAudioEndpoints(eAll, DEVICE_STATEMASK_ALL, all.put()));
            const Held<IMMDeviceEnumerator> own = createdEnumerator();
        });

    EXPECT_THAT(simulation.violations(), IsEmpty());
}

TEST_F(ViolationLastRelease, IsReportedForWhatAnEarlierCallbackHasOpened)
{
    Held<IMMDevice> kept;
    inCallback([&] { kept = opened(speakerId); });

    inCallback([&] { kept.reset(); });

    EXPECT_THAT(kinds(), ElementsAre(Violation::Kind::lastRelease));
}

TEST_F(ViolationLastRelease, IsFreeForWhatAnOuterCallbackHasOpened)
{
    simulation.deliverAtOnce(true);
    Held<IMMDevice> kept;
    acting.onState = [&] { kept.reset(); };

    inCallback(
        [&]
        {
            kept = opened(speakerId);
            simulation.events().plug(lineInId);
        });

    EXPECT_EQ(nullptr, kept.get());
    EXPECT_THAT(simulation.violations(), IsEmpty());
}

TEST_F(ViolationLastRelease, IsFreeForTheObjectsOfAnEndpointWhoseRemovalIsNotified)
{
    for (const auto fate : {sim::RemovedEndpoints::open, sim::RemovedEndpoints::unknown})
    {
        simulation.change([&](sim::Machine& machine) { machine.removedEndpoints = fate; });
        Held<IMMDevice> speaker = device(speakerId);
        Held<IPropertyStore> store;
        EXPECT_EQ(S_OK, speaker->OpenPropertyStore(STGM_READ, store.put()));
        Held<IAudioEndpointVolume> control = volume(speakerId);
        Held<IDeviceTopology> graph = topology(speakerId);
        Held<IConnector> plug = connector(speakerConnector);
        acting.onRemoved = [&]
        {
            speaker.reset();
            store.reset();
            control.reset();
            graph.reset();
            plug.reset();
        };

        simulation.events().remove(speakerId);
        simulation.events().waitForClients();
        simulation.events().add(speakerId);

        EXPECT_EQ(nullptr, plug.get());
        EXPECT_THAT(simulation.violations(), IsEmpty());
    }
}

TEST_F(ViolationLastRelease, IsReportedForObjectsOfOtherDevicesWhenAnEndpointIsRemoved)
{
    Held<IMMDevice> lineIn = device(lineInId);
    Held<IConnector> jack = connector(speakerJack);
    acting.onRemoved = [&]
    {
        lineIn.reset();
        jack.reset();
    };

    simulation.events().remove(speakerId);
    simulation.events().waitForClients();

    constexpr auto last = Violation::Kind::lastRelease;
    EXPECT_THAT(kinds(), ElementsAre(last, last));
}

TEST_F(ViolationLastRelease, IsReportedForAnEndpointThatOnlyChangesItsState)
{
    Held<IMMDevice> speaker = device(speakerId);
    acting.onState = [&] { speaker.reset(); };

    simulation.events().unplug(speakerId);
    simulation.events().waitForClients();

    EXPECT_THAT(kinds(), ElementsAre(Violation::Kind::lastRelease));
}

TEST_F(ViolationLastRelease, IsNotTheReleaseOfOneReferenceOfSeveral)
{
    const Held<IMMDevice> speaker = device(speakerId);
    Held<IMMDeviceEnumerator> second = createdEnumerator();

    inCallback(
        [&]
        {
            speaker->AddRef();
            speaker->Release();
            second.reset();
        });

    EXPECT_THAT(simulation.violations(), IsEmpty());
}

TEST_F(ViolationWait, IsReportedWhenACallbackDoesNotReturnToAnUnregistrationThatWaits)
{
    ActingClient waiting;
    bench::Visit visit;
    waiting.onAdded = [&] { visit.stay(); };
    ASSERT_EQ(S_OK, enumerator->RegisterEndpointNotificationCallback(&waiting));
    simulation.setPatience(std::chrono::milliseconds(1));
    simulation.onViolation([&](const Violation&) { visit.leave(); });
    simulation.events().announceAdded(earphoneId);
    visit.waitUntilInside();

    EXPECT_EQ(S_OK, enumerator->UnregisterEndpointNotificationCallback(&waiting));

    const std::vector<Violation> found = simulation.violations();
    ASSERT_EQ(1u, found.size());
    EXPECT_EQ(Violation::Kind::wait, found[0].kind);
    EXPECT_EQ("IMMNotificationClient::OnDeviceAdded(" + earphoneId + ")", found[0].callback);
    EXPECT_EQ("IMMDeviceEnumerator::UnregisterEndpointNotificationCallback(object) on enumerator", found[0].call);
    EXPECT_EQ("IMMDeviceEnumerator::UnregisterEndpointNotificationCallback",
              simulation.journal().entries()[found[0].place].operation);
}

TEST_F(ViolationWait, IsNoneIfTheCallbackReturnsSoon)
{
    ActingClient brief;
    bench::Visit visit;
    brief.onAdded = [&] { visit.stay(); };
    ASSERT_EQ(S_OK, enumerator->RegisterEndpointNotificationCallback(&brief));
    simulation.setPatience(std::chrono::hours(1));
    simulation.events().announceAdded(earphoneId);
    visit.waitUntilInside();

    visit.leave();
    EXPECT_EQ(S_OK, enumerator->UnregisterEndpointNotificationCallback(&brief));

    EXPECT_THAT(simulation.violations(), IsEmpty());
}

// A callback may take its time: no call but an unregistration waits for it.
TEST_F(ViolationWait, IsNoneWhileOtherCallsOfAnotherThreadReturnHoweverLongTheCallbackTakes)
{
    std::atomic<bool> isInside{false};
    std::atomic<bool> isLeaving{false};
    acting.onAdded = [&]
    {
        isInside = true;
        while (!isLeaving)
            std::this_thread::yield();
    };
    simulation.setPatience(std::chrono::milliseconds(0));
    simulation.events().announceAdded(earphoneId);
    while (!isInside)
        std::this_thread::yield();

    const Held<IMMDevice> earphone = opened(earphoneId);
    EXPECT_EQ(S_OK, volume(speakerId)->SetMute(TRUE, nullptr));
    EXPECT_EQ(S_OK, enumerator->RegisterEndpointNotificationCallback(&other));
    EXPECT_EQ(S_OK, enumerator->UnregisterEndpointNotificationCallback(&other)); // the callback is another client's
    isLeaving = true;
    simulation.events().waitForClients();

    EXPECT_THAT(simulation.violations(), IsEmpty());
}

TEST_F(ViolationReport, SaysWhatWasCalledWhereAndInWhichCallback)
{
    inCallback([&] { enumerator->UnregisterEndpointNotificationCallback(&other); });

    const std::vector<Violation> found = simulation.violations();
    ASSERT_EQ(1u, found.size());
    EXPECT_EQ(Violation::Kind::unregistration, found[0].kind);
    EXPECT_EQ("IMMDeviceEnumerator::UnregisterEndpointNotificationCallback(object) on enumerator", found[0].call);
    EXPECT_EQ("IMMNotificationClient::OnDeviceAdded(" + earphoneId + ")", found[0].callback);
    EXPECT_EQ(found[0].call + " -> 0x80070490", simulation.journal().entries()[found[0].place].line());
}

TEST_F(ViolationReport, ReadsWellInAFailure)
{
    std::ostringstream text;
    for (const auto kind : {Violation::Kind::registration, Violation::Kind::unregistration,
                            Violation::Kind::lastRelease, Violation::Kind::wait})
        text << Violation{kind, "the call", 7, "the callback"} << "\n";

    EXPECT_EQ("the callback: a callback must not register a client: the call, journal entry 7\n"
              "the callback: a callback must not unregister a client: the call, journal entry 7\n"
              "the callback: a callback must not release the last reference on an object: the call, journal entry 7\n"
              "the callback: a callback must not wait: this call waits for it: the call, journal entry 7\n",
              text.str());
}

TEST_F(ViolationReport, HasThePlaceOfAReleaseWhetherItIsRecordedOrNot)
{
    Held<IMMDevice> speaker = device(speakerId);
    Held<IMMDevice> lineIn = device(lineInId);

    inCallback(
        [&]
        {
            lineIn.reset();
            simulation.journal().recordReferences(true);
            speaker.reset();
            simulation.journal().recordReferences(false);
        });

    const std::vector<Violation> found = simulation.violations();
    const sim::JournalEntries entries = simulation.journal().entries();
    ASSERT_EQ(2u, found.size());
    EXPECT_EQ("IMMNotificationClient::OnDeviceAdded", entries[found[0].place - 1].operation);
    EXPECT_EQ("IMMDevice::Release", entries[found[1].place].operation);
}

TEST_F(ViolationReport, IsMadeOnTheThreadAndAtThePlaceOfTheViolation)
{
    std::thread::id thread;
    bool isRegistered = true;
    simulation.onViolation(
        [&](const Violation&)
        {
            thread = std::this_thread::get_id();
            isRegistered = simulation.census().clients.at("IMMNotificationClient") > 1;
        });

    inCallback([&] { enumerator->RegisterEndpointNotificationCallback(&other); });

    EXPECT_EQ(simulation.journal().of("IMMNotificationClient::*")[0].thread, thread);
    EXPECT_FALSE(isRegistered); // the call has not done its work yet
    EXPECT_EQ(S_OK, enumerator->UnregisterEndpointNotificationCallback(&other));
}

TEST_F(ViolationReport, IsMadeWhileNothingIsRecorded)
{
    simulation.journal().record(false);

    inCallback([&] { enumerator->UnregisterEndpointNotificationCallback(&other); });

    ASSERT_EQ(1u, simulation.violations().size());
    EXPECT_EQ("IMMDeviceEnumerator::UnregisterEndpointNotificationCallback(object) on enumerator",
              simulation.violations()[0].call);
}

TEST_F(ViolationReport, IsMadeForACallThatAFaultRefuses)
{
    simulation.faults().fail("RegisterEndpointNotificationCallback");

    inCallback([&] { enumerator->RegisterEndpointNotificationCallback(&other); });

    EXPECT_THAT(kinds(), ElementsAre(Violation::Kind::registration));
    simulation.faults().clear();
}
}
