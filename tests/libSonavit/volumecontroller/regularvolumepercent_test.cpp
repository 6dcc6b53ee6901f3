// Percents of a regular controller, which it computes itself from decibels and their range.
#include "qor/exception.h"
#include "tests/libSonavit/supportchannels.h"
#include "tests/libSonavit/supportlogline.h"
#include "tests/libSonavit/volumecontroller/supportcontrollers.h"

#include <limits>

using support::RegularController;
using support::RegularControllerTest;
using testing::ElementsAre;
using testing::IsEmpty;

namespace
{
constexpr float infinity = std::numeric_limits<float>::infinity();
constexpr float notANumber = std::numeric_limits<float>::quiet_NaN();

/// The expected percents of one channel with this range and level, and of its master.
struct LevelAsPercent
{
    float minimum;
    float maximum;
    float level;
    unsigned int percent;
    unsigned int masterPercent;
};

class RegularVolumeControllerPercent : public RegularControllerTest
{
protected:
    void expectPercents(const std::vector<LevelAsPercent>& table)
    {
        start();
        const RegularController controller(policy());
        for (const LevelAsPercent& row : table)
        {
            setChannels({{row.minimum, row.maximum, 1.0f, row.level}});
            EXPECT_EQ(row.percent, controller.volumeLevelPercent(0))
                << "channel at " << row.level << " of " << row.minimum << " to " << row.maximum;
            EXPECT_EQ(row.masterPercent, controller.masterVolumeLevelPercent())
                << "master at " << row.level << " of " << row.minimum << " to " << row.maximum;
        }
    }
};

using RegularVolumeControllerMasterPercent = RegularVolumeControllerPercent;
using RegularVolumeControllerSetPercent = RegularVolumeControllerPercent;

/// A controller that overrides the readers of one channel.
class OwnAnswers final : public RegularController
{
public:
    using RegularController::RegularController;

    unsigned int numChannel() const override { return 1; }
    float volumeLevelDecibel(unsigned int) const override { return 30.0f; }

    bool volumeRangeDecibel(unsigned int, DbVolumeRange& range) const override
    {
        range = {0.0f, 40.0f, 1.0f};
        return false;
    }
};

class OwnMaster final : public RegularController
{
public:
    using RegularController::RegularController;

    float masterVolumeLevelDecibel() const override { return -24.0f; }
};
}

TEST_F(RegularVolumeControllerPercent, RunFromNothingToOneHundredOnAChannelAndHalfAHundredHigherOnTheMaster)
{
    expectPercents({{-96.0f, 0.0f, -96.0f, 0, 50},
                    {-96.0f, 0.0f, -48.0f, 50, 100},
                    {-96.0f, 0.0f, 0.0f, 100, 150},
                    {-40.0f, 0.0f, -20.0f, 50, 100},
                    {-34.5f, 12.0f, 12.0f, 100, 150}});
}

TEST_F(RegularVolumeControllerPercent, OfTwoChannelsInTheMiddleAreFiftyEachAndOneHundredOnTheMaster)
{
    start(); // both channels from -96 to 0 decibels
    const RegularController controller(policy());
    ASSERT_THAT(levels(), ElementsAre(-48.0f, -48.0f));

    EXPECT_EQ(2u, controller.numChannel());
    EXPECT_EQ(50u, controller.volumeLevelPercent(0));
    EXPECT_EQ(50u, controller.volumeLevelPercent(1));
    EXPECT_EQ(-48.0f, controller.masterVolumeLevelDecibel());
    EXPECT_EQ(100u, controller.masterVolumeLevelPercent());
}

TEST_F(RegularVolumeControllerPercent, AreRoundedOnAChannelAndTruncatedOnTheMaster)
{
    expectPercents({{0.0f, 200.0f, 0.9f, 0, 50},
                    {0.0f, 200.0f, 1.0f, 1, 50},
                    {0.0f, 200.0f, 1.9f, 1, 50},
                    {0.0f, 200.0f, 199.0f, 100, 149},
                    {0.0f, 200.0f, 198.9f, 99, 149}});
}

TEST_F(RegularVolumeControllerPercent, AreComputedInSinglePrecisionUpToTheChannelsLastStep)
{
    // The master would be 62, 105 and 63 in double precision, in all of it or behind the sum alone. The last row would
    // be 8388610 on the channel if the half were added in single precision.
    expectPercents({{0.0f, 1.0f, 0.13f, 13, 63},
                    {0.0f, 1.0f, 0.55f, 55, 104},
                    {0.0f, 1.0f, 0.14f, 14, 64},
                    {0.0f, 1.0f, 83886.09f, 8388609, 8388659}});
}

TEST_F(RegularVolumeControllerPercent, AreNotClampedToTheRange)
{
    expectPercents({{-96.0f, 0.0f, 48.0f, 150, 200},
                    {-96.0f, 0.0f, -96.4f, 0, 49},
                    {-96.0f, 0.0f, -99.0f, 4294967294u, 46},
                    {-96.0f, 0.0f, -192.0f, 4294967197u, 4294967246u}});
}

