#include "tests/simulator/bench.h"

// An endpoint's volume that a part of the adapter implements. Microsoft's documentation of
// IAudioEndpointVolumeCallback: the level of an endpoint with a hardware volume is that of the device, and clients are
// notified if it changes there.
namespace
{
using bench::Held;
using testing::ElementsAre;
using testing::IsEmpty;

const GUID context = {77, 0, 0, {0, 0, 0, 0, 0, 0, 0, 0}};

/// The speaker's volume: the bench machine's node, -96 to 0 decibels in steps of 1.5, two channels at -30.
class HardwareLevels : public bench::SimulationTest
{
protected:
    HardwareLevels()
    {
        simulation.deliverAtOnce(true);
        implement(speakerId);
    }

    void implement(const std::string& endpointId)
    {
        simulation.change(
            [&](sim::Machine& machine)
            {
                machine.endpoint(endpointId)->volume = {-96.0f, 0.0f, 1.5f, {-30.0f, -30.0f}, false, 4, {}};
                machine.endpoint(endpointId)->volume->hardware = {volumeId, muteId};
            });
    }

    static float channelOf(const Held<IAudioEndpointVolume>& control, UINT channel)
    {
        float level = 99.0f;
        EXPECT_EQ(S_OK, control->GetChannelVolumeLevel(channel, &level));
        return level;
    }

    float channelOfPart(UINT channel)
    {
        float level = 99.0f;
        EXPECT_EQ(S_OK, node->GetLevel(channel, &level));
        return level;
    }

    template<class Control>
    static bool isMuted(const Control& control)
    {
        BOOL muted = 99;
        EXPECT_EQ(S_OK, control->GetMute(&muted));
        return muted != FALSE;
    }

    Held<IAudioEndpointVolume> control = volume(speakerId);
    Held<IAudioVolumeLevel> node{simulation.volumeLevel(volumeId)};
    Held<IAudioMute> mute{simulation.mute(muteId)};
};

using HardwareLevelsOfAnEndpoint = HardwareLevels;
using HardwareLevelsOfAPart = HardwareLevels;

/// Clients of the endpoint and of both parts.
class HardwareLevelCallbacks : public HardwareLevels
{
protected:
    HardwareLevelCallbacks()
    {
        EXPECT_EQ(S_OK, control->RegisterControlChangeNotify(&volumes));
        EXPECT_EQ(S_OK, part(volumeId)->RegisterControlChangeCallback(sim::InterfaceTraits<IAudioVolumeLevel>::iid(),
                                                                      &levels));
        EXPECT_EQ(S_OK, part(muteId)->RegisterControlChangeCallback(sim::InterfaceTraits<IAudioMute>::iid(), &mutes));
    }

    ~HardwareLevelCallbacks() override
    {
        EXPECT_EQ(S_OK, control->UnregisterControlChangeNotify(&volumes));
        EXPECT_EQ(S_OK, part(volumeId)->UnregisterControlChangeCallback(&levels));
        EXPECT_EQ(S_OK, part(muteId)->UnregisterControlChangeCallback(&mutes));
    }

