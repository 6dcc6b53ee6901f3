#include "simulator/machine/file/machinefile.h"
#include "tests/simulator/machine/machinefacts.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

// What all machines that ship promise to those who work with them.
namespace
{
using testing::ElementsAre;
using testing::SizeIs;

using facts::cardsOf;
using facts::contains;
using facts::partsOf;
using sim::Machine;

TEST(MachinesThatShip, AreTwelve)
{
    EXPECT_THAT(sim::machineNames(),
                ElementsAre("bluetooth", "broken", "crowded", "desktop", "empty", "laptop", "laptop-user", "published",
                            "remote-desktop", "studio", "virtual", "waking"));
}

TEST(MachinesThatShip, AreCalledLikeTheirFiles)
{
    for (const std::string& name : sim::machineNames())
    {
        EXPECT_EQ(name, sim::findMachine(name).name);
        EXPECT_NE("", sim::findMachine(name).description) << name;
    }
}

TEST(MachinesThatShip, ReadBackEquallyWhenWrittenAgain)
{
    for (const std::string& name : sim::machineNames())
    {
        const Machine machine = sim::findMachine(name);

        EXPECT_TRUE(machine == sim::readMachine(sim::writeMachine(machine), name)) << name;
    }
}

// Microsoft's documentation of device topologies: both ends of a connection have one type.
TEST(MachinesThatShip, HaveOneTypeAtBothEndsOfEachJoin)
{
    std::size_t count = 0;
    for (const std::string& name : sim::machineNames())
    {
        const Machine machine = sim::findMachine(name);
        for (const sim::Join& join : machine.joins)
        {
            const sim::PartPlace from = machine.part(join.from);
            const sim::PartPlace to = machine.part(join.to);
            if (to)
            {
                EXPECT_EQ(to.connector->type, from.connector->type) << name << ": " << join.from;
                ++count;
            }
        }
    }
    EXPECT_GT(count, 150u);
}

class SoundMachines : public testing::TestWithParam<const char*>
{
protected:
    const Machine machine = sim::findMachine(GetParam());
};

TEST_P(SoundMachines, HaveADefaultOfBothFlowsInEachRole)
{
    for (const EDataFlow flow : {eRender, eCapture})
    {
        for (const ERole role : {eConsole, eMultimedia, eCommunications})
        {
            ASSERT_NE(nullptr, machine.defaultEndpoint(flow, role));
            EXPECT_EQ(sim::stateActive, machine.defaultEndpoint(flow, role)->state);
            EXPECT_EQ(machine.namedDefault(flow, role), machine.defaultEndpoint(flow, role));
        }
    }
}

TEST_P(SoundMachines, KnowTheInstanceOfEachCardAndItsParent)
{
    for (const auto& card : cardsOf(machine))
    {
        const std::size_t dot = card.first.find('.');
        ASSERT_NE(std::string::npos, dot) << card.first;
        EXPECT_EQ(dot, card.first.rfind('.')) << "a second dot would cut the instance id of " << card.first;
        const sim::DeviceInstance* const instance = machine.deviceInstance(card.first.substr(dot + 1));
        ASSERT_NE(nullptr, instance) << card.first;
        EXPECT_TRUE(instance->parent) << card.first;
    }
}

TEST_P(SoundMachines, JoinEachEndpointToAJackOfAnAdapter)
{
    for (const sim::Endpoint& endpoint : machine.endpoints)
    {
        ASSERT_TRUE(endpoint.topology) << endpoint.id;
        ASSERT_THAT(endpoint.topology->connectors, SizeIs(1)) << endpoint.id;
        const auto peer = machine.peer(endpoint.topology->connectors.front().id);
        ASSERT_TRUE(peer) << endpoint.id;
        EXPECT_NE(nullptr, machine.adapter(peer->device.value_or(""))) << endpoint.id;
        EXPECT_EQ(endpoint.id, machine.peer(peer->connector)->device) << endpoint.id;
    }
}

TEST_P(SoundMachines, HaveNeighboursThatKnowEachOther)
{
    for (const sim::Adapter& adapter : machine.adapters)
    {
        for (const sim::Part* part : partsOf(adapter))
        {
            for (const std::string& next : part->outgoing)
                EXPECT_TRUE(contains(machine.part(next).part->incoming, part->id)) << part->id << " to " << next;
            for (const std::string& previous : part->incoming)
                EXPECT_TRUE(contains(machine.part(previous).part->outgoing, part->id))
                    << previous << " to " << part->id;
        }
    }
}

TEST_P(SoundMachines, HaveSignalPathsThatFollowTheNeighbours)
{
    for (const sim::Adapter& adapter : machine.adapters)
    {
        ASSERT_TRUE(adapter.topology);
        for (const sim::SignalPath& path : adapter.topology->signalPaths)
        {
            std::string current = path.from;
            std::vector<std::string> rest = path.through;
            rest.push_back(path.to);
            for (const std::string& next : rest)
            {
                EXPECT_TRUE(contains(machine.part(current).part->outgoing, next)) << current << " to " << next;
                current = next;
            }
        }
    }
}

TEST_P(SoundMachines, CountTheirActiveEndpointsAsWaveDevices)
{
    const auto isActive = [&](const sim::WaveDevice& device)
    {
        const sim::Endpoint* const endpoint = machine.endpoint(device.endpointId);
        return endpoint != nullptr && endpoint->state == sim::stateActive;
    };

    EXPECT_FALSE(machine.waveOut.empty() || machine.waveIn.empty());
    EXPECT_TRUE(std::all_of(machine.waveOut.begin(), machine.waveOut.end(), isActive));
    EXPECT_TRUE(std::all_of(machine.waveIn.begin(), machine.waveIn.end(), isActive));
}

INSTANTIATE_TEST_SUITE_P(That, SoundMachines, testing::Values("desktop", "laptop", "laptop-user", "studio", "crowded"));
}
