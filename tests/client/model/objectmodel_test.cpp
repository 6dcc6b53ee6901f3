#include "client/model/objectmodel.h"

#include "libSonavit/audiodeviceendpoint.h"
#include "libSonavit/endpointdeviceenumerator.h"
#include "libSonavit/soundcardinterface.h"
#include "simulator/machine/builder/machinebuilder.h"
#include "simulator/machine/file/machinefile.h"
#include "simulator/machine/nodetypes.h"
#include "simulator/machine/propertykeys.h"
#include "simulator/redirection.h"
#include "simulator/simulation.h"
#include "tests/support/logcapture.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <memory>

namespace
{
using sonavit::CardId;
using sonavit::EndpointField;
using sonavit::EndpointId;
using sonavit::Flow;
using sonavit::Percent;
using sonavit::Problem;
using sonavit::Role;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::SizeIs;

/// Reads a machine with the object model, which ends with the test.
class ObjectModel : public testing::Test
{
protected:
    void SetUp() override
    {
        ASSERT_TRUE(SUCCEEDED(CoInitialize(nullptr)));
        AudioDevice::setStoreAccess(StoreAccess::writeElseRead);
    }

    void TearDown() override
    {
        libSonavit::AudioDeviceEnumeratorFactory::m_enumerator = nullptr; // ends the module for this machine
        m_simulation.reset();
        CoUninitialize();
    }

    sim::Simulation& play(const sim::Machine& machine)
    {
        m_simulation = std::make_unique<sim::Simulation>(machine);
        return *m_simulation;
    }

