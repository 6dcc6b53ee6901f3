// Percents of an endpoint controller, which are converted from and to the platform's scalars.
#include "tests/libSonavit/volumecontroller/supportcontrollers.h"

#include <limits>

using support::EndpointController;
using support::EndpointControllerTest;
using testing::ElementsAre;
using testing::IsEmpty;

namespace
{
constexpr float infinity = std::numeric_limits<float>::infinity();
constexpr float notANumber = std::numeric_limits<float>::quiet_NaN();

struct ScalarAsPercent
{
    float scalar;
    unsigned int percent;
};

class EndpointVolumeControllerPercent : public EndpointControllerTest
{
protected:
    /// Expects each scalar to read as its percent, on a channel and on the master alike.
    void expectPercents(const std::vector<ScalarAsPercent>& table)
    {
        start();
        const EndpointController controller(policy(speaker));
        for (const ScalarAsPercent& row : table)
        {
            simulation().change([&](sim::Machine& machine)
                                { machine.endpoint(speaker.id())->volume = scalarVolume({row.scalar}); });
            EXPECT_EQ(row.percent, controller.volumeLevelPercent(0)) << "channel at " << row.scalar;
            EXPECT_EQ(row.percent, controller.masterVolumeLevelPercent()) << "master at " << row.scalar;
        }
    }

    /// The scalars that the platform's setters received since the last call.
    std::vector<float> handedOn(const char* operation, std::size_t argument)
    {
        std::vector<float> scalars;
        for (const sim::JournalEntry& entry : simulation().journal().of(operation))
            scalars.push_back(std::stof(entry.arguments[argument]));
        return scalars;
    }
};
}

TEST_F(EndpointVolumeControllerPercent, IsTheScalarRoundedToTheNearestPercent)
{
    expectPercents({{0.0f, 0},
                    {0.004f, 0},
                    {0.006f, 1},
                    {0.25f, 25},
                    {0.494f, 49},
                    {0.496f, 50},
                    {0.5f, 50},
                    {0.994f, 99},
                    {0.999f, 100},
                    {1.0f, 100}});
}

TEST_F(EndpointVolumeControllerPercent, IsComputedInSinglePrecision)
{
    // In double precision each of them would be one less: 0.005f lies a little below 0.005, and of the large one the
    // half is rounded to the even neighbour.
    expectPercents({{0.005f, 1},
                    {0.015f, 2},
                    {0.055f, 6},
                    {0.175f, 18},
                    {0.355f, 36},
                    {0.505f, 51},
                    {0.965f, 97},
                    {83886.09f, 8388610}});
}

TEST_F(EndpointVolumeControllerPercent, IsNotClampedAboveOneHundred)
{
    expectPercents({{1.01f, 101}, {1.5f, 150}, {2.0f, 200}, {1000.0f, 100000}});
}

TEST_F(EndpointVolumeControllerPercent, IsTruncatedTowardsZeroBelowNothingAndWraps)
{
    expectPercents({{-0.004f, 0}, {-0.01f, 0}, {-0.014f, 0}, {-0.02f, 4294967295u}, {-0.5f, 4294967247u}});
}

TEST_F(EndpointVolumeControllerPercent, KeepsTheLowBitsOfWhatIsTooLarge)
{
    expectPercents({{42949668.0f, 4294966784u}, {42949672.0f, 0}, {5e7f, 705032704u}});
}

TEST_F(EndpointVolumeControllerPercent, IsNothingForWhatNoIntegerHolds)
{
    expectPercents({{notANumber, 0}, {infinity, 0}, {-infinity, 0}, {1e30f, 0}, {-1e30f, 0}});
}

TEST_F(EndpointVolumeControllerPercent, OfAChannelIsThatChannelsOwn)
{
    speaker.volume(scalarVolume({0.25f, 0.75f}));
    start();
    const EndpointController controller(policy(speaker));

    EXPECT_EQ(25u, controller.volumeLevelPercent(0));
    EXPECT_EQ(75u, controller.volumeLevelPercent(1));
    EXPECT_EQ(0u, controller.volumeLevelPercent(2));
    EXPECT_EQ(75u, controller.masterVolumeLevelPercent());

    EXPECT_THAT(asked(), ElementsAre("IAudioEndpointVolume::GetChannelVolumeLevelScalar(0)",
                                     "IAudioEndpointVolume::GetChannelVolumeLevelScalar(1)",
                                     "IAudioEndpointVolume::GetChannelVolumeLevelScalar(2)",
                                     "IAudioEndpointVolume::GetMasterVolumeLevelScalar()"));
    EXPECT_THAT(log.entered(),
                ElementsAre("VolumeController::volumeLevelPercent", "VolumeController::volumeLevelPercent",
                            "VolumeController::volumeLevelPercent", "VolumeController::masterVolumeLevelPercent"));
    EXPECT_THAT(log.texts(), IsEmpty());
}

TEST_F(EndpointVolumeControllerPercent, IsHandedOnDividedByAHundredInSinglePrecision)
{
    start();
    EndpointController controller(policy(speaker));

    for (const unsigned int percent : {0u, 1u, 33u, 50u, 67u, 100u, 101u, 4294967295u})
    {
        controller.setVolumeLevelPercent(0, percent);
        controller.setMasterVolumeLevelPercent(percent);
    }

    const auto expected = ElementsAre(0.0f, 0.01f, 0.33f, 0.5f, 0.67f, 1.0f, 1.01f, 42949672.0f);
    EXPECT_THAT(handedOn("IAudioEndpointVolume::SetChannelVolumeLevelScalar", 1), expected);
    EXPECT_THAT(handedOn("IAudioEndpointVolume::SetMasterVolumeLevelScalar", 0), expected);
}

TEST_F(EndpointVolumeControllerPercent, AboveOneHundredIsHandedOnAndRefusedByThePlatform)
{
    start();
    EndpointController controller(policy(speaker));

    const bool result = controller.setVolumeLevelPercent(1, 101);

    EXPECT_FALSE(result);
    EXPECT_THAT(asked(), ElementsAre("IAudioEndpointVolume::SetChannelVolumeLevelScalar(1, 1.01, null)"));
    EXPECT_THAT(log.texts(), IsEmpty());
}

TEST_F(EndpointVolumeControllerPercent, ThatWasSetReadsBack)
{
    start();
    EndpointController controller(policy(speaker));

    for (unsigned int percent = 0; percent <= 100; ++percent)
    {
        EXPECT_TRUE(controller.setVolumeLevelPercent(0, percent));
        EXPECT_EQ(percent, controller.volumeLevelPercent(0));
    }
}
