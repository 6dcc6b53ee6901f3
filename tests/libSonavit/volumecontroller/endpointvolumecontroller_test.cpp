// The endpoint controller's questions and setters. Percents have a file of their own, and so has the change
// notification.
#include "tests/libSonavit/supportchannels.h"
#include "tests/libSonavit/volumecontroller/supportcontrollers.h"
#include "tests/libSonavit/volumecontroller/supportscriptedvolume.h"

using support::EndpointController;
using support::EndpointControllerTest;
using testing::ElementsAre;
using testing::IsEmpty;

namespace
{
using EndpointVolumeControllerObject = EndpointControllerTest;
using EndpointVolumeControllerReader = EndpointControllerTest;
using EndpointVolumeControllerSetter = EndpointControllerTest;
}

TEST_F(EndpointVolumeControllerObject, TakesAReferenceOfItsOwnAtConstructionWithoutTraceOrPlatformCall)
{
    start();
    const EndpointVolumeController speakers = policy(speaker);
    {
        const EndpointController controller(speakers);

        EXPECT_EQ(2, references(speaker));
        EXPECT_EQ(nullptr, controller.m_notification.get());
    }
    EXPECT_EQ(1, references(speaker));
    EXPECT_THAT(log.records(), IsEmpty());
    EXPECT_THAT(asked(), IsEmpty());
}

TEST_F(EndpointVolumeControllerObject, ReportsNameAndTypeOfItsOwnerWithoutATrace)
{
    start();
    const EndpointController controller(policy(speaker));

    EXPECT_EQ("Analog Out", controller.ownerName().toUtf8());
    EXPECT_EQ(KSNODETYPE_SPEAKER, controller.ownerType());
    EXPECT_EQ(&controller.m_policy.ownerName, &controller.ownerName());
    EXPECT_EQ(&controller.m_policy.ownerType, &controller.ownerType());
    EXPECT_THAT(log.records(), IsEmpty());
}

TEST_F(EndpointVolumeControllerObject, ClaimsBothControlsWithoutATrace)
{
    start();
    const EndpointController controller(policy(speaker));

    EXPECT_TRUE(controller.hasVolumeControl());
    EXPECT_TRUE(controller.hasMuteControl());
    EXPECT_THAT(log.records(), IsEmpty());
    EXPECT_THAT(asked(), IsEmpty());
}

TEST_F(EndpointVolumeControllerObject, ClaimsBothControlsWithoutAnInterface)
{
    const EndpointController controller((EndpointVolumeController()));

    EXPECT_TRUE(controller.hasVolumeControl());
    EXPECT_TRUE(controller.hasMuteControl());
}

TEST_F(EndpointVolumeControllerObject, CopiesHoldAReferenceOfTheirOwnWithoutATrace)
{
    start();
    const EndpointController controller(policy(speaker));
    {
        const EndpointController copy(controller);

        EXPECT_EQ(2, references(speaker));
        EXPECT_EQ("Analog Out", copy.ownerName().toUtf8());
        EXPECT_EQ(KSNODETYPE_SPEAKER, copy.ownerType());
    }
    EXPECT_EQ(1, references(speaker));
    EXPECT_THAT(log.records(), IsEmpty());
}

TEST_F(EndpointVolumeControllerObject, AssignmentReplacesThePolicyWithoutATrace)
{
    start();
    const EndpointController source(policy(headphones));
    EndpointController controller((EndpointVolumeController()));
    controller = EndpointController(policy(speaker));

    EndpointController& result = controller = source;

    EXPECT_EQ(&controller, &result);
    EXPECT_EQ(0, references(speaker));
    EXPECT_EQ(2, references(headphones));
    EXPECT_THAT(log.records(), IsEmpty());
}

TEST_F(EndpointVolumeControllerObject, SelfAssignmentTouchesNoReference)
{
    start();
    EndpointController controller(policy(speaker));
    const EndpointController& same = controller;
    simulation().journal().recordReferences(true);
    asked();

    controller = same;

    EXPECT_THAT(asked(), IsEmpty());
    EXPECT_EQ(1, references(speaker));
}

TEST_F(EndpointVolumeControllerObject, InitializeRebindsItWithoutATrace)
{
    start();
    EndpointController controller(policy(speaker));
    EndpointVolumeController other = policy(headphones);
    other.ownerName = "Headset";

    controller.initialize(other);

    EXPECT_EQ(0, references(speaker));
    EXPECT_EQ(2, references(headphones));
    EXPECT_EQ("Headset", controller.ownerName().toUtf8());
    EXPECT_THAT(log.records(), IsEmpty());
    controller.setMute(true);
    EXPECT_TRUE(simulation().machine().endpoint(headphones.id())->volume->muted);
}

