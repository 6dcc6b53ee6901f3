// What the object model makes of objects that are not what they should be.
#include "libSonavit/soundcard.h"
#include "tests/hostile/library/hostilelibrarytest.h"

#include <string>

namespace
{
using testing::Contains;
using testing::ElementsAre;

class LibraryObjects : public hostile::HostileLibraryTest
{
protected:
    LibraryObjects() { platform.name = "honest"; }

    AudioDevice device(const std::string& id) { return AudioDevice(simulation().device(id)); }

    COMPtr<IConnector>::pointer jack() { return simulation().connector(hostile::honest().speakerJack); }

    hostile::Platform platform;
};
}

TEST_F(LibraryObjects, ThatDenyToBePartsAreComponentsWithoutPart)
{
    begin(platform);
    simulation().faults().fail("IConnector::QueryInterface", E_NOINTERFACE).with("IPart");

    const AudioComponent<IConnector> connector(jack());
    AudioDeviceTopology topology;

    EXPECT_NE(nullptr, connector.component().get());
    EXPECT_EQ(nullptr, connector.part().part().get());
    EXPECT_EQ(0u, connector.id().size());
    EXPECT_FALSE(topology.initialize(jack()));
    EXPECT_THAT(log.texts(qor::LoggerPriority::LOG_ERROR), ElementsAre("No part interface found"));
}

TEST_F(LibraryObjects, ThatSayTheyArePartsAndGiveNullAreComponentsWithoutPart)
{
    begin(platform);
    simulation().faults().succeedWithNull("IConnector::QueryInterface").with("IPart");

    const AudioComponent<IConnector> connector(jack());

    EXPECT_NE(nullptr, connector.component().get());
    EXPECT_EQ(nullptr, connector.part().part().get());
}

TEST_F(LibraryObjects, ThatGiveAnotherPartHaveItsIdAndName)
{
    begin(platform);
    const COMPtr<IPart>::pointer mute(simulation().part(hostile::honest().mute));
    simulation().faults().lie("IConnector::QueryInterface", sim::Lie::ofObject(*mute.get())).with("IPart");

    const AudioComponent<IConnector> connector(jack());

    EXPECT_EQ(hostile::honest().mute, connector.id().toUtf8());
    EXPECT_EQ(mute.get(), connector.part().part().get());
}

TEST_F(LibraryObjects, ThatDenyToBeEndpointsHaveNoJackNoFlowAndNoVolume)
{
    begin(platform);
    simulation().faults().fail("IMMDevice::QueryInterface", E_NOINTERFACE).with("IMMEndpoint");

    AudioDevice speaker = device(hostile::honest().speaker);
    EDataFlow flow = eAll;

    EXPECT_TRUE(speaker.isInitialized());
    EXPECT_FALSE(speaker.isEndpoint());
    EXPECT_FALSE(speaker.dataFlow(flow));
    EXPECT_EQ(nullptr, speaker.volumeControl().get());
    EXPECT_EQ(0xFFFFFFFFu, speaker.waveLegacyDeviceID());
    EXPECT_THAT(log.texts(qor::LoggerPriority::LOG_WARNING), Contains("Audio stream flow cannot be determined"));
}

TEST_F(LibraryObjects, ThatAreOneEndpointForAllPlacesAreFiledOncePerCard)
{
    begin(platform);
    const COMPtr<IMMDevice>::pointer speaker(simulation().device(hostile::honest().speaker));
    simulation().faults().lie("IMMDeviceCollection::Item", sim::Lie::ofObject(*speaker.get()));

    const qor::Array<SoundCard> cards = SoundCard::enumerateSystemSoundDevices();

    ASSERT_EQ(1u, cards.size());
    EXPECT_EQ(1u, cards[0].m_recordDevices->size());
    EXPECT_EQ(0u, cards[0].m_playbackDevices->size());
    EXPECT_EQ(2u, log.texts(qor::LoggerPriority::LOG_ERROR, "libSonavit.soundcard").size());
}

TEST_F(LibraryObjects, ThatAreAConnectorOnItsOwnFarSideAreNodesLinkedWithThemselves)
{
    platform.change = [](sim::Machine& machine)
    {
        for (sim::Join& join : machine.joins)
            join.to = join.from;
    };
    begin(platform);

    const qor::Array<SoundCard> cards = SoundCard::enumerateSystemSoundDevices();

    ASSERT_EQ(2u, cards.size());
    for (unsigned int i = 0; i < cards[0].m_connectorMap.size(); ++i)
    {
        ASSERT_EQ(1u, cards[0].m_connectorMap[i].links.size());
        EXPECT_EQ(i, cards[0].m_connectorMap[i].links[0]);
    }
    qor::Array<SoundCard::VolumeController> controls;
    EXPECT_EQ(0u, cards[0].volumeController((*cards[0].m_playbackDevices)[0], controls));
}
