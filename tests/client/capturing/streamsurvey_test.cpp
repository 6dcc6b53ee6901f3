#include "simulator/machine/deviceformat.h"
#include "simulator/machine/propertykeys.h"
#include "tests/client/capturing/surveytest.h"

namespace
{
using testing::ElementsAre;
using testing::IsEmpty;

class SurveyStreams : public SurveyTest
{
protected:
    const sim::Endpoint& surveyOne(const sim::Machine& described)
    {
        start(described);
        found = survey();
        expectSame(found, replay(found));
        return found.machine.endpoints[0];
    }

    sim::Machine machine = machineWithOneEndpoint();
    sim::Endpoint& endpoint = machine.endpoints[0];
    capturing::Survey found;
};

TEST_F(SurveyStreams, RecordsMixFormatAndPeriods)
{
    endpoint.mixFormat = sim::MixFormat{{24, 44100, 6}, false};
    endpoint.periods = sim::DevicePeriods{100000, 50000};

    const sim::Endpoint& surveyed = surveyOne(machine);

    EXPECT_EQ(endpoint.mixFormat, surveyed.mixFormat);
    EXPECT_THAT(surveyed.mixFormatBytes, IsEmpty());
    EXPECT_EQ(endpoint.periods, surveyed.periods);
}

TEST_F(SurveyStreams, RecordsAMixFormatThatFollowsFromTheDeviceFormat)
{
    endpoint.mixFormat.reset();
    endpoint.properties = {
        {sim::keys::deviceFormat, sim::PropertyValue::ofBytes(sim::DeviceFormat{16, 96000, 2}.bytes())}};

    EXPECT_EQ("32f/96000/2", surveyOne(machine).mixFormat.value().text());
}

TEST_F(SurveyStreams, TakesForGrantedThatThereIsNoMixFormatWithoutDeviceFormat)
{
    endpoint.mixFormat.reset();

    EXPECT_FALSE(surveyOne(machine).mixFormat);
    EXPECT_THAT(failuresOf(found), IsEmpty());
}

TEST_F(SurveyStreams, NotesAMixFormatThatFailsInSpiteOfADeviceFormat)
{
    endpoint.properties = {
        {sim::keys::deviceFormat, sim::PropertyValue::ofBytes(sim::DeviceFormat{16, 96000, 2}.bytes())}};
    start(machine);
    simulation().faults().fail("IAudioClient::GetMixFormat", AUDCLNT_E_UNSUPPORTED_FORMAT);

    found = survey();

    EXPECT_FALSE(found.machine.endpoints[0].mixFormat);
    EXPECT_THAT(failuresOf(found), ElementsAre(failureOf("IAudioClient::GetMixFormat", endpoint.id, "0x88890008")));
    expectSame(found, replay(found));
}

TEST_F(SurveyStreams, NotesPeriodsThatFailOrAreNull)
{
    start(machine);
    simulation().faults().succeedWithNull("IAudioClient::GetDevicePeriod");

    found = survey();

    EXPECT_FALSE(found.machine.endpoints[0].periods);
    EXPECT_THAT(failuresOf(found), ElementsAre(failureOf("IAudioClient::GetDevicePeriod", endpoint.id, "null")));
    expectSame(found, replay(found));
}

TEST_F(SurveyStreams, ReplacesPeriodsThatNoMachineHasAndNotesThem)
{
    endpoint.periods = sim::DevicePeriods{10000, 20000};

    const sim::Endpoint& surveyed = surveyOne(machine);

    EXPECT_EQ(10000u, surveyed.periods->usual);
    EXPECT_EQ(10000u, surveyed.periods->minimum);
    EXPECT_THAT(found.notes, ElementsAre("The periods of " + endpoint.id +
                                         " are 10000 and 20000, which no machine "
                                         "has."));
}
}
