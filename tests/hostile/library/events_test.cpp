// What the object model makes of events for what is not there, or not any more.
#include "libSonavit/soundcard.h"
#include "libSonavit/soundcardupdater.h"
#include "tests/hostile/library/hostilelibrarytest.h"
#include "tests/libSonavit/soundcard/supportobserver.h"

#include <string>

namespace
{
using testing::IsEmpty;

class LibraryEvents : public hostile::HostileLibraryTest
{
protected:
    ~LibraryEvents() noexcept override {} // the cards' own may throw

    void SetUp() override
    {
        HostileLibraryTest::SetUp();
        hostile::Platform platform;
        platform.change = [](sim::Machine& machine) { machine.removedEndpoints = sim::RemovedEndpoints::unknown; };
        begin(platform);
        cards = SoundCard::enumerateSystemSoundDevices();
        ASSERT_EQ(2u, cards.size());
        ASSERT_TRUE(codec().registerPlaybackObserver(playback.handle()));
        ASSERT_TRUE(codec().registerRecordObserver(record.handle()));
    }

    void TearDown() override
    {
        cards.clear();
        HostileLibraryTest::TearDown();
    }

    SoundCard& codec() { return cards[0]; }

    /// The results of all calls of clients since the start.
    std::vector<HRESULT> results()
    {
        std::vector<HRESULT> all;
        for (const sim::JournalEntry& call : simulation().journal().of("IMMNotificationClient::*"))
            all.push_back(call.result);
        return all;
    }

    /// Nobody is notified, and the lists are as they were.
    void expectNothingHasHappened()
    {
        EXPECT_THAT(playback.notifications, IsEmpty());
        EXPECT_THAT(record.notifications, IsEmpty());
        EXPECT_EQ(1u, codec().m_playbackDevices->size());
        EXPECT_EQ(1u, codec().m_recordDevices->size());
    }

    support::RecordingObserver playback;
    support::RecordingObserver record;
    qor::Array<SoundCard> cards;
};
}

TEST_F(LibraryEvents, WithoutIdAnswerSOkAndChangeNothing)
{
    simulation().events().announceAdded(std::nullopt);
    simulation().events().announceState(std::nullopt, 1);
    simulation().events().announceDefault(eRender, eConsole, std::nullopt);
    simulation().events().announceRemoved(std::nullopt);

    EXPECT_THAT(results(), testing::AllOf(testing::SizeIs(8), testing::Each(S_OK)));
    expectNothingHasHappened();
}

TEST_F(LibraryEvents, ForUnknownIdsAnswerSOkAndChangeNothing)
{
    for (const std::string& id : {std::string("{unknown}"), std::string(), std::string(0x10000, 'x')})
    {
        simulation().events().announceAdded(id);
        simulation().events().announceState(id, 0xFFFFFFFF);
        simulation().events().announceRemoved(id);
    }

    EXPECT_THAT(results(), testing::AllOf(testing::SizeIs(18), testing::Each(S_OK)));
    expectNothingHasHappened();
}

TEST_F(LibraryEvents, ForAnEndpointThatVanishesBeforeItIsOpenedAnswerSOkAndChangeNothing)
{
    bool isGone = false;
    simulation().faults().run("IMMDeviceEnumerator::GetDevice",
                              [&]
                              {
                                  simulation().change(
                                      [](sim::Machine& machine)
                                      { machine.endpoint(hostile::honest().speaker)->installed = false; });
                                  isGone = true;
                              });

    simulation().events().announceAdded(hostile::honest().speaker);

    EXPECT_TRUE(isGone);
    EXPECT_THAT(results(), testing::Each(S_OK));
    expectNothingHasHappened();
}

TEST_F(LibraryEvents, ForAnEndpointThatVanishesWhileItIsReadDoNotReachACardWithAnId)
{
    simulation().faults().run("IPropertyStore::GetValue",
                              [&]
                              {
                                  simulation().change(
                                      [](sim::Machine& machine)
                                      { machine.endpoint(hostile::honest().speaker)->installed = false; });
                              });

    simulation().events().announceAdded(hostile::honest().speaker);

    EXPECT_THAT(results(), testing::Each(S_OK));
    expectNothingHasHappened();
}

TEST_F(LibraryEvents, OfUnknownStatesStoreWhatThePlatformSaysWhenItIsAsked)
{
    simulation().faults().lie("IMMDevice::GetState", sim::Lie::ofNumber(0xFFFFFFFF));

    simulation().events().announceState(hostile::honest().speaker, 16);

    EXPECT_EQ(0xFFFFFFFFu, (*codec().m_playbackDevices)[0].deviceProperty().deviceState);
    qor::Array<AudioDevice> found;
    EXPECT_EQ(1u, codec().allPlaybackDevice(found, DEVICE_STATE_UNPLUGGED));
    EXPECT_EQ(1u, codec().allPlaybackDevice(found, 0x80000000));
}

TEST_F(LibraryEvents, ForEndpointsOfAnUnknownFlowGoToTheRecordSide)
{
    simulation().faults().lie("IMMEndpoint::GetDataFlow", sim::Lie::ofNumber(77));

    simulation().events().announceAdded(hostile::honest().speaker);

    EXPECT_EQ(1u, codec().m_playbackDevices->size());
    EXPECT_EQ(2u, codec().m_recordDevices->size());
    EXPECT_EQ(std::vector<std::string>{"added"}, record.notifications);
    EXPECT_THAT(playback.notifications, IsEmpty());
}
