#include "tests/client/capturing/surveytest.h"

namespace
{
using testing::ElementsAre;
using testing::IsEmpty;

const std::string allOf = "endpoints(eAll, 15)";

/// Endpoints of both flows, mixed: "out0", "in1", "out2" and so on.
sim::Machine mixedMachine(const std::vector<EDataFlow>& flows)
{
    sim::Machine machine;
    machine.name = "mixed";
    machine.composition = sim::Composition::none;
    for (const EDataFlow flow : flows)
    {
        sim::Endpoint endpoint;
        endpoint.id = (flow == eRender ? "out" : "in") + std::to_string(machine.endpoints.size());
        endpoint.flow = flow;
        machine.endpoints.push_back(endpoint);
    }
    return machine;
}

class SurveyEndpoints : public SurveyTest
{
protected:
    sim::Simulation& startMixed() { return start(mixedMachine({eRender, eCapture, eRender, eCapture, eRender})); }

    sim::FaultPlan& faults() { return simulation().faults(); }

    std::vector<std::string> idsOf(const capturing::Survey& found)
    {
        std::vector<std::string> ids;
        for (const sim::Endpoint& endpoint : found.machine.endpoints)
            ids.push_back(endpoint.id);
        return ids;
    }
};

TEST_F(SurveyEndpoints, RecordsThemInTheOrderOfThePlatformWithoutThoseThatAreNotInstalled)
{
    sim::Machine machine = mixedMachine({eCapture, eRender, eRender});
    machine.endpoints[1].installed = false;
    start(machine);

    const capturing::Survey found = survey();

    EXPECT_THAT(idsOf(found), ElementsAre("in0", "out2"));
    EXPECT_EQ(eCapture, found.machine.endpoints[0].flow);
    EXPECT_EQ(eRender, found.machine.endpoints[1].flow);
    EXPECT_THAT(failuresOf(found), IsEmpty());
    EXPECT_THAT(found.notes, IsEmpty());
}

TEST_F(SurveyEndpoints, TakesOneFlowAfterTheOtherIfTheListOfAllFails)
{
    startMixed();
    faults().fail("IMMDeviceEnumerator::EnumAudioEndpoints").with("eAll");

    const capturing::Survey found = survey();

    EXPECT_THAT(idsOf(found), ElementsAre("out0", "out2", "out4", "in1", "in3"));
    EXPECT_THAT(failuresOf(found),
                ElementsAre(failureOf("IMMDeviceEnumerator::EnumAudioEndpoints(eAll, 15)", "enumerator")));
    expectSame(found, replay(found));
}

TEST_F(SurveyEndpoints, TakesOneFlowAfterTheOtherIfTheListOfAllCannotBeCounted)
{
    startMixed();
    faults().fail("IMMDeviceCollection::GetCount").on(allOf);

    const capturing::Survey found = survey();

    EXPECT_THAT(idsOf(found), ElementsAre("out0", "out2", "out4", "in1", "in3"));
    EXPECT_THAT(failuresOf(found), ElementsAre(failureOf("IMMDeviceCollection::GetCount", allOf)));
}

TEST_F(SurveyEndpoints, FindsWhatTheListOfAllDoesNotGiveInTheListsOfTheFlows)
{
    startMixed();
    faults().fail("IMMDeviceCollection::Item").on(allOf).with("1");
    faults().fail("IMMDeviceCollection::Item").on(allOf).with("2");

    const capturing::Survey found = survey();

    EXPECT_THAT(idsOf(found), ElementsAre("out0", "in1", "out2", "in3", "out4"));
    EXPECT_THAT(failuresOf(found), ElementsAre(failureOf("IMMDeviceCollection::Item(1)", allOf),
                                               failureOf("IMMDeviceCollection::Item(2)", allOf)));
    expectSame(found, replay(found));
}

TEST_F(SurveyEndpoints, InventsAnEndpointThatNoListGives)
{
    startMixed();
    faults().fail("IMMDeviceCollection::Item").on(allOf).with("3");
    faults().fail("IMMDeviceCollection::Item").on("endpoints(eCapture, 15)").with("1");

    const capturing::Survey found = survey();

    EXPECT_THAT(idsOf(found), ElementsAre("out0", "in1", "out2", "{0.0.0.00000000}.{captured-3}", "out4"));
    EXPECT_EQ(eCapture, found.machine.endpoints[3].flow);
    EXPECT_THAT(failuresOf(found), ElementsAre(failureOf("IMMDeviceCollection::Item(3)", allOf),
                                               failureOf("IMMDeviceCollection::Item(1)", "endpoints(eCapture, 15)")));
    expectSame(found, replay(found));
}

TEST_F(SurveyEndpoints, InventsEndpointsOfAFlowWithoutList)
{
    startMixed();
    faults().succeedWithNull("IMMDeviceCollection::Item").on(allOf).with("3");
    faults().fail("IMMDeviceEnumerator::EnumAudioEndpoints").with("eCapture");

    const capturing::Survey found = survey();

    EXPECT_THAT(idsOf(found), ElementsAre("out0", "in1", "out2", "{0.0.0.00000000}.{captured-3}", "out4"));
    EXPECT_EQ(eCapture, found.machine.endpoints[3].flow);
    EXPECT_EQ(failureOf("IMMDeviceCollection::Item(3)", allOf, "null"), failuresOf(found).front());
    expectSame(found, replay(found));
}

TEST_F(SurveyEndpoints, InventsTheIdOfAnEndpointWhoseIdFails)
{
    startMixed();
    faults().fail("IMMDevice::GetId").on("in1");
    faults().succeedWithNull("IMMDevice::GetId").on("out4");

    const capturing::Survey found = survey();

    EXPECT_THAT(idsOf(found),
                ElementsAre("out0", "{0.0.0.00000000}.{captured-1}", "out2", "in3", "{0.0.0.00000000}.{captured-4}"));
    EXPECT_EQ(eCapture, found.machine.endpoints[1].flow);
    EXPECT_THAT(failuresOf(found), ElementsAre(failureOf("IMMDevice::GetId", "{0.0.0.00000000}.{captured-1}"),
                                               failureOf("IMMDevice::GetId", "{0.0.0.00000000}.{captured-4}", "null")));
    expectSame(found, replay(found));
}

TEST_F(SurveyEndpoints, InventsNoIdThatAnotherEndpointHas)
{
    sim::Machine machine = mixedMachine({eRender, eRender});
    machine.endpoints[1].id = "{0.0.0.00000000}.{captured-0}";
    start(machine);
    faults().fail("IMMDevice::GetId").on("out0");

    const capturing::Survey found = survey();

    EXPECT_THAT(idsOf(found), ElementsAre("{0.0.0.00000000}.{captured-0x}", "{0.0.0.00000000}.{captured-0}"));
    expectSame(found, replay(found));
}

TEST_F(SurveyEndpoints, KeepsIdsApartThatDifferInCaseAlone)
{
    sim::Machine machine = mixedMachine({eRender, eRender});
    machine.endpoints[1].id = "OUT0";
    start(machine);

    const capturing::Survey found = survey();

    EXPECT_THAT(idsOf(found), ElementsAre("out0", "OUT0"));
    EXPECT_THAT(found.notes, IsEmpty());
}

TEST_F(SurveyEndpoints, NotesAnIdThatIsListedTwiceAndKeepsItOnce)
{
    sim::Machine machine = mixedMachine({eRender, eRender, eRender});
    machine.endpoints[2].id = "out0";
    start(machine);

    const capturing::Survey found = survey();

    EXPECT_THAT(idsOf(found), ElementsAre("out0", "out1"));
    EXPECT_THAT(found.notes, ElementsAre("The list of all endpoints has the id out0 twice."));
}

TEST_F(SurveyEndpoints, AsksTheListsOfTheFlowsForTheFlowOfAnEndpointThatDoesNotSay)
{
    startMixed();
    faults().fail("IMMDevice::QueryInterface").on("in1").with("IMMEndpoint");
    faults().fail("IMMEndpoint::GetDataFlow").on("in3");

    const capturing::Survey found = survey();

    EXPECT_EQ(eCapture, found.machine.endpoints[1].flow);
    EXPECT_EQ(eCapture, found.machine.endpoints[3].flow);
    EXPECT_THAT(failuresOf(found), ElementsAre(failureOf("IMMDevice::QueryInterface(IMMEndpoint)", "in1"),
                                               failureOf("IMMEndpoint::GetDataFlow", "in3")));
    expectSame(found, replay(found));
}

TEST_F(SurveyEndpoints, AsksTheListsOfSingleStatesForTheStateOfAnEndpointThatDoesNotSay)
{
    sim::Machine machine = mixedMachine({eRender, eRender, eRender});
    machine.endpoints[0].state = sim::stateUnplugged;
    machine.endpoints[1].state = sim::stateActive | sim::stateNotPresent;
    machine.endpoints[2].state = sim::stateDisabled;
    start(machine);
    faults().fail("IMMDevice::GetState").on("out0");
    faults().succeedWithNull("IMMDevice::GetState").on("out1");

    const capturing::Survey found = survey();

    EXPECT_EQ(sim::stateUnplugged, found.machine.endpoints[0].state);
    EXPECT_EQ(sim::stateActive | sim::stateNotPresent, found.machine.endpoints[1].state);
    EXPECT_EQ(sim::stateDisabled, found.machine.endpoints[2].state);
    EXPECT_THAT(failuresOf(found), ElementsAre(failureOf("IMMDevice::GetState", "out0"),
                                               failureOf("IMMDevice::GetState", "out1", "null")));
    expectSame(found, replay(found));
}

TEST_F(SurveyEndpoints, FindsFlowAndStateOfAnEndpointWithoutId)
{
    sim::Machine machine = mixedMachine({eRender, eCapture});
    machine.endpoints[1].state = sim::stateUnplugged;
    start(machine);
    for (const char* const operation : {"IMMDevice::GetId", "IMMDevice::GetState", "IMMEndpoint::GetDataFlow"})
        faults().fail(operation).on("in1");

    const capturing::Survey found = survey();

    EXPECT_EQ(eCapture, found.machine.endpoints[1].flow);
    EXPECT_EQ(sim::stateUnplugged, found.machine.endpoints[1].state);
    expectSame(found, replay(found));
}

TEST_F(SurveyEndpoints, PausesAfterEachEndpoint)
{
    startMixed();
    int pauses = 0;

    capturing::surveyPlatform([&] { ++pauses; });

    EXPECT_LE(5, pauses);
}
}
