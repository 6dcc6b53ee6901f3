// The regular controller's questions and setters. Percents have a file of their own.
#include "qor/exception.h"
#include "tests/libSonavit/supportchannels.h"
#include "tests/libSonavit/volumecontroller/supportcontrollers.h"
#include "tests/libSonavit/volumecontroller/supportscriptedvolume.h"

#include <cmath>

using support::RegularController;
using support::RegularControllerTest;
using testing::ElementsAre;
using testing::IsEmpty;

namespace
{
using RegularVolumeControllerObject = RegularControllerTest;
using RegularVolumeControllerReader = RegularControllerTest;
using RegularVolumeControllerMaster = RegularControllerTest;
using RegularVolumeControllerSetter = RegularControllerTest;
}

TEST_F(RegularVolumeControllerObject, TakesReferencesOfItsOwnAndReleasesThemWithoutTraceOrPlatformCall)
{
    start();
    const RegularVolumeController controls = policy();
    {
        const RegularController controller(controls);
        const RegularController copy(controller);

        EXPECT_EQ(3, simulation().census().references("IAudioVolumeLevel"));
        EXPECT_EQ(3, simulation().census().references("IAudioMute"));
        EXPECT_EQ("Front Mic", copy.ownerName().toUtf8());
        EXPECT_EQ(KSNODETYPE_MICROPHONE, copy.ownerType());
    }
    EXPECT_EQ(1, simulation().census().references("IAudioVolumeLevel"));
    EXPECT_EQ(1, simulation().census().references("IAudioMute"));
    EXPECT_THAT(log.records(), IsEmpty());
    EXPECT_THAT(asked(), IsEmpty());
}

TEST_F(RegularVolumeControllerObject, IsReboundByInitializeAndAssignmentWithoutATrace)
{
    start();
    RegularController controller((RegularVolumeController()));

    controller.initialize(policy());
    EXPECT_TRUE(controller.hasVolumeControl());
    controller = RegularController((RegularVolumeController()));
    EXPECT_FALSE(controller.hasVolumeControl());

    EXPECT_EQ(0, simulation().census().references());
    EXPECT_THAT(log.records(), IsEmpty());
}

TEST_F(RegularVolumeControllerObject, HasTheControlsThatItsPolicyHolds)
{
    start();
    RegularVolumeController withoutMute = policy();
    withoutMute.mute = nullptr;
    RegularVolumeController withoutLevel = policy();
    withoutLevel.volumeLevel = nullptr;

    EXPECT_TRUE(RegularController(policy()).hasVolumeControl());
    EXPECT_TRUE(RegularController(policy()).hasMuteControl());
    EXPECT_TRUE(RegularController(withoutMute).hasVolumeControl());
    EXPECT_FALSE(RegularController(withoutMute).hasMuteControl());
    EXPECT_FALSE(RegularController(withoutLevel).hasVolumeControl());
    EXPECT_TRUE(RegularController(withoutLevel).hasMuteControl());
    EXPECT_THAT(log.records(), IsEmpty());
}

TEST_F(RegularVolumeControllerObject, CannotNotifyAndTakesNoReferenceInSilence)
{
    start();
    const COMPtr<VolumeChangeNotification>::pointer notification(new VolumeChangeNotification);
    RegularController controller(policy());

    const bool result = controller.registerVolumeChangeNotification(notification);

    EXPECT_FALSE(result);
    EXPECT_EQ(1, notification->m_referenceCount);
    EXPECT_EQ(nullptr, controller.m_notification.get());
    EXPECT_THAT(log.records(), IsEmpty());
    EXPECT_THAT(asked(), IsEmpty());
}

TEST_F(RegularVolumeControllerReader, AnswersTheNumberOfChannelsWithoutATrace)
{
    start();
    const RegularController controller(policy());

    EXPECT_EQ(2u, controller.numChannel());

    EXPECT_THAT(asked(), ElementsAre("IAudioVolumeLevel::GetChannelCount()"));
    EXPECT_THAT(log.records(), IsEmpty());
}

TEST_F(RegularVolumeControllerReader, AnswersTheDecibelsOfAChannel)
{
    start();
    setChannels({{-96.0f, 0.0f, 1.5f, -3.0f}, {-96.0f, 0.0f, 1.5f, -40.5f}});
    const RegularController controller(policy());

    EXPECT_EQ(-40.5f, controller.volumeLevelDecibel(1));

    EXPECT_THAT(asked(), ElementsAre("IAudioVolumeLevel::GetLevel(1)"));
    EXPECT_THAT(log.entered(channels::volumeController), ElementsAre("VolumeController::volumeLevelDecibel"));
}