TEST_F(RegularVolumeControllerPercent, KeepTheLowBitsOfWhatIsTooLarge)
{
    expectPercents({{0.0f, 1.0f, 5e7f, 705032704u, 705032704u}});
}

TEST_F(RegularVolumeControllerPercent, AreNothingInARangeWithoutWidth)
{
    expectPercents({{-12.0f, -12.0f, -12.0f, 0, 0}, {-12.0f, -12.0f, 0.0f, 0, 0}, {-12.0f, -12.0f, -24.0f, 0, 0}});
}

TEST_F(RegularVolumeControllerPercent, AreNothingForWhatNoIntegerHolds)
{
    expectPercents({{-96.0f, 0.0f, notANumber, 0, 0},
                    {-96.0f, 0.0f, infinity, 0, 0},
                    {-96.0f, 0.0f, -infinity, 0, 0},
                    {notANumber, 0.0f, -6.0f, 0, 0},
                    {-96.0f, notANumber, -6.0f, 0, 0},
                    {0.0f, 1.0f, 1e30f, 0, 0}});
}

TEST_F(RegularVolumeControllerPercent, AreComputedInARangeThatRunsBackwards)
{
    expectPercents({{0.0f, -96.0f, -24.0f, 25, 75}});
}

TEST_F(RegularVolumeControllerPercent, OfAChannelComesFromItsOwnRangeThenItsOwnLevel)
{
    start();
    setChannels({{-96.0f, 0.0f, 1.5f, 0.0f}, {-40.0f, 0.0f, 1.0f, -10.0f}});
    const RegularController controller(policy());

    const unsigned int percent = controller.volumeLevelPercent(1);

    EXPECT_EQ(75u, percent);
    EXPECT_THAT(asked(), ElementsAre("IAudioVolumeLevel::GetLevelRange(1)", "IAudioVolumeLevel::GetLevel(1)"));
    EXPECT_THAT(log.entered(channels::volumeController),
                ElementsAre("VolumeController::volumeLevelPercent", "VolumeController::setVolumeLevelDecibel",
                            "VolumeController::volumeLevelDecibel"));
    EXPECT_THAT(log.texts(), IsEmpty());
}

TEST_F(RegularVolumeControllerPercent, OfAChannelIsNothingWhenItsRangeCannotBeRead)
{
    start();
    const sim::PlannedFault fault = simulation().faults().fail("IAudioVolumeLevel::GetLevelRange");
    const RegularController controller(policy());

    EXPECT_EQ(0u, controller.volumeLevelPercent(0));
    EXPECT_EQ(0u, controller.masterVolumeLevelPercent());

    EXPECT_EQ(2u, fault.fired());
    EXPECT_THAT(log.texts(), IsEmpty());
}

TEST_F(RegularVolumeControllerPercent, OfAChannelIsThatOfNoDecibelsWhenItsLevelCannotBeRead)
{
    start();
    const sim::PlannedFault fault = simulation().faults().fail("IAudioVolumeLevel::GetLevel");
    const RegularController controller(policy());

    EXPECT_EQ(100u, controller.volumeLevelPercent(0));

    EXPECT_EQ(1u, fault.fired());
    EXPECT_THAT(log.texts(), IsEmpty());
}

TEST_F(RegularVolumeControllerPercent, AreComputedFromTheAnswersOfADerivedController)
{
    start();
    const OwnAnswers controller(policy());

    EXPECT_EQ(75u, controller.volumeLevelPercent(0));
    EXPECT_EQ(30.0f, controller.masterVolumeLevelDecibel());
    EXPECT_EQ(125u, controller.masterVolumeLevelPercent());

    EXPECT_THAT(asked(), IsEmpty());
}

TEST_F(RegularVolumeControllerMasterPercent, ComesFromTheMeanAndTheRangeOfTheFirstChannel)
{
    start();
    setChannels({{-40.0f, 0.0f, 1.0f, -30.0f}, {-100.0f, 0.0f, 1.0f, -10.0f}});
    const RegularController controller(policy());

    EXPECT_EQ(100u, controller.masterVolumeLevelPercent());
}

TEST_F(RegularVolumeControllerMasterPercent, AsksForTheNumberOfChannelsThenTheRangeThenTheMean)
{
    start();
    const RegularController controller(policy());

    controller.masterVolumeLevelPercent();

    EXPECT_THAT(asked(), ElementsAre("IAudioVolumeLevel::GetChannelCount()", "IAudioVolumeLevel::GetLevelRange(0)",
                                     "IAudioVolumeLevel::GetChannelCount()", "IAudioVolumeLevel::GetLevel(0)",
                                     "IAudioVolumeLevel::GetChannelCount()", "IAudioVolumeLevel::GetLevel(1)",
                                     "IAudioVolumeLevel::GetChannelCount()", "IAudioVolumeLevel::GetChannelCount()"));
    EXPECT_THAT(log.entered(channels::volumeController),
                ElementsAre("VolumeController::masterVolumeLevelPercent", "VolumeController::setVolumeLevelDecibel",
                            "VolumeController::masterVolumeLevelDecibel", "VolumeController::volumeLevelDecibel",
                            "VolumeController::volumeLevelDecibel"));
}

