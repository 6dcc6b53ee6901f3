#include "tests/simulator/bench.h"

// Scalar levels and steps that follow an audio taper. Microsoft's documentation of audio-tapered volume controls and of
// IAudioEndpointVolume::GetVolumeStepInfo.
namespace
{
using bench::Held;

/// The speaker's volume with the usual range of Windows: -65.25 to 0 decibels by 0.75, 88 steps.
class AudioTaper : public bench::SimulationTest
{
protected:
    AudioTaper()
    {
        simulation.change(
            [&](sim::Machine& machine)
            {
                sim::EndpointVolume volume;
                volume.taper = sim::Taper::audio;
                machine.endpoint(speakerId)->volume = volume;
            });
    }

    template<class Getter>
    float read(Getter getter)
    {
        float level = 99.0f;
        EXPECT_EQ(S_OK, (control.get()->*getter)(&level));
        return level;
    }

    float decibelsAt(float scalar)
    {
        EXPECT_EQ(S_OK, control->SetMasterVolumeLevelScalar(scalar, nullptr));
        return read(&IAudioEndpointVolume::GetMasterVolumeLevel);
    }

    std::pair<UINT, UINT> step()
    {
        std::pair<UINT, UINT> result;
        EXPECT_EQ(S_OK, control->GetVolumeStepInfo(&result.first, &result.second));
        return result;
    }

    Held<IAudioEndpointVolume> control = volume(speakerId);
};

TEST_F(AudioTaper, EndsAtTheEndsOfTheRange)
{
    EXPECT_EQ(-65.25f, decibelsAt(0.0f));
    EXPECT_EQ(0.0f, read(&IAudioEndpointVolume::GetMasterVolumeLevelScalar));
    EXPECT_EQ(0.0f, decibelsAt(1.0f));
    EXPECT_EQ(1.0f, read(&IAudioEndpointVolume::GetMasterVolumeLevelScalar));
}

// NAudio issue 698: Windows shows 27 % for -19.35 decibels.
TEST_F(AudioTaper, IsThatOfARealComputer)
{
    EXPECT_NEAR(-19.35f, decibelsAt(0.27f), 0.005f);
}

TEST_F(AudioTaper, RisesAllTheWayAndReadsBack)
{
    float before = decibelsAt(0.0f);
    for (int percent = 1; percent <= 100; ++percent)
    {
        const float scalar = static_cast<float>(percent) / 100.0f;

        const float decibels = decibelsAt(scalar);

        EXPECT_GT(decibels, before);
        EXPECT_NEAR(scalar, read(&IAudioEndpointVolume::GetMasterVolumeLevelScalar), 1e-6f);
        before = decibels;
    }
}

TEST_F(AudioTaper, HasStepsAtEqualDistancesOfTheScalarLevel)
{
    decibelsAt(0.0f);
    for (UINT index = 0; index < 87; ++index)
    {
        EXPECT_EQ(std::make_pair(index, UINT{88}), step());
        EXPECT_NEAR(static_cast<float>(index) / 87.0f, read(&IAudioEndpointVolume::GetMasterVolumeLevelScalar), 1e-6f);
        EXPECT_EQ(S_OK, control->VolumeStepUp(nullptr));
    }
    EXPECT_EQ(0.0f, read(&IAudioEndpointVolume::GetMasterVolumeLevel));
    EXPECT_EQ(S_OK, control->VolumeStepUp(nullptr));
    EXPECT_EQ(std::make_pair(UINT{87}, UINT{88}), step());

    EXPECT_EQ(S_OK, control->VolumeStepDown(nullptr));
    EXPECT_EQ(std::make_pair(UINT{86}, UINT{88}), step());
    EXPECT_NEAR(-0.173f, read(&IAudioEndpointVolume::GetMasterVolumeLevel), 0.001f);
}

TEST_F(AudioTaper, IsWhatClientsHear)
{
    simulation.deliverAtOnce(true);
    bench::VolumeListener listener;
    EXPECT_EQ(S_OK, control->RegisterControlChangeNotify(&listener));

    EXPECT_EQ(S_OK, control->SetMasterVolumeLevel(-19.35f, nullptr));

    EXPECT_THAT(listener.heard(), testing::ElementsAre("heard 270 270 master 270 context 0"));
    EXPECT_EQ(S_OK, control->UnregisterControlChangeNotify(&listener));
}
}
