#include "libSonavit/soundcard.h"

#include "tests/libSonavit/soundcard/supportobserver.h"
#include "tests/libSonavit/supportchannels.h"
#include "tests/support/librarytest.h"

using qor::LoggerPriority;
using testing::ElementsAre;
using testing::IsEmpty;

namespace
{
struct SoundCardObservers : support::LibraryTest
{
    void SetUp() override
    {
        LibraryTest::SetUp();
        run(sim::MachineBuilder().build());
        card = std::make_unique<SoundCard>();
        log.clear();
    }

    void TearDown() override
    {
        card.reset();
        LibraryTest::TearDown();
    }

    std::unique_ptr<SoundCard> card;
    support::RecordingObserver observer;
};
}

TEST_F(SoundCardObservers, AreAppendedToTheListOfTheirSideEachTimeTheyAreRegistered)
{
    EXPECT_TRUE(card->registerPlaybackObserver(observer.handle()));
    EXPECT_TRUE(card->registerPlaybackObserver(observer.handle()));
    EXPECT_TRUE(card->registerRecordObserver(observer.handle()));

    EXPECT_EQ(2u, card->m_playbackObservers->size());
    EXPECT_EQ(1u, card->m_recordObservers->size());
    EXPECT_THAT(log.texts(), IsEmpty());
    EXPECT_THAT(log.entered(channels::soundCard),
                ElementsAre("SoundCard::registerPlaybackObserver", "SoundCard::registerPlaybackObserver",
                            "SoundCard::registerRecordObserver"));
}

TEST_F(SoundCardObservers, AreRefusedWithAMessageWhenTheyAreNull)
{
    EXPECT_FALSE(card->registerPlaybackObserver(BorrowedPointer<SoundCardObserver>()));
    EXPECT_FALSE(card->registerRecordObserver(BorrowedPointer<SoundCardObserver>()));

    EXPECT_EQ(0u, card->m_playbackObservers->size());
    EXPECT_EQ(0u, card->m_recordObservers->size());
    EXPECT_THAT(log.texts(LoggerPriority::LOG_WARNING, channels::soundCard),
                ElementsAre("Unable to register playback observer", "Unable to register record observer"));
}

TEST_F(SoundCardObservers, AreRefusedWithAMessageByACardWithoutLists)
{
    card->m_playbackObservers = SharedPointer<qor::Array<BorrowedPointer<SoundCardObserver>>>();
    card->m_recordObservers = SharedPointer<qor::Array<BorrowedPointer<SoundCardObserver>>>();

    EXPECT_FALSE(card->registerPlaybackObserver(observer.handle()));
    EXPECT_FALSE(card->registerRecordObserver(observer.handle()));

    EXPECT_THAT(log.texts(LoggerPriority::LOG_WARNING, channels::soundCard),
                ElementsAre("Unable to register playback observer", "Unable to register record observer"));
}

TEST_F(SoundCardObservers, AreSharedByCopiesOfTheCard)
{
    SoundCard copy(*card);

    copy.registerPlaybackObserver(observer.handle());

    EXPECT_EQ(1u, card->m_playbackObservers->size());
}
