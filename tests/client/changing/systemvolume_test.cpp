#include "tests/support/clienttest.h"

#include <cstdint>
#include <memory>
#include <vector>

namespace
{
using namespace sonavit;
using testing::ElementsAre;
using testing::IsEmpty;

/// A System on a machine with speakers at -30 dB and a microphone without volume.
class SystemVolume : public support::ClientTest
{
protected:
    void SetUp() override
    {
        ClientTest::SetUp();
        sim::MachineBuilder builder;
        sim::CardBuilder card = builder.card("Analog Audio");
        m_speakers = EndpointId(card.speaker().level(-30.0f).id());
        m_microphone = EndpointId(card.microphone().withoutVolume().id());
        play(builder.build());
        System::Options options = this->options();
        options.delivery = Delivery::poll;
        m_system = std::make_unique<System>(options);
    }

    void TearDown() override
    {
        m_system.reset();
        ClientTest::TearDown();
    }

    Volume shown() { return m_system->snapshot().endpoint(m_speakers)->volume().value(); }

    EndpointId m_speakers;
    EndpointId m_microphone;
    std::unique_ptr<System> m_system;
};

TEST_F(SystemVolume, ShowsTheChangeInTheSnapshotWhenTheSetterReturns)
{
    const Result<Volume> volume = m_system->setVolume(m_speakers, Decibels(-12));

    ASSERT_TRUE(volume);
    EXPECT_EQ(volume->master.decibels, Decibels(-12));
    EXPECT_EQ(shown(), volume.value());
    EXPECT_NE(volume.token(), 0u);
}

TEST_F(SystemVolume, GivesTheEventsTheTokenOfTheResult)
{
    std::vector<Event> events;
    const Subscription subscription = m_system->subscribe(
        [&](const Change& change) { events.insert(events.end(), change.events().begin(), change.events().end()); });

    const Result<Volume> volume = m_system->setVolume(m_speakers, Percent(40));
    simulation().events().waitForClients();
    ASSERT_TRUE(m_system->refresh());
    m_system->poll();

    ASSERT_EQ(events.size(), 1u);
    EXPECT_EQ(events.front().field, EndpointField::volume);
    EXPECT_EQ(events.front().origin, Origin::own);
    EXPECT_THAT(events.front().tokens, ElementsAre(volume.token()));
    EXPECT_EQ(events.front().after->volume(), volume.value());
}

TEST_F(SystemVolume, MakesNoChangeOfWhatIsThereAlready)
{
    const Volume before = shown();
    const std::uint64_t generation = m_system->snapshot().generation();

    const Result<Volume> volume = m_system->setVolume(m_speakers, *before.master.percent);

    EXPECT_EQ(volume.value(), before);
    EXPECT_EQ(volume.token(), 0u);
    EXPECT_EQ(m_system->snapshot().generation(), generation);
    EXPECT_EQ(simulation().journal().count("IAudioEndpointVolume::Set*"), 0u);
}

TEST_F(SystemVolume, DoesNotClaimTheChangeOfAnotherProgramForItself)
{
    ASSERT_TRUE(m_system->refresh());
    std::vector<Event> events;
    const Subscription subscription = m_system->subscribe(
        [&](const Change& change) { events.insert(events.end(), change.events().begin(), change.events().end()); });
    simulation().change([](sim::Machine& now) { now.endpoints.front().volume->channels = {-6.0f, -6.0f}; });

    const Result<Volume> volume = m_system->setVolume(m_speakers, Decibels(-6));
    m_system->poll();

    EXPECT_EQ(volume.token(), 0u);
    EXPECT_EQ(shown().master.decibels, Decibels(-6));
    ASSERT_EQ(events.size(), 1u);
    EXPECT_NE(events.front().origin, Origin::own);
    EXPECT_THAT(events.front().tokens, IsEmpty());
}

TEST_F(SystemVolume, MutesAndToggles)
{
    EXPECT_EQ(m_system->setMute(m_speakers, true)->isMuted, true);
    EXPECT_EQ(shown().isMuted, true);
    EXPECT_EQ(m_system->toggleMute(m_speakers)->isMuted, false);
    EXPECT_EQ(shown().isMuted, false);
    EXPECT_EQ(shown().master.decibels, Decibels(-30));
}

TEST_F(SystemVolume, ReportsAnEndpointThatDoesNotExist)
{
    const EndpointId unknown("{0.0.0.00000000}.{nothing}");

    EXPECT_EQ(m_system->setVolume(unknown, Percent(40)).problem().kind(), Problem::Kind::notThere);
    EXPECT_EQ(m_system->setMute(unknown, true).problem().kind(), Problem::Kind::notThere);
    EXPECT_EQ(m_system->toggleMute(unknown).problem().kind(), Problem::Kind::notThere);
    EXPECT_EQ(m_system->setControl(unknown, "Volume", Percent(40)).problem().kind(), Problem::Kind::notThere);
    EXPECT_EQ(m_system->setControlMute(unknown, "Volume", true).problem().kind(), Problem::Kind::notThere);
    EXPECT_EQ(m_system->holdFormat(unknown, Format::integer(16, 48000, 2)).problem().kind(), Problem::Kind::notThere);
}

TEST_F(SystemVolume, ReportsAnEndpointWithoutVolume)
{
    EXPECT_EQ(m_system->setVolume(m_microphone, Percent(40)).problem().kind(), Problem::Kind::notSupported);
    EXPECT_EQ(m_system->toggleMute(m_microphone).problem().kind(), Problem::Kind::notSupported);
}

TEST_F(SystemVolume, ReportsARefusedCallAndShowsWhatIsThere)
{
    simulation().faults().fail("IAudioEndpointVolume::VolumeStepUp", E_ACCESSDENIED).at(2);

    const Result<Volume> result = m_system->setVolume(m_speakers, LevelChange::up(Steps{4}));

    EXPECT_EQ(result.problem(),
              Problem::ofCall("IAudioEndpointVolume::VolumeStepUp", m_speakers.text(), E_ACCESSDENIED));
    EXPECT_NE(result.token(), 0u);
    EXPECT_EQ(shown().master.decibels, Decibels(-29.25));
}

TEST_F(SystemVolume, IsOpenToAnOrdinaryAccount)
{
    simulation().setAccount(sim::Account::ordinary);

    EXPECT_TRUE(m_system->setVolume(m_speakers, Percent(40)));
    EXPECT_TRUE(m_system->toggleMute(m_speakers));
    EXPECT_EQ(shown().master.percent->rounded(), 40u);
}

TEST_F(SystemVolume, ReportsAnEndpointThatHasGone)
{
    ASSERT_TRUE(m_system->refresh());
    simulation().change([](sim::Machine& now) { now.endpoints.front().volume.reset(); });

    const Result<Volume> result = m_system->setVolume(m_speakers, Percent(40));

    EXPECT_EQ(result.problem().kind(), Problem::Kind::platform);
    EXPECT_EQ(result.problem().code(), AUDCLNT_E_DEVICE_INVALIDATED);
}

/// The shipped machines with volumes.
class SystemVolumeOfMachine : public support::ClientTest, public testing::WithParamInterface<const char*>
{
};

INSTANTIATE_TEST_SUITE_P(Shipped, SystemVolumeOfMachine,
                         testing::Values("bluetooth", "broken", "crowded", "desktop", "laptop", "published",
                                         "remote-desktop", "studio", "virtual"));

TEST_P(SystemVolumeOfMachine, KeepsEveryLevelThatIsSetToWhatWasRead)
{
    play(GetParam());
    System system(options());
    const Snapshot before = system.snapshot();
    unsigned count = 0;
    for (const Endpoint& endpoint : before.endpoints())
    {
        if (!endpoint.volume() || !endpoint.volume()->master.percent || !endpoint.volume()->channels)
            continue;
        static_cast<void>(system.setVolume(endpoint.id(), *endpoint.volume()->master.percent));
        for (unsigned channel = 0; channel < endpoint.volume()->channels->size(); ++channel)
        {
            const Level& level = endpoint.volume()->channels->at(channel);
            if (level.decibels)
                static_cast<void>(system.setVolume(endpoint.id(), LevelChange(*level.decibels).onChannel(channel)));
            if (level.percent)
                static_cast<void>(system.setVolume(endpoint.id(), LevelChange(*level.percent).onChannel(channel)));
        }
        EXPECT_EQ(system.endpoint(endpoint.id())->volume()->channels, endpoint.volume()->channels) << endpoint.title();
        ++count;
    }
    EXPECT_GT(count, 0u);
}
}
