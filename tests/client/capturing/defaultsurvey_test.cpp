#include "tests/client/capturing/surveytest.h"

namespace
{
using testing::ElementsAre;
using testing::IsEmpty;

/// Two outputs and one input, all active.
class SurveyDefaults : public SurveyTest
{
protected:
    SurveyDefaults()
    {
        machine = machineWithOneEndpoint();
        machine.endpoints[0].id = "out";
        machine.endpoints.resize(3, machine.endpoints[0]);
        machine.endpoints[1].id = "other";
        machine.endpoints[2].id = "in";
        machine.endpoints[2].flow = eCapture;
    }

    sim::Machine machine;
};

TEST_F(SurveyDefaults, RecordsThemByFlowAndRole)
{
    machine.endpoints[0].defaultFor = {eConsole, eCommunications};
    machine.endpoints[1].defaultFor = {eMultimedia};
    machine.endpoints[2].defaultFor = {eMultimedia};
    start(machine);

    const capturing::Survey found = survey();

    EXPECT_THAT(found.machine.endpoints[0].defaultFor, ElementsAre(eConsole, eCommunications));
    EXPECT_THAT(found.machine.endpoints[1].defaultFor, ElementsAre(eMultimedia));
    EXPECT_THAT(found.machine.endpoints[2].defaultFor, ElementsAre(eMultimedia));
    EXPECT_THAT(failuresOf(found), IsEmpty());
}

TEST_F(SurveyDefaults, NotesThoseThatFailWithBothArguments)
{
    machine.endpoints[0].defaultFor = {eConsole};
    start(machine);
    simulation().faults().fail("IMMDeviceEnumerator::GetDefaultAudioEndpoint").with("eRender");

    const capturing::Survey found = survey();

    const std::string call = "IMMDeviceEnumerator::GetDefaultAudioEndpoint";
    EXPECT_THAT(failuresOf(found), ElementsAre(failureOf(call + "(eRender, eConsole)", "enumerator"),
                                               failureOf(call + "(eRender, eMultimedia)", "enumerator"),
                                               failureOf(call + "(eRender, eCommunications)", "enumerator")));
    expectSame(found, replay(found));
}

TEST_F(SurveyDefaults, AreTheEndpointWithoutIdIfTheirIdFails)
{
    machine.endpoints[1].defaultFor = {eConsole};
    start(machine);
    simulation().faults().fail("IMMDevice::GetId").on("other");

    const capturing::Survey found = survey();

    EXPECT_THAT(found.machine.endpoints[1].defaultFor, ElementsAre(eConsole));
    EXPECT_THAT(failuresOf(found), ElementsAre(failureOf("IMMDevice::GetId", "{0.0.0.00000000}.{captured-1}")));
    expectSame(found, replay(found));
}

TEST_F(SurveyDefaults, FailThemselvesIfTheirIdFailsAndNoEndpointIsWithoutId)
{
    machine.endpoints[0].defaultFor = {eConsole};
    start(machine);
    simulation().faults().fail("IMMDevice::GetId").on("out").at(2);

    const capturing::Survey found = survey();

    EXPECT_THAT(found.machine.endpoints[0].defaultFor, IsEmpty());
    EXPECT_THAT(
        failuresOf(found),
        ElementsAre(failureOf("IMMDeviceEnumerator::GetDefaultAudioEndpoint(eRender, eConsole)", "enumerator")));
    expectSame(found, replay(found));
}
}
