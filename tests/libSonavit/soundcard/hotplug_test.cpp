// Behaviour that is common to all events.
#include "tests/libSonavit/soundcard/supporthotplug.h"

#include <algorithm>
#include <thread>

using qor::LoggerPriority;
using support::HotPlug;
using support::IdText;
using support::RecordingObserver;
using testing::ElementsAre;
using testing::IsEmpty;

TEST_F(HotPlug, IgnoresEventsForAnEndpointOfAnotherCardAndAnswersSOk)
{
    EXPECT_EQ(S_OK, updater().OnDeviceStateChanged(IdText(foreign), DEVICE_STATE_ACTIVE));
    EXPECT_EQ(S_OK, updater().OnDeviceAdded(IdText(foreign)));
    EXPECT_EQ(S_OK, updater().OnDeviceRemoved(IdText(foreign)));

    EXPECT_EQ(2u, playbackDevices().size());
    EXPECT_EQ(1u, recordDevices().size());
    EXPECT_THAT(playback.notifications, IsEmpty());
    EXPECT_THAT(record.notifications, IsEmpty());
}

TEST_F(HotPlug, TakesAnInstancePathInAnotherCaseForAnotherCard)
{
    std::string path = card().deviceId().toUtf8();
    for (char& c : path)
        c = c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
    ASSERT_NE(card().deviceId().toUtf8(), path);
    *card().m_deviceId = qor::String::fromUtf8(path);

    simulation().events().add(late);
    EXPECT_EQ(S_OK, updater().OnDeviceStateChanged(IdText(headphones), DEVICE_STATE_ACTIVE));
    EXPECT_EQ(S_OK, updater().OnDeviceRemoved(IdText(headphones)));

    EXPECT_EQ(2u, playbackDevices().size());
    EXPECT_THAT(playback.notifications, IsEmpty());
}

TEST_F(HotPlug, CallsObserversInTheOrderOfTheirRegistrationAndOneRegisteredTwiceTwice)
{
    std::vector<int> order;
    RecordingObserver second;
    playback.whenNotified = [&] { order.push_back(1); };
    second.whenNotified = [&] { order.push_back(2); };
    card().registerPlaybackObserver(second.handle());
    card().registerPlaybackObserver(playback.handle());

    simulation().events().add(late);

    EXPECT_THAT(order, ElementsAre(1, 2, 1));
}

TEST_F(HotPlug, CallsAnObserverInTheSamePassThatRegistersMeanwhile)
{
    RecordingObserver second;
    playback.whenNotified = [&] { card().registerPlaybackObserver(second.handle()); };

    simulation().events().add(late);

    EXPECT_THAT(second.notifications, ElementsAre("added"));
}

TEST_F(HotPlug, MakesNothingOfAChangedDefaultOrProperty)
{
    const qor::String name(playbackDevices()[0].deviceProperty().endpointType);
    simulation().journal().clear();

    simulation().events().announceDefault(eRender, eConsole, headphones);
    simulation().events().setProperty(speaker, sim::keys::deviceDescription, sim::PropertyValue::ofText("Renamed"));

    EXPECT_EQ(0u, simulation().journal().count("IMMDeviceEnumerator::GetDevice"));
    EXPECT_EQ(name, playbackDevices()[0].deviceProperty().endpointType);
    EXPECT_THAT(playback.notifications, IsEmpty());
}

TEST_F(HotPlug, FollowsEventsInAnUpdaterWhoseCardIsGone)
{
    const SharedPointer<qor::Array<AudioDevice>> list = card().m_playbackDevices;
    cards.clear();

    simulation().events().add(late);

    EXPECT_EQ(3u, list->size());
    EXPECT_THAT(playback.notifications, ElementsAre("added"));
}

TEST_F(HotPlug, RunsOnTheMachinesThreadWhenItDoesNotDeliverAtOnce)
{
    simulation().deliverAtOnce(false);
    std::thread::id thread;
    playback.whenNotified = [&] { thread = std::this_thread::get_id(); };

    simulation().events().add(late);
    simulation().events().waitForClients();

    EXPECT_EQ(3u, playbackDevices().size());
    EXPECT_NE(std::thread::id(), thread);
    EXPECT_NE(std::this_thread::get_id(), thread);
}

// StreamDeck-AudioMute issue 55: the platform's callbacks come on a thread of a pool, which need not have COM.
TEST_F(HotPlug, FollowsEventsOnAThreadWithoutCom)
{
    simulation().change([](sim::Machine& machine) { machine.callbackThread = sim::CallbackThread::bare; });
    simulation().deliverAtOnce(false);

    simulation().events().add(late);
    simulation().events().remove(headphones);
    simulation().events().plug(speaker);
    simulation().events().waitForClients();

    EXPECT_THAT(support::namesOf(playbackDevices()), ElementsAre("Speakers", "Late"));
    EXPECT_THAT(playback.notifications, ElementsAre("added", "removed", "state"));
}

TEST_F(HotPlug, LetsAnExceptionOfAnObserverPassToThePlatform)
{
    playback.whenNotified = [] { throw qor::NullPointer("observer"); };

    EXPECT_THROW(updater().OnDeviceAdded(IdText(late)), qor::NullPointer);

    EXPECT_EQ(3u, playbackDevices().size());
}

TEST_F(HotPlug, RaisesIndexOutOfBoundsForTheControlsOfAnEndpointOfAnotherCard)
{
    qor::Array<SoundCard::VolumeController> controls;

    EXPECT_THROW(card().volumeController((*cards[1].m_playbackDevices)[0], controls), qor::IndexOutOfBounds);

    EXPECT_THAT(log.texts(LoggerPriority::LOG_FATAL), IsEmpty());
}

TEST_F(HotPlug, TakesAnEndpointWhosePropertiesCannotBeReadForOneOfAnotherCard)
{
    const sim::PlannedFault closed = simulation().faults().fail("IMMDevice::OpenPropertyStore").on(headphones);

    EXPECT_EQ(S_OK, updater().OnDeviceStateChanged(IdText(headphones), DEVICE_STATE_ACTIVE));
    EXPECT_EQ(S_OK, updater().OnDeviceAdded(IdText(headphones)));
    EXPECT_EQ(S_OK, updater().OnDeviceRemoved(IdText(headphones)));

    EXPECT_EQ(3u, closed.fired());
    EXPECT_EQ(2u, playbackDevices().size());
    EXPECT_THAT(playback.notifications, IsEmpty());
}

TEST_F(HotPlug, AsksForTheFlowInBothSelectorsAndNotForAForeignEndpoint)
{
    updater().OnDeviceStateChanged(IdText(headphones), DEVICE_STATE_ACTIVE);
    updater().OnDeviceStateChanged(IdText(foreign), DEVICE_STATE_ACTIVE);

    const std::vector<std::string> labels = log.entered();
    EXPECT_EQ(2, std::count(labels.begin(), labels.end(), "AudioDevice::dataFlow"));
}

TEST_F(HotPlug, FilesADeviceThatCannotBeOpenedOnTheRecordSideOfACardWithoutAnId)
{
    const SoundCard bare;

    EXPECT_EQ(S_OK, bare.m_updater->OnDeviceAdded(IdText("{unknown}")));

    EXPECT_EQ(1u, bare.m_recordDevices->size());
    EXPECT_EQ(0u, bare.m_playbackDevices->size());
}
