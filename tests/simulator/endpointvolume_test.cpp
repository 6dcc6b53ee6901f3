#include "tests/simulator/bench.h"

#include <limits>

namespace
{
using bench::Held;
using testing::ElementsAre;

const GUID context = {77, 0, 0, {0, 0, 0, 0, 0, 0, 0, 0}};

/// The speaker's volume: -60 to 0 decibels in steps of 2, two channels at 0.
class SimulatedEndpointVolume : public bench::SimulationTest
{
protected:
    SimulatedEndpointVolume()
    {
        simulation.change(
            [&](sim::Machine& machine) {
                machine.endpoint(speakerId)->volume = {-60.0f, 0.0f, 2.0f, {0.0f, 0.0f}, false, 3, {}};
            });
    }

    std::vector<float> levels() const { return simulation.machine().endpoint(speakerId)->volume->channels; }

    template<class Getter>
    float read(Getter getter)
    {
        float level = 99.0f;
        EXPECT_EQ(S_OK, (control.get()->*getter)(&level));
        return level;
    }

    Held<IAudioEndpointVolume> control = volume(speakerId);
};

using SimulatedEndpointVolumeLevels = SimulatedEndpointVolume;
using SimulatedEndpointVolumeSteps = SimulatedEndpointVolume;
using SimulatedEndpointVolumeMute = SimulatedEndpointVolume;
using SimulatedEndpointVolumeCallback = SimulatedEndpointVolume;

TEST_F(SimulatedEndpointVolumeLevels, RunLinearlyFromTheMinimumToTheMaximum)
{
    for (const float scalar : {0.0f, 0.25f, 0.5f, 0.999f, 1.0f})
    {
        EXPECT_EQ(S_OK, control->SetMasterVolumeLevelScalar(scalar, nullptr));
        EXPECT_FLOAT_EQ(scalar, read(&IAudioEndpointVolume::GetMasterVolumeLevelScalar));
        EXPECT_NEAR(-60.0f + 60.0f * scalar, read(&IAudioEndpointVolume::GetMasterVolumeLevel), 1e-5f);
    }
}

TEST_F(SimulatedEndpointVolumeLevels, HaveARangeAndChannels)
{
    float minimum = 0.0f;
    float maximum = 1.0f;
    float step = 0.0f;
    UINT channels = 0;
    DWORD support = 0;
    EXPECT_EQ(S_OK, control->GetVolumeRange(&minimum, &maximum, &step));
    EXPECT_EQ(S_OK, control->GetChannelCount(&channels));
    EXPECT_EQ(S_OK, control->QueryHardwareSupport(&support));
    EXPECT_EQ(-60.0f, minimum);
    EXPECT_EQ(0.0f, maximum);
    EXPECT_EQ(2.0f, step);
    EXPECT_EQ(2u, channels);
    EXPECT_EQ(DWORD(ENDPOINT_HARDWARE_SUPPORT_VOLUME | ENDPOINT_HARDWARE_SUPPORT_MUTE), support);
    EXPECT_EQ(E_POINTER, control->GetVolumeRange(&minimum, nullptr, &step));
}

TEST_F(SimulatedEndpointVolumeLevels, HaveTheLoudestChannelAsMaster)
{
    EXPECT_EQ(S_OK, control->SetChannelVolumeLevel(0, -40.0f, nullptr));
    EXPECT_EQ(S_OK, control->SetChannelVolumeLevelScalar(1, 0.5f, nullptr));

    EXPECT_THAT(levels(), ElementsAre(-40.0f, -30.0f));
    EXPECT_EQ(-30.0f, read(&IAudioEndpointVolume::GetMasterVolumeLevel));
}

TEST_F(SimulatedEndpointVolumeLevels, MoveTogetherWithTheMasterAndStayInTheRange)
{
    simulation.events().setVolume(speakerId, -20.0f);
    EXPECT_EQ(S_OK, control->SetChannelVolumeLevel(0, -50.0f, nullptr));

    EXPECT_EQ(S_OK, control->SetMasterVolumeLevel(-25.0f, nullptr));
    EXPECT_THAT(levels(), ElementsAre(-55.0f, -25.0f));
    EXPECT_EQ(S_OK, control->SetMasterVolumeLevel(-45.0f, nullptr));
    EXPECT_THAT(levels(), ElementsAre(-60.0f, -45.0f));
}

TEST_F(SimulatedEndpointVolumeLevels, RefuseWhatLiesOutsideTheRange)
{
    const float nothing = std::numeric_limits<float>::quiet_NaN();
    EXPECT_EQ(E_INVALIDARG, control->SetMasterVolumeLevel(0.5f, nullptr));
    EXPECT_EQ(E_INVALIDARG, control->SetMasterVolumeLevel(-60.5f, nullptr));
    EXPECT_EQ(E_INVALIDARG, control->SetMasterVolumeLevelScalar(1.01f, nullptr));
    EXPECT_EQ(E_INVALIDARG, control->SetMasterVolumeLevelScalar(-0.01f, nullptr));
    EXPECT_EQ(E_INVALIDARG, control->SetMasterVolumeLevelScalar(nothing, nullptr));
    EXPECT_EQ(E_INVALIDARG, control->SetChannelVolumeLevel(0, 0.5f, nullptr));
    EXPECT_EQ(E_INVALIDARG, control->SetChannelVolumeLevelScalar(1, 1.01f, nullptr));
    EXPECT_THAT(levels(), ElementsAre(0.0f, 0.0f));
}

TEST_F(SimulatedEndpointVolumeLevels, RefuseAChannelThatDoesNotExistAndLeaveTheAnswerAlone)
{
    float level = 99.0f;
    EXPECT_EQ(E_INVALIDARG, control->GetChannelVolumeLevel(2, &level));
    EXPECT_EQ(E_INVALIDARG, control->GetChannelVolumeLevelScalar(2, &level));
    EXPECT_EQ(99.0f, level);
    EXPECT_EQ(E_INVALIDARG, control->SetChannelVolumeLevel(2, -1.0f, nullptr));
    EXPECT_EQ(E_INVALIDARG, control->SetChannelVolumeLevelScalar(2, 0.5f, nullptr));
    EXPECT_EQ(E_POINTER, control->GetChannelVolumeLevel(0, nullptr));
}

TEST_F(SimulatedEndpointVolumeLevels, AreOneStateBehindAllObjects)
{
    const Held<IAudioEndpointVolume> other = volume(speakerId);

    EXPECT_EQ(S_OK, other->SetMasterVolumeLevel(-10.0f, nullptr));

    EXPECT_EQ(-10.0f, read(&IAudioEndpointVolume::GetMasterVolumeLevel));
}

TEST_F(SimulatedEndpointVolumeLevels, CanBeRefusedByTheMachine)
{
    simulation.change(
        [&](sim::Machine& machine) {
            machine.endpoint(speakerId)->volume->refused = {"GetChannelCount", "SetMasterVolumeLevel"};
        });

    UINT channels = 99;
    EXPECT_EQ(E_NOTIMPL, control->GetChannelCount(&channels));
    EXPECT_EQ(99u, channels);
    EXPECT_EQ(E_NOTIMPL, control->SetMasterVolumeLevel(-10.0f, nullptr));
    EXPECT_EQ(S_OK, control->SetMasterVolumeLevelScalar(0.5f, nullptr));
}

/// The speaker's volume has one level only.
class SimulatedEndpointVolumeOfOneLevel : public SimulatedEndpointVolume
{
protected:
    SimulatedEndpointVolumeOfOneLevel()
    {
        simulation.change(
            [&](sim::Machine& machine) {
                machine.endpoint(speakerId)->volume = {-12.0f, -12.0f, 0.0f, {-12.0f, -12.0f}, false, 0, {}};
            });
    }
};

TEST_F(SimulatedEndpointVolumeOfOneLevel, IsAtItsMaximum)
{
    float scalar = 0.0f;
    EXPECT_EQ(1.0f, read(&IAudioEndpointVolume::GetMasterVolumeLevelScalar));
    EXPECT_EQ(-12.0f, read(&IAudioEndpointVolume::GetMasterVolumeLevel));
    EXPECT_EQ(S_OK, control->GetChannelVolumeLevelScalar(1, &scalar));
    EXPECT_EQ(1.0f, scalar);
}

TEST_F(SimulatedEndpointVolumeOfOneLevel, StaysThereWhateverIsSet)
{
    simulation.deliverAtOnce(true);
    bench::VolumeListener listener;
    ASSERT_EQ(S_OK, control->RegisterControlChangeNotify(&listener));

    for (const float scalar : {0.0f, 0.5f, 1.0f})
    {
        EXPECT_EQ(S_OK, control->SetMasterVolumeLevelScalar(scalar, nullptr));
        EXPECT_EQ(S_OK, control->SetChannelVolumeLevelScalar(0, scalar, nullptr));
    }
    EXPECT_EQ(S_OK, control->SetMasterVolumeLevel(-12.0f, nullptr));
    EXPECT_EQ(E_INVALIDARG, control->SetMasterVolumeLevel(-11.5f, nullptr));
    EXPECT_EQ(S_OK, control->VolumeStepUp(nullptr));
    EXPECT_EQ(S_OK, control->VolumeStepDown(nullptr));

    EXPECT_THAT(levels(), ElementsAre(-12.0f, -12.0f));
    EXPECT_THAT(listener.heard(), ElementsAre());
    EXPECT_EQ(S_OK, control->SetMute(TRUE, nullptr));
    EXPECT_THAT(listener.heard(), ElementsAre("muted 1000 1000 master 1000 context 0"));
    EXPECT_EQ(S_OK, control->UnregisterControlChangeNotify(&listener));
}

TEST_F(SimulatedEndpointVolumeOfOneLevel, HasOneStep)
{
    UINT step = 99;
    UINT count = 99;
    EXPECT_EQ(S_OK, control->GetVolumeStepInfo(&step, &count));
    EXPECT_EQ(0u, step);
    EXPECT_EQ(1u, count);

    simulation.change([&](sim::Machine& machine) { machine.endpoint(speakerId)->volume->step = 1.5f; });
    EXPECT_EQ(S_OK, control->GetVolumeStepInfo(&step, &count));
    EXPECT_EQ(0u, step);
    EXPECT_EQ(1u, count);
}

TEST_F(SimulatedEndpointVolumeLevels, AreAtTheMinimumWithoutAChannel)
{
    simulation.change([&](sim::Machine& machine) { machine.endpoint(speakerId)->volume->channels.clear(); });

    EXPECT_EQ(-60.0f, read(&IAudioEndpointVolume::GetMasterVolumeLevel));
    EXPECT_EQ(0.0f, read(&IAudioEndpointVolume::GetMasterVolumeLevelScalar));
    EXPECT_EQ(S_OK, control->SetMasterVolumeLevel(-10.0f, nullptr));
    EXPECT_EQ(-60.0f, read(&IAudioEndpointVolume::GetMasterVolumeLevel));
}

TEST_F(SimulatedEndpointVolumeLevels, RefuseWhatIsNoNumberAndTakeBothEndsOfTheRange)
{
    const float nothing = std::numeric_limits<float>::quiet_NaN();
    EXPECT_EQ(E_INVALIDARG, control->SetMasterVolumeLevel(nothing, nullptr));
    EXPECT_EQ(E_INVALIDARG, control->SetChannelVolumeLevel(0, nothing, nullptr));
    EXPECT_EQ(E_INVALIDARG, control->SetChannelVolumeLevelScalar(0, nothing, nullptr));
    EXPECT_EQ(E_INVALIDARG, control->SetChannelVolumeLevelScalar(0, -0.01f, nullptr));
    EXPECT_EQ(E_INVALIDARG, control->SetChannelVolumeLevel(0, -60.5f, nullptr));
    EXPECT_THAT(levels(), ElementsAre(0.0f, 0.0f));

    EXPECT_EQ(S_OK, control->SetChannelVolumeLevel(0, -60.0f, nullptr));
    EXPECT_EQ(S_OK, control->SetChannelVolumeLevelScalar(1, 0.0f, nullptr));
    EXPECT_THAT(levels(), ElementsAre(-60.0f, -60.0f));
    EXPECT_EQ(S_OK, control->SetMasterVolumeLevel(0.0f, nullptr));
    EXPECT_THAT(levels(), ElementsAre(0.0f, 0.0f));
}

TEST_F(SimulatedEndpointVolumeLevels, RefuseEachOperationThatTheMachineRefuses)
{
    simulation.change(
        [&](sim::Machine& machine)
        {
            machine.endpoint(speakerId)->volume->refused = {"RegisterControlChangeNotify",
                                                            "GetMasterVolumeLevel",
                                                            "GetChannelVolumeLevelScalar",
                                                            "SetMute",
                                                            "GetMute",
                                                            "GetVolumeStepInfo",
                                                            "VolumeStepUp",
                                                            "QueryHardwareSupport",
                                                            "GetVolumeRange"};
        });
    bench::VolumeListener listener;
    float level = 99.0f;
    BOOL muted = 99;
    UINT number = 99;
    DWORD support = 99;

    EXPECT_EQ(E_NOTIMPL, control->RegisterControlChangeNotify(&listener));
    EXPECT_EQ(E_NOTIMPL, control->GetMasterVolumeLevel(&level));
    EXPECT_EQ(E_NOTIMPL, control->GetChannelVolumeLevelScalar(0, &level));
    EXPECT_EQ(E_NOTIMPL, control->SetMute(TRUE, nullptr));
    EXPECT_EQ(E_NOTIMPL, control->GetMute(&muted));
    EXPECT_EQ(E_NOTIMPL, control->GetVolumeStepInfo(&number, &number));
    EXPECT_EQ(E_NOTIMPL, control->VolumeStepUp(nullptr));
    EXPECT_EQ(E_NOTIMPL, control->QueryHardwareSupport(&support));
    EXPECT_EQ(E_NOTIMPL, control->GetVolumeRange(&level, &level, &level));

    EXPECT_EQ(1u, listener.references);
    EXPECT_EQ(99.0f, level);
    EXPECT_EQ(99, muted);
    EXPECT_EQ(99u, number);
    EXPECT_EQ(99u, support);
    EXPECT_FALSE(simulation.machine().endpoint(speakerId)->volume->muted);
    EXPECT_EQ(S_OK, control->GetMasterVolumeLevelScalar(&level)); // its name begins with a refused one
    EXPECT_EQ(S_OK, control->VolumeStepDown(nullptr));
}

TEST_F(SimulatedEndpointVolumeSteps, AreCountedAndTaken)
{
    UINT step = 0;
    UINT count = 0;
    EXPECT_EQ(S_OK, control->GetVolumeStepInfo(&step, &count));
    EXPECT_EQ(30u, step);
    EXPECT_EQ(31u, count);

    EXPECT_EQ(S_OK, control->VolumeStepDown(nullptr));
    EXPECT_EQ(-2.0f, read(&IAudioEndpointVolume::GetMasterVolumeLevel));
    EXPECT_EQ(S_OK, control->VolumeStepUp(nullptr));
    EXPECT_EQ(S_OK, control->VolumeStepUp(nullptr)); // no step further than the maximum
    EXPECT_EQ(0.0f, read(&IAudioEndpointVolume::GetMasterVolumeLevel));
}

TEST_F(SimulatedEndpointVolumeSteps, AreNoMoreThanACountCanExpress)
{
    simulation.change([&](sim::Machine& machine) { machine.endpoint(speakerId)->volume->step = 1e-9f; });
    UINT step = 99;
    UINT count = 99;

    EXPECT_EQ(S_OK, control->GetVolumeStepInfo(&step, &count));

    EXPECT_EQ(2147483521u, count);
    EXPECT_EQ(2147483520u, step);
}

// Microsoft's documentation of IAudioEndpointVolume::GetVolumeStepInfo.
TEST_F(SimulatedEndpointVolumeSteps, AreToldToThePointersThatThereAre)
{
    UINT step = 99;
    UINT count = 99;

    EXPECT_EQ(S_OK, control->GetVolumeStepInfo(&step, nullptr));
    EXPECT_EQ(S_OK, control->GetVolumeStepInfo(nullptr, &count));
    EXPECT_EQ(30u, step);
    EXPECT_EQ(31u, count);
    EXPECT_EQ(E_POINTER, control->GetVolumeStepInfo(nullptr, nullptr));
}

TEST_F(SimulatedEndpointVolumeSteps, AreZeroedWhereThereIsAPointerForAPlannedNull)
{
    const sim::PlannedFault fault = simulation.faults().succeedWithNull("IAudioEndpointVolume::GetVolumeStepInfo");
    UINT count = 99;

    EXPECT_EQ(S_OK, control->GetVolumeStepInfo(nullptr, &count));
    EXPECT_EQ(0u, count);
    EXPECT_EQ(1u, fault.fired());
}

TEST_F(SimulatedEndpointVolumeSteps, AreOneWithoutAStepSize)
{
    simulation.change([&](sim::Machine& machine) { machine.endpoint(speakerId)->volume->step = 0.0f; });
    UINT step = 99;
    UINT count = 99;

    EXPECT_EQ(S_OK, control->GetVolumeStepInfo(&step, &count));
    EXPECT_EQ(S_OK, control->VolumeStepDown(nullptr));

    EXPECT_EQ(0u, step);
    EXPECT_EQ(1u, count);
    EXPECT_THAT(levels(), ElementsAre(0.0f, 0.0f));
}

TEST_F(SimulatedEndpointVolumeSteps, RoundToTheNearestOneAndEndWithTheRange)
{
    UINT step = 0;
    UINT count = 0;
    EXPECT_EQ(S_OK, control->SetMasterVolumeLevel(-55.1f, nullptr));
    EXPECT_EQ(S_OK, control->GetVolumeStepInfo(&step, &count));
    EXPECT_EQ(2u, step);
    EXPECT_EQ(S_OK, control->SetMasterVolumeLevel(-54.9f, nullptr));
    EXPECT_EQ(S_OK, control->GetVolumeStepInfo(&step, &count));
    EXPECT_EQ(3u, step);

    EXPECT_EQ(S_OK, control->SetMasterVolumeLevel(-59.0f, nullptr));
    EXPECT_EQ(S_OK, control->VolumeStepDown(nullptr));
    EXPECT_EQ(-60.0f, read(&IAudioEndpointVolume::GetMasterVolumeLevel));
}

TEST_F(SimulatedEndpointVolumeSteps, KeepTheDistanceOfTheChannelsAtTheEndOfTheRange)
{
    EXPECT_EQ(S_OK, control->SetChannelVolumeLevel(0, -10.0f, nullptr));

    EXPECT_EQ(S_OK, control->VolumeStepUp(nullptr));

    EXPECT_THAT(levels(), ElementsAre(-10.0f, 0.0f));
}

TEST_F(SimulatedEndpointVolumeMute, SaysWhetherItChangedAnything)
{
    BOOL muted = TRUE;
    EXPECT_EQ(S_FALSE, control->SetMute(FALSE, nullptr));
    EXPECT_EQ(S_OK, control->SetMute(TRUE, nullptr));
    EXPECT_EQ(S_FALSE, control->SetMute(TRUE, nullptr));
    EXPECT_EQ(S_OK, control->GetMute(&muted));
    EXPECT_EQ(TRUE, muted);
    EXPECT_EQ(E_POINTER, control->GetMute(nullptr));
}

TEST_F(SimulatedEndpointVolumeCallback, HearsEveryChangeWithAllLevelsAndItsContext)
{
    simulation.deliverAtOnce(true);
    bench::VolumeListener listener;
    ASSERT_EQ(S_OK, control->RegisterControlChangeNotify(&listener));

    EXPECT_EQ(S_OK, control->SetChannelVolumeLevelScalar(0, 0.25f, &context));
    EXPECT_EQ(S_OK, control->SetMute(TRUE, nullptr));
    simulation.events().setVolume(speakerId, -30.0f, false);

    EXPECT_THAT(listener.heard(),
                ElementsAre("heard 250 1000 master 1000 context 77", "muted 250 1000 master 1000 context 0",
                            "heard 500 500 master 500 context 0"));
    EXPECT_EQ(S_OK, control->UnregisterControlChangeNotify(&listener));
}

TEST_F(SimulatedEndpointVolumeCallback, HearsNothingWhereNothingChangedOrAfterItHasSignedOff)
{
    simulation.deliverAtOnce(true);
    bench::VolumeListener listener;
    ASSERT_EQ(S_OK, control->RegisterControlChangeNotify(&listener));

    EXPECT_EQ(S_OK, control->SetMasterVolumeLevelScalar(1.0f, &context));
    EXPECT_EQ(S_FALSE, control->SetMute(FALSE, &context));
    EXPECT_EQ(E_INVALIDARG, control->SetMasterVolumeLevelScalar(2.0f, &context));
    EXPECT_EQ(S_OK, volume(earphoneId)->SetMute(TRUE, &context));
    EXPECT_EQ(S_OK, control->UnregisterControlChangeNotify(&listener));
    EXPECT_EQ(S_OK, control->SetMute(TRUE, &context));

    EXPECT_THAT(listener.heard(), ElementsAre());
    EXPECT_EQ(1u, listener.references);
}

TEST_F(SimulatedEndpointVolumeCallback, IsCountedForEachRegistration)
{
    bench::VolumeListener listener;
    EXPECT_EQ(S_OK, control->RegisterControlChangeNotify(&listener));
    EXPECT_EQ(S_OK, volume(speakerId)->RegisterControlChangeNotify(&listener));
    EXPECT_EQ(3u, listener.references);

    EXPECT_EQ(S_OK, control->UnregisterControlChangeNotify(&listener));
    EXPECT_EQ(S_OK, control->UnregisterControlChangeNotify(&listener));
    EXPECT_EQ(1u, listener.references);
    EXPECT_EQ(E_NOTFOUND, control->UnregisterControlChangeNotify(&listener));
    EXPECT_EQ(E_POINTER, control->RegisterControlChangeNotify(nullptr));
    EXPECT_EQ(E_POINTER, control->UnregisterControlChangeNotify(nullptr));
}
}
