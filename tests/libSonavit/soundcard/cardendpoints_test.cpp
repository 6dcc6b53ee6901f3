#include "libSonavit/soundcard.h"

#include "tests/libSonavit/soundcard/supportcards.h"
#include "tests/libSonavit/supportchannels.h"
#include "tests/support/librarytest.h"

using qor::LoggerPriority;
using support::endpointOf;
using support::idsOf;
using testing::ElementsAre;
using testing::IsEmpty;

namespace
{
struct SoundCardAddDevice : support::LibraryTest
{
    void SetUp() override
    {
        LibraryTest::SetUp();
        run({});
    }
};
struct SoundCardIsDeviceAlreadyInTheCard : SoundCardAddDevice
{
};
struct SoundCardAddEndpointDevice : SoundCardAddDevice
{
};
}

TEST_F(SoundCardAddDevice, AppendsACopy)
{
    SoundCard card;
    log.clear();

    EXPECT_TRUE(card.addDevice(*card.m_playbackDevices, endpointOf("one")));
    EXPECT_TRUE(card.addDevice(*card.m_playbackDevices, endpointOf("two")));

    EXPECT_THAT(idsOf(*card.m_playbackDevices), ElementsAre("one", "two"));
    EXPECT_EQ(0u, card.m_recordDevices->size());
    EXPECT_THAT(log.texts(channels::soundCard), IsEmpty());
}

TEST_F(SoundCardAddDevice, OpensTwoScopes)
{
    SoundCard card;
    log.clear();

    card.addDevice(*card.m_recordDevices, endpointOf("one"));

    EXPECT_THAT(log.entered(channels::soundCard),
                ElementsAre("addDevice(Array<AudioDevice>& deviceTable, const AudioDevice& device)",
                            "SoundCard::isDeviceAlreadyInTheCard"));
}

TEST_F(SoundCardAddDevice, RefusesAnIdThatDiffersOnlyInCaseFromOneOfTheOtherList)
{
    SoundCard card;
    card.m_recordDevices->append(endpointOf("{0.0.1}.ABC"));
    log.clear();

    EXPECT_FALSE(card.addDevice(*card.m_playbackDevices, endpointOf("{0.0.1}.abc")));

    EXPECT_EQ(0u, card.m_playbackDevices->size());
    EXPECT_EQ(1u, card.m_recordDevices->size());
    EXPECT_THAT(log.texts(channels::soundCard), ElementsAre("Cannot add duplicate device {0.0.1}.abc"));
    EXPECT_THAT(log.texts(LoggerPriority::LOG_ERROR, channels::soundCard),
                ElementsAre("Cannot add duplicate device {0.0.1}.abc"));
}

TEST_F(SoundCardAddDevice, RefusesTheSameIdAgain)
{
    SoundCard card;
    card.addDevice(*card.m_playbackDevices, endpointOf("one"));

    EXPECT_FALSE(card.addDevice(*card.m_playbackDevices, endpointOf("one")));

    EXPECT_THAT(idsOf(*card.m_playbackDevices), ElementsAre("one"));
}

TEST_F(SoundCardIsDeviceAlreadyInTheCard, LooksAtBothListsOfEndpoints)
{
    SoundCard card;
    card.m_playbackDevices->append(endpointOf("playback"));
    card.m_recordDevices->append(endpointOf("record"));
    log.clear();

    EXPECT_TRUE(card.isDeviceAlreadyInTheCard("PLAYBACK"));
    EXPECT_TRUE(card.isDeviceAlreadyInTheCard("Record"));
    EXPECT_FALSE(card.isDeviceAlreadyInTheCard("neither"));
    EXPECT_THAT(log.entered(channels::soundCard),
                ElementsAre("SoundCard::isDeviceAlreadyInTheCard", "SoundCard::isDeviceAlreadyInTheCard",
                            "SoundCard::isDeviceAlreadyInTheCard"));
    EXPECT_THAT(log.texts(), IsEmpty());
}

TEST_F(SoundCardIsDeviceAlreadyInTheCard, PassesTheDevicesOfTheAdapterOver)
{
    SoundCard card;
    card.m_internalDevices->append(endpointOf("adapter"));

    EXPECT_FALSE(card.isDeviceAlreadyInTheCard("adapter"));
}

TEST_F(SoundCardAddEndpointDevice, GoesByTheFlow)
{
    SoundCard card;

    EXPECT_TRUE(card.addEndpointDevice(eRender, endpointOf("playback")));
    EXPECT_TRUE(card.addEndpointDevice(eCapture, endpointOf("record")));

    EXPECT_THAT(idsOf(*card.m_playbackDevices), ElementsAre("playback"));
    EXPECT_THAT(idsOf(*card.m_recordDevices), ElementsAre("record"));
}

TEST_F(SoundCardAddEndpointDevice, RefusesAnyOtherFlowInSilence)
{
    SoundCard card;
    log.clear();

    EXPECT_FALSE(card.addEndpointDevice(eAll, endpointOf("either")));

    EXPECT_EQ(0u, card.m_playbackDevices->size());
    EXPECT_EQ(0u, card.m_recordDevices->size());
    EXPECT_THAT(log.texts(channels::soundCard), IsEmpty());
    EXPECT_THAT(log.entered(channels::soundCard), ElementsAre("SoundCard::addEndpointDevice"));
}

TEST_F(SoundCardAddEndpointDevice, RefusesAnEndpointThatTheCardHas)
{
    SoundCard card;
    card.addEndpointDevice(eRender, endpointOf("one"));

    EXPECT_FALSE(card.addEndpointDevice(eCapture, endpointOf("ONE")));

    EXPECT_EQ(0u, card.m_recordDevices->size());
}

TEST_F(SoundCardAddEndpointDevice, HasAFunctionForEachFlowWithoutATraceScope)
{
    SoundCard card;
    log.clear();

    EXPECT_TRUE(card.addPlaybackEndpointDevice(endpointOf("playback")));
    EXPECT_TRUE(card.addCaptureEndpointDevice(endpointOf("record")));
    EXPECT_FALSE(card.addPlaybackEndpointDevice(endpointOf("record")));
    EXPECT_FALSE(card.addCaptureEndpointDevice(endpointOf("playback")));

    EXPECT_THAT(idsOf(*card.m_playbackDevices), ElementsAre("playback"));
    EXPECT_THAT(idsOf(*card.m_recordDevices), ElementsAre("record"));
    EXPECT_EQ(8u, log.entered(channels::soundCard).size()); // addDevice and isDeviceAlreadyInTheCard, four times each
}
