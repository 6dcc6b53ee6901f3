#include "tests/client/reading/hardwaretest.h"

namespace
{
using HardwareWalkCost = HardwareTest;

sim::Machine machineOf(unsigned cards, unsigned endpoints)
{
    sim::MachineBuilder builder;
    for (unsigned card = 0; card < cards; ++card)
    {
        sim::CardBuilder adapter = builder.card("Card " + std::to_string(card));
        for (unsigned endpoint = 0; endpoint < endpoints; ++endpoint)
            adapter.speaker("Speakers " + std::to_string(endpoint)).hardwareVolume({}).hardwareMute();
    }
    return builder.build();
}

TEST_F(HardwareWalkCost, OfAllControlsOfTheCrowdedMachineIsWithinItsBound)
{
    sim::Simulation& simulation = start("crowded");
    const std::vector<sonavit::Card> all = cards();
    simulation.journal().clear();
    std::size_t count = 0;

    for (const sonavit::Card& card : all)
    {
        const reading::HardwareWalk walk(enumerator(), {card});
        for (const sonavit::Endpoint& endpoint : card.endpoints())
            count += walk.controls(endpoint.id()).size();
    }

    const std::size_t cost = costOf(simulation.journal());
    EXPECT_LE(cost, 8000u);
    EXPECT_GT(count, 0u);
    RecordProperty("calls", static_cast<int>(cost));
}

TEST_F(HardwareWalkCost, GrowsByTheSameForEachCard)
{
    sim::Simulation& simulation = start(machineOf(1, 2));
    const auto cost = [&](unsigned count)
    {
        simulation.change([&](sim::Machine& machine) { machine = machineOf(count, 2); });
        const std::vector<sonavit::Card> all = cards();
        simulation.journal().clear();
        const reading::HardwareWalk walk(enumerator(), all);
        for (const sonavit::Card& card : all)
            static_cast<void>(walk.hardware(card.id()));
        static_cast<void>(walk.graph());
        return costOf(simulation.journal());
    };

    const std::size_t ofTen = cost(10);
    const std::size_t ofTwenty = cost(20);
    const std::size_t ofThirty = cost(30);

    EXPECT_EQ(ofTwenty - ofTen, ofThirty - ofTwenty);
}

/// Signal paths are the exception: each pair of connectors of a device is a question of its own.
TEST_F(HardwareWalkCost, GrowsByTheSameForEachEndpointButForSignalPaths)
{
    sim::Simulation& simulation = start(machineOf(1, 1));
    const auto cost = [&](unsigned count)
    {
        simulation.change([&](sim::Machine& machine) { machine = machineOf(1, count); });
        const std::vector<sonavit::Card> all = cards();
        simulation.journal().clear();
        const reading::HardwareWalk walk(enumerator(), all);
        static_cast<void>(walk.hardware(all.at(0).id()));
        static_cast<void>(walk.graph());
        return costOf(simulation.journal()) - simulation.journal().count("IDeviceTopology::GetSignalPath");
    };

    const std::size_t ofFive = cost(5);
    const std::size_t ofTen = cost(10);
    const std::size_t ofFifteen = cost(15);

    EXPECT_EQ(ofTen - ofFive, ofFifteen - ofTen);
}

TEST_F(HardwareWalkCost, OfSignalPathsAndActivationsIsPaidOnce)
{
    sim::Simulation& simulation = start(machineOf(1, 4));
    const std::vector<sonavit::Card> all = cards();
    const reading::HardwareWalk walk(enumerator(), all);
    static_cast<void>(walk.graph());
    static_cast<void>(walk.hardware(all.at(0).id()));
    ASSERT_NE(0u, simulation.journal().count("IDeviceTopology::GetSignalPath"));
    simulation.journal().clear();

    static_cast<void>(walk.graph());
    static_cast<void>(walk.hardware(all.at(0).id()));

    EXPECT_EQ(0u, simulation.journal().count("IDeviceTopology::GetSignalPath"));
    EXPECT_EQ(0u, simulation.journal().count("IPart::Activate"));
}

TEST_F(HardwareWalkCost, OfControlsHasNoSignalPathsWhereNoVolumeIsNextToAConnector)
{
    sim::MachineBuilder builder;
    sim::CardBuilder card = builder.card("Card");
    const std::string speakers = card.speaker().id();
    card.microphone();
    sim::Simulation& simulation = start(builder.build());
    simulation.journal().clear();

    EXPECT_THAT(controls(speakers), testing::IsEmpty());

    EXPECT_EQ(0u, simulation.journal().count("IDeviceTopology::GetSignalPath"));
}

/// The pairs of connectors of different devices have no paths.
TEST_F(HardwareWalkCost, OfSignalPathsIsThatOfPairsWithinOneDevice)
{
    sim::Simulation& simulation = start(machineOf(3, 1));
    simulation.journal().clear();

    const sonavit::Graph graph = walkAll().graph();

    // Two connectors each, and the path runs from the second to the first.
    EXPECT_EQ(6u, simulation.journal().count("IDeviceTopology::GetSignalPath"));
    EXPECT_EQ(6u, graph.devices.size());
}
}
