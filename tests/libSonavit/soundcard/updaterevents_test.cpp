#include "libSonavit/soundcard.h"

#include "libSonavit/endpointdeviceenumerator/supportendpoints.h"
#include "libSonavit/soundcard/supportobserver.h"
#include "libSonavit/soundcardupdater.h"
#include "tests/support/librarytest.h"

#include <algorithm>
#include <memory>
#include <thread>

using qor::LoggerPriority;
using support::namesOf;
using support::RecordingObserver;
using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;

namespace
{
constexpr const char* channel = "libSonavit.soundcard";

/// A machine with two cards, discovered, with an observer on each side of the first one.
struct HotPlug : support::LibraryTest
{
    ~HotPlug() noexcept override {} // the cards' own may throw

    void SetUp() override
    {
        LibraryTest::SetUp();
        sim::MachineBuilder builder;
        sim::CardBuilder codec = builder.card("Codec");
        microphone = codec.microphone().id();
        speaker = codec.speaker().id();
        headphones = codec.headphones().unplugged().id();
        late = codec.lineOut("Late").notInstalled().id();
        lateMicrophone = codec.lineIn("Late input").notInstalled().id();
        foreign = builder.usbCard("Other").headphones("Other headphones").id();
        run(support::withoutGuids(builder.build()));
        cards = SoundCard::enumerateSystemSoundDevices();
        ASSERT_EQ(2u, cards.size());
        ASSERT_TRUE(card().registerPlaybackObserver(playback.handle()));
        ASSERT_TRUE(card().registerRecordObserver(record.handle()));
        log.clear();
        simulation().journal().clear();
    }

    void TearDown() override
    {
        cards.clear();
        LibraryTest::TearDown();
    }

    SoundCard& card() { return cards[0]; }
    SoundCard::SoundCardDeviceUpdater& updater() { return *card().m_updater; }
    qor::Array<AudioDevice>& playbackDevices() { return *card().m_playbackDevices; }
    qor::Array<AudioDevice>& recordDevices() { return *card().m_recordDevices; }

    std::string speaker, headphones, microphone, late, lateMicrophone, foreign;
    RecordingObserver playback;
    RecordingObserver record;
    qor::Array<SoundCard> cards;
};

/// An endpoint of the first card that the machine has not had, with one connector of its own.
sim::Endpoint newcomerOf(const SoundCard& card)
{
    sim::Endpoint endpoint;
    endpoint.id = "{0.0.0.00000000}.{newcomer}";
    endpoint.topology.emplace();
    endpoint.topology->connectors.emplace_back().id = "newcomer/1";
    sim::setProperty(endpoint.properties, sim::keys::deviceDescription, sim::PropertyValue::ofText("Newcomer"));
    sim::setProperty(endpoint.properties, sim::keys::instancePath,
                     sim::PropertyValue::ofText(card.deviceId().toUtf8()));
    return endpoint;
}

struct HotPlugStateChanged : HotPlug
{
};
struct HotPlugAdded : HotPlug
{
};
struct HotPlugRemoved : HotPlug
{
};

/// The platform's text of an id, for calls past the simulated machine.
struct IdText
{
    explicit IdText(const std::string& id) : text(qor::String::fromUtf8(id)) {}
    operator LPCWSTR() const { return platform::wide(text.getUCS2Buffer()); }
    qor::String text;
};
}

TEST_F(HotPlugStateChanged, HasTheListsOwnEndpointReadItsStateAndTellsTheObserversOfItsSide)
{
    simulation().events().plug(headphones);

    EXPECT_EQ(unsigned{DEVICE_STATE_ACTIVE}, playbackDevices()[1].deviceProperty().deviceState);
    EXPECT_THAT(playback.heard, ElementsAre("state"));
    EXPECT_THAT(record.heard, IsEmpty());
}

TEST_F(HotPlugStateChanged, TellsTheRecordObserversOfARecordEndpoint)
{
    simulation().events().unplug(microphone);

    EXPECT_EQ(unsigned{DEVICE_STATE_UNPLUGGED}, recordDevices()[0].deviceProperty().deviceState);
    EXPECT_THAT(record.heard, ElementsAre("state"));
    EXPECT_THAT(playback.heard, IsEmpty());
}

