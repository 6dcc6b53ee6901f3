#include "tests/simulator/eventstest.h"

#include "simulator/machine/propertykeys.h"

#include <stdexcept>

namespace
{
using bench::Held;
using testing::Each;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::StartsWith;

/// The bench machine, whose headset has a microphone, too. Its earphone is the default for communications.
class EventsBurst : public bench::EventsTest
{
protected:
    EventsBurst()
    {
        simulation.change(
            [this](sim::Machine& machine)
            {
                sim::Endpoint voice = *machine.endpoint(earphoneId);
                voice.id = voiceId;
                voice.flow = eCapture;
                voice.topology.reset();
                machine.endpoints.push_back(voice);
            });
        simulation.events().setDefault(earphoneId, eCommunications);
        simulation.events().waitForClients();
        simulation.deliverAtOnce(true);
        m_heardBefore = client.heard().size();
    }

    void install(bool on)
    {
        simulation.change(
            [&](sim::Machine& machine)
            {
                machine.endpoint(earphoneId)->installed = on;
                machine.endpoint(voiceId)->installed = on;
            });
    }

    std::vector<std::string> heard() const
    {
        const std::vector<std::string> all = client.heard();
        return {all.begin() + static_cast<std::ptrdiff_t>(m_heardBefore), all.end()};
    }

    void forget() { m_heardBefore = client.heard().size(); }

    std::uint32_t stateOf(const std::string& id) const { return simulation.machine().endpoint(id)->state; }

