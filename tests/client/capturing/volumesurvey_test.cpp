#include "client/capturing/volumeanswers.h"
#include "simulator/machine/volumemath.h"
#include "tests/client/capturing/surveytest.h"

#include <limits>

namespace
{
using testing::ElementsAre;
using testing::IsEmpty;

constexpr float notANumber = std::numeric_limits<float>::quiet_NaN();
constexpr float infinity = std::numeric_limits<float>::infinity();

sim::EndpointVolume volumeWith(sim::Taper taper, std::vector<float> channels)
{
    sim::EndpointVolume volume;
    volume.taper = taper;
    volume.channels = std::move(channels);
    return volume;
}

class SurveyVolume : public SurveyTest
{
protected:
    void startWith(const std::vector<sim::EndpointVolume>& volumes)
    {
        sim::Machine machine = machineWithOneEndpoint();
        const sim::Endpoint endpoint = machine.endpoints[0];
        machine.endpoints.clear();
        for (const sim::EndpointVolume& volume : volumes)
        {
            machine.endpoints.push_back(endpoint);
            machine.endpoints.back().id = "endpoint" + std::to_string(machine.endpoints.size());
            machine.endpoints.back().volume = volume;
        }
        start(std::move(machine));
    }

    /// The volumes that a survey finds, which it finds again in its own machine.
    std::vector<sim::EndpointVolume> surveyVolumes()
    {
        found = survey();
        std::vector<sim::EndpointVolume> volumes;
        for (const sim::Endpoint& endpoint : found.machine.endpoints)
            volumes.push_back(endpoint.volume.value());
        expectSame(found, replay(found));
        return volumes;
    }

    sim::EndpointVolume surveyVolume(const sim::EndpointVolume& volume)
    {
        startWith({volume});
        return surveyVolumes().front();
    }

    /// The scalars of the channels, as the volume answers.
    static std::vector<float> scalarsOf(const sim::EndpointVolume& volume)
    {
        std::vector<float> scalars;
        for (const float level : volume.channels)
            scalars.push_back(sim::scalarLevel(volume, level));
        return scalars;
    }

    sim::FaultPlan& faults() { return simulation().faults(); }