TEST_F(HotPlugStateChanged, StoresWhatIsReadFromThePlatformAndNotWhatTheEventSays)
{
    simulation().events().announceState(headphones, DEVICE_STATE_DISABLED);

    EXPECT_EQ(unsigned{DEVICE_STATE_UNPLUGGED}, playbackDevices()[1].deviceProperty().deviceState);
    EXPECT_THAT(playback.heard, ElementsAre("state"));
}

TEST_F(HotPlugStateChanged, LogsIdAndNewStateBeforeItOpensTheEndpoint)
{
    simulation().events().announceState(headphones, DEVICE_STATE_DISABLED);

    const auto records = log.records();
    std::size_t message = records.size();
    std::size_t opened = records.size();
    for (std::size_t i = 0; i < records.size(); ++i)
    {
        if (records[i].text == "Device with id " + headphones + " state changed to 2")
            message = std::min(message, i);
        if (records[i].text == "AudioDevice::AudioDevice(qor::String const& deviceId)")
            opened = std::min(opened, i);
    }
    ASSERT_LT(message, records.size());
    EXPECT_EQ(LoggerPriority::LOG_DEBUG, records[message].priority);
    EXPECT_EQ(channel, records[message].channel);
    EXPECT_LT(message, opened);
}

TEST_F(HotPlugStateChanged, AnswersEFailAndTellsNobodyForAnEndpointOfTheCardThatTheListDoesNotHold)
{
    EXPECT_EQ(E_FAIL, updater().OnDeviceStateChanged(IdText(late), DEVICE_STATE_ACTIVE));

    EXPECT_EQ(2u, playbackDevices().size());
    EXPECT_THAT(playback.heard, IsEmpty());
}

TEST_F(HotPlugStateChanged, FindsTheEndpointWithoutRegardToCase)
{
    std::string upper = headphones;
    for (char& c : upper)
        c = c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c;
    ASSERT_NE(headphones, upper);

    playbackDevices()[1].m_properties.deviceId = qor::String::fromUtf8(upper);

    EXPECT_EQ(S_OK, updater().OnDeviceStateChanged(IdText(headphones), DEVICE_STATE_ACTIVE));

    EXPECT_THAT(playback.heard, ElementsAre("state"));
}

TEST_F(HotPlugStateChanged, ReturnsAtOnceWithoutAListAndTellsNobody)
{
    const COMPtr<SoundCard::SoundCardDeviceUpdater>::pointer bare = SoundCard::SoundCardDeviceUpdater::createUpdater();
    bare->setOwnerId(card().m_deviceId);
    bare->setPlaybackObserver(card().m_playbackObservers);

    EXPECT_EQ(S_OK, bare->OnDeviceStateChanged(IdText(speaker), DEVICE_STATE_ACTIVE));

    EXPECT_THAT(playback.heard, IsEmpty());
}

TEST_F(HotPlugAdded, AppendsTheEndpointAndTellsTheObserversOfItsSide)
{
    simulation().events().add(late);

    EXPECT_THAT(namesOf(playbackDevices()), ElementsAre("Speakers", "Headphones", "Late"));
    EXPECT_THAT(playback.heard, ElementsAre("added"));
    EXPECT_THAT(record.heard, IsEmpty());
}

TEST_F(HotPlugAdded, AppendsARecordEndpointOnTheRecordSide)
{
    simulation().events().add(lateMicrophone);

    EXPECT_THAT(namesOf(recordDevices()), ElementsAre("Microphone", "Late input"));
    EXPECT_THAT(record.heard, ElementsAre("added"));
    EXPECT_THAT(playback.heard, IsEmpty());
}

