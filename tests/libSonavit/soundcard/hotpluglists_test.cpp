// Endpoints enter and leave a card's lists.
#include "tests/libSonavit/soundcard/supporthotplug.h"

using qor::LoggerPriority;
using support::IdText;
using support::namesOf;
using testing::ElementsAre;
using testing::IsEmpty;

namespace
{
/// A new endpoint of the first card, with one connector of its own.
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

struct HotPlugAdded : support::HotPlug
{
};
struct HotPlugRemoved : support::HotPlug
{
};
}

TEST_F(HotPlugAdded, AppendsTheEndpointAndNotifiesTheObserversOfItsSide)
{
    simulation().events().add(late);

    EXPECT_THAT(namesOf(playbackDevices()), ElementsAre("Speakers", "Headphones", "Late"));
    EXPECT_THAT(playback.notifications, ElementsAre("added"));
    EXPECT_THAT(record.notifications, IsEmpty());
}

TEST_F(HotPlugAdded, NotifiesTheObserversOnceTheListHasTheEndpoint)
{
    std::vector<std::string> seen;
    playback.whenNotified = [&] { seen = namesOf(playbackDevices()); };

    simulation().events().add(late);

    EXPECT_THAT(seen, ElementsAre("Speakers", "Headphones", "Late"));
}

TEST_F(HotPlugAdded, NotifiesTheObserversAlsoWithoutAList)
{
    const COMPtr<SoundCard::SoundCardDeviceUpdater>::pointer bare = SoundCard::SoundCardDeviceUpdater::createUpdater();
    bare->setOwnerId(card().m_deviceId);
    bare->setPlaybackObserver(card().m_playbackObservers);

    EXPECT_EQ(S_OK, bare->OnDeviceAdded(IdText(speaker)));

    EXPECT_THAT(playback.notifications, ElementsAre("added"));
    EXPECT_EQ(2u, playbackDevices().size());
}

TEST_F(HotPlugAdded, AppendsARecordEndpointOnTheRecordSide)
{
    simulation().events().add(lateMicrophone);

    EXPECT_THAT(namesOf(recordDevices()), ElementsAre("Microphone", "Late input"));
    EXPECT_THAT(record.notifications, ElementsAre("added"));
    EXPECT_THAT(playback.notifications, IsEmpty());
}

TEST_F(HotPlugAdded, AddsAnEndpointTwiceThatIsAnnouncedTwiceAndOneRemovalTakesTheFirst)
{
    simulation().events().add(late);
    simulation().events().announceAdded(late);
    ASSERT_THAT(namesOf(playbackDevices()), ElementsAre("Speakers", "Headphones", "Late", "Late"));
    playbackDevices()[3].m_properties.endpointType = "Second";

    simulation().events().announceRemoved(late);

    EXPECT_THAT(namesOf(playbackDevices()), ElementsAre("Speakers", "Headphones", "Second"));
    EXPECT_THAT(playback.notifications, ElementsAre("added", "added", "removed"));
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

TEST_F(HotPlugRemoved, RemovesTheEndpointInItsPlaceAndNotifiesTheObservers)
{
    simulation().events().remove(speaker);

    EXPECT_THAT(namesOf(playbackDevices()), ElementsAre("Headphones"));
    EXPECT_THAT(playback.notifications, ElementsAre("removed"));
    EXPECT_THAT(record.notifications, IsEmpty());
}

TEST_F(HotPlugRemoved, NotifiesTheObserversOnceTheListIsWithoutTheEndpoint)
{
    std::vector<std::string> seen;
    playback.whenNotified = [&] { seen = namesOf(playbackDevices()); };

    simulation().events().remove(speaker);

    EXPECT_THAT(seen, ElementsAre("Headphones"));
}

TEST_F(HotPlugRemoved, AnswersEFailAndNotifiesNoObserverForAnEndpointOfTheCardThatTheListDoesNotHold)
{
    EXPECT_EQ(E_FAIL, updater().OnDeviceRemoved(IdText(late)));

    EXPECT_EQ(2u, playbackDevices().size());
    EXPECT_THAT(playback.notifications, IsEmpty());
}

TEST_F(HotPlugRemoved, LeavesAnEndpointThatCanNoLongerBeOpenedInTheListAndNotifiesNoObserver)
{
    simulation().change([&](sim::Machine& machine) { machine.endpoint(speaker)->openable = false; });

    EXPECT_EQ(S_OK, updater().OnDeviceRemoved(IdText(speaker)));

    EXPECT_THAT(namesOf(playbackDevices()), ElementsAre("Speakers", "Headphones"));
    EXPECT_THAT(playback.notifications, IsEmpty());
}

// Microsoft's documentation of IMMDeviceEnumerator::GetDevice: the id of a removed endpoint is unknown.
TEST_F(HotPlugRemoved, LeavesAnEndpointInTheListThatThePlatformNoLongerKnows)
{
    simulation().change([](sim::Machine& machine) { machine.removedEndpoints = sim::RemovedEndpoints::unknown; });

    simulation().events().remove(speaker);

    EXPECT_EQ(2u,
              simulation().journal().of("IMMDeviceEnumerator::GetDevice").failed().with(speaker).size()); // one a card
    EXPECT_EQ(0u, simulation().journal().of("IMMNotificationClient::OnDeviceRemoved").failed().size());
    EXPECT_THAT(namesOf(playbackDevices()), ElementsAre("Speakers", "Headphones"));
    EXPECT_THAT(playback.notifications, IsEmpty());
    EXPECT_EQ(DWORD(DEVICE_STATE_NOTPRESENT), playbackDevices()[0].refreshDeviceState());
}

TEST_F(HotPlugRemoved, FindsAnEndpointThatThePlatformKnowsAgainTwiceInTheList)
{
    simulation().change([](sim::Machine& machine) { machine.removedEndpoints = sim::RemovedEndpoints::unknown; });
    simulation().events().remove(speaker);

    simulation().events().add(speaker);

    EXPECT_THAT(namesOf(playbackDevices()), ElementsAre("Speakers", "Headphones", "Speakers"));
    EXPECT_THAT(playback.notifications, ElementsAre("added"));
}

TEST_F(HotPlugRemoved, NotifiesTheObserversAlsoWithoutAList)
{
    const COMPtr<SoundCard::SoundCardDeviceUpdater>::pointer bare = SoundCard::SoundCardDeviceUpdater::createUpdater();
    bare->setOwnerId(card().m_deviceId);
    bare->setPlaybackObserver(card().m_playbackObservers);

    EXPECT_EQ(S_OK, bare->OnDeviceRemoved(IdText(speaker)));

    EXPECT_THAT(playback.notifications, ElementsAre("removed"));
}

TEST_F(HotPlugRemoved, RemovesARecordEndpointAndNotifiesTheRecordObservers)
{
    simulation().events().remove(microphone);

    EXPECT_EQ(0u, recordDevices().size());
    EXPECT_THAT(record.notifications, ElementsAre("removed"));
    EXPECT_THAT(playback.notifications, IsEmpty());
}
