// A card's endpoint changes its state.
#include "tests/libSonavit/soundcard/supporthotplug.h"

#include "tests/libSonavit/supportchannels.h"

#include <algorithm>

using qor::LoggerPriority;
using support::IdText;
using testing::ElementsAre;
using testing::IsEmpty;

namespace
{
struct HotPlugStateChanged : support::HotPlug
{
};
}

TEST_F(HotPlugStateChanged, HasTheListsOwnEndpointReadItsStateAndNotifiesTheObserversOfItsSide)
{
    simulation().events().plug(headphones);

    EXPECT_EQ(unsigned{DEVICE_STATE_ACTIVE}, playbackDevices()[1].deviceProperty().deviceState);
    EXPECT_THAT(playback.notifications, ElementsAre("state"));
    EXPECT_THAT(record.notifications, IsEmpty());
}

TEST_F(HotPlugStateChanged, NotifiesTheObserversOnceTheListHasTheNewState)
{
    unsigned int seen = 0;
    playback.whenNotified = [&] { seen = playbackDevices()[1].deviceProperty().deviceState; };

    simulation().events().plug(headphones);

    EXPECT_EQ(unsigned{DEVICE_STATE_ACTIVE}, seen);
}

TEST_F(HotPlugStateChanged, NotifiesTheRecordObserversOfARecordEndpoint)
{
    simulation().events().unplug(microphone);

    EXPECT_EQ(unsigned{DEVICE_STATE_UNPLUGGED}, recordDevices()[0].deviceProperty().deviceState);
    EXPECT_THAT(record.notifications, ElementsAre("state"));
    EXPECT_THAT(playback.notifications, IsEmpty());
}

TEST_F(HotPlugStateChanged, StoresWhatIsReadFromThePlatformAndNotWhatTheEventSays)
{
    simulation().events().announceState(headphones, DEVICE_STATE_DISABLED);

    EXPECT_EQ(unsigned{DEVICE_STATE_UNPLUGGED}, playbackDevices()[1].deviceProperty().deviceState);
    EXPECT_THAT(playback.notifications, ElementsAre("state"));
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
    EXPECT_EQ(channels::soundCard, records[message].channel);
    EXPECT_LT(message, opened);
}

TEST_F(HotPlugStateChanged, AnswersEFailAndNotifiesNoObserverForAnEndpointOfTheCardThatTheListDoesNotHold)
{
    EXPECT_EQ(E_FAIL, updater().OnDeviceStateChanged(IdText(late), DEVICE_STATE_ACTIVE));

    EXPECT_EQ(2u, playbackDevices().size());
    EXPECT_THAT(playback.notifications, IsEmpty());
}

TEST_F(HotPlugStateChanged, FindsTheEndpointWithoutRegardToCase)
{
    std::string upper = headphones;
    for (char& c : upper)
        c = c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c;
    ASSERT_NE(headphones, upper);

    playbackDevices()[1].m_properties.deviceId = qor::String::fromUtf8(upper);

    EXPECT_EQ(S_OK, updater().OnDeviceStateChanged(IdText(headphones), DEVICE_STATE_ACTIVE));

    EXPECT_THAT(playback.notifications, ElementsAre("state"));
}

TEST_F(HotPlugStateChanged, ReturnsAtOnceWithoutAListAndNotifiesNoObserver)
{
    const COMPtr<SoundCard::SoundCardDeviceUpdater>::pointer bare = SoundCard::SoundCardDeviceUpdater::createUpdater();
    bare->setOwnerId(card().m_deviceId);
    bare->setPlaybackObserver(card().m_playbackObservers);

    EXPECT_EQ(S_OK, bare->OnDeviceStateChanged(IdText(speaker), DEVICE_STATE_ACTIVE));

    EXPECT_THAT(playback.notifications, IsEmpty());
}

TEST_F(HotPlugStateChanged, NotifiesTheObserversAlsoWhenTheListsEndpointCannotReadItsState)
{
    const sim::PlannedFault unreadable =
        simulation().faults().fail("IMMDevice::GetState").at(2); // the first call reads the event's own device

    EXPECT_EQ(S_OK, updater().OnDeviceStateChanged(IdText(headphones), DEVICE_STATE_ACTIVE));

    EXPECT_EQ(1u, unreadable.fired());
    EXPECT_THAT(playback.notifications, ElementsAre("state"));
}