TEST_F(RegularVolumeControllerReader, AnswersTheRangeOfAChannelUnderTheLabelOfASetter)
{
    start();
    setChannels({{-96.0f, 0.0f, 1.5f, 0.0f}, {-34.5f, 12.0f, 0.75f, 0.0f}});
    const RegularController controller(policy());
    VolumeControllerInterface::DbVolumeRange range = {};

    const bool result = controller.volumeRangeDecibel(1, range);

    EXPECT_TRUE(result);
    EXPECT_EQ(-34.5f, range.minLevel);
    EXPECT_EQ(12.0f, range.maxLevel);
    EXPECT_EQ(0.75f, range.stepping);
    EXPECT_THAT(asked(), ElementsAre("IAudioVolumeLevel::GetLevelRange(1)"));
    EXPECT_THAT(log.entered(channels::volumeController), ElementsAre("VolumeController::setVolumeLevelDecibel"));
}

TEST_F(RegularVolumeControllerReader, RefusesTheRangeThatCannotBeReadAndLeavesItAlone)
{
    start();
    const RegularController controller(policy());
    VolumeControllerInterface::DbVolumeRange range = {1.0f, 2.0f, 3.0f};

    const bool result = controller.volumeRangeDecibel(2, range);

    EXPECT_TRUE(FAILED(simulation().journal().of("IAudioVolumeLevel::GetLevelRange")[0].result));
    EXPECT_FALSE(result);
    EXPECT_EQ(1.0f, range.minLevel);
    EXPECT_EQ(2.0f, range.maxLevel);
    EXPECT_EQ(3.0f, range.stepping);
}

TEST_F(RegularVolumeControllerReader, AnswersWhetherThePartIsMuted)
{
    start();
    RegularController controller(policy());

    EXPECT_FALSE(controller.isMuted());
    controller.setMute(true);
    EXPECT_TRUE(controller.isMuted());

    EXPECT_THAT(asked(), ElementsAre("IAudioMute::GetMute()", "IAudioMute::SetMute(1, null)", "IAudioMute::GetMute()"));
    EXPECT_THAT(log.entered(channels::volumeController),
                ElementsAre("VolumeController::isMuted", "VolumeController::setMute", "VolumeController::isMuted"));
}

TEST_F(RegularVolumeControllerReader, TakesNothingButOneForMuted)
{
    support::ScriptedMute platform;
    RegularVolumeController scripted;
    scripted.mute = platform.handle();
    const RegularController controller(scripted);

    for (const BOOL state : {0, 1, 2, -1})
    {
        platform.muted = state;
        EXPECT_EQ(state == 1, controller.isMuted()) << state;
    }
}

TEST_F(RegularVolumeControllerReader, AnswersTheStartValuesInSilenceWhenThePlatformFails)
{
    start();
    const sim::PlannedFault fault = simulation().faults().fail("IAudioMute::GetMute");
    simulation().faults().fail("IAudioVolumeLevel::GetChannelCount");
    simulation().faults().fail("IAudioVolumeLevel::GetLevel");
    const RegularController controller(policy());

    EXPECT_EQ(0u, controller.numChannel());
    EXPECT_EQ(0.0f, controller.volumeLevelDecibel(0));
    EXPECT_TRUE(controller.isMuted());

    EXPECT_EQ(1u, fault.fired());
    EXPECT_THAT(simulation().faults().unmet(), IsEmpty());
    EXPECT_THAT(log.texts(), IsEmpty());
}

TEST_F(RegularVolumeControllerReader, AnswersWhatThePlatformStoredAlongWithAFailure)
{
    support::ScriptedVolumeLevel level;
    level.result = E_FAIL;
    level.channels = 1;
    level.minimum = -20.0f;
    level.level = -5.0f;
    support::ScriptedMute mute;
    mute.result = E_FAIL;
    RegularVolumeController scripted;
    scripted.volumeLevel = level.handle();
    scripted.mute = mute.handle();
    const RegularController controller(scripted);

    EXPECT_EQ(1u, controller.numChannel());
    EXPECT_EQ(-5.0f, controller.volumeLevelDecibel(0));
    EXPECT_EQ(75u, controller.volumeLevelPercent(0));
    EXPECT_EQ(-5.0f, controller.masterVolumeLevelDecibel());
    EXPECT_EQ(125u, controller.masterVolumeLevelPercent());
    EXPECT_FALSE(controller.isMuted());
}

TEST_F(RegularVolumeControllerMaster, IsTheMeanOfTheChannels)
{
    start();
    setChannels({{-40.0f, 0.0f, 1.0f, -30.0f}, {-40.0f, 0.0f, 1.0f, -10.0f}});
    const RegularController controller(policy());

    EXPECT_EQ(-20.0f, controller.masterVolumeLevelDecibel());

    EXPECT_THAT(log.entered(channels::volumeController),
                ElementsAre("VolumeController::masterVolumeLevelDecibel", "VolumeController::volumeLevelDecibel",
                            "VolumeController::volumeLevelDecibel"));
}