    sonavit::model::ObjectModel model;

private:
    sim::Redirection m_redirection{reinterpret_cast<const void*>(&enumerateSoundCards)}; // that of the object model
    std::unique_ptr<sim::Simulation> m_simulation;
    support::LogCapture m_log{qor::LoggerPriority::LOG_FATAL};
};

using ObjectModelSnapshot = ObjectModel;
using ObjectModelControls = ObjectModel;
using ObjectModelSelectors = ObjectModel;
using ObjectModelGraph = ObjectModel;

std::vector<std::string> sentencesOf(const std::vector<Problem>& problems)
{
    std::vector<std::string> sentences;
    for (const Problem& problem : problems)
        sentences.push_back(problem.sentence());
    return sentences;
}

TEST_F(ObjectModelSnapshot, HasWhatTheObjectModelKnowsOfAnEndpoint)
{
    sim::MachineBuilder bench;
    const sim::EndpointBuilder speaker = bench.card("Analog Audio").speaker().level(-12.0f).muted();
    play(bench.build());

    const sonavit::Snapshot snapshot = model.snapshot();

    ASSERT_THAT(snapshot.cards(), SizeIs(1));
    EXPECT_EQ("Analog Audio", snapshot.cards()[0].title());
    const std::optional<sonavit::Endpoint> endpoint = snapshot.endpoint(EndpointId(speaker.id()));
    ASSERT_TRUE(endpoint);
    EXPECT_EQ("Speakers (Analog Audio)", endpoint->title());
    EXPECT_TRUE(endpoint->isActive());
    EXPECT_TRUE(endpoint->roles().contains(Role::communications));
    EXPECT_EQ(sonavit::NodeKind::speaker, endpoint->jackKind());
    EXPECT_EQ(0u, endpoint->waveId());
    EXPECT_EQ(48000u, endpoint->format().value_or(sonavit::Format()).rate);
    ASSERT_TRUE(endpoint->volume());
    EXPECT_EQ(sonavit::Decibels(-12.0), endpoint->volume()->master.decibels);
    EXPECT_EQ(true, endpoint->volume()->isMuted);
    EXPECT_THAT(endpoint->problems(), IsEmpty());
}

TEST_F(ObjectModelSnapshot, HasNoValueForWhatTheObjectModelDoesNotKnow)
{
    sim::MachineBuilder bench;
    const sim::EndpointBuilder speaker = bench.usbCard("USB Audio").speaker();
    play(bench.build());

    const sonavit::Snapshot snapshot = model.snapshot();

    const sonavit::CardEndpoint place{snapshot.cards()[0], *snapshot.endpoint(EndpointId(speaker.id()))};
    EXPECT_FALSE(place.card.container());
    EXPECT_FALSE(place.card.bus());
    EXPECT_FALSE(place.card.parent());
    EXPECT_FALSE(place.endpoint.container());
    EXPECT_FALSE(place.endpoint.jacks()[0].formFactor);
    EXPECT_FALSE(place.endpoint.volume()->isInHardware);
}

TEST_F(ObjectModelSnapshot, HasPercentInWholeNumbers)
{
    sim::MachineBuilder bench;
    sim::EndpointVolume volume;
    volume.minimum = -60.0f;
    volume.channels = {-20.1f};
    const sim::EndpointBuilder speaker = bench.card("Analog Audio").speaker().volume(volume);
    play(bench.build());

    const sonavit::Snapshot snapshot = model.snapshot();

    EXPECT_EQ(Percent(67), snapshot.endpoint(EndpointId(speaker.id()))->volume()->master.percent);
}

TEST_F(ObjectModelSnapshot, HasNoValueWhereTheObjectModelHasAStartValueAfterAFailure)
{
    sim::MachineBuilder bench;
    const sim::EndpointBuilder speaker = bench.card("Analog Audio").speaker();
    sim::Simulation& simulation = play(bench.build());
    for (const char* const operation :
         {"IMMDevice::GetState", "IAudioEndpointVolume::GetMute", "IAudioEndpointVolume::GetMasterVolumeLevelScalar",
          "IAudioEndpointVolume::GetChannelCount"})
        simulation.faults().fail(operation, E_FAIL).on(speaker.id());

    const sonavit::Endpoint endpoint = *model.snapshot().endpoint(EndpointId(speaker.id()));

    EXPECT_FALSE(endpoint.state());
    EXPECT_FALSE(endpoint.volume()->isMuted);
    EXPECT_FALSE(endpoint.volume()->master.percent);
    EXPECT_FALSE(endpoint.volume()->channels);
    EXPECT_TRUE(endpoint.volume()->master.decibels);
    EXPECT_EQ("IMMDevice::GetState", endpoint.problemWith(EndpointField::state)->operation());
    EXPECT_TRUE(endpoint.problemWith(EndpointField::volume));
}

TEST_F(ObjectModelSnapshot, HasNoChannelsOfWhichTheFirstCountDidNotTell)
{
    sim::MachineBuilder bench;
    const sim::EndpointBuilder speaker = bench.card("Analog Audio").speaker(); // stereo
    sim::Simulation& simulation = play(bench.build());
    sim::PlannedFault first = simulation.faults().lie("IAudioEndpointVolume::GetChannelCount", sim::Lie::ofNumber(1));
    simulation.faults().lie("IAudioEndpointVolume::GetChannelCount", sim::Lie::ofNumber(5)).at(2);
    first.at(1);

    const sonavit::Endpoint endpoint = *model.snapshot().endpoint(EndpointId(speaker.id()));

    EXPECT_THAT(endpoint.volume()->channels, testing::Optional(SizeIs(1)));
}

TEST_F(ObjectModelSnapshot, SaysWhyAnEndpointHasNoName)
{
    sim::MachineBuilder bench;
    const sim::EndpointBuilder speaker = bench.card("Analog Audio").speaker();
    sim::Simulation& simulation = play(bench.build());
    simulation.faults().fail("IMMDevice::OpenPropertyStore", E_ACCESSDENIED).on(speaker.id());

    const sonavit::Endpoint endpoint = *model.snapshot().endpoint(EndpointId(speaker.id()));

    EXPECT_FALSE(endpoint.name());
    EXPECT_EQ("IMMDevice::OpenPropertyStore failed: 0x80070005, access denied",
              endpoint.problemWith(EndpointField::description)->sentence());
}

TEST_F(ObjectModelSnapshot, PutsAllEndpointsWithoutAnInstancePathIntoOneCard)
{
    sim::MachineBuilder bench;
    bench.card("One").speaker().withoutProperty(sim::keys::instancePath);
    bench.usbCard("Two").headphones().withoutProperty(sim::keys::instancePath);
    play(bench.build());

    const sonavit::Snapshot snapshot = model.snapshot();

    ASSERT_THAT(snapshot.cards(), SizeIs(1));
    EXPECT_TRUE(snapshot.cards()[0].id().isEmpty());
    EXPECT_EQ("Endpoints of no known card", snapshot.cards()[0].title());
    EXPECT_THAT(snapshot.cards()[0].endpoints(), SizeIs(2));
}

TEST_F(ObjectModelSnapshot, SaysWhyItIsEmptyIfThereIsNoEnumerator)
{
    sim::Simulation& simulation = play(sim::findMachine("desktop"));
    simulation.faults().fail("CoCreateInstance", E_ACCESSDENIED);

    const sonavit::Snapshot snapshot = model.snapshot();

    EXPECT_THAT(snapshot.cards(), IsEmpty());
    EXPECT_THAT(sentencesOf(snapshot.problems()),
                ElementsAre("CoCreateInstance(MMDeviceEnumerator) failed: 0x80070005, access denied"));
}

TEST_F(ObjectModelSnapshot, SaysWhyAFlowIsEmpty)
{
    sim::Simulation& simulation = play(sim::findMachine("desktop"));
    simulation.faults().fail("IMMDeviceEnumerator::EnumAudioEndpoints", E_FAIL).with("eCapture");

    const sonavit::Snapshot snapshot = model.snapshot();

    EXPECT_FALSE(snapshot.cards().empty());
    EXPECT_THAT(sentencesOf(snapshot.problems()),
                ElementsAre(HasSubstr("IMMDeviceEnumerator::EnumAudioEndpoints(eCapture) failed")));
}

TEST_F(ObjectModelSnapshot, NamesTheEndpointsForWhichThereIsNoCard)
{
    sim::MachineBuilder bench;
    bench.card("Analog Audio").speaker();
    sim::Simulation& simulation = play(bench.build());
    simulation.faults().fail("IMMDeviceEnumerator::EnumAudioEndpoints", E_FAIL).with("eRender").at(2);

    const sonavit::Snapshot snapshot = model.snapshot();

    EXPECT_THAT(snapshot.cards(), IsEmpty());
    EXPECT_THAT(sentencesOf(snapshot.problems()),
                ElementsAre("the object model has no card for Speakers (Analog Audio)"));
}

TEST_F(ObjectModelControls, AreTheLevelsNextToTheConnectorsOfTheWay)
{
    sim::MachineBuilder bench;
    sim::CardBuilder card = bench.card("Analog Audio");
    const sim::EndpointBuilder speaker = card.speaker().hardwareVolume({-96.0f, 0.0f, 1.5f, -30.0f}).hardwareMute(true);
    play(bench.build());

    const std::vector<sonavit::Control> controls = model.controls(EndpointId(speaker.id())).value();

    ASSERT_THAT(controls, SizeIs(1));
    EXPECT_EQ("Speakers", controls[0].ownerName);
    EXPECT_TRUE(controls[0].id.isEmpty());
    EXPECT_TRUE(controls[0].hasMute);
    EXPECT_EQ(true, controls[0].isMuted);
    ASSERT_TRUE(controls[0].channels);
    EXPECT_EQ(Percent(69), controls[0].channels->front().level.percent);
}

TEST_F(ObjectModelControls, HaveNoChannelsOfWhichTheirFirstCountDidNotTell)
{
    sim::MachineBuilder bench;
    sim::CardBuilder card = bench.card("Analog Audio");
    const sim::EndpointBuilder speaker = card.speaker().hardwareVolume({-96.0f, 0.0f, 1.5f, -30.0f});
    for (std::uint32_t call = 1; call <= 4; ++call)
    {
        sim::Simulation& simulation = play(bench.build());
        sim::PlannedFault counted =
            simulation.faults().lie("IAudioVolumeLevel::GetChannelCount", sim::Lie::ofNumber(50));
        counted.at(call);

        const std::vector<sonavit::Control> controls = model.controls(EndpointId(speaker.id())).value();

        EXPECT_THAT(controls, SizeIs(2)) << call;
        for (const sonavit::Control& control : controls)
            EXPECT_THAT(control.channels, testing::Optional(SizeIs(testing::Le(2)))) << call;
    }
}

TEST_F(ObjectModelControls, OfAnUnknownEndpointAreAProblem)
{
    play(sim::findMachine("desktop"));

    const auto controls = model.controls(EndpointId("nothing"));

    ASSERT_FALSE(controls);
    EXPECT_EQ(Problem::Kind::notThere, controls.problem().kind());
}

TEST_F(ObjectModelControls, AreAProblemIfTheWalkLeavesTheGraph)
{
    sim::MachineBuilder bench;
    sim::CardBuilder card = bench.card("Analog Audio");
    const sim::EndpointBuilder speaker = card.speaker().hardwareVolume({});
    card.adapter().openable = false;
    play(bench.build());

    const auto controls = model.controls(EndpointId(speaker.id()));

    ASSERT_FALSE(controls);
    EXPECT_EQ(Problem::Kind::internal, controls.problem().kind());
    EXPECT_THAT(controls.problem().sentence(), HasSubstr("a part that the card's graph does not contain"));
}

TEST_F(ObjectModelControls, AreAProblemIfThePlatformSucceedsWithoutAResult)
{
    sim::MachineBuilder bench;
    const sim::EndpointBuilder speaker = bench.card("Analog Audio").speaker().hardwareVolume({});
    sim::Simulation& simulation = play(bench.build());
    simulation.faults().succeedWithNull("IPart::EnumPartsIncoming");

    const auto controls = model.controls(EndpointId(speaker.id()));

    ASSERT_FALSE(controls);
    EXPECT_THAT(controls.problem().sentence(), HasSubstr("success without a result"));
}

TEST_F(ObjectModelSelectors, HaveTheConnectorsBehindTheirInputs)
{
    play(sim::findMachine("studio"));
    std::vector<sonavit::Selector> selectors;

    for (const sonavit::Card& card : model.snapshot().cards())
    {
        for (const sonavit::Selector& selector : model.selectors(card.id()).value())
            selectors.push_back(selector);
    }

    ASSERT_FALSE(selectors.empty());
    EXPECT_FALSE(selectors[0].id.isEmpty());
    EXPECT_TRUE(selectors[0].deviceName);
    ASSERT_FALSE(selectors[0].inputs.empty());
    EXPECT_TRUE(selectors[0].inputs[0].connectorName);
    EXPECT_NE(nullptr, selectors[0].selected());
}

TEST_F(ObjectModelSelectors, OfAnUnknownCardAreAProblem)
{
    play(sim::findMachine("desktop"));

    const auto selectors = model.selectors(CardId("nothing"));

    ASSERT_FALSE(selectors);
    EXPECT_EQ(Problem::Kind::notThere, selectors.problem().kind());
}

TEST_F(ObjectModelGraph, HasTheDevicesOfTheCardsThatItIsAskedFor)
{
    sim::MachineBuilder bench;
    sim::CardBuilder first = bench.card("One");
    const sim::EndpointBuilder speaker = first.speaker();
    bench.usbCard("Two").headphones();
    play(bench.build());

    const sonavit::Graph graph = model.graph({CardId(first.instancePath())}).value();

    ASSERT_THAT(graph.devices, SizeIs(2));
    EXPECT_EQ(speaker.id(), graph.devices[0].id);
    EXPECT_EQ(sonavit::Graph::Device::Kind::adapter, graph.devices[1].kind);
    EXPECT_EQ("One", graph.devices[1].name);
    EXPECT_FALSE(graph.pathOf(EndpointId(speaker.id())).empty());
}

TEST_F(ObjectModelGraph, OfAnUnknownCardIsAProblem)
{
    play(sim::findMachine("desktop"));

    const auto graph = model.graph({CardId("nothing")});

    ASSERT_FALSE(graph);
    EXPECT_EQ(Problem::Kind::notThere, graph.problem().kind());
}
}