TEST_F(RegularVolumeControllerMasterPercent, ComesFromTheMasterDecibelsOfADerivedController)
{
    start();
    const OwnMaster controller(policy());

    EXPECT_EQ(125u, controller.masterVolumeLevelPercent());
}

TEST_F(RegularVolumeControllerMasterPercent, AssertsThatThereIsAChannelBeforeItAsksForAnythingElse)
{
    start();
    setChannels({});
    const RegularController controller(policy());

    std::string expression;
    try
    {
        controller.masterVolumeLevelPercent();
    }
    catch (const qor::AssertionFailure& failure)
    {
        expression = failure.expression();
    }

    EXPECT_EQ("numChannel() > 0", expression);
    EXPECT_THAT(asked(), ElementsAre("IAudioVolumeLevel::GetChannelCount()"));
    EXPECT_THAT(log.texts(), IsEmpty());
}

#if !defined(_WIN32) // where the tests run, the sources may have another path
TEST_F(RegularVolumeControllerMasterPercent, AssertsWithTheLineOfTheCheck)
{
    start();
    setChannels({});
    const RegularController controller(policy());

    std::string check;
    try
    {
        controller.masterVolumeLevelPercent();
    }
    catch (const qor::AssertionFailure& failure)
    {
        check = support::sourceLineOf(failure);
    }

    EXPECT_THAT(check, testing::HasSubstr("check(numChannel() > 0,"));
}
#endif

TEST_F(RegularVolumeControllerMasterPercent, AssertsLikewiseWhenTheNumberOfChannelsCannotBeRead)
{
    start();
    const sim::PlannedFault fault = simulation().faults().fail("IAudioVolumeLevel::GetChannelCount");
    const RegularController controller(policy());

    EXPECT_THROW(controller.masterVolumeLevelPercent(), qor::AssertionFailure);

    EXPECT_EQ(1u, fault.fired());
}

TEST_F(RegularVolumeControllerSetPercent, ReadsTheChannelsRangeAndSetsTheLevelWithANullContext)
{
    start();
    RegularController controller(policy());

    const bool result = controller.setVolumeLevelPercent(1, 25);

    EXPECT_TRUE(result);
    EXPECT_THAT(asked(),
                ElementsAre("IAudioVolumeLevel::GetLevelRange(1)", "IAudioVolumeLevel::SetLevel(1, -72, null)"));
    EXPECT_THAT(levels(), ElementsAre(-48.0f, -72.0f));
    EXPECT_THAT(log.entered(channels::volumeController),
                ElementsAre("VolumeController::setVolumeLevelPercent", "VolumeController::setVolumeLevelDecibel"));
}

TEST_F(RegularVolumeControllerSetPercent, HandsTheLevelOnWithoutClampingOrRoundingToAStep)
{
    start();
    RegularController controller(policy());

    for (const unsigned int percent : {0u, 1u, 33u, 50u, 67u, 100u, 150u})
        controller.setVolumeLevelPercent(0, percent);

    std::vector<float> handedOn;
    for (const sim::JournalEntry& entry : simulation().journal().of("IAudioVolumeLevel::SetLevel"))
        handedOn.push_back(std::stof(entry.arguments[1]));
    EXPECT_THAT(handedOn, ElementsAre(-96.0f, -95.04000091552734f, -64.31999969482422f, -48.0f, -31.68000030517578f,
                                      0.0f, 48.0f));
}

TEST_F(RegularVolumeControllerSetPercent, SetsNoDecibelsWhenTheRangeCannotBeRead)
{
    start();
    const sim::PlannedFault fault = simulation().faults().fail("IAudioVolumeLevel::GetLevelRange");
    RegularController controller(policy());

    const bool result = controller.setVolumeLevelPercent(0, 50);

    EXPECT_EQ(1u, fault.fired());
    EXPECT_TRUE(result);
    EXPECT_THAT(levels(), ElementsAre(0.0f, -48.0f));
    EXPECT_THAT(log.texts(), IsEmpty());
}

TEST_F(RegularVolumeControllerSetPercent, TakesTheRangeOfADerivedController)
{
    start();
    OwnAnswers controller(policy());

    controller.setVolumeLevelPercent(0, 25);

    EXPECT_THAT(asked(), ElementsAre("IAudioVolumeLevel::SetLevel(0, 10, null)"));
}
