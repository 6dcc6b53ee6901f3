// What a survey of hardware takes in the place of what cannot be read, or what no machine file can contain.
#include "client/capturing/hardware.h"
#include "simulator/machine/builder/machinebuilder.h"
#include "tests/client/capturing/supporthardware.h"
#include "tests/support/clienttest.h"

#include <algorithm>
#include <string>
#include <utility>

namespace
{
using namespace sonavit;
using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

/// A card with a speaker that has a volume node and a mute node.
class SurveyHardwareOfACard : public support::ClientTest
{
protected:
    SurveyHardwareOfACard()
    {
        sim::CardBuilder card = m_builder.card("Card");
        sim::EndpointBuilder speaker = card.speaker();
        speaker.hardwareVolume({-60.0f, 0.0f, 1.0f, -6.0f}, 2);
        speaker.hardwareMute(true);
        jack = speaker.jackId();
        plug = speaker.connectorId();
        adapter = card.adapter().id;
        machine = m_builder.machine();
    }

    capturing::Survey survey(const std::string& operation, const std::string& object,
                             std::vector<std::string> arguments = {}, HRESULT result = E_FAIL)
    {
        sim::FaultRule rule;
        rule.operation = operation;
        rule.object = object;
        rule.arguments = std::move(arguments);
        rule.result = result;
        sim::Machine failing = machine;
        failing.faults.push_back(rule);
        return survey(failing);
    }

    capturing::Survey survey(const sim::Machine& surveyed)
    {
        play(surveyed);
        const auto com = support::comOnThisThread();
        return support::surveyedHardware();
    }

    void expectTheWholeHardware(const capturing::Survey& found)
    {
        EXPECT_THAT(support::hardwareDifferences(machine, found.machine), IsEmpty());
        EXPECT_EQ(1u, found.failures.size());
        EXPECT_THAT(found.notes, IsEmpty());
    }

