#include "tests/client/reading/hardwaretest.h"

namespace
{
using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;
using GraphDevice = sonavit::Graph::Device;
using HardwareWalkGraph = HardwareTest;

TEST_F(HardwareWalkGraph, HasTheDevicesPartsAndEdgesOfACard)
{
    sim::MachineBuilder builder;
    sim::CardBuilder card = builder.card("Codec");
    const sim::EndpointBuilder speaker = card.speaker().hardwareVolume({-60, 0, 1, -15}).hardwareMute(true);
    start(builder.build());

    const sonavit::Graph graph = walkAll().graph();

    ASSERT_THAT(graph.devices, SizeIs(2));
    EXPECT_EQ(GraphDevice::Kind::endpoint, graph.devices[0].kind);
    EXPECT_EQ("Speakers (Codec)", graph.devices[0].name);
    EXPECT_EQ(sonavit::Flow::output, graph.devices[0].flow);
    EXPECT_EQ(sonavit::State::active, graph.devices[0].state);
    EXPECT_TRUE(graph.devices[0].isListed);
    EXPECT_THAT(graph.devices[0].parts, ElementsAre(0u));
    EXPECT_EQ(GraphDevice::Kind::adapter, graph.devices[1].kind);
    EXPECT_EQ(card.adapter().id, graph.devices[1].id);
    EXPECT_EQ("Codec", graph.devices[1].name);
    EXPECT_THAT(graph.devices[1].parts, ElementsAre(1u, 2u, 3u, 4u));
    EXPECT_THAT(edgesOf(graph), ElementsAre("Speakers = #65536", "Speakers Stream -> Mute", "Volume -> Speakers",
                                            "Mute -> Volume", "Speakers Stream ~ Speakers"));
    EXPECT_THAT(graph.problems, IsEmpty());
    const sonavit::Graph::Part& jack = partNamed(graph, "Speakers");
    EXPECT_EQ(speaker.jackId(), jack.id);
    EXPECT_TRUE(jack.isConnector);
    EXPECT_EQ(sonavit::Graph::Direction::out, jack.direction);
    EXPECT_EQ(true, jack.isJoined);
    EXPECT_EQ(sonavit::NodeKind::speaker, sonavit::kindOf(jack.type.value()));
    EXPECT_EQ(false, partNamed(graph, "Speakers Stream").isJoined);
    EXPECT_EQ(true, partNamed(graph, "Mute").isMuted);
    ASSERT_THAT(partNamed(graph, "Volume").channels.value(), SizeIs(2));
    EXPECT_EQ(sonavit::Percent(75), partNamed(graph, "Volume").channels->at(0).level.percent);
}

/// Windows opens stores for writing to administrators alone; the walk reads the names of adapters from theirs.
TEST_F(HardwareWalkGraph, OpensEachStoreForReadingAlone)
{
    start("studio");
    simulation().journal().clear();

    static_cast<void>(walkAll().graph());

    const std::vector<std::string> calls = simulation().journal().of("IMMDevice::OpenPropertyStore").calls();
    EXPECT_THAT(calls, testing::Not(testing::IsEmpty()));
    EXPECT_THAT(calls, testing::Each("IMMDevice::OpenPropertyStore(0)"));
}

TEST_F(HardwareWalkGraph, HasTheLevelsAndMutesOfNow)
{
    sim::MachineBuilder builder;
    builder.card("Codec").speaker().hardwareVolume({-60, 0, 1, -15}).hardwareMute(true);
    sim::Simulation& simulation = start(builder.build());
    const reading::HardwareWalk walk(enumerator(), cards());
    static_cast<void>(walk.graph());
    simulation.change(
        [](sim::Machine& machine)
        {
            for (sim::Subunit& subunit : machine.adapters[0].topology->subunits)
            {
                if (subunit.volume)
                    subunit.volume->channels[1].level = -30;
                if (subunit.mute)
                    subunit.mute->muted = false;
            }
        });

    const sonavit::Graph graph = walk.graph();

    EXPECT_EQ(sonavit::Percent(75), partNamed(graph, "Volume").channels->at(0).level.percent);
    EXPECT_EQ(sonavit::Percent(50), partNamed(graph, "Volume").channels->at(1).level.percent);
    EXPECT_EQ(false, partNamed(graph, "Mute").isMuted);
}

TEST_F(HardwareWalkGraph, NamesADeviceThatCannotBeOpenedAndTheConnectorBehindIt)
{
    sim::MachineBuilder builder;
    sim::CardBuilder card = builder.card("Codec");
    card.speaker();
    card.adapter().openable = false;
    start(builder.build());

    const sonavit::Graph graph = walkAll().graph();

    ASSERT_THAT(graph.devices, SizeIs(2));
    EXPECT_EQ(GraphDevice::Kind::closed, graph.devices[1].kind);
    EXPECT_EQ("cannot be opened", graph.devices[1].name);
    EXPECT_TRUE(graph.devices[1].hasTopology);
    EXPECT_THAT(edgesOf(graph), ElementsAre("Speakers = #65536"));
    ASSERT_THAT(graph.problems, ElementsAre(IsFailureOf("IMMDeviceEnumerator::GetDevice", E_NOTFOUND)));
    EXPECT_EQ(card.adapter().id, graph.problems[0].object());
}

TEST_F(HardwareWalkGraph, HasAJoinWithoutPartToADeviceThatNamesNone)
{
    sim::MachineBuilder builder;
    const sim::EndpointBuilder speaker = builder.card("Codec").speaker().unjoined();
    builder.machine().joins.push_back({speaker.connectorId(), "", sim::OptionalString("{2}.gone"), true});
    start(builder.build());

    const sonavit::Graph graph = walkAll().graph();

    ASSERT_THAT(graph.edges, SizeIs(1));
    EXPECT_EQ(std::nullopt, graph.edges[0].to);
    EXPECT_EQ("{2}.gone", graph.devices.at(graph.edges[0].toDevice.value()).id);
}

TEST_F(HardwareWalkGraph, KnowsThatAnEndpointHasNoTopology)
{
    sim::MachineBuilder builder;
    builder.card("Codec").speaker().withoutTopology();
    start(builder.build());

    const sonavit::Graph graph = walkAll().graph();

    ASSERT_THAT(graph.devices, SizeIs(1));
    EXPECT_FALSE(graph.devices[0].hasTopology);
    EXPECT_THAT(graph.problems, IsEmpty());
}

TEST_F(HardwareWalkGraph, DoesNotTakeAFailureForAMissingTopology)
{
    sim::MachineBuilder builder;
    builder.card("Codec").speaker();
    sim::Simulation& simulation = start(builder.build());
    simulation.faults().fail("IMMDevice::Activate", E_ACCESSDENIED).with("IDeviceTopology");

    const sonavit::Graph graph = walkAll().graph();

    EXPECT_TRUE(graph.devices.at(0).hasTopology);
    EXPECT_THAT(graph.problems, ElementsAre(IsFailureOf("IMMDevice::Activate(IDeviceTopology)", E_ACCESSDENIED)));
}

TEST_F(HardwareWalkGraph, TellsEndpointsOfOtherCardsFromThoseItWasAskedFor)
{
    sim::MachineBuilder builder;
    sim::CardBuilder card = builder.card("Codec");
    const std::string speakers = card.speaker().id();
    const sim::EndpointBuilder stranger = builder.card("Stranger").microphone().unplugged();
    builder.machine().joins.insert(builder.machine().joins.begin(),
                                   {card.connector(sim::OptionalString("Bridge"), KSNODETYPE_LINE_CONNECTOR, Out),
                                    stranger.connectorId(),
                                    {},
                                    false});
    start(builder.build());

    const sonavit::Graph graph = reading::HardwareWalk(enumerator(), {cardOf(speakers)}).graph();

    ASSERT_THAT(graph.devices, SizeIs(4));
    EXPECT_EQ(GraphDevice::Kind::endpoint, graph.devices[2].kind);
    EXPECT_FALSE(graph.devices[2].isListed);
    EXPECT_EQ("Microphone (Stranger)", graph.devices[2].name);
    EXPECT_EQ(sonavit::Flow::input, graph.devices[2].flow);
    EXPECT_EQ(sonavit::State::unplugged, graph.devices[2].state);
}

TEST_F(HardwareWalkGraph, FindsAListedEndpointThatCannotBeOpenedByItsId)
{
    sim::MachineBuilder builder;
    const sim::EndpointBuilder speaker = builder.card("Codec").speaker();
    speaker.endpoint().openable = false;
    start(builder.build());

    const sonavit::Graph graph = walkAll().graph();

    EXPECT_THAT(graph.devices, SizeIs(2));
    EXPECT_THAT(edgesOf(graph), Contains("Speakers = #65536"));
    EXPECT_THAT(graph.problems, ElementsAre(IsFailureOf("IMMDeviceEnumerator::GetDevice", E_NOTFOUND)));
}

TEST_F(HardwareWalkGraph, OfTwoEndpointsWhoseIdsDifferInCaseHasTheFirst)
{
    start("broken");
    const std::vector<sonavit::Card> all = cards();

    const sonavit::Graph graph = reading::HardwareWalk(enumerator(), all).graph();

    std::size_t twins = 0;
    for (const GraphDevice& device : graph.devices)
        twins += sonavit::compareIds(device.id, "{0.0.0.00000000}.{ff85b6a4-df35-4427-b365-431a7da80d5e}") == 0 ? 1 : 0;
    EXPECT_EQ(1u, twins);
}

/// What hostile drivers report. Each of these walks ends, leaves nothing behind, and gives what there is.
using HardwareWalkOfAHostileTopology = HardwareTest;

TEST_F(HardwareWalkOfAHostileTopology, FollowsAConnectorThatIsJoinedToItself)
{
    sim::MachineBuilder builder;
    const sim::EndpointBuilder speaker = builder.card("Codec").speaker().unjoined();
    builder.machine().joins.push_back({speaker.connectorId(), speaker.connectorId(), {}, true});
    start(builder.build());

    const sonavit::Graph graph = walkAll().graph();

    EXPECT_THAT(edgesOf(graph), ElementsAre("#65536 = #65536"));
    EXPECT_THAT(controls(speaker.id()), IsEmpty());
}

TEST_F(HardwareWalkOfAHostileTopology, EndsInACycleOfParts)
{
    sim::MachineBuilder builder;
    sim::CardBuilder card = builder.card("Codec");
    const sim::EndpointBuilder speaker = card.speaker().hardwareVolume({}).hardwareMute();
    std::vector<sim::Subunit>& nodes = card.adapter().topology->subunits;
    nodes[0].outgoing.push_back(nodes[1].id);
    nodes[0].outgoing.push_back(nodes[0].id);
    nodes[1].incoming.push_back(nodes[0].id);
    start(builder.build());

    const sonavit::Graph graph = walkAll().graph();

    EXPECT_THAT(edgesOf(graph), Contains("Volume -> Mute"));
    EXPECT_THAT(edgesOf(graph), Contains("Volume -> Volume"));
    EXPECT_THAT(namesOf(controls(speaker.id())), ElementsAre("Volume"));
}

TEST_F(HardwareWalkOfAHostileTopology, EndsAtTwoDevicesThatNameEachOther)
{
    sim::MachineBuilder builder;
    sim::CardBuilder one = builder.card("One");
    const sim::EndpointBuilder speaker = one.speaker();
    sim::CardBuilder other = builder.card("Other");
    const std::string there = one.connector(sim::OptionalString("There"), KSNODETYPE_LINE_CONNECTOR, Out);
    const std::string back = other.connector(sim::OptionalString("Back"), KSNODETYPE_LINE_CONNECTOR, In);
    builder.machine().joins.push_back({there, back, {}, true});
    start(builder.build());

    const sonavit::Graph graph = reading::HardwareWalk(enumerator(), {cardOf(speaker.id())}).graph();

    EXPECT_THAT(graph.devices, SizeIs(3));
    EXPECT_THAT(edgesOf(graph), Contains("There = Back"));
}

TEST_F(HardwareWalkOfAHostileTopology, TakesPartsWhoseIdsDifferInCaseForOne)
{
    sim::MachineBuilder builder;
    sim::CardBuilder card = builder.card("Codec");
    const sim::EndpointBuilder speaker = card.speaker().hardwareVolume({});
    sim::Subunit twin = card.adapter().topology->subunits[0];
    twin.id[twin.id.find('h')] = 'H';
    twin.name = sim::OptionalString("Twin");
    card.adapter().topology->subunits.push_back(twin);
    start(builder.build());
    ASSERT_NE(card.adapter().topology->subunits[0].id, twin.id);
    ASSERT_EQ(0, sonavit::compareIds(card.adapter().topology->subunits[0].id, twin.id));

    const sonavit::Graph graph = walkAll().graph();

    EXPECT_THAT(graph.parts, SizeIs(4));
    EXPECT_THAT(namesOf(controls(speaker.id())), ElementsAre("Volume"));
}

TEST_F(HardwareWalkOfAHostileTopology, IdentifiesPartsWithoutIdsByDeviceAndNumber)
{
    sim::MachineBuilder builder;
    sim::CardBuilder card = builder.card("Codec");
    const sim::EndpointBuilder speaker = card.speaker().hardwareVolume({});
    const sim::EndpointBuilder phones = card.headphones().hardwareVolume({});
    const std::vector<std::string> expected = [&]
    {
        start(builder.build());
        const std::vector<std::string> edges = edgesOf(walkAll().graph());
        return edges;
    }();
    simulation().change(
        [](sim::Machine& machine)
        {
            for (sim::Connector& connector : machine.adapters[0].topology->connectors)
                connector.reportsId = false;
            for (sim::Subunit& subunit : machine.adapters[0].topology->subunits)
                subunit.reportsId = false;
        });

    const sonavit::Graph graph = walkAll().graph();

    EXPECT_EQ(expected, edgesOf(graph));
    EXPECT_THAT(graph.problems, Contains(IsFailureOf("IPart::GetGlobalId", E_POINTER)));
    const std::vector<sonavit::Control> found = controls(phones.id());
    ASSERT_THAT(found, SizeIs(1));
    EXPECT_EQ(card.adapter().id + "#" + std::to_string(card.adapter().topology->subunits[1].localId),
              found[0].id.text());
    EXPECT_NE(found[0].id, controls(speaker.id()).at(0).id);
    const reading::HardwareWalk walk(enumerator(), cards());
    EXPECT_NE(nullptr, walk.level(found[0].id).get());
}

TEST_F(HardwareWalkOfAHostileTopology, ReadsABoundedNumberOfParts)
{
    sim::MachineBuilder builder;
    sim::CardBuilder card = builder.card("Codec");
    const sim::EndpointBuilder speaker = card.speaker().hardwareVolume({});
    for (unsigned i = 0; i < 10000; ++i)
        card.connector({}, KSNODETYPE_LINE_CONNECTOR, Out);
    sim::Simulation& simulation = start(builder.build());
    simulation.journal().record(false);

    const std::vector<sonavit::Card> all = cards();
    const reading::HardwareWalk walk(enumerator(), all);
    const sonavit::Graph graph = walk.graph();

    EXPECT_LT(graph.parts.size(), 5000u);
    EXPECT_THAT(graph.problems, Contains(IsFailureOf("IDeviceTopology::GetConnectorCount", 0x8007000D)));
    EXPECT_THAT(graph.problems, Contains(testing::Property(&sonavit::Problem::sentence,
                                                           "the device has 4096 connectors; signal paths are read "
                                                           "between the first 256")));
    EXPECT_THAT(namesOf(walk.controls(sonavit::EndpointId(speaker.id()))), ElementsAre("Volume"));
}

/// The walk gives up after some failures in a row instead of asking for each part that the device claims to have.
TEST_F(HardwareWalkOfAHostileTopology, GivesUpAListThatFailsAgainAndAgain)
{
    sim::MachineBuilder builder;
    sim::CardBuilder card = builder.card("Codec");
    card.speaker();
    for (unsigned i = 0; i < 1000; ++i)
        card.connector({}, KSNODETYPE_LINE_CONNECTOR, Out);
    sim::Simulation& simulation = start(builder.build());
    simulation.faults().fail("IDeviceTopology::GetConnector", E_FAIL).on(card.adapter().id);

    const sonavit::Graph graph = walkAll().graph();

    EXPECT_THAT(graph.devices, SizeIs(2));
    EXPECT_EQ(16u, simulation.journal().entries().of("IDeviceTopology::GetConnector").on(card.adapter().id).size());
}
}