TEST_F(HotPlugAdded, AddsAnEndpointTwiceThatIsAnnouncedTwiceAndOneRemovalTakesTheFirst)
{
    simulation().events().add(late);
    simulation().events().announceAdded(late);
    ASSERT_THAT(namesOf(playbackDevices()), ElementsAre("Speakers", "Headphones", "Late", "Late"));
    playbackDevices()[3].m_properties.endpointType = "Second";

    simulation().events().announceRemoved(late);

    EXPECT_THAT(namesOf(playbackDevices()), ElementsAre("Speakers", "Headphones", "Second"));
    EXPECT_THAT(playback.heard, ElementsAre("added", "added", "removed"));
}

TEST_F(HotPlugAdded, IsSeenThroughCopiesOfTheCardMadeBefore)
{
    const SoundCard copy(card());

    simulation().events().add(late);

    EXPECT_EQ(3u, copy.m_playbackDevices->size());
    EXPECT_EQ(card().m_connectorMap.size(), copy.m_connectorMap.size());
}

TEST_F(HotPlugAdded, LeavesTheGraphAsItWasSoThatTheEndpointIsListedButItsControlsRaiseIndexOutOfBounds)
{
    const unsigned int nodes = card().m_connectorMap.size();
    const unsigned int internalDevices = card().m_internalDevices->size();
    simulation().events().add(newcomerOf(card()));
    qor::Array<AudioDevice> listed;
    card().allPlaybackDevice(listed, DEVICE_STATEMASK_ALL);
    ASSERT_THAT(namesOf(listed), ElementsAre("Speakers", "Headphones", "Newcomer"));
    log.clear();

    qor::Array<SoundCard::VolumeController> controls;
    EXPECT_THROW(card().volumeController(listed[2], controls), qor::IndexOutOfBounds);

    EXPECT_EQ(nodes, card().m_connectorMap.size());
    EXPECT_EQ(internalDevices, card().m_internalDevices->size());
    EXPECT_THAT(log.texts(LoggerPriority::LOG_FATAL), IsEmpty());
}

TEST_F(HotPlugRemoved, TakesTheEndpointOutInItsPlaceAndTellsTheObservers)
{
    simulation().events().remove(speaker);

    EXPECT_THAT(namesOf(playbackDevices()), ElementsAre("Headphones"));
    EXPECT_THAT(playback.heard, ElementsAre("removed"));
    EXPECT_THAT(record.heard, IsEmpty());
}

TEST_F(HotPlugRemoved, AnswersEFailAndTellsNobodyForAnEndpointOfTheCardThatTheListDoesNotHold)
{
    EXPECT_EQ(E_FAIL, updater().OnDeviceRemoved(IdText(late)));

    EXPECT_EQ(2u, playbackDevices().size());
    EXPECT_THAT(playback.heard, IsEmpty());
}

TEST_F(HotPlugRemoved, LeavesAnEndpointThatCanNoLongerBeOpenedInTheListAndTellsNobody)
{
    simulation().change([&](sim::Machine& machine) { machine.endpoint(speaker)->openable = false; });

    EXPECT_EQ(S_OK, updater().OnDeviceRemoved(IdText(speaker)));

    EXPECT_THAT(namesOf(playbackDevices()), ElementsAre("Speakers", "Headphones"));
    EXPECT_THAT(playback.heard, IsEmpty());
}

TEST_F(HotPlugRemoved, TellsTheObserversAlsoWithoutAList)
{
    const COMPtr<SoundCard::SoundCardDeviceUpdater>::pointer bare = SoundCard::SoundCardDeviceUpdater::createUpdater();
    bare->setOwnerId(card().m_deviceId);
    bare->setPlaybackObserver(card().m_playbackObservers);

    EXPECT_EQ(S_OK, bare->OnDeviceRemoved(IdText(speaker)));

    EXPECT_THAT(playback.heard, ElementsAre("removed"));
}

TEST_F(HotPlug, IgnoresEventsForAnEndpointOfAnotherCardAndAnswersSOk)
{
    EXPECT_EQ(S_OK, updater().OnDeviceStateChanged(IdText(foreign), DEVICE_STATE_ACTIVE));
    EXPECT_EQ(S_OK, updater().OnDeviceAdded(IdText(foreign)));
    EXPECT_EQ(S_OK, updater().OnDeviceRemoved(IdText(foreign)));

    EXPECT_EQ(2u, playbackDevices().size());
    EXPECT_EQ(1u, recordDevices().size());
    EXPECT_THAT(playback.heard, IsEmpty());
    EXPECT_THAT(record.heard, IsEmpty());
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
    EXPECT_THAT(playback.heard, IsEmpty());
}

