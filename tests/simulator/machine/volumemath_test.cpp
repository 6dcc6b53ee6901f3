#include "simulator/machine/volumemath.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <utility>
#include <vector>

namespace
{
sim::EndpointVolume measuredVolume(std::vector<sim::TaperPoint> points)
{
    sim::EndpointVolume volume;
    volume.minimum = -60.0f;
    volume.maximum = 0.0f;
    volume.step = 0.5f;
    volume.taper = sim::Taper::measured;
    volume.taperPoints = std::move(points);
    return volume;
}

TEST(MeasuredTaper, HasEachPointToTheLetterInBothDirections)
{
    const std::vector<sim::TaperPoint> points = {{-41.7f, 0.1f}, {-33.3f, 0.33333334f}, {-0.1f, 0.987654f}};
    const sim::EndpointVolume volume = measuredVolume(points);

    for (const sim::TaperPoint& point : points)
    {
        EXPECT_EQ(point.scalar, sim::scalarLevel(volume, point.level));
        EXPECT_EQ(point.level, sim::decibelLevel(volume, point.scalar));
    }
}

TEST(MeasuredTaper, IsLinearInDecibelsBetweenPointsAndToTheEndsOfTheRange)
{
    const sim::EndpointVolume volume = measuredVolume({{-20.0f, 0.25f}, {-10.0f, 0.5f}});

    EXPECT_EQ(0.0f, sim::scalarLevel(volume, -60.0f));
    EXPECT_FLOAT_EQ(0.125f, sim::scalarLevel(volume, -40.0f));
    EXPECT_FLOAT_EQ(0.375f, sim::scalarLevel(volume, -15.0f));
    EXPECT_FLOAT_EQ(0.75f, sim::scalarLevel(volume, -5.0f));
    EXPECT_EQ(1.0f, sim::scalarLevel(volume, 0.0f));
    EXPECT_EQ(-60.0f, sim::decibelLevel(volume, 0.0f));
    EXPECT_FLOAT_EQ(-40.0f, sim::decibelLevel(volume, 0.125f));
    EXPECT_FLOAT_EQ(-15.0f, sim::decibelLevel(volume, 0.375f));
    EXPECT_EQ(0.0f, sim::decibelLevel(volume, 1.0f));
}

TEST(MeasuredTaper, HasOtherScalarsAtTheEndsIfPointsSaySo)
{
    const sim::EndpointVolume volume = measuredVolume({{-60.0f, 0.1f}, {0.0f, 0.9f}});

    EXPECT_EQ(0.1f, sim::scalarLevel(volume, -60.0f));
    EXPECT_EQ(0.9f, sim::scalarLevel(volume, 0.0f));
    EXPECT_EQ(-60.0f, sim::decibelLevel(volume, 0.0f));
    EXPECT_EQ(0.0f, sim::decibelLevel(volume, 1.0f));
}

TEST(MeasuredTaper, StaysAtZeroBelowAPointThatIsAtZero)
{
    const sim::EndpointVolume volume = measuredVolume({{-50.0f, 0.0f}, {-1.0f, 1.0f}});

    EXPECT_EQ(0.0f, sim::scalarLevel(volume, -60.0f));
    EXPECT_EQ(0.0f, sim::scalarLevel(volume, -55.0f));
    EXPECT_EQ(1.0f, sim::scalarLevel(volume, -0.5f));
    EXPECT_EQ(-50.0f, sim::decibelLevel(volume, 0.0f));
    EXPECT_EQ(-1.0f, sim::decibelLevel(volume, 1.0f));
}

TEST(MeasuredTaper, OfEqualScalarsHasTheLowestLevel)
{
    const sim::EndpointVolume volume = measuredVolume({{-30.0f, 0.5f}, {-20.0f, 0.5f}});

    EXPECT_EQ(0.5f, sim::scalarLevel(volume, -25.0f));
    EXPECT_EQ(-30.0f, sim::decibelLevel(volume, 0.5f));
}

TEST(MeasuredTaper, HasPointsOutsideTheRangeAndInAnEmptyOne)
{
    sim::EndpointVolume volume = measuredVolume({{-70.0f, 0.01f}, {3.0f, 1.25f}});
    EXPECT_EQ(0.01f, sim::scalarLevel(volume, -70.0f));
    EXPECT_EQ(1.25f, sim::scalarLevel(volume, 3.0f));
    EXPECT_EQ(-60.0f, sim::decibelLevel(volume, 0.0f)); // what a setter may reach

    volume = measuredVolume({{-10.0f, 0.3f}});
    volume.minimum = volume.maximum = -10.0f;
    EXPECT_EQ(0.3f, sim::scalarLevel(volume, -10.0f));
    EXPECT_EQ(-10.0f, sim::decibelLevel(volume, 0.7f));
}

TEST(MeasuredTaper, IsLinearWithoutPoints)
{
    const sim::EndpointVolume volume = measuredVolume({});

    EXPECT_EQ(0.5f, sim::scalarLevel(volume, -30.0f));
    EXPECT_EQ(-30.0f, sim::decibelLevel(volume, 0.5f));
}

TEST(MeasuredTaper, HasStepsAtEqualDistancesOfTheScalarLevel)
{
    const sim::EndpointVolume volume = measuredVolume({{-20.0f, 0.5f}});

    EXPECT_EQ(121u, sim::stepCount(volume));
    EXPECT_EQ(60u, sim::stepOf(volume, -20.0f));
    EXPECT_NEAR(-20.0f + 20.0f / 60.0f, sim::neighbouringStep(volume, -20.0f, 1), 1e-5f);
    EXPECT_NEAR(-20.0f - 40.0f / 60.0f, sim::neighbouringStep(volume, -20.0f, -1), 1e-5f);
}

/// A volume as an odd driver reports it, with each taper.
std::vector<sim::EndpointVolume> withEachTaper(float minimum, float maximum, float step)
{
    std::vector<sim::EndpointVolume> result;
    for (const sim::Taper taper : {sim::Taper::linear, sim::Taper::audio, sim::Taper::measured})
    {
        sim::EndpointVolume volume;
        volume.minimum = minimum;
        volume.maximum = maximum;
        volume.step = step;
        volume.taper = taper;
        result.push_back(volume);
    }
    return result;
}

TEST(OddVolume, WithAnEmptyRangeIsAtItsMaximumAndStaysThere)
{
    for (const float step : {0.0f, 0.75f})
    {
        for (const sim::EndpointVolume& volume : withEachTaper(-6.0f, -6.0f, step))
        {
            EXPECT_EQ(1.0f, sim::scalarLevel(volume, -6.0f));
            EXPECT_EQ(-6.0f, sim::decibelLevel(volume, 0.0f));
            EXPECT_EQ(-6.0f, sim::decibelLevel(volume, 1.0f));
            EXPECT_EQ(1u, sim::stepCount(volume));
            EXPECT_EQ(0u, sim::stepOf(volume, -6.0f));
            EXPECT_EQ(-6.0f, sim::neighbouringStep(volume, -6.0f, 1));
        }
    }
}

TEST(OddVolume, WithoutStepsHasOneAndDoesNotMove)
{
    for (const sim::EndpointVolume& volume : withEachTaper(-10.0f, 0.0f, 0.0f))
    {
        EXPECT_EQ(1u, sim::stepCount(volume));
        EXPECT_EQ(0u, sim::stepOf(volume, 0.0f));
        EXPECT_EQ(-4.0f, sim::neighbouringStep(volume, -4.0f, 1));
        EXPECT_EQ(-4.0f, sim::neighbouringStep(volume, -4.0f, -1));
    }
}

TEST(OddVolume, WithAStepLargerThanItsRangeMovesFromEndToEnd)
{
    for (const sim::EndpointVolume& volume : withEachTaper(-10.0f, 0.0f, 15.0f))
    {
        EXPECT_EQ(2u, sim::stepCount(volume));
        EXPECT_EQ(1u, sim::stepOf(volume, 0.0f));
        EXPECT_EQ(0.0f, sim::neighbouringStep(volume, -10.0f, 1));
        EXPECT_EQ(-10.0f, sim::neighbouringStep(volume, 0.0f, -1));
    }
}

TEST(OddVolume, WithALevelOutsideItsRangeIsAtTheStepOfTheNearestEnd)
{
    for (const sim::EndpointVolume& volume : withEachTaper(-10.0f, 0.0f, 0.5f))
    {
        EXPECT_GE(0.0f, sim::scalarLevel(volume, -12.0f));
        EXPECT_LE(1.0f, sim::scalarLevel(volume, 3.0f));
        EXPECT_EQ(0u, sim::stepOf(volume, -12.0f));
        EXPECT_EQ(20u, sim::stepOf(volume, 3.0f));
        EXPECT_EQ(0.0f, sim::neighbouringStep(volume, 3.0f, 1));
        EXPECT_LE(-10.0f, sim::neighbouringStep(volume, -12.0f, -1));
    }
}

TEST(OddVolume, HasNumbersForRangesOfAnySize)
{
    constexpr float most = std::numeric_limits<float>::max();
    constexpr float least = std::numeric_limits<float>::denorm_min();
    const std::pair<float, float> ranges[] = {{-most, most}, {0.0f, least}, {-1.0f, std::nextafter(-1.0f, 0.0f)}};
    for (const auto& [minimum, maximum] : ranges)
    {
        for (const float step : {0.0f, least, 1.0f, most})
        {
            for (sim::EndpointVolume volume : withEachTaper(minimum, maximum, step))
            {
                for (const float level : {minimum, maximum})
                {
                    const float scalar = sim::scalarLevel(volume, level);
                    EXPECT_TRUE(scalar >= 0.0f && scalar <= 1.0f) << scalar;
                    const float back = sim::decibelLevel(volume, scalar);
                    EXPECT_TRUE(back >= minimum && back <= maximum) << back;
                    EXPECT_LT(sim::stepOf(volume, level), sim::stepCount(volume));
                    EXPECT_TRUE(std::isfinite(sim::neighbouringStep(volume, level, 1)));
                    sim::setMasterLevel(volume, level);
                    EXPECT_TRUE(std::isfinite(sim::masterLevel(volume)));
                    EXPECT_TRUE(std::isfinite(sim::nearestStep({minimum, maximum, step, minimum}, level)));
                }
            }
        }
    }
}

TEST(NearestStep, StaysInARangeThatIsEmptyOrSmallerThanAStep)
{
    EXPECT_EQ(-6.0f, sim::nearestStep({-6.0f, -6.0f, 0.0f, -6.0f}, 0.0f));
    EXPECT_EQ(-6.0f, sim::nearestStep({-6.0f, -6.0f, 1.5f, -6.0f}, -20.0f));
    EXPECT_EQ(0.0f, sim::nearestStep({-10.0f, 0.0f, 15.0f, -10.0f}, -1.0f));
    EXPECT_EQ(-10.0f, sim::nearestStep({-10.0f, 0.0f, 25.0f, -10.0f}, -1.0f));
}

TEST(EndpointVolumeSteps, AreThoseOfTheVolumeAndFollowTheScalarLevel)
{
    sim::EndpointVolume volume = measuredVolume({});
    volume.taper = sim::Taper::linear;
    volume.steps = 51;

    EXPECT_EQ(51u, sim::stepCount(volume));
    EXPECT_EQ(0u, sim::stepOf(volume, -60.0f));
    EXPECT_EQ(25u, sim::stepOf(volume, -30.2f));
    EXPECT_EQ(50u, sim::stepOf(volume, 0.0f));
    EXPECT_FLOAT_EQ(-28.8f, sim::neighbouringStep(volume, -30.2f, 1));
    EXPECT_EQ(0.0f, sim::neighbouringStep(volume, 0.0f, 1));
}

TEST(EndpointVolumeSteps, MayBeNoneOneOrAllThatANumberHolds)
{
    sim::EndpointVolume volume = measuredVolume({});
    for (const std::uint32_t count : {0u, 1u})
    {
        volume.steps = count;
        EXPECT_EQ(count, sim::stepCount(volume));
        EXPECT_EQ(0u, sim::stepOf(volume, 0.0f));
        EXPECT_EQ(-20.0f, sim::neighbouringStep(volume, -20.0f, 1));
    }

    volume.steps = 0xFFFFFFFF;
    EXPECT_EQ(0xFFFFFFFEu, sim::stepOf(volume, 0.0f));
    EXPECT_EQ(0u, sim::stepOf(volume, -60.0f));
    EXPECT_NEAR(-30.0f, sim::neighbouringStep(volume, -30.0f, 1), 1e-4f);
}
}