TEST_F(RegularVolumeControllerMaster, AsksForTheNumberOfChannelsOnEachPassAndOnceMoreForTheMean)
{
    start();
    const RegularController controller(policy());

    controller.masterVolumeLevelDecibel();

    EXPECT_THAT(asked(), ElementsAre("IAudioVolumeLevel::GetChannelCount()", "IAudioVolumeLevel::GetLevel(0)",
                                     "IAudioVolumeLevel::GetChannelCount()", "IAudioVolumeLevel::GetLevel(1)",
                                     "IAudioVolumeLevel::GetChannelCount()", "IAudioVolumeLevel::GetChannelCount()"));
}

TEST_F(RegularVolumeControllerMaster, FollowsANumberOfChannelsThatChangesOnTheWay)
{
    start();
    const sim::PlannedFault fault = simulation().faults().fail("IAudioVolumeLevel::GetChannelCount").at(2);
    const RegularController controller(policy());

    const float master = controller.masterVolumeLevelDecibel();

    EXPECT_EQ(1u, fault.fired());
    EXPECT_EQ(-24.0f, master) << "one level of two channels";
}

TEST_F(RegularVolumeControllerMaster, IsSummedInSinglePrecision)
{
    start();
    setChannels({{0.0f, 0.0f, 1.0f, 16777216.0f}, {0.0f, 0.0f, 1.0f, 1.0f}, {0.0f, 0.0f, 1.0f, 1.0f}});
    const RegularController controller(policy());

    EXPECT_EQ(16777216.0f / 3.0f, controller.masterVolumeLevelDecibel());
}

TEST_F(RegularVolumeControllerMaster, IsNotANumberWithoutChannels)
{
    start();
    setChannels({});
    const RegularController controller(policy());

    EXPECT_TRUE(std::isnan(controller.masterVolumeLevelDecibel()));
    EXPECT_THAT(log.texts(), IsEmpty());
}

TEST_F(RegularVolumeControllerSetter, HandsDecibelsOnToTheChannelWithANullContext)
{
    start();
    RegularController controller(policy());

    const bool result = controller.setVolumeLevelDecibel(1, -10.7f);

    EXPECT_TRUE(result);
    EXPECT_THAT(asked(), ElementsAre("IAudioVolumeLevel::SetLevel(1, -10.7, null)"));
    EXPECT_THAT(levels(), ElementsAre(-48.0f, -10.5f)); // the nearest step of the hardware
    EXPECT_THAT(log.entered(channels::volumeController), ElementsAre("VolumeController::setVolumeLevelDecibel"));
}

TEST_F(RegularVolumeControllerSetter, SetsAllChannelsAlikeForTheMasterInDecibels)
{
    start();
    RegularController controller(policy());

    const bool result = controller.setMasterVolumeLevelDecibel(-6.0f);

    EXPECT_TRUE(result);
    EXPECT_THAT(asked(), ElementsAre("IAudioVolumeLevel::SetLevelUniform(-6, null)"));
    EXPECT_THAT(levels(), ElementsAre(-6.0f, -6.0f));
    EXPECT_THAT(log.entered(channels::volumeController), ElementsAre("VolumeController::setMasterVolumeLevelDecibel"));
}

TEST_F(RegularVolumeControllerSetter, CannotSetTheMasterInPercentAndSaysSoInSilence)
{
    start();
    RegularController controller(policy());

    const bool result = controller.setMasterVolumeLevelPercent(50);

    EXPECT_FALSE(result);
    EXPECT_THAT(levels(), ElementsAre(-48.0f, -48.0f));
    EXPECT_THAT(asked(), IsEmpty());
    EXPECT_THAT(log.records(), IsEmpty());
}

TEST_F(RegularVolumeControllerSetter, HandsTheMuteOnAsOneOrNothingWithANullContext)
{
    start();
    RegularController controller(policy());

    EXPECT_TRUE(controller.setMute(true));
    EXPECT_TRUE(controller.setMute(false));

    EXPECT_THAT(asked(), ElementsAre("IAudioMute::SetMute(1, null)", "IAudioMute::SetMute(0, null)"));
}

TEST_F(RegularVolumeControllerSetter, IsRefusedInSilenceWhenThePlatformFails)
{
    start();
    const sim::PlannedFault fault = simulation().faults().fail("IAudioVolumeLevel::SetLevel");
    simulation().faults().fail("IAudioVolumeLevel::SetLevelUniform");
    simulation().faults().fail("IAudioMute::SetMute");
    RegularController controller(policy());

    EXPECT_FALSE(controller.setVolumeLevelDecibel(0, -6.0f));
    EXPECT_FALSE(controller.setVolumeLevelPercent(0, 50));
    EXPECT_FALSE(controller.setMasterVolumeLevelDecibel(-6.0f));
    EXPECT_FALSE(controller.setMute(true));

    EXPECT_EQ(2u, fault.fired());
    EXPECT_THAT(simulation().faults().unmet(), IsEmpty());
    EXPECT_THAT(log.texts(), IsEmpty());
}
