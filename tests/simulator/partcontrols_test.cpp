#include "tests/simulator/bench.h"

#include <limits>

namespace
{
using bench::Held;
using testing::ElementsAre;

template<class I>
const IID& idOf()
{
    return sim::InterfaceTraits<I>::iid();
}

const GUID context = {77, 0, 0, {0, 0, 0, 0, 0, 0, 0, 0}};

class SimulatedPartControl : public bench::SimulationTest
{
protected:
    Held<IAudioVolumeLevel> volume{simulation.volumeLevel(volumeId)};
    Held<IAudioMute> mute{simulation.mute(muteId)};
    Held<IAudioInputSelector> selector{simulation.inputSelector(selectorId)};

    float levelOf(UINT channel)
    {
        float level = 99.0f;
        EXPECT_EQ(S_OK, volume->GetLevel(channel, &level));
        return level;
    }
};

using SimulatedVolumeLevel = SimulatedPartControl;
using SimulatedMute = SimulatedPartControl;
using SimulatedInputSelector = SimulatedPartControl;
using SimulatedControlCallback = SimulatedPartControl;

class SimulatedFurtherControl : public SimulatedPartControl
{
protected:
    SimulatedFurtherControl()
    {
        simulation.change(
            [&](sim::Machine& machine) {
                machine.part(volumeId)->furtherControls = {{gain, "Automatic Gain"}, {idOf<IAudioMute>(), {}}};
            });
    }

    Held<IControlInterface> control(UINT index)
    {
        Held<IControlInterface> result;
        EXPECT_EQ(S_OK, node->GetControlInterface(index, result.put()));
        return result;
    }