    bench::VolumeListener volumes;
    bench::ControlListener levels;
    bench::ControlListener mutes;
};

TEST_F(HardwareLevelsOfAnEndpoint, AreThoseOfThePart)
{
    EXPECT_EQ(S_OK, control->SetChannelVolumeLevel(1, -12.0f, nullptr));

    EXPECT_EQ(-30.0f, channelOfPart(0));
    EXPECT_EQ(-12.0f, channelOfPart(1));
    EXPECT_EQ(-12.0f, simulation.machine().part(volumeId)->volume->channels[1].level);

    EXPECT_EQ(S_OK, control->SetMute(TRUE, nullptr));

    EXPECT_TRUE(isMuted(mute));
    EXPECT_TRUE(simulation.machine().part(muteId)->mute->muted);
}

// Microsoft's documentation of IAudioEndpointVolume::GetVolumeRange: a level between two steps sets the hardware to the
// nearest step, and the endpoint keeps the level that was asked for.
TEST_F(HardwareLevelsOfAnEndpoint, MayLieBetweenTheStepsOfThePart)
{
    EXPECT_EQ(S_OK, control->SetChannelVolumeLevel(0, -10.7f, nullptr));

    EXPECT_EQ(-10.7f, channelOf(control, 0));
    EXPECT_EQ(-10.5f, channelOfPart(0));

    EXPECT_EQ(S_OK, node->SetLevel(0, -10.5f, nullptr)); // no change of the part
    EXPECT_EQ(-10.7f, channelOf(control, 0));

    EXPECT_EQ(S_OK, node->SetLevel(0, -9.0f, nullptr));
    EXPECT_EQ(S_OK, node->SetLevel(0, -10.5f, nullptr));
    EXPECT_EQ(-10.5f, channelOf(control, 0));
}

TEST_F(HardwareLevelsOfAnEndpoint, AreReportedAsHardwareSupport)
{
    DWORD support = 0;

    EXPECT_EQ(S_OK, control->QueryHardwareSupport(&support));

    EXPECT_EQ(7u, support); // the machine itself says that there is a meter
}

TEST_F(HardwareLevelsOfAnEndpoint, FollowAPartThatTheMachineChanges)
{
    simulation.change(
        [&](sim::Machine& machine)
        {
            machine.part(volumeId)->volume->channels[0].level = -6.0f;
            machine.part(muteId)->mute->muted = true;
        });

    EXPECT_EQ(-6.0f, channelOf(control, 0));
    EXPECT_TRUE(isMuted(control));
}

TEST_F(HardwareLevelsOfAnEndpoint, AreItsOwnIfThePartIsGone)
{
    simulation.change([&](sim::Machine& machine) { machine.endpoint(speakerId)->volume->hardware = {"gone", "gone"}; });

    EXPECT_EQ(S_OK, control->SetChannelVolumeLevel(0, -10.7f, nullptr));

    EXPECT_EQ(-10.7f, channelOf(control, 0));
    EXPECT_EQ(-30.0f, channelOfPart(0));
}

TEST_F(HardwareLevelsOfAPart, AreThoseOfTheEndpoint)
{
    EXPECT_EQ(S_OK, node->SetLevelUniform(-12.0f, nullptr));
    EXPECT_EQ(-12.0f, channelOf(control, 0));
    EXPECT_EQ(-12.0f, channelOf(control, 1));
    EXPECT_THAT(simulation.machine().endpoint(speakerId)->volume->channels, ElementsAre(-12.0f, -12.0f));

    EXPECT_EQ(S_OK, mute->SetMute(TRUE, nullptr));
    EXPECT_TRUE(isMuted(control));
    EXPECT_TRUE(simulation.machine().endpoint(speakerId)->volume->muted);
}

TEST_F(HardwareLevelCallbacks, HearTheEndpoint)
{
    EXPECT_EQ(S_OK, control->SetMasterVolumeLevel(-48.0f, &context));
    EXPECT_EQ(S_OK, control->SetMute(TRUE, nullptr));

    EXPECT_THAT(volumes.heard(),
                ElementsAre("heard 500 500 master 500 context 77", "muted 500 500 master 500 context 0"));
    EXPECT_THAT(levels.heard(), ElementsAre("77"));
    EXPECT_THAT(mutes.heard(), ElementsAre("null"));
}

TEST_F(HardwareLevelCallbacks, HearThePart)
{
    EXPECT_EQ(S_OK, node->SetLevelUniform(-48.0f, &context));
    EXPECT_EQ(S_OK, mute->SetMute(TRUE, nullptr));

    EXPECT_THAT(volumes.heard(),
                ElementsAre("heard 500 500 master 500 context 77", "muted 500 500 master 500 context 0"));
    EXPECT_THAT(levels.heard(), ElementsAre("77"));
    EXPECT_THAT(mutes.heard(), ElementsAre("null"));
}

TEST_F(HardwareLevelCallbacks, HearTheMachinesEvents)
{
    simulation.events().setVolume(speakerId, -48.0f, true);

    EXPECT_THAT(volumes.heard(), ElementsAre("muted 500 500 master 500 context 0"));
    EXPECT_THAT(levels.heard(), ElementsAre("null"));
    EXPECT_THAT(mutes.heard(), ElementsAre("null"));
}

TEST_F(HardwareLevelCallbacks, AreNotCalledForALevelThatStays)
{
    EXPECT_EQ(S_OK, control->SetMasterVolumeLevel(-30.0f, &context));
    EXPECT_EQ(S_OK, node->SetLevelUniform(-30.1f, &context)); // the same step
    EXPECT_EQ(S_OK, mute->SetMute(FALSE, &context));

    EXPECT_THAT(volumes.heard(), IsEmpty());
    EXPECT_THAT(levels.heard(), IsEmpty());
    EXPECT_THAT(mutes.heard(), IsEmpty());
}

TEST_F(HardwareLevelCallbacks, HearTheEndpointAloneIfThePartStaysAtItsStep)
{
    EXPECT_EQ(S_OK, control->SetMasterVolumeLevel(-30.5f, &context));

    EXPECT_EQ(1u, volumes.heard().size());
    EXPECT_THAT(levels.heard(), IsEmpty());
}

TEST_F(HardwareLevelCallbacks, HearTheOtherEndpointOfTheSamePart)
{
    implement(earphoneId);
    bench::VolumeListener others;
    const Held<IAudioEndpointVolume> other = volume(earphoneId);
    EXPECT_EQ(S_OK, other->RegisterControlChangeNotify(&others));

    EXPECT_EQ(S_OK, control->SetMasterVolumeLevel(-48.0f, &context));

    EXPECT_EQ(-48.0f, channelOf(other, 1));
    EXPECT_THAT(others.heard(), ElementsAre("heard 500 500 master 500 context 77"));
    EXPECT_EQ(S_OK, other->UnregisterControlChangeNotify(&others));
}
}