TEST_F(HotPlug, CallsObserversInTheOrderOfTheirRegistrationAndOneRegisteredTwiceTwice)
{
    std::vector<int> order;
    RecordingObserver second;
    playback.whenHeard = [&] { order.push_back(1); };
    second.whenHeard = [&] { order.push_back(2); };
    card().registerPlaybackObserver(second.handle());
    card().registerPlaybackObserver(playback.handle());

    simulation().events().add(late);

    EXPECT_THAT(order, ElementsAre(1, 2, 1));
}

TEST_F(HotPlug, CallsAnObserverInTheSamePassThatRegistersMeanwhile)
{
    RecordingObserver second;
    playback.whenHeard = [&] { card().registerPlaybackObserver(second.handle()); };

    simulation().events().add(late);

    EXPECT_THAT(second.heard, ElementsAre("added"));
}

TEST_F(HotPlug, MakesNothingOfAChangedDefaultOrProperty)
{
    const qor::String name(playbackDevices()[0].deviceProperty().endpointType);
    simulation().journal().clear();

    simulation().events().announceDefault(eRender, eConsole, headphones);
    simulation().events().setProperty(speaker, sim::keys::deviceDescription, sim::PropertyValue::ofText("Renamed"));

    EXPECT_EQ(0u, simulation().journal().count("IMMDeviceEnumerator::GetDevice"));
    EXPECT_EQ(name, playbackDevices()[0].deviceProperty().endpointType);
    EXPECT_THAT(playback.heard, IsEmpty());
}

TEST_F(HotPlug, GoesOnInAnUpdaterWhoseCardIsGone)
{
    const SharedPointer<qor::Array<AudioDevice>> list = card().m_playbackDevices;
    cards.clear();

    simulation().events().add(late);

    EXPECT_EQ(3u, list->size());
    EXPECT_THAT(playback.heard, ElementsAre("added"));
}

TEST_F(HotPlug, RunsOnTheMachinesThreadWhenItDoesNotDeliverAtOnce)
{
    simulation().deliverAtOnce(false);
    std::thread::id thread;
    playback.whenHeard = [&] { thread = std::this_thread::get_id(); };

    simulation().events().add(late);
    simulation().events().settle();

    EXPECT_EQ(3u, playbackDevices().size());
    EXPECT_NE(std::thread::id(), thread);
    EXPECT_NE(std::this_thread::get_id(), thread);
}

TEST_F(HotPlug, LetsAnExceptionOfAnObserverPassToThePlatform)
{
    playback.whenHeard = [] { throw qor::NullPointer("observer"); };

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
    EXPECT_THAT(playback.heard, IsEmpty());
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

    EXPECT_EQ(S_OK, bare.m_updater->OnDeviceAdded(IdText("{nobody}")));

    EXPECT_EQ(1u, bare.m_recordDevices->size());
    EXPECT_EQ(0u, bare.m_playbackDevices->size());
}

TEST_F(HotPlugStateChanged, TellsTheObserversAlsoWhenTheListsEndpointCannotReadItsState)
{
    const sim::PlannedFault unreadable =
        simulation().faults().fail("IMMDevice::GetState").at(2); // the first is the event's own

    EXPECT_EQ(S_OK, updater().OnDeviceStateChanged(IdText(headphones), DEVICE_STATE_ACTIVE));

    EXPECT_EQ(1u, unreadable.fired());
    EXPECT_THAT(playback.heard, ElementsAre("state"));
}

TEST_F(HotPlugRemoved, TakesARecordEndpointOutAndTellsTheRecordObservers)
{
    simulation().events().remove(microphone);

    EXPECT_EQ(0u, recordDevices().size());
    EXPECT_THAT(record.heard, ElementsAre("removed"));
    EXPECT_THAT(playback.heard, IsEmpty());
}
