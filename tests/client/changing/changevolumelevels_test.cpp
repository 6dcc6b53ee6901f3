// Levels that are set stay to the bit, whatever range and steps a device has.

#include "tests/client/changing/supportchanges.h"

#include <cmath>
#include <cstddef>
#include <utility>
#include <vector>

namespace
{
using namespace sonavit;
using changing::changeVolume;
using support::decibelsOf;
using support::OneEndpoint;
using testing::ElementsAre;

using ChangeVolume = support::ChangingTest;

TEST_F(ChangeVolume, TakesTheEndsOfARangeThatNoDecimalNumberExpresses)
{
    OneEndpoint machine(0.1f, 30.1f, 0.1f, {10.0f});
    play(machine.builder.build());
    reading::EndpointReading reading = open(machine.endpoint.id());

    const Result<Volume> lowest = changeVolume(reading, LevelChange(Decibels(0.1)).onChannel(0), context);
    const Result<Volume> highest = changeVolume(reading, LevelChange(Decibels(30.1)).onChannel(0), context);

    EXPECT_THAT(decibelsOf(lowest.value()), ElementsAre(double{0.1f}));
    EXPECT_THAT(decibelsOf(highest.value()), ElementsAre(double{30.1f}));
}

/// Ranges, steps and levels that devices have, and some that no step fits.
std::vector<sim::EndpointVolume> manyVolumes()
{
    std::vector<sim::EndpointVolume> volumes;
    const std::vector<std::vector<float>> ranges = {
        {-65.25f, 0.0f, 0.75f}, {-96.0f, 0.0f, 1.5f},   {-96.1f, 12.3f, 0.1f},    {-34.5f, 30.0f, 0.03125f},
        {0.1f, 30.1f, 0.3f},    {-1e-3f, 1e-3f, 1e-5f}, {-10000.0f, 0.0f, 0.37f}, {-60.0f, 0.0f, 0.0f}};
    for (const std::vector<float>& range : ranges)
    {
        const float width = range[1] - range[0];
        std::vector<float> levels = {range[0], range[1], std::nextafter(range[0], range[1]),
                                     std::nextafter(range[1], range[0])};
        for (const float share : {0.001f, 0.1f, 0.25f, 1.0f / 3, 0.5f, 0.61803f, 0.75f, 0.9f, 0.999f})
            levels.push_back(range[0] + width * share);
        for (unsigned step = 1; step < 40 && range[2] > 0; step += 7)
            levels.push_back(range[0] + static_cast<float>(step) * range[2]);
        for (const sim::Taper taper : {sim::Taper::linear, sim::Taper::audio})
        {
            sim::EndpointVolume volume = support::volumeOf(range[0], range[1], range[2], levels);
            volume.taper = taper;
            volumes.push_back(std::move(volume));
        }
    }
    return volumes;
}

TEST_F(ChangeVolume, LeavesEveryLevelAsItIsWhenItIsSetToWhatWasRead)
{
    OneEndpoint machine;
    play(machine.builder.build());
    reading::EndpointReading reading = open(machine.endpoint.id());
    std::size_t count = 0;
    for (const sim::EndpointVolume& volume : manyVolumes())
    {
        simulation().change([&](sim::Machine& now) { now.endpoints.front().volume = volume; });
        reading::readVolume(reading);
        const Volume before = reading.content.volume.value();

        static_cast<void>(changeVolume(reading, *before.master.decibels, context).value());
        static_cast<void>(changeVolume(reading, *before.master.percent, context).value());
        for (unsigned channel = 0; channel < before.channels->size(); ++channel)
        {
            const Level& level = before.channels->at(channel);
            static_cast<void>(changeVolume(reading, LevelChange(*level.decibels).onChannel(channel), context).value());
            static_cast<void>(changeVolume(reading, LevelChange(*level.percent).onChannel(channel), context).value());
            ++count;
        }

        ASSERT_EQ(reading.content.volume, before) << volume.minimum << " to " << volume.maximum;
        ASSERT_EQ(simulation().machine().endpoints.front().volume, volume);
    }
    EXPECT_GT(count, 200u);
}

TEST_F(ChangeVolume, GivesEveryLevelBackInDecibelsAfterItWasAnother)
{
    OneEndpoint machine;
    play(machine.builder.build());
    reading::EndpointReading reading = open(machine.endpoint.id());
    for (const sim::EndpointVolume& volume : manyVolumes())
    {
        simulation().change([&](sim::Machine& now) { now.endpoints.front().volume = volume; });
        reading::readVolume(reading);
        const Volume before = reading.content.volume.value();

        for (unsigned channel = 0; channel < before.channels->size(); ++channel)
        {
            const Level& level = before.channels->at(channel);
            static_cast<void>(changeVolume(reading, LevelChange(Percent(42)).onChannel(channel), context).value());
            static_cast<void>(changeVolume(reading, LevelChange(*level.decibels).onChannel(channel), context).value());
        }

        ASSERT_EQ(reading.content.volume, before) << volume.minimum << " to " << volume.maximum;
    }
}

TEST_F(ChangeVolume, SetsTheFloatThatIsReadAsThePercentage)
{
    OneEndpoint machine(-65.25f, 0.0f, 0.75f, {-30.0f});
    play(machine.builder.build());
    reading::EndpointReading reading = open(machine.endpoint.id());
    for (float scalar = std::nextafter(0.0f, 1.0f); scalar < 1.0f; scalar = scalar * 1.37f + 1e-7f)
    {
        const Percent asRead(static_cast<double>(scalar) * 100.0);
        ASSERT_EQ(static_cast<float>(asRead.value() / 100.0), scalar);
    }
}

TEST_F(ChangeVolume, KeepsALevelBetweenTheStepsOfTheHardware)
{
    OneEndpoint machine;
    machine.endpoint.hardwareVolume({-96.0f, 0.0f, 1.5f, -30.0f}).volumeInHardware();
    play(machine.builder.build());
    reading::EndpointReading reading = open(machine.endpoint.id());

    const Result<Volume> between = changeVolume(reading, Decibels(-12.4), context);
    const Result<Volume> again = changeVolume(reading, *between->master.percent, context);

    EXPECT_EQ(between->isInHardware, true);
    EXPECT_EQ(between->master.decibels, Decibels(double{-12.4f}));
    EXPECT_EQ(again.value(), between.value());
}

TEST_F(ChangeVolume, SetsALevelAgainThatTheHardwareHasChanged)
{
    OneEndpoint machine;
    machine.endpoint.hardwareVolume({-96.0f, 0.0f, 1.5f, -30.0f}).volumeInHardware();
    play(machine.builder.build());
    reading::EndpointReading reading = open(machine.endpoint.id());
    static_cast<void>(changeVolume(reading, Decibels(-12), context).value());
    simulation().change([](sim::Machine& now)
                        { now.adapters.front().topology->subunits.front().volume->channels.front().level = -45.0f; });

    const Result<Volume> result = changeVolume(reading, LevelChange(Decibels(-12)).onChannel(0), context);

    EXPECT_THAT(decibelsOf(result.value()), ElementsAre(-12.0, -12.0));
}
}
