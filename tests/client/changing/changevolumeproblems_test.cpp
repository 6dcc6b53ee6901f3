// What cannot be set, and which call refused it.

#include "tests/client/changing/supportchanges.h"

#include <limits>
#include <string>
#include <vector>

namespace
{
using namespace sonavit;
using changing::changeVolume;
using support::OneEndpoint;
using support::setters;
using testing::IsEmpty;

using ChangeVolume = support::ChangingTest;

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
}
