#include "tests/client/changing/supportchanges.h"

#include <cmath>
#include <cstddef>
#include <limits>

namespace
{
using namespace sonavit;
using changing::changeVolume;
using support::decibelsOf;
using support::OneEndpoint;
using support::setters;
using support::withContext;
using testing::ElementsAre;
using testing::IsEmpty;

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

TEST_F(ChangeVolume, RefusesDecibelsOutsideTheRangeAndNamesIt)
{
    OneEndpoint machine(-65.25f, 0.0f, 0.75f, {-30.0f, -30.0f});
    play(machine.builder.build());
    reading::EndpointReading reading = open(machine.endpoint.id());

    const Result<Volume> result = changeVolume(reading, Decibels(-100), context);

    ASSERT_FALSE(result);
    EXPECT_EQ(result.problem(), Problem(Problem::Kind::outOfRange, "setVolume", machine.endpoint.id(),
                                        "-100.00 dB is outside the range of -65.25 to 0.00 dB"));
    EXPECT_THAT(setters(simulation()), IsEmpty());
    EXPECT_FALSE(context.isUsed());
}

TEST_F(ChangeVolume, NamesTheRangeWithMoreDigitsIfTheyMatter)
{
    OneEndpoint machine(-65.25f, 0.0f, 0.75f, {-30.0f, -30.0f});
    play(machine.builder.build());
    reading::EndpointReading reading = open(machine.endpoint.id());

    const Result<Volume> result = changeVolume(reading, Decibels(-65.251), context);

    EXPECT_EQ(result.problem().sentence(), "-65.251 dB is outside the range of -65.25 to 0 dB");
}

TEST_F(ChangeVolume, RefusesInfiniteDecibels)
{
    OneEndpoint machine;
    play(machine.builder.build());
    reading::EndpointReading reading = open(machine.endpoint.id());

    const Result<Volume> quiet = changeVolume(reading, Decibels(-std::numeric_limits<double>::infinity()), context);
    const Result<Volume> loud = changeVolume(reading, Decibels(1e300), context);

    EXPECT_EQ(quiet.problem().kind(), Problem::Kind::outOfRange);
    EXPECT_EQ(quiet.problem().sentence(), "-inf dB is outside the range of -65.25 to 0.00 dB");
    EXPECT_EQ(loud.problem().kind(), Problem::Kind::outOfRange);
}

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

TEST_F(ChangeVolume, RefusesAChannelThatDoesNotExist)
{
    OneEndpoint machine;
    play(machine.builder.build());
    reading::EndpointReading reading = open(machine.endpoint.id());

    const Result<Volume> result = changeVolume(reading, LevelChange(Percent(40)).onChannel(2), context);

    EXPECT_EQ(result.problem(), Problem(Problem::Kind::outOfRange, "setVolume", machine.endpoint.id(),
                                        "channel 2 does not exist: they are channels 0 to 1"));
    EXPECT_THAT(setters(simulation()), IsEmpty());
}

TEST_F(ChangeVolume, RefusesASecondChannelOfAMonoDevice)
{
    OneEndpoint machine(-60.0f, 0.0f, 1.0f, {-30.0f});
    play(machine.builder.build());
    reading::EndpointReading reading = open(machine.endpoint.id());

    const Result<Volume> result = changeVolume(reading, LevelChange(Decibels(-3)).onChannel(1), context);

    EXPECT_EQ(result.problem().sentence(), "channel 1 does not exist: the only one is channel 0");
}

TEST_F(ChangeVolume, SaysThatAnEndpointHasNoVolume)
{
    OneEndpoint machine;
    machine.endpoint.withoutVolume();
    play(machine.builder.build());
    reading::EndpointReading reading = open(machine.endpoint.id());

    const Result<Volume> result = changeVolume(reading, Percent(40), context);

    EXPECT_EQ(result.problem(), Problem(Problem::Kind::notSupported, "setVolume", machine.endpoint.id(),
                                        "the endpoint has no volume control"));
}

TEST_F(ChangeVolume, SaysThatAnEndpointInThatStateHasNoVolume)
{
    OneEndpoint machine;
    machine.endpoint.notPresent();
    play(machine.builder.build());
    reading::EndpointReading reading = open(machine.endpoint.id());

    const Result<Volume> result = changeVolume(reading, Percent(40), context);

    EXPECT_EQ(result.problem(), Problem(Problem::Kind::notSupported, "setVolume", machine.endpoint.id(),
                                        "an endpoint that is not present has no volume control"));
}

TEST_F(ChangeVolume, ReportsWhyTheVolumeCannotBeActivated)
{
    OneEndpoint machine;
    play(machine.builder.build());
    simulation().faults().fail("IMMDevice::Activate", E_ACCESSDENIED).with("IAudioEndpointVolume");
    reading::EndpointReading reading = open(machine.endpoint.id());

    const Result<Volume> result = changeVolume(reading, Percent(40), context);

    EXPECT_EQ(result.problem().kind(), Problem::Kind::platform);
    EXPECT_EQ(result.problem().operation(), "IMMDevice::Activate(IAudioEndpointVolume)");
    EXPECT_EQ(result.problem().code(), E_ACCESSDENIED);
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

TEST_F(ChangeVolume, SaysThatOneChannelHasNoSteps)
{
    OneEndpoint machine(-60.0f, 0.0f, 0.0f, {-30.0f, -12.0f});
    play(machine.builder.build());
    reading::EndpointReading reading = open(machine.endpoint.id());

    const Result<Volume> result = changeVolume(reading, LevelChange::up().onChannel(0), context);

    EXPECT_EQ(result.problem().kind(), Problem::Kind::notSupported);
    EXPECT_EQ(result.problem().sentence(), "the device reports no steps");
}

/// A change, and the setter that it calls.
struct Way
{
    LevelChange change;
    const char* setter;
};

const std::vector<Way>& allWays()
{
    static const std::vector<Way> ways = {
        {Percent(40), "SetMasterVolumeLevelScalar"},
        {Decibels(-20), "SetMasterVolumeLevel"},
        {LevelChange(Percent(40)).onChannel(1), "SetChannelVolumeLevelScalar"},
        {LevelChange(Decibels(-20)).onChannel(1), "SetChannelVolumeLevel"},
        {LevelChange::up(Percent(5)), "SetMasterVolumeLevelScalar"},
        {LevelChange::down(Decibels(5)), "SetMasterVolumeLevel"},
        {LevelChange::up(), "VolumeStepUp"},
        {LevelChange::down(), "VolumeStepDown"},
        {LevelChange::down(Percent(5)).onChannel(0), "SetChannelVolumeLevelScalar"},
        {LevelChange::up(Steps{2}).onChannel(0), "SetChannelVolumeLevel"},
    };
    return ways;
}

TEST_F(ChangeVolume, ReportsTheSetterThatIsRefusedWithItsCode)
{
    OneEndpoint machine(-60.0f, 0.0f, 1.5f, {-30.0f, -12.0f});
    play(machine.builder.build());
    reading::EndpointReading reading = open(machine.endpoint.id());
    const Volume before = reading.content.volume.value();
    for (const Way& way : allWays())
    {
        SCOPED_TRACE(way.setter);
        const std::string operation = std::string("IAudioEndpointVolume::") + way.setter;
        simulation().faults().fail(operation, E_ACCESSDENIED).at(1);

        const Result<Volume> result = changeVolume(reading, way.change, context);

        EXPECT_EQ(result.problem(), Problem::ofCall(operation, machine.endpoint.id(), E_ACCESSDENIED));
        EXPECT_EQ(reading.content.volume, before);
    }
}

TEST_F(ChangeVolume, ReadsWhatIsThereAfterAStepInTheMiddleIsRefused)
{
    OneEndpoint machine(-60.0f, 0.0f, 1.5f, {-30.0f});
    play(machine.builder.build());
    reading::EndpointReading reading = open(machine.endpoint.id());
    simulation().faults().fail("IAudioEndpointVolume::VolumeStepUp").at(3);

    const Result<Volume> result = changeVolume(reading, LevelChange::up(Steps{4}), context);

    EXPECT_EQ(result.problem().operation(), "IAudioEndpointVolume::VolumeStepUp");
    EXPECT_EQ(reading.content.volume->master.decibels, Decibels(-27));
}

TEST_F(ChangeVolume, NeedsAReadableLevelForAStep)
{
    OneEndpoint machine(-60.0f, 0.0f, 1.5f, {-30.0f, -30.0f});
    play(machine.builder.build());
    reading::EndpointReading reading = open(machine.endpoint.id());
    const auto codeWithout = [&](const char* call, const LevelChange& change)
    {
        simulation().faults().fail(std::string("IAudioEndpointVolume::") + call, E_UNEXPECTED).at(1);
        const Result<Volume> result = changeVolume(reading, change, context);
        return result ? "done" : result.problem().operation();
    };

    EXPECT_EQ(codeWithout("GetMasterVolumeLevelScalar", LevelChange::up(Percent(5))),
              "IAudioEndpointVolume::GetMasterVolumeLevelScalar");
    EXPECT_EQ(codeWithout("GetMasterVolumeLevel", LevelChange::up(Decibels(5))),
              "IAudioEndpointVolume::GetMasterVolumeLevel");
    EXPECT_EQ(codeWithout("GetVolumeRange", LevelChange::up(Decibels(5))), "IAudioEndpointVolume::GetVolumeRange");
    EXPECT_EQ(codeWithout("GetVolumeStepInfo", LevelChange::up(Steps{2})), "IAudioEndpointVolume::GetVolumeStepInfo");
    EXPECT_EQ(codeWithout("GetChannelVolumeLevel", LevelChange::up(Steps{1}).onChannel(1)),
              "IAudioEndpointVolume::GetChannelVolumeLevel");
    EXPECT_THAT(setters(simulation()), IsEmpty());
}

TEST_F(ChangeVolume, LetsThePlatformDecideIfTheRangeOrTheChannelsCannotBeRead)
{
    OneEndpoint machine(-60.0f, 0.0f, 1.5f, {-30.0f, -30.0f});
    play(machine.builder.build());
    reading::EndpointReading reading = open(machine.endpoint.id());
    simulation().faults().fail("IAudioEndpointVolume::GetVolumeRange");
    simulation().faults().fail("IAudioEndpointVolume::GetChannelCount");

    const Result<Volume> inside = changeVolume(reading, Decibels(-20), context);
    const Result<Volume> outside = changeVolume(reading, Decibels(-100), context);
    const Result<Volume> beyond = changeVolume(reading, LevelChange(Decibels(-20)).onChannel(2), context);

    EXPECT_EQ(inside->master.decibels, Decibels(-20));
    EXPECT_EQ(outside.problem(),
              Problem::ofCall("IAudioEndpointVolume::SetMasterVolumeLevel", machine.endpoint.id(), E_INVALIDARG));
    EXPECT_EQ(beyond.problem(),
              Problem::ofCall("IAudioEndpointVolume::SetChannelVolumeLevel", machine.endpoint.id(), E_INVALIDARG));
}

TEST_F(ChangeVolume, ReportsThatTheDeviceVanishesBetweenReadingAndSetting)
{
    OneEndpoint machine(-60.0f, 0.0f, 1.5f, {-30.0f});
    machine.builder.removedEndpoints(sim::RemovedEndpoints::unknown);
    play(machine.builder.build());
    reading::EndpointReading reading = open(machine.endpoint.id());
    simulation()
        .faults()
        .run("IAudioEndpointVolume::SetMasterVolumeLevel", [&] { simulation().events().remove(machine.endpoint.id()); })
        .at(1);

    const Result<Volume> result = changeVolume(reading, Decibels(-20), context);

    EXPECT_EQ(result.problem(), Problem::ofCall("IAudioEndpointVolume::SetMasterVolumeLevel", machine.endpoint.id(),
                                                AUDCLNT_E_DEVICE_INVALIDATED));
}

TEST_F(ChangeVolume, ReportsThatTheDeviceVanishesAfterSetting)
{
    OneEndpoint machine(-60.0f, 0.0f, 1.5f, {-30.0f});
    machine.builder.removedEndpoints(sim::RemovedEndpoints::unknown);
    play(machine.builder.build());
    reading::EndpointReading reading = open(machine.endpoint.id());
    simulation()
        .faults()
        .run("IAudioEndpointVolume::GetMute", [&] { simulation().events().remove(machine.endpoint.id()); })
        .at(1);

    const Result<Volume> result = changeVolume(reading, Decibels(-20), context);

    EXPECT_TRUE(context.isUsed());
    EXPECT_TRUE(!result || !result->isMuted);
}

TEST_F(ChangeVolume, ReportsALevelThatIsNoNumber)
{
    OneEndpoint machine(-60.0f, std::numeric_limits<float>::quiet_NaN(), 1.5f, {-30.0f});
    play(machine.builder.build());
    reading::EndpointReading reading = open(machine.endpoint.id());

    const Result<Volume> result = changeVolume(reading, LevelChange::up(Decibels(3)), context);

    EXPECT_EQ(result.problem().operation(), "IAudioEndpointVolume::GetVolumeRange");
    EXPECT_THAT(setters(simulation()), IsEmpty());
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