    sim::Machine machine;
    std::string jack;
    std::string plug;
    std::string adapter;

private:
    sim::MachineBuilder m_builder;
};

TEST_F(SurveyHardwareOfACard, ReadsConnectorsThatCannotBeCountedUpToTheLast)
{
    expectTheWholeHardware(survey("IDeviceTopology::GetConnectorCount", adapter));
}

TEST_F(SurveyHardwareOfACard, FindsConnectorsThatTheTopologyRefusesOnOtherRoads)
{
    expectTheWholeHardware(survey("IDeviceTopology::GetConnector", adapter, {"0"}));
}

TEST_F(SurveyHardwareOfACard, FindsSubunitsThatTheTopologyRefusesAmongNeighbours)
{
    expectTheWholeHardware(survey("IDeviceTopology::GetSubunit", adapter, {"1"}));
}

TEST_F(SurveyHardwareOfACard, ReadsNeighboursThatCannotBeCountedUpToTheLast)
{
    expectTheWholeHardware(survey("IPartsList::GetCount", jack + " incoming"));
}

TEST_F(SurveyHardwareOfACard, TakesTheTopologyOfAnAdapterFromItsConnector)
{
    const capturing::Survey found = survey("IMMDevice::Activate", adapter, {"IDeviceTopology"});

    expectTheWholeHardware(found);
    EXPECT_TRUE(found.machine.adapters.at(0).openable);
}

TEST_F(SurveyHardwareOfACard, RecordsAnAdapterThatCannotBeOpenedWithTheTopologyOfItsConnector)
{
    machine.adapters.front().openable = false;

    const capturing::Survey found = survey(machine);

    EXPECT_THAT(support::hardwareDifferences(machine, found.machine), IsEmpty());
    EXPECT_FALSE(found.machine.adapters.at(0).openable);
    EXPECT_THAT(found.failures, IsEmpty());
}

TEST_F(SurveyHardwareOfACard, RecordsAConnectorOfWhichOnlyTheIdIsKnown)
{
    machine.adapters.front().openable = false;

    const capturing::Survey found = survey("IConnector::GetConnectedTo", plug);

    ASSERT_EQ(1u, found.machine.adapters.size());
    EXPECT_FALSE(found.machine.adapters.front().openable);
    ASSERT_EQ(1u, found.machine.adapters.front().topology->connectors.size());
    EXPECT_EQ(jack, found.machine.adapters.front().topology->connectors.front().id);
    EXPECT_EQ(adapter, found.machine.peer(plug)->device);
}

TEST_F(SurveyHardwareOfACard, InventsTheIdOfAPartThatReportsNone)
{
    for (sim::Subunit& subunit : machine.adapters.front().topology->subunits)
        subunit.reportsId = false;

    const capturing::Survey found = survey(machine);

    EXPECT_THAT(support::hardwareDifferences(machine, found.machine), IsEmpty());
    for (const sim::Subunit& subunit : found.machine.adapters.at(0).topology->subunits)
        EXPECT_FALSE(subunit.reportsId);
}

TEST_F(SurveyHardwareOfACard, TriesAllControlsOfAPartWhoseControlsCannotBeListed)
{
    const std::string volume = machine.adapters.front().topology->subunits.front().id;

    expectTheWholeHardware(survey("IPart::GetControlInterface", volume, {"0"}));
}

TEST_F(SurveyHardwareOfACard, RecordsAControlThatIsRefusedAsAFurtherOne)
{
    const std::string volume = machine.adapters.front().topology->subunits.front().id;

    const capturing::Survey found = survey("IPart::Activate", volume, {"IAudioVolumeLevel"});

    const sim::Subunit& part = found.machine.adapters.at(0).topology->subunits.front();
    EXPECT_FALSE(part.volume);
    ASSERT_EQ(1u, part.furtherControls.size());
    EXPECT_TRUE(IsEqualGUID(IID_IAudioVolumeLevel, part.furtherControls.front().interfaceId));
    EXPECT_THAT(support::textsOf(found.failures), ElementsAre("IPart::Activate(IAudioVolumeLevel, 23) on " + volume));
}

TEST_F(SurveyHardwareOfACard, RecordsAMixedPathAndTheOneThatIsNotMixed)
{
    sim::Topology& topology = *machine.adapters.front().topology;
    ASSERT_EQ(1u, topology.signalPaths.size());
    sim::SignalPath unmixed = topology.signalPaths.front();
    unmixed.through.pop_back();
    topology.signalPaths.front().mixed = true;
    topology.signalPaths.push_back(unmixed);

    const capturing::Survey found = survey(machine);

    EXPECT_TRUE(topology.signalPaths == found.machine.adapters.at(0).topology->signalPaths);
}

TEST_F(SurveyHardwareOfACard, NotesAConnectorThatIsJoinedToItself)
{
    machine.joins = {{plug, plug, {}, false}};

    const capturing::Survey found = survey(machine);

    ASSERT_EQ(1u, found.machine.joins.size());
    EXPECT_EQ("", found.machine.joins.front().to);
    EXPECT_EQ(machine.endpoints.front().id, found.machine.joins.front().toDevice);
    EXPECT_THAT(found.notes, Contains(HasSubstr("is joined to itself")));
}

TEST_F(SurveyHardwareOfACard, NotesASelectionThatIsNoIncomingPart)
{
    machine.adapters.front().topology->subunits.front().selector = sim::SelectorControl{77};

    const capturing::Survey found = survey(machine);

    EXPECT_EQ(0u, found.machine.adapters.at(0).topology->subunits.front().selector->selection);
    EXPECT_THAT(found.notes, ElementsAre(HasSubstr("selects what is no incoming part")));
}

TEST_F(SurveyHardwareOfACard, NotesPartsWithTheSameLocalId)
{
    sim::Topology& topology = *machine.adapters.front().topology;
    topology.subunits[1].localId = topology.subunits[0].localId;

    const capturing::Survey found = survey(machine);

    const sim::Topology& recorded = *found.machine.adapters.at(0).topology;
    EXPECT_EQ(topology.subunits[0].localId, recorded.subunits[0].localId);
    EXPECT_NE(topology.subunits[0].localId, recorded.subunits[1].localId);
    EXPECT_THAT(found.notes, ElementsAre(HasSubstr("have the same local id")));
}

/// Each part is asked for its data once, however many ways lead to it.
TEST_F(SurveyHardwareOfACard, AsksEachPartOnce)
{
    survey(machine);

    for (const char* const operation :
         {"IPart::GetName", "IPart::GetSubType", "IPart::EnumPartsIncoming", "IPart::GetControlInterfaceCount"})
        EXPECT_EQ(5u, simulation().journal().count(operation)) << operation;
    EXPECT_EQ(1u, simulation().journal().count("IMMDeviceEnumerator::GetDevice"));
}
}
