#include "tests/client/changing/supportchanges.h"

#include <vector>

namespace
{
using namespace sonavit;
using changing::changeVolume;
using support::decibelsOf;
using support::OneEndpoint;
using support::setters;
using support::withContext;
using testing::ElementsAre;

using ChangeVolume = support::ChangingTest;

TEST_F(ChangeVolume, SetsAPercentageAsTheScalarAndReturnsWhatIsReadAfterwards)
{
    OneEndpoint machine(-65.25f, 0.0f, 0.75f, {-30.0f, -30.0f});
    play(machine.builder.build());
    reading::EndpointReading reading = open(machine.endpoint.id());

    const Result<Volume> result = changeVolume(reading, Percent(40), context);

    EXPECT_THAT(setters(simulation()),
                ElementsAre("IAudioEndpointVolume::SetMasterVolumeLevelScalar(0.4, " + withContext()));
    ASSERT_TRUE(result);
    EXPECT_EQ(result->master.percent->rounded(), 40u);
    EXPECT_FLOAT_EQ(static_cast<float>(result->master.decibels->value()), -39.15f);
    EXPECT_EQ(result.value(), reading.content.volume);
    EXPECT_TRUE(context.isUsed());
}

TEST_F(ChangeVolume, SetsDecibelsOfOneChannelAndLeavesTheOthersAlone)
{
    OneEndpoint machine(-65.25f, 0.0f, 0.75f, {-30.0f, -20.0f, -10.0f});
    play(machine.builder.build());
    reading::EndpointReading reading = open(machine.endpoint.id());

    const Result<Volume> result = changeVolume(reading, LevelChange(Decibels(-12.5)).onChannel(1), context);

    EXPECT_THAT(setters(simulation()),
                ElementsAre("IAudioEndpointVolume::SetChannelVolumeLevel(1, -12.5, " + withContext()));
    EXPECT_THAT(decibelsOf(result.value()), ElementsAre(-30.0, -12.5, -10.0));
}

TEST_F(ChangeVolume, SetsAPercentageOfOneChannel)
{
    OneEndpoint machine(-60.0f, 0.0f, 1.0f, std::vector<float>(8, -30.0f));
    play(machine.builder.build());
    reading::EndpointReading reading = open(machine.endpoint.id());

    const Result<Volume> result = changeVolume(reading, LevelChange(Percent(25)).onChannel(7), context);

    EXPECT_THAT(setters(simulation()),
                ElementsAre("IAudioEndpointVolume::SetChannelVolumeLevelScalar(7, 0.25, " + withContext()));
    EXPECT_THAT(decibelsOf(result.value()), ElementsAre(-30.0, -30.0, -30.0, -30.0, -30.0, -30.0, -30.0, -45.0));
}

TEST_F(ChangeVolume, KeepsTheDistancesBetweenTheChannelsWhenAllChange)
{
    OneEndpoint machine(-60.0f, 0.0f, 1.0f, {-30.0f, -20.0f});
    play(machine.builder.build());
    reading::EndpointReading reading = open(machine.endpoint.id());

    const Result<Volume> result = changeVolume(reading, LevelChange::up(Decibels(5)), context);

    EXPECT_THAT(decibelsOf(result.value()), ElementsAre(-25.0, -15.0));
}

TEST_F(ChangeVolume, TriesAgainToActivateAVolumeThatCouldNotBeActivated)
{
    OneEndpoint machine(-60.0f, 0.0f, 1.0f, {-30.0f});
    play(machine.builder.build());
    simulation().faults().fail("IMMDevice::Activate").with("IAudioEndpointVolume").at(1);
    reading::EndpointReading reading = open(machine.endpoint.id());

    const Result<Volume> result = changeVolume(reading, Decibels(-3), context);

    EXPECT_THAT(decibelsOf(result.value()), ElementsAre(-3.0));
}

TEST_F(ChangeVolume, TakesUpAnEndpointThatHasBecomeActiveSinceItWasRead)
{
    OneEndpoint machine(-60.0f, 0.0f, 1.0f, {-30.0f});
    machine.endpoint.disabled();
    play(machine.builder.build());
    reading::EndpointReading reading = open(machine.endpoint.id());
    simulation().events().plug(machine.endpoint.id());

    const Result<Volume> result = changeVolume(reading, Decibels(-3), context);

    EXPECT_THAT(decibelsOf(result.value()), ElementsAre(-3.0));
}

TEST_F(ChangeVolume, StopsStepsAtTheEndsOfTheRange)
{
    OneEndpoint machine(-60.0f, 0.0f, 1.0f, {-2.0f});
    play(machine.builder.build());
    reading::EndpointReading reading = open(machine.endpoint.id());

    EXPECT_EQ(changeVolume(reading, LevelChange::up(Decibels(5)), context)->master.decibels, Decibels(0));
    EXPECT_EQ(changeVolume(reading, LevelChange::down(Decibels(1e300)), context)->master.decibels, Decibels(-60));
    EXPECT_EQ(changeVolume(reading, LevelChange::up(Percent(150)), context)->master.percent, Percent(100));
    EXPECT_EQ(changeVolume(reading, LevelChange::down(Percent(100)), context)->master.percent, Percent(0));
    EXPECT_EQ(changeVolume(reading, LevelChange::up(Steps{100000}), context)->master.decibels, Decibels(0));
    EXPECT_EQ(changeVolume(reading, LevelChange::down(Steps{4000000000u}), context)->master.decibels, Decibels(-60));
    EXPECT_LE(setters(simulation()).size(), 4u + 2u * 62u);
}

TEST_F(ChangeVolume, AddsAndSubtractsPercentOfTheScalar)
{
    OneEndpoint machine(-65.25f, 0.0f, 0.75f, {-19.35f, -19.35f});
    machine.endpoint.endpoint().volume->taper = sim::Taper::audio;
    play(machine.builder.build());
    reading::EndpointReading reading = open(machine.endpoint.id());

    const Result<Volume> up = changeVolume(reading, LevelChange::up(Percent(23)), context);
    const Result<Volume> down = changeVolume(reading, LevelChange::down(Percent(23)).onChannel(0), context);

    EXPECT_NEAR(up->master.percent->value(), 50, 0.01);
    EXPECT_NEAR(up->master.decibels->value(), -10.33, 0.01);
    EXPECT_NEAR(down->channels->at(0).percent->value(), 27, 0.01);
    EXPECT_NEAR(down->channels->at(1).percent->value(), 50, 0.01);
}

TEST_F(ChangeVolume, UsesTheStepsOfTheDeviceForAllChannels)
{
    OneEndpoint machine(-60.0f, 0.0f, 1.5f, {-30.0f, -12.0f});
    play(machine.builder.build());
    reading::EndpointReading reading = open(machine.endpoint.id());

    const Result<Volume> up = changeVolume(reading, LevelChange::up(), context);
    const Result<Volume> down = changeVolume(reading, LevelChange::down(Steps{3}), context);

    EXPECT_THAT(decibelsOf(up.value()), ElementsAre(-28.5, -10.5));
    EXPECT_THAT(decibelsOf(down.value()), ElementsAre(-33.0, -15.0));
    EXPECT_EQ(simulation().journal().count("IAudioEndpointVolume::VolumeStepUp"), 1u);
    EXPECT_EQ(simulation().journal().count("IAudioEndpointVolume::VolumeStepDown"), 3u);
    EXPECT_THAT(setters(simulation()), testing::Each(testing::HasSubstr(withContext())));
}

TEST_F(ChangeVolume, ReachesTheEndByStepsFromBetweenTwoSteps)
{
    OneEndpoint machine(-60.0f, 0.0f, 1.5f, {-0.6f});
    play(machine.builder.build());
    reading::EndpointReading reading = open(machine.endpoint.id());

    const Result<Volume> up = changeVolume(reading, LevelChange::up(Steps{2}), context);

    EXPECT_THAT(decibelsOf(up.value()), ElementsAre(0.0));
}

TEST_F(ChangeVolume, UsesTheStepsOfTheRangeForOneChannel)
{
    OneEndpoint machine(-60.0f, 0.0f, 1.5f, {-30.0f, -12.0f});
    play(machine.builder.build());
    reading::EndpointReading reading = open(machine.endpoint.id());

    const Result<Volume> up = changeVolume(reading, LevelChange::up(Steps{2}).onChannel(0), context);
    const Result<Volume> down = changeVolume(reading, LevelChange::down(Steps{4000000000u}).onChannel(1), context);

    EXPECT_THAT(decibelsOf(up.value()), ElementsAre(-27.0, -12.0));
    EXPECT_THAT(decibelsOf(down.value()), ElementsAre(-27.0, -60.0));
}
}