TEST_F(EndpointVolumeControllerReader, AnswersTheNumberOfChannelsWithoutATrace)
{
    start();
    const EndpointController controller(policy(speaker));

    EXPECT_EQ(2u, controller.numChannel());

    EXPECT_THAT(asked(), ElementsAre("IAudioEndpointVolume::GetChannelCount()"));
    EXPECT_THAT(log.records(), IsEmpty());
}

TEST_F(EndpointVolumeControllerReader, AnswersTheDecibelsOfAChannelAndOfTheMaster)
{
    speaker.endpoint().volume->channels = {-12.5f, -30.0f};
    start();
    const EndpointController controller(policy(speaker));

    EXPECT_EQ(-30.0f, controller.volumeLevelDecibel(1));
    EXPECT_EQ(-12.5f, controller.masterVolumeLevelDecibel());

    EXPECT_THAT(asked(), ElementsAre("IAudioEndpointVolume::GetChannelVolumeLevel(1)",
                                     "IAudioEndpointVolume::GetMasterVolumeLevel()"));
    EXPECT_THAT(log.entered(channels::volumeController),
                ElementsAre("VolumeController::volumeLevelDecibel", "VolumeController::masterVolumeLevelDecibel"));
    EXPECT_THAT(log.texts(), IsEmpty());
}

TEST_F(EndpointVolumeControllerReader, AnswersOneRangeForAllChannelsUnderTheLabelOfASetter)
{
    start();
    const EndpointController controller(policy(speaker));
    VolumeControllerInterface::DbVolumeRange range = {};

    const bool result = controller.volumeRangeDecibel(99, range);

    EXPECT_TRUE(result);
    EXPECT_EQ(-65.25f, range.minLevel);
    EXPECT_EQ(0.0f, range.maxLevel);
    EXPECT_EQ(0.75f, range.stepping);
    EXPECT_THAT(asked(), ElementsAre("IAudioEndpointVolume::GetVolumeRange()"));
    EXPECT_THAT(log.entered(), ElementsAre("VolumeController::setVolumeLevelDecibel"));
}

TEST_F(EndpointVolumeControllerReader, AnswersWhetherTheEndpointIsMuted)
{
    headphones.muted();
    start();

    EXPECT_FALSE(EndpointController(policy(speaker)).isMuted());
    EXPECT_TRUE(EndpointController(policy(headphones)).isMuted());

    EXPECT_THAT(asked(), ElementsAre("IAudioEndpointVolume::GetMute()", "IAudioEndpointVolume::GetMute()"));
    EXPECT_THAT(log.entered(channels::volumeController),
                ElementsAre("VolumeController::isMuted", "VolumeController::isMuted"));
}

TEST_F(EndpointVolumeControllerReader, TakesNothingButOneForMuted)
{
    support::ScriptedEndpointVolume platform;
    EndpointVolumeController scripted;
    scripted.endpointVolume = platform.handle();
    const EndpointController controller(scripted);

    for (const BOOL state : {0, 1, 2, -1})
    {
        platform.muted = state;
        EXPECT_EQ(state == 1, controller.isMuted()) << state;
    }
}

TEST_F(EndpointVolumeControllerReader, AnswersTheStartValuesInSilenceWhenThePlatformFails)
{
    start();
    const sim::PlannedFault fault = simulation().faults().fail("IAudioEndpointVolume::GetChannelCount");
    for (const char* const operation : {"GetChannelVolumeLevel", "GetChannelVolumeLevelScalar", "GetMasterVolumeLevel",
                                        "GetMasterVolumeLevelScalar", "GetMute"})
        simulation().faults().fail(std::string("IAudioEndpointVolume::") + operation);
    const EndpointController controller(policy(speaker));

    EXPECT_EQ(0u, controller.numChannel());
    EXPECT_EQ(0.0f, controller.volumeLevelDecibel(0));
    EXPECT_EQ(0u, controller.volumeLevelPercent(0));
    EXPECT_EQ(0.0f, controller.masterVolumeLevelDecibel());
    EXPECT_EQ(0u, controller.masterVolumeLevelPercent());
    EXPECT_TRUE(controller.isMuted());

    EXPECT_EQ(1u, fault.fired());
    EXPECT_THAT(simulation().faults().unmet(), IsEmpty());
    EXPECT_THAT(log.texts(), IsEmpty());
}

