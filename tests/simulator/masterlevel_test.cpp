#include "tests/simulator/bench.h"

// A master level that is not that of the loudest channel, as long as no level is set.
namespace
{
using bench::Held;
using testing::ElementsAre;

class OwnMasterLevel : public bench::SimulationTest
{
protected:
    OwnMasterLevel()
    {
        setVolume(
            [](sim::EndpointVolume& volume)
            {
                volume = sim::EndpointVolume();
                volume.minimum = -60.0f;
                volume.step = 1.0f;
                volume.channels = {-10.0f, -20.0f};
                volume.master = -5.5f;
            });
        simulation.deliverAtOnce(true);
        EXPECT_EQ(S_OK, control->RegisterControlChangeNotify(&listener));
    }

    ~OwnMasterLevel() override { EXPECT_EQ(S_OK, control->UnregisterControlChangeNotify(&listener)); }

    template<class Change>
    void setVolume(const Change& change)
    {
        simulation.change([&](sim::Machine& machine) { change(*machine.endpoint(speakerId)->volume); });
    }

    float master()
    {
        float level = 99.0f;
        EXPECT_EQ(S_OK, control->GetMasterVolumeLevel(&level));
        return level;
    }

    std::vector<float> channels()
    {
        std::vector<float> levels(2, 99.0f);
        for (UINT channel = 0; channel < 2; ++channel)
            EXPECT_EQ(S_OK, control->GetChannelVolumeLevel(channel, &levels[channel]));
        return levels;
    }

    Held<IAudioEndpointVolume> control = volume(speakerId);
    bench::VolumeListener listener;
};

TEST_F(OwnMasterLevel, IsWhatBothGettersReturnAndWhereTheCurrentStepIs)
{
    float scalar = 99.0f;
    UINT step = 99;

    EXPECT_EQ(S_OK, control->GetMasterVolumeLevelScalar(&scalar));
    EXPECT_EQ(S_OK, control->GetVolumeStepInfo(&step, nullptr));

    EXPECT_EQ(-5.5f, master());
    EXPECT_FLOAT_EQ(54.5f / 60.0f, scalar);
    EXPECT_EQ(55u, step);
    EXPECT_THAT(channels(), ElementsAre(-10.0f, -20.0f));
}

TEST_F(OwnMasterLevel, HasTheScalarThatAMeasuredPointGivesIt)
{
    setVolume(
        [](sim::EndpointVolume& volume)
        {
            volume.taper = sim::Taper::measured;
            volume.taperPoints = {{-5.5f, 0.123f}};
        });
    float scalar = 99.0f;

    EXPECT_EQ(S_OK, control->GetMasterVolumeLevelScalar(&scalar));

    EXPECT_EQ(0.123f, scalar);
}

TEST_F(OwnMasterLevel, EndsWhenTheMasterLevelIsSetAndTheLoudestChannelTakesIt)
{
    EXPECT_EQ(S_OK, control->SetMasterVolumeLevel(-30.0f, nullptr));

    EXPECT_EQ(-30.0f, master());
    EXPECT_THAT(channels(), ElementsAre(-30.0f, -40.0f));
}

TEST_F(OwnMasterLevel, IsWhereStepsStart)
{
    EXPECT_EQ(S_OK, control->VolumeStepUp(nullptr));

    EXPECT_EQ(-4.5f, master());
    EXPECT_THAT(channels(), ElementsAre(-4.5f, -14.5f));
}

TEST_F(OwnMasterLevel, EndsWhenAChannelIsSetToTheLevelThatItHas)
{
    EXPECT_EQ(S_OK, control->SetChannelVolumeLevel(1, -20.0f, nullptr));

    EXPECT_EQ(-10.0f, master());
    EXPECT_THAT(channels(), ElementsAre(-10.0f, -20.0f));
    EXPECT_THAT(listener.heard(), ElementsAre("heard 833 667 master 833 context 0"));
}

TEST_F(OwnMasterLevel, EndsAtAnEventThatSetsALevel)
{
    simulation.events().setVolume(speakerId, -40.0f, {});

    EXPECT_EQ(-40.0f, master());
    EXPECT_THAT(channels(), ElementsAre(-40.0f, -40.0f));
}

TEST_F(OwnMasterLevel, SurvivesAMuteAndARefusedLevel)
{
    EXPECT_EQ(S_OK, control->SetMute(TRUE, nullptr));
    EXPECT_EQ(E_INVALIDARG, control->SetMasterVolumeLevel(1.0f, nullptr));
    EXPECT_EQ(E_INVALIDARG, control->SetChannelVolumeLevel(2, -1.0f, nullptr));
    simulation.events().setVolume(speakerId, {}, false);

    EXPECT_EQ(-5.5f, master());
}

TEST_F(OwnMasterLevel, NotifiesNobodyWhenItEndsAtTheLevelOfTheLoudestChannel)
{
    setVolume([](sim::EndpointVolume& volume) { volume.master = -10.0f; });

    EXPECT_EQ(S_OK, control->SetMasterVolumeLevel(-10.0f, nullptr));

    EXPECT_TRUE(listener.heard().empty());
}

TEST_F(OwnMasterLevel, IsAllThatAVolumeWithoutChannelsHas)
{
    setVolume([](sim::EndpointVolume& volume) { volume.channels.clear(); });

    EXPECT_EQ(S_OK, control->SetMasterVolumeLevel(-7.0f, nullptr));
    EXPECT_EQ(-7.0f, master());
    EXPECT_EQ(S_OK, control->VolumeStepDown(nullptr));
    EXPECT_EQ(-8.0f, master());
    simulation.events().setVolume(speakerId, -9.0f, {});
    EXPECT_EQ(-9.0f, master());
}

TEST_F(OwnMasterLevel, EndsWhenThePartThatImplementsItIsSet)
{
    simulation.change(
        [&](sim::Machine& machine)
        {
            sim::EndpointVolume& changed = *machine.endpoint(speakerId)->volume;
            changed.minimum = -96.0f;
            changed.step = 1.5f;
            changed.channels = {-30.0f, -30.0f};
            changed.hardware.volume = volumeId;
        });
    Held<IAudioVolumeLevel> part(simulation.volumeLevel(volumeId));
    EXPECT_EQ(-5.5f, master());

    EXPECT_EQ(S_OK, part->SetLevel(0, -33.0f, nullptr));

    EXPECT_EQ(-30.0f, master());
    EXPECT_THAT(channels(), ElementsAre(-33.0f, -30.0f));
}
}