    const GUID gain = {0x85401FD4, 0x6DE4, 0x4B9D, {0x98, 0x69, 0x2D, 0x67, 0x53, 0xA8, 0x2F, 0x3C}};
    Held<IPart> node = part(volumeId);
};

TEST_F(SimulatedFurtherControl, IsListedAfterTheOthersWithItsNameAndInterface)
{
    UINT count = 0;
    EXPECT_EQ(S_OK, node->GetControlInterfaceCount(&count));
    EXPECT_EQ(3u, count);
    Held<IControlInterface> second = control(1);
    GUID iid = {};
    LPWSTR name = nullptr;
    EXPECT_EQ(S_OK, second->GetIID(&iid));
    EXPECT_EQ(S_OK, second->GetName(&name));
    EXPECT_TRUE(IsEqualGUID(gain, iid));
    EXPECT_EQ("Automatic Gain", sim::utf8(name));
    CoTaskMemFree(name);

    EXPECT_EQ(S_OK, control(2)->GetName(&name));

    EXPECT_EQ(nullptr, name);
    Held<IControlInterface> none;
    EXPECT_EQ(E_INVALIDARG, node->GetControlInterface(3, none.put()));
}

TEST_F(SimulatedFurtherControl, CannotBeActivatedOrListenedToEvenIfItsInterfaceIsKnown)
{
    bench::ControlListener listener;
    for (const GUID& iid : {gain, idOf<IAudioMute>()})
    {
        void* object = this;
        EXPECT_EQ(E_NOINTERFACE, node->Activate(CLSCTX_INPROC_SERVER, iid, &object));
        EXPECT_EQ(nullptr, object);
        EXPECT_EQ(E_NOINTERFACE, node->RegisterControlChangeCallback(iid, &listener));
    }
}

TEST_F(SimulatedFurtherControl, LeavesTheControlsOfTheMachineUsable)
{
    Held<IAudioVolumeLevel> level;

    EXPECT_EQ(S_OK, node->Activate(CLSCTX_INPROC_SERVER, idOf<IAudioVolumeLevel>(), level.putVoid()));
}

TEST_F(SimulatedVolumeLevel, TellsChannelsRangeAndLevel)
{
    UINT channels = 0;
    float minimum = 0.0f;
    float maximum = 1.0f;
    float step = 0.0f;
    EXPECT_EQ(S_OK, volume->GetChannelCount(&channels));
    EXPECT_EQ(S_OK, volume->GetLevelRange(1, &minimum, &maximum, &step));
    EXPECT_EQ(2u, channels);
    EXPECT_EQ(-96.0f, minimum);
    EXPECT_EQ(0.0f, maximum);
    EXPECT_EQ(1.5f, step);
    EXPECT_EQ(-30.0f, levelOf(0));
}

TEST_F(SimulatedVolumeLevel, RefusesAChannelThatDoesNotExistAndLeavesTheAnswerAlone)
{
    float level = 99.0f;
    EXPECT_EQ(E_INVALIDARG, volume->GetLevel(2, &level));
    EXPECT_EQ(99.0f, level);
    EXPECT_EQ(E_INVALIDARG, volume->GetLevelRange(2, &level, &level, &level));
    EXPECT_EQ(E_INVALIDARG, volume->SetLevel(2, -1.0f, nullptr));
    EXPECT_EQ(E_POINTER, volume->GetLevel(0, nullptr));
}

TEST_F(SimulatedVolumeLevel, SetsOneChannelOrAllOfThem)
{
    EXPECT_EQ(S_OK, volume->SetLevel(1, -12.0f, nullptr));
    EXPECT_EQ(-30.0f, levelOf(0));
    EXPECT_EQ(-12.0f, levelOf(1));

    EXPECT_EQ(S_OK, volume->SetLevelUniform(-6.0f, nullptr));
    EXPECT_EQ(-6.0f, levelOf(0));
    EXPECT_EQ(-6.0f, levelOf(1));

    float levels[] = {-1.5f, -3.0f};
    EXPECT_EQ(S_OK, volume->SetLevelAllChannels(levels, 2, nullptr));
    EXPECT_EQ(-1.5f, levelOf(0));
    EXPECT_EQ(-3.0f, levelOf(1));
    EXPECT_EQ(E_INVALIDARG, volume->SetLevelAllChannels(levels, 1, nullptr));
    EXPECT_EQ(E_POINTER, volume->SetLevelAllChannels(nullptr, 2, nullptr));
}

TEST_F(SimulatedVolumeLevel, BringsALevelBeyondTheRangeToItsEnd)
{
    EXPECT_EQ(S_OK, volume->SetLevel(0, 20.0f, nullptr));
    EXPECT_EQ(S_OK, volume->SetLevel(1, -200.0f, nullptr));

    EXPECT_EQ(0.0f, levelOf(0));
    EXPECT_EQ(-96.0f, levelOf(1));
}

// Microsoft's documentation of IPerChannelDbLevel::SetLevel: a level that is no step becomes the nearest step, and
// GetLevel returns that step.
TEST_F(SimulatedVolumeLevel, BringsALevelBetweenTwoStepsToTheNearerOne)
{
    const auto set = [&](float level)
    {
        EXPECT_EQ(S_OK, volume->SetLevel(0, level, nullptr));
        return levelOf(0);
    };
    EXPECT_EQ(-12.0f, set(-12.5f));
    EXPECT_EQ(-13.5f, set(-13.0f));
    EXPECT_EQ(-96.0f, set(-95.5f));

    EXPECT_EQ(S_OK, volume->SetLevelUniform(-10.7f, nullptr));
    EXPECT_EQ(-10.5f, levelOf(0));
    EXPECT_EQ(-10.5f, levelOf(1));

    float levels[] = {-1.0f, -2.5f};
    EXPECT_EQ(S_OK, volume->SetLevelAllChannels(levels, 2, nullptr));
    EXPECT_EQ(-1.5f, levelOf(0));
    EXPECT_EQ(-3.0f, levelOf(1));
}

TEST_F(SimulatedVolumeLevel, ReachesAMaximumThatIsNoStep)
{
    simulation.change(
        [&](sim::Machine& machine)
        {
            for (sim::ChannelLevel& channel : machine.part(volumeId)->volume->channels)
                channel = {-10.0f, 0.0f, 4.0f, -10.0f};
        });
    const auto set = [&](float level)
    {
        EXPECT_EQ(S_OK, volume->SetLevel(0, level, nullptr));
        return levelOf(0);
    };

    EXPECT_EQ(0.0f, set(0.0f));
    EXPECT_EQ(0.0f, set(5.0f));
    EXPECT_EQ(-2.0f, set(-1.0f));
    EXPECT_EQ(-6.0f, set(-5.0f));
}

TEST_F(SimulatedVolumeLevel, RefusesALevelThatIsNoNumber)
{
    const float nothing = std::numeric_limits<float>::quiet_NaN();
    float levels[] = {-1.0f, nothing};

    EXPECT_EQ(E_INVALIDARG, volume->SetLevel(0, nothing, nullptr));
    EXPECT_EQ(E_INVALIDARG, volume->SetLevelUniform(nothing, nullptr));
    EXPECT_EQ(E_INVALIDARG, volume->SetLevelAllChannels(levels, 2, nullptr));

    EXPECT_EQ(-30.0f, levelOf(0));
    EXPECT_EQ(-30.0f, levelOf(1));
}

TEST_F(SimulatedVolumeLevel, StaysWhereItIsWhenTheRangeHasOneLevelOnly)
{
    simulation.change(
        [&](sim::Machine& machine)
        {
            for (sim::ChannelLevel& channel : machine.part(volumeId)->volume->channels)
                channel = {-12.0f, -12.0f, 0.0f, -12.0f};
        });
    float minimum = 0.0f;
    float maximum = 0.0f;
    float step = 1.0f;

    EXPECT_EQ(S_OK, volume->SetLevel(0, -96.0f, nullptr));
    EXPECT_EQ(S_OK, volume->SetLevel(1, 0.0f, nullptr));

    EXPECT_EQ(-12.0f, levelOf(0));
    EXPECT_EQ(-12.0f, levelOf(1));
    EXPECT_EQ(S_OK, volume->GetLevelRange(0, &minimum, &maximum, &step));
    EXPECT_EQ(-12.0f, minimum);
    EXPECT_EQ(-12.0f, maximum);
    EXPECT_EQ(0.0f, step);
}

TEST_F(SimulatedVolumeLevel, IsOneStateBehindAllItsObjects)
{
    const Held<IAudioVolumeLevel> other(simulation.volumeLevel(volumeId));

    EXPECT_EQ(S_OK, other->SetLevelUniform(-3.0f, nullptr));

    EXPECT_EQ(-3.0f, levelOf(0));
    EXPECT_EQ(-3.0f, simulation.machine().part(volumeId)->volume->channels[1].level);
    EXPECT_NE(nullptr, other.as<IPerChannelDbLevel>().get());
}

TEST_F(SimulatedMute, IsSetAndRead)
{
    BOOL muted = TRUE;
    EXPECT_EQ(S_OK, mute->GetMute(&muted));
    EXPECT_EQ(FALSE, muted);

    EXPECT_EQ(S_OK, mute->SetMute(7, nullptr));

    EXPECT_EQ(S_OK, mute->GetMute(&muted));
    EXPECT_EQ(TRUE, muted);
    EXPECT_TRUE(simulation.machine().part(muteId)->mute->muted);
    EXPECT_EQ(E_POINTER, mute->GetMute(nullptr));
}

TEST_F(SimulatedInputSelector, TakesTheLocalIdOfAnIncomingPart)
{
    const UINT lineIn = simulation.machine().part(lineInJack)->localId;

    EXPECT_EQ(S_OK, selector->SetSelection(lineIn, nullptr));

    UINT selection = 0;
    EXPECT_EQ(S_OK, selector->GetSelection(&selection));
    EXPECT_EQ(lineIn, selection);
}

TEST_F(SimulatedInputSelector, RefusesAPartThatDoesNotLeadIntoIt)
{
    const UINT stranger = simulation.machine().part(volumeId)->localId;

    EXPECT_EQ(E_INVALIDARG, selector->SetSelection(stranger, nullptr));

    UINT selection = 0;
    EXPECT_EQ(S_OK, selector->GetSelection(&selection));
    EXPECT_EQ(1u, selection);
}

TEST_F(SimulatedControlCallback, HearsChangesOfItsControlWithTheirContext)
{
    simulation.deliverAtOnce(true);
    bench::ControlListener listener;
    const Held<IPart> node = part(muteId);
    ASSERT_EQ(S_OK, node->RegisterControlChangeCallback(idOf<IAudioMute>(), &listener));

    EXPECT_EQ(S_OK, mute->SetMute(TRUE, &context));
    EXPECT_EQ(S_OK, mute->SetMute(TRUE, &context)); // no change
    EXPECT_EQ(S_OK, mute->SetMute(FALSE, nullptr));
    EXPECT_EQ(S_OK, node->UnregisterControlChangeCallback(&listener));
    EXPECT_EQ(S_OK, mute->SetMute(TRUE, &context));

    EXPECT_THAT(listener.heard(), ElementsAre("77", "null"));
    EXPECT_EQ(1u, listener.references);
    EXPECT_EQ(E_NOTFOUND, node->UnregisterControlChangeCallback(&listener));
}

TEST_F(SimulatedControlCallback, HearsLevelsAndSelections)
{
    simulation.deliverAtOnce(true);
    bench::ControlListener levels;
    bench::ControlListener selections;
    ASSERT_EQ(S_OK, part(volumeId)->RegisterControlChangeCallback(idOf<IAudioVolumeLevel>(), &levels));
    ASSERT_EQ(S_OK, part(selectorId)->RegisterControlChangeCallback(idOf<IAudioInputSelector>(), &selections));

    EXPECT_EQ(S_OK, volume->SetLevel(0, -31.0f, &context));
    EXPECT_EQ(S_OK, volume->SetLevel(0, -31.0f, &context)); // no change
    EXPECT_EQ(S_OK, selector->SetSelection(simulation.machine().part(lineInJack)->localId, &context));

    EXPECT_THAT(levels.heard(), ElementsAre("77"));
    EXPECT_THAT(selections.heard(), ElementsAre("77"));
    EXPECT_EQ(2, simulation.census().clients.at("IControlChangeNotify"));
    EXPECT_EQ(S_OK, part(volumeId)->UnregisterControlChangeCallback(&levels));
    EXPECT_EQ(S_OK, part(selectorId)->UnregisterControlChangeCallback(&selections));
}

TEST_F(SimulatedControlCallback, HearsEverySetterThatChangesSomething)
{
    simulation.deliverAtOnce(true);
    bench::ControlListener levels;
    bench::ControlListener selections;
    ASSERT_EQ(S_OK, part(volumeId)->RegisterControlChangeCallback(idOf<IAudioVolumeLevel>(), &levels));
    ASSERT_EQ(S_OK, part(selectorId)->RegisterControlChangeCallback(idOf<IAudioInputSelector>(), &selections));
    float both[] = {-1.0f, -2.0f};
    float three[] = {-1.0f, -2.0f, -3.0f};
    const UINT lineIn = simulation.machine().part(lineInJack)->localId;

    EXPECT_EQ(S_OK, volume->SetLevelUniform(-6.0f, nullptr));
    EXPECT_EQ(S_OK, volume->SetLevelUniform(-6.0f, &context)); // no change
    EXPECT_EQ(S_OK, volume->SetLevelAllChannels(both, 2, &context));
    EXPECT_EQ(S_OK, volume->SetLevelAllChannels(both, 2, nullptr)); // no change
    EXPECT_EQ(E_INVALIDARG, volume->SetLevelAllChannels(three, 3, nullptr));
    EXPECT_EQ(S_OK, selector->SetSelection(lineIn, nullptr));
    EXPECT_EQ(S_OK, selector->SetSelection(lineIn, &context)); // no change
    EXPECT_EQ(E_INVALIDARG, selector->SetSelection(0x7777, &context));

    EXPECT_THAT(levels.heard(), ElementsAre("null", "77"));
    EXPECT_THAT(selections.heard(), ElementsAre("null"));
    EXPECT_EQ(S_OK, part(volumeId)->UnregisterControlChangeCallback(&levels));
    EXPECT_EQ(S_OK, part(selectorId)->UnregisterControlChangeCallback(&selections));
}

TEST_F(SimulatedControlCallback, HearsOnlyTheControlThatItIsRegisteredFor)
{
    simulation.deliverAtOnce(true);
    simulation.change([&](sim::Machine& machine) { machine.part(volumeId)->mute = sim::MuteControl(); });
    bench::ControlListener levels;
    bench::ControlListener mutes;
    const Held<IPart> node = part(volumeId);
    const Held<IAudioMute> itsMute(simulation.mute(volumeId));
    ASSERT_EQ(S_OK, node->RegisterControlChangeCallback(idOf<IAudioVolumeLevel>(), &levels));
    ASSERT_EQ(S_OK, node->RegisterControlChangeCallback(idOf<IAudioMute>(), &mutes));

    EXPECT_EQ(S_OK, volume->SetLevel(0, -1.0f, nullptr));
    EXPECT_EQ(S_OK, itsMute->SetMute(TRUE, &context));

    EXPECT_THAT(levels.heard(), ElementsAre("null"));
    EXPECT_THAT(mutes.heard(), ElementsAre("77"));
    EXPECT_EQ(S_OK, node->UnregisterControlChangeCallback(&mutes));
    EXPECT_EQ(E_NOTFOUND, node->UnregisterControlChangeCallback(&mutes));
    EXPECT_EQ(S_OK, node->UnregisterControlChangeCallback(&levels));
    EXPECT_EQ(1u, levels.references);
    EXPECT_EQ(1u, mutes.references);
}

TEST_F(SimulatedControlCallback, IsRefusedForAControlThatThePartHasNot)
{
    bench::ControlListener listener;

    EXPECT_EQ(E_NOINTERFACE, part(muteId)->RegisterControlChangeCallback(idOf<IAudioVolumeLevel>(), &listener));
    EXPECT_EQ(E_POINTER, part(muteId)->RegisterControlChangeCallback(idOf<IAudioMute>(), nullptr));
    EXPECT_EQ(E_POINTER, part(muteId)->UnregisterControlChangeCallback(nullptr));
    EXPECT_EQ(1u, listener.references);
}
}