TEST_F(EndpointVolumeControllerReader, AnswersWhatThePlatformStoredAlongWithAFailure)
{
    support::ScriptedEndpointVolume platform;
    platform.result = E_FAIL;
    platform.channels = 6;
    platform.level = -3.5f;
    platform.scalar = 0.25f;
    EndpointVolumeController scripted;
    scripted.endpointVolume = platform.handle();
    const EndpointController controller(scripted);

    EXPECT_EQ(6u, controller.numChannel());
    EXPECT_EQ(-3.5f, controller.volumeLevelDecibel(0));
    EXPECT_EQ(25u, controller.volumeLevelPercent(0));
    EXPECT_EQ(-3.5f, controller.masterVolumeLevelDecibel());
    EXPECT_EQ(25u, controller.masterVolumeLevelPercent());
    EXPECT_FALSE(controller.isMuted());
}

TEST_F(EndpointVolumeControllerReader, RefusesTheRangeThatCannotBeReadAndLeavesItAlone)
{
    start();
    const sim::PlannedFault fault = simulation().faults().fail("IAudioEndpointVolume::GetVolumeRange");
    const EndpointController controller(policy(speaker));
    VolumeControllerInterface::DbVolumeRange range = {1.0f, 2.0f, 3.0f};

    const bool result = controller.volumeRangeDecibel(0, range);

    EXPECT_EQ(1u, fault.fired());
    EXPECT_FALSE(result);
    EXPECT_EQ(1.0f, range.minLevel);
    EXPECT_EQ(2.0f, range.maxLevel);
    EXPECT_EQ(3.0f, range.stepping);
    EXPECT_THAT(log.texts(), IsEmpty());
}

TEST_F(EndpointVolumeControllerSetter, HandsEachValueOnWithANullContext)
{
    start();
    EndpointController controller(policy(speaker));

    EXPECT_TRUE(controller.setVolumeLevelDecibel(1, -10.5f));
    EXPECT_TRUE(controller.setMasterVolumeLevelDecibel(-6.0f));
    EXPECT_TRUE(controller.setVolumeLevelPercent(1, 50));
    EXPECT_TRUE(controller.setMasterVolumeLevelPercent(75));
    EXPECT_TRUE(controller.setMute(true));
    EXPECT_TRUE(controller.setMute(false));

    EXPECT_THAT(asked(),
                ElementsAre("IAudioEndpointVolume::SetChannelVolumeLevel(1, -10.5, null)",
                            "IAudioEndpointVolume::SetMasterVolumeLevel(-6, null)",
                            "IAudioEndpointVolume::SetChannelVolumeLevelScalar(1, 0.5, null)",
                            "IAudioEndpointVolume::SetMasterVolumeLevelScalar(0.75, null)",
                            "IAudioEndpointVolume::SetMute(1, null)", "IAudioEndpointVolume::SetMute(0, null)"));
    EXPECT_THAT(log.entered(channels::volumeController),
                ElementsAre("VolumeController::setVolumeLevelDecibel", "VolumeController::setMasterVolumeLevelDecibel",
                            "VolumeController::setVolumeLevelPercent", "VolumeController::setMasterVolumeLevelPercent",
                            "VolumeController::setMute", "VolumeController::setMute"));
    EXPECT_THAT(log.texts(), IsEmpty());
}

TEST_F(EndpointVolumeControllerSetter, IsRefusedInSilenceWhenThePlatformFails)
{
    start();
    const sim::PlannedFault fault = simulation().faults().fail("IAudioEndpointVolume::SetMute");
    for (const char* const operation :
         {"SetChannelVolumeLevel", "SetChannelVolumeLevelScalar", "SetMasterVolumeLevel", "SetMasterVolumeLevelScalar"})
        simulation().faults().fail(std::string("IAudioEndpointVolume::") + operation);
    EndpointController controller(policy(speaker));

    EXPECT_FALSE(controller.setVolumeLevelDecibel(0, -6.0f));
    EXPECT_FALSE(controller.setVolumeLevelPercent(0, 50));
    EXPECT_FALSE(controller.setMasterVolumeLevelDecibel(-6.0f));
    EXPECT_FALSE(controller.setMasterVolumeLevelPercent(50));
    EXPECT_FALSE(controller.setMute(true));

    EXPECT_EQ(1u, fault.fired());
    EXPECT_THAT(simulation().faults().unmet(), IsEmpty());
    EXPECT_THAT(log.texts(), IsEmpty());
}

TEST_F(EndpointVolumeControllerSetter, SucceedsWhenThePlatformSaysThatNothingChanged)
{
    start();
    EndpointController controller(policy(speaker));

    const bool result = controller.setMute(false);

    EXPECT_EQ(S_FALSE, simulation().journal().of("IAudioEndpointVolume::SetMute")[0].result);
    EXPECT_TRUE(result);
}
