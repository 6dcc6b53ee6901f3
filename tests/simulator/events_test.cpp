#include "tests/simulator/eventstest.h"

#include "simulator/machine/propertykeys.h"

#include <chrono>
#include <stdexcept>
#include <utility>

namespace
{
using bench::Held;
using testing::ElementsAre;
using testing::IsEmpty;

using EventsThread = bench::EventsTest;
using EventsAtOnce = bench::EventsTest;
using EventsScript = bench::EventsTest;

TEST_F(EventsThread, IsTheMachinesOwn)
{
    simulation.events().plug(microphoneId);
    simulation.events().waitForClients();

    EXPECT_THAT(client.heard(), ElementsAre("state " + microphoneId + " 1"));
    EXPECT_NE(std::this_thread::get_id(), client.thread());
    EXPECT_EQ(client.thread(), simulation.journal().of("IMMNotificationClient::*")[0].thread);
}

TEST_F(EventsThread, DeliversInTheOrderInWhichThingsHappened)
{
    simulation.events().setState(microphoneId, sim::stateDisabled);
    simulation.events().remove(earphoneId);
    simulation.events().plug(microphoneId);
    simulation.events().waitForClients();

    EXPECT_THAT(client.heard(),
                ElementsAre("state " + microphoneId + " 2", "removed " + earphoneId, "state " + microphoneId + " 1"));
}

/// Creates an enumerator on the thread on which it is notified.
struct CreatingClient : bench::ClientListener
{
    HRESULT STDMETHODCALLTYPE OnDeviceAdded(LPCWSTR) override
    {
        Held<IMMDeviceEnumerator> own;
        created = CoCreateInstance(bench::enumeratorClass, nullptr, CLSCTX_INPROC_SERVER,
                                   sim::InterfaceTraits<IMMDeviceEnumerator>::iid(), own.putVoid());
        return created;
    }
    HRESULT created = E_FAIL;
};

TEST_F(EventsThread, HasCom)
{
    CreatingClient creating;
    ASSERT_EQ(S_OK, enumerator->RegisterEndpointNotificationCallback(&creating));

    simulation.events().add(speakerId);
    simulation.events().waitForClients();

    EXPECT_EQ(S_OK, creating.created);
    EXPECT_EQ(S_OK, enumerator->UnregisterEndpointNotificationCallback(&creating));
}

// StreamDeck-AudioMute issue 55: the thread is one of a pool and may lack COM.
TEST_F(EventsThread, HasNoComWhereTheMachineSaysSo)
{
    simulation.change([](sim::Machine& machine) { machine.callbackThread = sim::CallbackThread::bare; });
    CreatingClient creating;
    ASSERT_EQ(S_OK, enumerator->RegisterEndpointNotificationCallback(&creating));

    simulation.events().add(speakerId);
    simulation.events().waitForClients();

    EXPECT_EQ(CO_E_NOTINITIALIZED, creating.created);
    EXPECT_THAT(client.heard(), ElementsAre("added " + speakerId)); // it needs no COM to be notified
    EXPECT_EQ(S_OK, enumerator->UnregisterEndpointNotificationCallback(&creating));
}

TEST_F(EventsThread, DropsWhatIsNotDeliveredWhenTheSimulationEnds)
{
    bench::ClientListener lateClient;
    {
        sim::Simulation other(simulation.machine());
        Held<IMMDeviceEnumerator> its(other.enumerator());
        ASSERT_EQ(S_OK, its->RegisterEndpointNotificationCallback(&lateClient));
        other.change(
            [&](sim::Machine& machine)
            {
                sim::ScriptEvent late;
                late.afterMilliseconds = 60 * 60 * 1000;
                late.endpoint = speakerId;
                machine.script = {late};
            });
        other.events().playScript();
        EXPECT_EQ(S_OK, its->UnregisterEndpointNotificationCallback(&lateClient));
    }

    EXPECT_THAT(lateClient.heard(), IsEmpty());
}

TEST_F(EventsAtOnce, AreHeardOnTheCallingThreadBeforeTheCallReturns)
{
    simulation.deliverAtOnce(true);

    simulation.events().plug(microphoneId);

    EXPECT_THAT(client.heard(), ElementsAre("state " + microphoneId + " 1"));
    EXPECT_EQ(std::this_thread::get_id(), client.thread());
}

TEST_F(EventsAtOnce, TellOfEveryKindOfChange)
{
    simulation.deliverAtOnce(true);
    sim::Events& events = simulation.events();

    events.add(earphoneId);
    events.setState(microphoneId, sim::stateDisabled);
    events.setDefault(earphoneId, eMultimedia);
    events.clearDefault(eRender, eConsole);
    const sim::Machine chosen = simulation.machine();
    events.setProperty(speakerId, sim::keys::friendlyName, sim::PropertyValue::ofText("Other"));
    events.remove(microphoneId);

    EXPECT_THAT(client.heard(),
                ElementsAre("added " + earphoneId, "state " + microphoneId + " 2", "default 0 1 " + earphoneId,
                            "default 0 0 null", "property " + speakerId + " 6", "removed " + microphoneId));
    EXPECT_EQ(earphoneId, chosen.defaultEndpoint(eRender, eMultimedia)->id);
    const sim::Machine machine = simulation.machine();
    EXPECT_FALSE(machine.endpoint(microphoneId)->installed);
    EXPECT_EQ(sim::stateDisabled, machine.endpoint(microphoneId)->state);
    EXPECT_EQ(nullptr, machine.defaultEndpoint(eRender, eConsole));
    EXPECT_EQ("Other", sim::findProperty(machine.endpoint(speakerId)->properties, sim::keys::friendlyName)->text);
}

TEST_F(EventsAtOnce, MoveADefaultWithinItsFlowAndRoleOnly)
{
    simulation.events().setDefault(lineInId, eConsole);
    simulation.events().setDefault(earphoneId, eConsole);

    const sim::Machine machine = simulation.machine();
    EXPECT_EQ(earphoneId, machine.defaultEndpoint(eRender, eConsole)->id);
    EXPECT_EQ(speakerId, machine.defaultEndpoint(eRender, eMultimedia)->id);
    EXPECT_EQ(lineInId, machine.defaultEndpoint(eCapture, eConsole)->id);
    EXPECT_THAT(machine.endpoint(speakerId)->defaultFor, testing::Not(testing::Contains(eConsole)));
}

TEST_F(EventsAtOnce, SetOnlyWhatAVolumeChangeNames)
{
    simulation.deliverAtOnce(true);
    bench::VolumeListener listener;
    const Held<IAudioEndpointVolume> control = volume(speakerId);
    ASSERT_EQ(S_OK, control->RegisterControlChangeNotify(&listener));
    sim::Events& events = simulation.events();

    events.setVolume(speakerId, std::nullopt, true);
    const sim::EndpointVolume muted = *simulation.machine().endpoint(speakerId)->volume;
    events.setVolume(speakerId, -10.0f);
    const sim::EndpointVolume lowered = *simulation.machine().endpoint(speakerId)->volume;
    events.setVolume(speakerId, -10.0f, true); // no change
    events.setVolume(speakerId, std::nullopt); // no change

    EXPECT_TRUE(muted.muted);
    EXPECT_THAT(muted.channels, ElementsAre(0.0f, 0.0f));
    EXPECT_TRUE(lowered.muted);
    EXPECT_THAT(lowered.channels, ElementsAre(-10.0f, -10.0f));
    EXPECT_EQ(2u, listener.heard().size());
    EXPECT_EQ(S_OK, control->UnregisterControlChangeNotify(&listener));
}

TEST_F(EventsAtOnce, FindAnEndpointWhosePlaceInTheMachineHasChanged)
{
    simulation.change([](sim::Machine& machine) { std::swap(machine.endpoints.front(), machine.endpoints.back()); });

    simulation.events().setState(speakerId, sim::stateDisabled);

    EXPECT_EQ(sim::stateDisabled, simulation.machine().endpoint(speakerId)->state);
    EXPECT_EQ(sim::stateActive, simulation.machine().endpoint(earphoneId)->state);
}

TEST_F(EventsAtOnce, LeaveAnEndpointWithoutVolumeAsItIs)
{
    simulation.change([&](sim::Machine& machine) { machine.endpoint(speakerId)->volume.reset(); });

    simulation.events().setVolume(speakerId, -10.0f, true);

    EXPECT_FALSE(simulation.machine().endpoint(speakerId)->volume.has_value());
}

TEST_F(EventsAtOnce, RemoveAPropertyThatBecomesEmpty)
{
    simulation.deliverAtOnce(true);

    simulation.events().setProperty(speakerId, sim::keys::speakerConfig, sim::PropertyValue());

    EXPECT_EQ(nullptr,
              sim::findProperty(simulation.machine().endpoint(speakerId)->properties, sim::keys::speakerConfig));
    EXPECT_THAT(client.heard(), ElementsAre("property " + speakerId + " 3"));
}

TEST_F(EventsAtOnce, GiveTheMachineAnEndpointThatItDidNotHave)
{
    simulation.deliverAtOnce(true);
    sim::Endpoint fresh = *simulation.machine().endpoint(earphoneId);
    fresh.id = "{0.0.0.00000000}.{fresh}";
    fresh.topology.reset();

    simulation.events().add(fresh);

    EXPECT_THAT(client.heard(), ElementsAre("added " + fresh.id));
    Held<IMMDevice> found;
    EXPECT_EQ(S_OK, enumerator->GetDevice(bench::Wide(fresh.id), found.put()));
    EXPECT_THROW(simulation.events().add(fresh), std::invalid_argument);
}

TEST_F(EventsAtOnce, CanBeAnnouncedWithoutAnyChange)
{
    simulation.deliverAtOnce(true);
    const sim::Machine before = simulation.machine();
    sim::Events& events = simulation.events();

    events.announceAdded("{unknown}");
    events.announceRemoved(speakerId);
    events.announceState(speakerId, 4);
    events.announceDefault(eCapture, eConsole, lineInId);
    events.announceProperty(speakerId, sim::keys::deviceFormat);

    EXPECT_THAT(client.heard(), ElementsAre("added {unknown}", "removed " + speakerId, "state " + speakerId + " 4",
                                            "default 1 0 " + lineInId, "property " + speakerId + " 0"));
    EXPECT_EQ(before, simulation.machine());
}

TEST_F(EventsAtOnce, CanBeAnnouncedWithoutAnId)
{
    simulation.deliverAtOnce(true);
    sim::Events& events = simulation.events();

    events.announceAdded(std::nullopt);
    events.announceRemoved(std::nullopt);
    events.announceState(std::nullopt, 4);
    events.announceDefault(eCapture, eConsole, std::nullopt);
    events.announceProperty(std::nullopt, sim::keys::deviceFormat);

    EXPECT_THAT(client.heard(), ElementsAre("added ", "removed ", "state  4", "default 1 0 null", "property  0"));
    EXPECT_EQ(5u, simulation.journal().of("IMMNotificationClient::*").size());
    EXPECT_EQ("IMMNotificationClient::OnDeviceAdded(null)",
              simulation.journal().of("IMMNotificationClient::OnDeviceAdded")[0].call());
}

TEST_F(EventsAtOnce, RefuseAnEndpointThatTheMachineHasNot)
{
    EXPECT_THROW(simulation.events().plug("{unknown}"), std::invalid_argument);
    EXPECT_THROW(simulation.events().add("{unknown}"), std::invalid_argument);
    EXPECT_THROW(simulation.events().setVolume("{unknown}", 0.0f), std::invalid_argument);
    EXPECT_THROW(simulation.events().setDefault(codecId, eConsole), std::invalid_argument);
}

// Wine's tests of the property store, which were run on Windows: a value that is set shows without a Commit.
TEST_F(EventsAtOnce, AreHeardOfAPropertyWhenItIsSet)
{
    simulation.deliverAtOnce(true);
    Held<IPropertyStore> store;
    ASSERT_EQ(S_OK, device(speakerId)->OpenPropertyStore(STGM_READWRITE, store.put()));
    PROPVARIANT number;
    PropVariantInit(&number);
    number.vt = VT_UI4;
    number.ulVal = 4;

    ASSERT_EQ(S_OK, store->SetValue(sim::keys::speakerConfig, number));
    EXPECT_THAT(client.heard(), ElementsAre("property " + speakerId + " 3"));

    ASSERT_EQ(S_OK, store->Commit());
    EXPECT_THAT(client.heard(), ElementsAre("property " + speakerId + " 3")); // no further call
}

TEST_F(EventsScript, PlaysInOrderOnTheNotificationThread)
{
    simulation.change(
        [&](sim::Machine& machine)
        {
            sim::ScriptEvent event;
            event.endpoint = microphoneId;
            event.kind = sim::ScriptEvent::Kind::plugged;
            machine.script.push_back(event);
            event.kind = sim::ScriptEvent::Kind::unplugged;
            event.afterMilliseconds = 5;
            machine.script.push_back(event);
            event.kind = sim::ScriptEvent::Kind::removed;
            machine.script.push_back(event);
        });

    simulation.events().playScript();
    simulation.events().waitForClients();

    EXPECT_THAT(client.heard(),
                ElementsAre("state " + microphoneId + " 1", "state " + microphoneId + " 8", "removed " + microphoneId));
    EXPECT_NE(std::this_thread::get_id(), client.thread());
}

TEST_F(EventsScript, KeepsTheDelaysOfItsEvents)
{
    using std::chrono::milliseconds;
    simulation.change(
        [&](sim::Machine& machine)
        {
            sim::ScriptEvent event;
            event.endpoint = microphoneId;
            event.afterMilliseconds = 15;
            machine.script = {event, event};
        });
    const auto start = std::chrono::steady_clock::now();

    simulation.events().playScript();
    simulation.events().waitForClients();

    EXPECT_GE(std::chrono::steady_clock::now() - start, milliseconds(30));
    EXPECT_EQ(2u, client.heard().size());
}

TEST_F(EventsScript, PlaysWhollyAtOnceWhereThatIsAskedFor)
{
    simulation.deliverAtOnce(true);
    simulation.change(
        [&](sim::Machine& machine)
        {
            sim::ScriptEvent event;
            event.afterMilliseconds = 60 * 60 * 1000;
            event.endpoint = lineInId;
            event.kind = sim::ScriptEvent::Kind::stateChanged;
            event.state = sim::stateNotPresent;
            machine.script.push_back(event);
            event.kind = sim::ScriptEvent::Kind::defaultChanged;
            event.role = eCommunications;
            machine.script.push_back(event);
            event.endpoint.clear();
            event.flow = eRender;
            machine.script.push_back(event);
            event.endpoint = "{unknown}";
            machine.script.push_back(event); // passed over
            event.endpoint = lineInId;
            event.kind = sim::ScriptEvent::Kind::added;
            machine.script.push_back(event);
        });

    simulation.events().playScript();

    EXPECT_THAT(client.heard(), ElementsAre("state " + lineInId + " 4", "default 1 0 null", "default 1 1 null",
                                            "default 1 2 null", "default 0 2 null", "added " + lineInId));
}

TEST_F(EventsScript, SetsVolumesAndProperties)
{
    simulation.deliverAtOnce(true);
    sim::ScriptEvent volumeChanged;
    volumeChanged.kind = sim::ScriptEvent::Kind::volumeChanged;
    volumeChanged.endpoint = speakerId;
    volumeChanged.level = -20.0f;
    volumeChanged.muted = true;
    sim::ScriptEvent propertyChanged;
    propertyChanged.kind = sim::ScriptEvent::Kind::propertyChanged;
    propertyChanged.endpoint = speakerId;
    propertyChanged.key = sim::keys::speakerConfig;
    propertyChanged.value = sim::PropertyValue::ofNumber(63);

    simulation.events().play(volumeChanged);
    simulation.events().play(propertyChanged);

    const sim::Machine machine = simulation.machine();
    EXPECT_THAT(machine.endpoint(speakerId)->volume->channels, ElementsAre(-20.0f, -20.0f));
    EXPECT_TRUE(machine.endpoint(speakerId)->volume->muted);
    EXPECT_EQ(63u, sim::findProperty(machine.endpoint(speakerId)->properties, sim::keys::speakerConfig)->number);
    EXPECT_THAT(client.heard(), ElementsAre("property " + speakerId + " 3"));
}
}