    const std::string voiceId = "{0.0.1.00000000}.{ffffffff-0000-4000-8000-000000000001}";

private:
    std::size_t m_heardBefore = 0;
};

using EventsPlugUsb = EventsBurst;
using EventsUnplugUsb = EventsBurst;
using EventsPlugJack = EventsBurst;
using EventsWake = EventsBurst;
using EventsDriverUpdate = EventsBurst;
using EventsService = EventsBurst;

// mumble issue 2266: "state 4, state 4, added, state 4" for the one endpoint of a USB device, then for the other. SDL's
// source of device detection: the device that was added becomes active by a change of state.
TEST_F(EventsPlugUsb, IsABurstForEachEndpointAtTheFirstTime)
{
    install(false);

    simulation.events().plugUsb(voiceId);

    EXPECT_THAT(heard(),
                ElementsAre("state " + earphoneId + " 4", "state " + earphoneId + " 4", "added " + earphoneId,
                            "state " + earphoneId + " 4", "state " + earphoneId + " 1", "state " + voiceId + " 4",
                            "state " + voiceId + " 4", "added " + voiceId, "state " + voiceId + " 4",
                            "state " + voiceId + " 1", "default 0 2 " + earphoneId));
}

// SDL's source of device detection: a device that comes again causes no OnDeviceAdded.
TEST_F(EventsPlugUsb, AddsNothingWhenTheDeviceComesAgain)
{
    simulation.events().unplugUsb(earphoneId);
    forget();

    simulation.events().plugUsb(earphoneId);

    EXPECT_THAT(heard(), Not(testing::Contains(StartsWith("added"))));
    EXPECT_THAT(heard(), testing::Contains("state " + earphoneId + " 1"));
    EXPECT_EQ("default 0 2 " + earphoneId, heard().back());
}

TEST_F(EventsPlugUsb, LeavesADeviceAloneThatIsThere)
{
    simulation.events().plugUsb(earphoneId);

    EXPECT_THAT(heard(), IsEmpty());
}

TEST_F(EventsPlugUsb, GivesAnEndpointTheStateBackThatItHad)
{
    simulation.events().setState(voiceId, sim::stateDisabled);
    simulation.events().unplugUsb(voiceId);

    simulation.events().plugUsb(voiceId);

    EXPECT_EQ(sim::stateDisabled, stateOf(voiceId));
    EXPECT_EQ(sim::stateActive, stateOf(earphoneId));
}

TEST_F(EventsPlugUsb, MakesAnEndpointActiveThatTheMachineHasAsNotPresent)
{
    simulation.change([&](sim::Machine& machine) { machine.endpoint(voiceId)->state = sim::stateNotPresent; });

    simulation.events().plugUsb(earphoneId);

    EXPECT_EQ(sim::stateActive, stateOf(voiceId));
    EXPECT_THAT(heard(), Each(testing::HasSubstr(voiceId)));
}

// SDL's source of device detection: "it isn't removed (its state changes to NOTPRESENT)"; openal-soft issue 908.
TEST_F(EventsUnplugUsb, MakesAllEndpointsOfTheDeviceNotPresentAndMovesTheDefaultsAfterwards)
{
    simulation.events().unplugUsb(voiceId);

    EXPECT_THAT(heard(),
                ElementsAre("state " + earphoneId + " 4", "state " + voiceId + " 4", "default 0 2 " + speakerId));
    EXPECT_TRUE(simulation.machine().endpoint(earphoneId)->installed);
}

TEST_F(EventsUnplugUsb, MovesOnlyEndpointsWithExactlyThisInstancePath)
{
    simulation.change(
        [&](sim::Machine& machine)
        {
            sim::Endpoint& other = *machine.endpoint(voiceId);
            std::string path = *sim::findProperty(other.properties, sim::keys::instancePath)->text;
            path.back() = path.back() == 'x' ? 'y' : 'x';
            sim::setProperty(other.properties, sim::keys::instancePath, sim::PropertyValue::ofText(path));
        });

    simulation.events().unplugUsb(earphoneId);

    EXPECT_EQ(sim::stateActive, stateOf(voiceId));
    EXPECT_EQ(sim::stateNotPresent, stateOf(earphoneId));
}

TEST_F(EventsUnplugUsb, MovesAnEndpointWithoutInstancePathAlone)
{
    simulation.change(
        [&](sim::Machine& machine)
        {
            for (sim::Endpoint& endpoint : machine.endpoints)
                sim::removeProperty(endpoint.properties, sim::keys::instancePath);
        });

    simulation.events().unplugUsb(earphoneId);

    EXPECT_EQ(sim::stateActive, stateOf(voiceId));
    EXPECT_EQ(sim::stateNotPresent, stateOf(earphoneId));
}

TEST_F(EventsUnplugUsb, RefusesAnEndpointThatTheMachineHasNot)
{
    EXPECT_THROW(simulation.events().unplugUsb("{unknown}"), std::invalid_argument);
    EXPECT_THROW(simulation.events().plugUsb("{unknown}"), std::invalid_argument);
    EXPECT_THROW(simulation.events().plugJack("{unknown}"), std::invalid_argument);
    EXPECT_THROW(simulation.events().driverUpdate("{unknown}"), std::invalid_argument);
}

// Microsoft's DEVICE_STATE_XXX constants: a jack with presence detection makes its endpoint active or unplugged.
TEST_F(EventsPlugJack, ChangesTheStateAndThenTheDefaults)
{
    simulation.events().setDefault(microphoneId, eConsole);
    forget();

    simulation.events().plugJack(microphoneId);
    simulation.events().unplugJack(microphoneId);

    EXPECT_THAT(heard(), ElementsAre("state " + microphoneId + " 1", "default 1 0 " + microphoneId,
                                     "state " + microphoneId + " 8", "default 1 0 " + lineInId));
}

TEST_F(EventsPlugJack, DoesNothingToAnEndpointThatIsDisabledOrNotPresent)
{
    simulation.events().setState(microphoneId, sim::stateDisabled);
    simulation.events().setState(lineInId, sim::stateNotPresent);
    forget();

    simulation.events().plugJack(microphoneId);
    simulation.events().unplugJack(lineInId);

    EXPECT_THAT(heard(), IsEmpty());
    EXPECT_EQ(sim::stateDisabled, stateOf(microphoneId));
    EXPECT_EQ(sim::stateNotPresent, stateOf(lineInId));
}

// Devices are invalidated and defaults missing after waking: FlexASIO issue 95, Aurora issue 122, SDL issue 7044.
TEST_F(EventsWake, TakesTheActiveEndpointsAwayAndBringsThemBack)
{
    simulation.events().setState(voiceId, sim::stateDisabled);
    simulation.events().setDefault(speakerId, eCommunications);
    forget();

    simulation.events().wake();

    EXPECT_THAT(heard(),
                ElementsAre("state " + speakerId + " 4", "state " + lineInId + " 4", "state " + earphoneId + " 4",
                            "default 0 0 null", "default 0 1 null", "default 0 2 null", "default 1 0 null",
                            "default 1 1 null", "default 1 2 null", "state " + speakerId + " 1",
                            "state " + lineInId + " 1", "state " + earphoneId + " 1", "default 0 0 " + speakerId,
                            "default 0 1 " + speakerId, "default 0 2 " + speakerId, "default 1 0 " + lineInId,
                            "default 1 1 " + lineInId, "default 1 2 " + lineInId));
    EXPECT_EQ(sim::stateDisabled, stateOf(voiceId));
}

TEST_F(EventsWake, ShowsClientsOnTheNotificationThreadThatTheEndpointsAreAway)
{
    simulation.deliverAtOnce(false);
    struct Asking : bench::ClientListener
    {
        HRESULT STDMETHODCALLTYPE OnDeviceStateChanged(LPCWSTR, DWORD state) override
        {
            Held<IMMDevice> found;
            if (state == DEVICE_STATE_NOTPRESENT)
                results.push_back(owner->GetDefaultAudioEndpoint(eRender, eConsole, found.put()));
            return S_OK;
        }
        IMMDeviceEnumerator* owner = nullptr;
        std::vector<HRESULT> results;
    } asking;
    asking.owner = enumerator.get();
    ASSERT_EQ(S_OK, enumerator->RegisterEndpointNotificationCallback(&asking));

    simulation.events().wake();
    simulation.events().waitForClients();

    EXPECT_THAT(asking.results, ElementsAre(E_NOTFOUND, E_NOTFOUND, E_NOTFOUND, E_NOTFOUND));
    EXPECT_EQ(sim::stateActive, stateOf(speakerId));
    EXPECT_EQ(S_OK, enumerator->UnregisterEndpointNotificationCallback(&asking));
}

// SDL's source of device detection: GetDevice may answer E_NOTFOUND for 8 s after the computer has woken up.
TEST_F(EventsWake, BeginsFaultsThatHoldForATimeAfterIt)
{
    sim::FaultPlan::Clock::time_point now{};
    simulation.faults().useClock([&] { return now; });
    simulation.faults()
        .fail("IMMDeviceEnumerator::GetDevice", E_NOTFOUND)
        .after(sim::ScriptEvent::Kind::wake)
        .during(std::chrono::seconds(8));
    const auto find = [&]
    {
        Held<IMMDevice> found;
        return enumerator->GetDevice(bench::Wide(speakerId), found.put());
    };
    EXPECT_EQ(S_OK, find());

    simulation.events().wake();

    EXPECT_EQ(E_NOTFOUND, find());
    now += std::chrono::seconds(8);
    EXPECT_EQ(S_OK, find());
    simulation.faults().clear();
}

TEST_F(EventsDriverUpdate, TakesTheEndpointsOfTheDeviceAwayAndBringsThemBack)
{
    simulation.events().driverUpdate(voiceId);

    EXPECT_THAT(heard(),
                ElementsAre("state " + earphoneId + " 4", "state " + voiceId + " 4", "default 0 2 " + speakerId,
                            "state " + earphoneId + " 1", "state " + voiceId + " 1", "default 0 2 " + earphoneId));
}

TEST_F(EventsService, LeavesNoDefaultWhileItIsStopped)
{
    const auto find = [&]
    {
        Held<IMMDevice> found;
        return enumerator->GetDefaultAudioEndpoint(eRender, eConsole, found.put());
    };

    simulation.events().serviceStop();
    EXPECT_THAT(heard(), ElementsAre("default 0 0 null", "default 0 1 null", "default 0 2 null", "default 1 0 null",
                                     "default 1 1 null", "default 1 2 null"));
    EXPECT_EQ(E_NOTFOUND, find());
    forget();
    simulation.events().serviceStop();
    EXPECT_THAT(heard(), IsEmpty());

    simulation.events().serviceStart();
    EXPECT_THAT(heard(),
                ElementsAre("default 0 0 " + speakerId, "default 0 1 " + speakerId, "default 0 2 " + earphoneId,
                            "default 1 0 " + lineInId, "default 1 1 " + lineInId, "default 1 2 " + lineInId));
    EXPECT_EQ(S_OK, find());
}

// AUDCLNT_E_SERVICE_NOT_RUNNING: "the Windows audio service is not running", in Microsoft's documentation of
// IAudioClient.
TEST_F(EventsService, GivesNoAudioClientWhileItIsStopped)
{
    const auto activate = [&](const std::string& id, REFIID iid)
    {
        Held<IUnknown> object;
        return device(id)->Activate(iid, CLSCTX_INPROC_SERVER, nullptr, object.putVoid());
    };
    const std::vector<IID> clients = {sim::InterfaceTraits<IAudioClient>::iid(),
                                      sim::InterfaceTraits<IAudioClient2>::iid(),
                                      sim::InterfaceTraits<IAudioClient3>::iid()};

    for (const IID& iid : clients)
    {
        simulation.events().serviceStop();
        EXPECT_EQ(AUDCLNT_E_SERVICE_NOT_RUNNING, activate(earphoneId, iid));
        EXPECT_EQ(E_NOINTERFACE, activate(speakerId, iid)); // without streams at any time
        EXPECT_EQ(S_OK, activate(earphoneId, sim::InterfaceTraits<IDeviceTopology>::iid()));
        simulation.events().serviceStart();
        EXPECT_EQ(S_OK, activate(earphoneId, iid));
        EXPECT_EQ(E_NOINTERFACE, activate(speakerId, iid));
    }
}

TEST_F(EventsBurst, MayBePartOfAScript)
{
    sim::Machine machine = simulation.machine();
    const auto add = [&](sim::ScriptEvent::Kind kind, const std::string& endpoint)
    {
        sim::ScriptEvent event;
        event.kind = kind;
        event.endpoint = endpoint;
        machine.script.push_back(event);
    };
    using Kind = sim::ScriptEvent::Kind;
    add(Kind::unplugUsb, earphoneId);
    add(Kind::plugUsb, earphoneId);
    add(Kind::plugJack, microphoneId);
    add(Kind::unplugJack, microphoneId);
    add(Kind::driverUpdate, lineInId);
    add(Kind::serviceStop, "");
    add(Kind::serviceStart, "");
    add(Kind::remoteLogon, "");
    add(Kind::wake, "");
    simulation.change([&](sim::Machine& changed) { changed.script = machine.script; });
    Held<IPropertyStore> store;
    ASSERT_EQ(S_OK, device(speakerId)->OpenPropertyStore(STGM_READ, store.put()));

    simulation.events().playScript();

    EXPECT_THAT(heard(), testing::IsSupersetOf({"state " + earphoneId + " 4", "state " + microphoneId + " 1",
                                                "state " + microphoneId + " 8", "state " + lineInId + " 4",
                                                std::string("default 0 0 null"), "state " + speakerId + " 4"}));
    DWORD count = 0;
    EXPECT_EQ(E_ACCESSDENIED, store->GetCount(&count));
    EXPECT_EQ(sim::stateActive, stateOf(speakerId));
}
}
