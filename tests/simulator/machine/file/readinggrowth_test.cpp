#include "simulator/machine/builder/machinebuilder.h"
#include "simulator/machine/file/machinefile.h"
#include "tests/foundation/supportallocations.h"

#include <gtest/gtest.h>

#include <cstddef>
#include <functional>
#include <string>

namespace
{
using MachineOf = std::function<sim::Machine(std::size_t)>;

sim::Machine machineOfCards(std::size_t count)
{
    sim::MachineBuilder bench;
    for (std::size_t index = 0; index < count; ++index)
        bench.card("Card " + std::to_string(index)).speaker().hardwareVolume({}).hardwareMute();
    return bench.build();
}

sim::Machine machineOfJacks(std::size_t count)
{
    sim::MachineBuilder bench;
    sim::CardBuilder card = bench.card("Card");
    for (std::size_t index = 0; index < count; ++index)
        card.speaker("Speakers " + std::to_string(index)).hardwareVolume({});
    return bench.build();
}

sim::Machine machineOfEvents(std::size_t count)
{
    sim::MachineBuilder bench;
    const std::string speaker = bench.card("Card").speaker().id();
    sim::Machine machine = bench.build();
    for (std::size_t index = 0; index < count; ++index)
    {
        sim::ScriptEvent event;
        event.endpoint = speaker;
        machine.script.push_back(event);
    }
    return machine;
}

/// How many blocks the reader of a machine's file allocates.
unsigned int allocations(const sim::Machine& machine)
{
    const std::string text = sim::writeMachine(machine);
    const support::AllocationProbe probe;
    sim::readMachine(text, "growth.json");
    return probe.count();
}

/// Four times the machine takes four times the blocks, and a few less: some lists grow by doubling.
void expectLinear(const MachineOf& machineOf)
{
    const unsigned int small = allocations(machineOf(100));
    const unsigned int large = allocations(machineOf(400));
    EXPECT_GT(large, 3 * small);
    EXPECT_LE(large, 4 * small);
}

TEST(ReadMachine, AllocatesInProportionToTheCards)
{
    expectLinear(machineOfCards);
}

TEST(ReadMachine, AllocatesInProportionToTheJacksOfOneCard)
{
    expectLinear(machineOfJacks);
}

TEST(ReadMachine, AllocatesInProportionToTheEvents)
{
    const unsigned int small = allocations(machineOfEvents(1000));
    const unsigned int large = allocations(machineOfEvents(4000));
    EXPECT_GT(large, 3 * small);
    EXPECT_LE(large, 4 * small);
}
}