    capturing::Survey found;
};

TEST_F(SurveyVolume, RecordsRangeLevelsMuteAndHardwareSupport)
{
    sim::EndpointVolume volume = volumeWith(sim::Taper::linear, {-10.0f, -20.5f, -30.0f});
    volume.minimum = -96.0f;
    volume.maximum = 12.0f;
    volume.step = 1.5f;
    volume.muted = true;
    volume.hardwareSupport = 5;

    EXPECT_EQ(volume, surveyVolume(volume));
    EXPECT_THAT(failuresOf(found), IsEmpty());
    EXPECT_THAT(found.notes, IsEmpty());
}

TEST_F(SurveyVolume, FindsTheTaperOfWindows)
{
    const sim::EndpointVolume volume = volumeWith(sim::Taper::audio, {-10.0f, -65.25f});

    EXPECT_EQ(volume, surveyVolume(volume));
}

TEST_F(SurveyVolume, MeasuresAnyOtherTaper)
{
    sim::EndpointVolume volume = volumeWith(sim::Taper::measured, {-10.0f, -20.0f});
    volume.taperPoints = {{-20.0f, 0.125f}, {-15.0f, 0.25f}, {-10.0f, 0.75f}};

    const sim::EndpointVolume surveyed = surveyVolume(volume);

    EXPECT_EQ(sim::Taper::measured, surveyed.taper);
    ASSERT_EQ(2u, surveyed.taperPoints.size());
    EXPECT_EQ(scalarsOf(volume), scalarsOf(surveyed));
}

TEST_F(SurveyVolume, TakesTheTaperOfWindowsIfNoLevelShowsOne)
{
    startWith({volumeWith(sim::Taper::linear, {0.0f, 0.0f})});

    EXPECT_EQ(sim::Taper::audio, surveyVolumes()[0].taper);
}

TEST_F(SurveyVolume, TakesTheLinearTaperOfAnotherEndpointIfItsLevelsShowNone)
{
    startWith({volumeWith(sim::Taper::linear, {0.0f}), volumeWith(sim::Taper::audio, {-5.0f}),
               volumeWith(sim::Taper::linear, {-5.0f})});

    const std::vector<sim::EndpointVolume> volumes = surveyVolumes();

    EXPECT_EQ(sim::Taper::linear, volumes[0].taper);
    EXPECT_EQ(sim::Taper::audio, volumes[1].taper);
    EXPECT_EQ(sim::Taper::linear, volumes[2].taper);
}

TEST_F(SurveyVolume, RecordsAMasterThatIsNotTheLoudestChannel)
{
    sim::EndpointVolume volume = volumeWith(sim::Taper::linear, {-10.0f, -20.0f});
    volume.master = -3.0f;

    EXPECT_EQ(volume, surveyVolume(volume));
}

TEST_F(SurveyVolume, RecordsStepsThatDoNotFollowFromTheRange)
{
    sim::EndpointVolume volume = volumeWith(sim::Taper::linear, {-10.0f});
    volume.steps = 51;

    EXPECT_EQ(volume, surveyVolume(volume));
    EXPECT_THAT(found.notes, IsEmpty());
}

TEST_F(SurveyVolume, RecordsAnEmptyRangeAndLevelsOutsideOfIt)
{
    sim::EndpointVolume volume = volumeWith(sim::Taper::audio, {3.0f, -1.0f});
    volume.minimum = volume.maximum = -2.0f;
    volume.step = 0.0f;

    EXPECT_EQ(volume, surveyVolume(volume));
}

TEST_F(SurveyVolume, RecordsAVolumeWithoutChannels)
{
    sim::EndpointVolume volume = volumeWith(sim::Taper::linear, {});
    volume.master = -20.0f;

    EXPECT_EQ(volume, surveyVolume(volume));
}

TEST_F(SurveyVolume, TakesTheLevelOfAChannelThatFailsFromItsScalar)
{
    const sim::EndpointVolume volume = volumeWith(sim::Taper::audio, {-10.0f, -23.7f, -30.0f});
    startWith({volume});
    faults().fail("IAudioEndpointVolume::GetChannelVolumeLevel").with("1");

    const sim::EndpointVolume surveyed = surveyVolumes()[0];

    EXPECT_THAT(failuresOf(found),
                ElementsAre(failureOf("IAudioEndpointVolume::GetChannelVolumeLevel(1)", "endpoint1")));
    EXPECT_EQ(scalarsOf(volume), scalarsOf(surveyed));
}

TEST_F(SurveyVolume, TakesTheLevelOfAChannelThatFailsInBothScalesFromTheMaster)
{
    startWith({volumeWith(sim::Taper::linear, {-10.0f, -20.0f})});
    faults().fail("IAudioEndpointVolume::GetChannelVolumeLevel").with("1");
    faults().fail("IAudioEndpointVolume::GetChannelVolumeLevelScalar").with("1");

    EXPECT_THAT(surveyVolumes()[0].channels, ElementsAre(-10.0f, -10.0f));
}

TEST_F(SurveyVolume, KeepsTheScalarsOfAVolumeWhoseRangeFails)
{
    sim::EndpointVolume volume = volumeWith(sim::Taper::linear, {-10.0f, -80.0f});
    volume.minimum = -96.0f;
    startWith({volume});
    faults().fail("IAudioEndpointVolume::GetVolumeRange");

    const sim::EndpointVolume surveyed = surveyVolumes()[0];

    EXPECT_EQ(volume.channels, surveyed.channels);
    EXPECT_EQ(scalarsOf(volume), scalarsOf(surveyed));
    EXPECT_GT(-80.0f, surveyed.minimum); // a level at the end would have the scalar 0
}

TEST_F(SurveyVolume, ReplacesLevelsThatAreNotFiniteAndNotesThem)
{
    startWith({volumeWith(sim::Taper::linear, {notANumber, -infinity})});

    found = survey();

    const sim::EndpointVolume volume = found.machine.endpoints[0].volume.value();
    EXPECT_EQ(-std::numeric_limits<float>::max(), volume.channels[1]);
    EXPECT_THAT(found.notes, testing::Contains("IAudioEndpointVolume::GetChannelVolumeLevel of endpoint1 stores what "
                                               "is no finite number."));
    EXPECT_EQ(found.machine, throughFile(found.machine));
}

TEST_F(SurveyVolume, ReplacesARangeThatEndsBelowItsBeginningAndNotesIt)
{
    sim::EndpointVolume volume = volumeWith(sim::Taper::linear, {-3.0f});
    volume.minimum = 0.0f;
    volume.maximum = -6.0f;
    startWith({volume});

    const sim::EndpointVolume surveyed = surveyVolumes()[0];

    EXPECT_EQ(0.0f, surveyed.minimum);
    EXPECT_EQ(0.0f, surveyed.maximum);
    EXPECT_THAT(found.notes, testing::Contains("The volume range of endpoint1 ends below its beginning, or has a step "
                                               "below 0."));
}

TEST_F(SurveyVolume, IsMissingIfTheEndpointDoesNotGiveIt)
{
    startWith({volumeWith(sim::Taper::linear, {-3.0f})});
    faults().fail("IMMDevice::Activate").with("IAudioEndpointVolume");

    found = survey();

    EXPECT_FALSE(found.machine.endpoints[0].volume);
    EXPECT_THAT(failuresOf(found),
                ElementsAre(failureOf("IMMDevice::Activate(IAudioEndpointVolume, 23)", "endpoint1")));
}

TEST_F(SurveyVolume, IsRecordedOfAnEndpointThatIsNotPresent)
{
    sim::Machine machine = machineWithOneEndpoint();
    machine.endpoints[0].state = sim::stateNotPresent;
    start(machine);

    EXPECT_TRUE(survey().machine.endpoints[0].volume);
}
}
