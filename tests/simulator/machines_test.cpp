#include <algorithm>
#include <map>
#include <set>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "simulator/machinefile.h"
#include "simulator/machinekeys.h"
#include "simulator/machinenodetypes.h"

// What the machines that ship promise to those who work with them.
namespace
{
using testing::Each;
using testing::ElementsAre;
using testing::Ge;
using testing::Gt;
using testing::IsEmpty;
using testing::IsSupersetOf;
using testing::SizeIs;

using sim::Machine;

std::size_t inState(const Machine& machine, std::uint32_t state)
{
    const auto isIn = [&](const sim::Endpoint& endpoint) { return endpoint.state == state; };
    return static_cast<std::size_t>(std::count_if(machine.endpoints.begin(), machine.endpoints.end(), isIn));
}

std::string textOf(const sim::Device& device, const PROPERTYKEY& key)
{
    const sim::PropertyValue* value = sim::findProperty(device.properties, key);
    return value == nullptr ? std::string() : value->text.value_or("");
}

/// The endpoints of each card, by the instance path that they share.
std::map<std::string, std::vector<std::string>> cardsOf(const Machine& machine)
{
    std::map<std::string, std::vector<std::string>> cards;
    for (const sim::Endpoint& endpoint : machine.endpoints)
        cards[textOf(endpoint, sim::keys::instancePath)].push_back(textOf(endpoint, sim::keys::deviceDescription));
    return cards;
}

std::vector<const sim::Part*> partsOf(const sim::Device& device)
{
    std::vector<const sim::Part*> parts;
    if (!device.topology)
        return parts;
    for (const sim::Connector& connector : device.topology->connectors)
        parts.push_back(&connector);
    for (const sim::Subunit& subunit : device.topology->subunits)
        parts.push_back(&subunit);
    return parts;
}

bool contains(const std::vector<std::string>& list, const std::string& element)
{
    return std::find(list.begin(), list.end(), element) != list.end();
}

template<class Has>
std::size_t countParts(const Machine& machine, const Has& has)
{
    std::size_t count = 0;
    for (const sim::Adapter& adapter : machine.adapters)
    {
        for (const sim::Part* part : partsOf(adapter))
            count += has(*part) ? 1u : 0u;
    }
    return count;
}

/// The kinds of jacks that the endpoints of @p flow are joined to.
std::multiset<std::string> jacksOf(const Machine& machine, EDataFlow flow)
{
    std::multiset<std::string> kinds;
    for (const sim::Endpoint& endpoint : machine.endpoints)
    {
        const auto peer = machine.peer(endpoint.topology->connectors.front().id);
        if (endpoint.flow != flow || !peer)
            continue;
        for (const sim::NamedNodeType& named : sim::namedNodeTypes)
        {
            if (named.type == machine.part(peer->connector).part->subType)
                kinds.insert(std::string(named.name));
        }
    }
    return kinds;
}

TEST(MachinesThatShip, AreSix)
{
    EXPECT_THAT(sim::machineNames(), ElementsAre("broken", "crowded", "desktop", "empty", "laptop", "studio"));
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

INSTANTIATE_TEST_SUITE_P(That, SoundMachines, testing::Values("desktop", "laptop", "studio", "crowded"));

TEST(MachineDesktop, HasThreeCards)
{
    const Machine machine = sim::findMachine("desktop");

    std::vector<std::size_t> sizes;
    for (const auto& card : cardsOf(machine))
        sizes.push_back(card.second.size());

    std::sort(sizes.begin(), sizes.end());
    EXPECT_THAT(sizes, ElementsAre(2, 3, 6));
    EXPECT_THAT(machine.adapters, SizeIs(3));
}

TEST(MachineDesktop, HasTheJacksOfAnAnalogCodecAndOfAHeadset)
{
    const Machine machine = sim::findMachine("desktop");

    EXPECT_THAT(jacksOf(machine, eRender),
                ElementsAre("hdmi", "hdmi", "hdmi", "headphones", "headphones", "spdif", "speaker"));
    EXPECT_THAT(jacksOf(machine, eCapture), ElementsAre("line", "microphone", "microphone", "spdif"));
}

TEST(MachineDesktop, ShowsEachStateAndOneMute)
{
    const Machine machine = sim::findMachine("desktop");

    EXPECT_EQ(2u, inState(machine, sim::stateUnplugged));
    EXPECT_EQ(1u, inState(machine, sim::stateDisabled));
    EXPECT_EQ(1u, inState(machine, sim::stateNotPresent));
    const auto isMuted = [](const sim::Endpoint& endpoint) { return endpoint.volume && endpoint.volume->muted; };
    EXPECT_EQ(1, std::count_if(machine.endpoints.begin(), machine.endpoints.end(), isMuted));
}

TEST(MachineDesktop, TellsAStoryOfEachKindThatCanBeHeard)
{
    const Machine machine = sim::findMachine("desktop");

    using Kind = sim::ScriptEvent::Kind;
    std::set<Kind> kinds;
    std::uint32_t duration = 0;
    for (const sim::ScriptEvent& event : machine.script)
    {
        kinds.insert(event.kind);
        duration += event.afterMilliseconds;
    }
    EXPECT_THAT(kinds, IsSupersetOf({Kind::added, Kind::removed, Kind::plugged, Kind::unplugged, Kind::stateChanged,
                                     Kind::defaultChanged, Kind::volumeChanged}));
    EXPECT_LT(duration, 10000u) << "a story to wait for";
}

TEST(MachineDesktop, RecordsFromOneOfSeveralSources)
{
    const Machine machine = sim::findMachine("desktop");

    EXPECT_EQ(1u,
              countParts(machine, [](const sim::Part& part) { return part.selector && part.incoming.size() == 2; }));
}

TEST(MachineLaptop, HasLoudspeakersAJackAndAWirelessHeadsetThatIsAway)
{
    const Machine machine = sim::findMachine("laptop");

    EXPECT_THAT(cardsOf(machine), SizeIs(3));
    EXPECT_EQ(2u, inState(machine, sim::stateActive));
    EXPECT_EQ(2u, inState(machine, sim::stateUnplugged));
    EXPECT_EQ(3u, inState(machine, sim::stateNotPresent));
}

TEST(MachineStudio, HasAHardwareMixer)
{
    const Machine machine = sim::findMachine("studio");

    EXPECT_THAT(machine.endpoints, SizeIs(12));
    EXPECT_THAT(countParts(machine, [](const sim::Part& part) { return part.volume.has_value(); }), Ge(16u));
    EXPECT_THAT(countParts(machine, [](const sim::Part& part) { return part.mute.has_value(); }), Ge(10u));
    EXPECT_EQ(1u,
              countParts(machine, [](const sim::Part& part) { return part.selector && part.incoming.size() == 3; }));
    EXPECT_EQ(1u, countParts(machine, [](const sim::Part& part) { return part.subType == sim::nodetypes::sum; }));
}

TEST(MachineStudio, ReachesItsConverterThroughTheMixer)
{
    const Machine machine = sim::findMachine("studio");

    ASSERT_THAT(machine.adapters, SizeIs(2));
    for (const sim::Connector& connector : machine.adapters[1].topology->connectors)
    {
        if (connector.type == Physical_Internal)
        {
            EXPECT_EQ(machine.adapters[0].id, machine.peer(connector.id)->device) << connector.id;
        }
    }
}

TEST(MachineCrowded, HasAHundredAndTwentyEndpointsMostOfThemAway)
{
    const Machine machine = sim::findMachine("crowded");

    EXPECT_THAT(machine.endpoints, SizeIs(120));
    EXPECT_THAT(inState(machine, sim::stateNotPresent), Gt(100u));
    EXPECT_THAT(cardsOf(machine), SizeIs(12));
    std::set<std::string> ids;
    for (const sim::Endpoint& endpoint : machine.endpoints)
        ids.insert(endpoint.id);
    EXPECT_THAT(ids, SizeIs(120));
}

TEST(MachineBroken, LacksAndMistypesProperties)
{
    const Machine machine = sim::findMachine("broken");

    std::set<VARTYPE> namesTags;
    std::set<std::string> paths;
    for (const sim::Endpoint& endpoint : machine.endpoints)
    {
        const sim::PropertyValue* const name = sim::findProperty(endpoint.properties, sim::keys::friendlyName);
        namesTags.insert(name == nullptr ? VARTYPE(VT_EMPTY) : name->tag);
        paths.insert(textOf(endpoint, sim::keys::instancePath));
    }
    EXPECT_THAT(namesTags, ElementsAre(VT_EMPTY, VT_UI4, VT_LPWSTR));
    EXPECT_EQ(1u, paths.count("")) << "no endpoint without instance path";
    EXPECT_EQ(1u, paths.count("HDAUDIO\\FUNC_01")) << "no instance path without a dot";
}

TEST(MachineBroken, NeverPutsANumberWhereTheTagOfATextIsNotAskedFor)
{
    // Readers of the endpoint's GUID take its text unseen, so a number there would be followed as an address.
    const Machine machine = sim::findMachine("broken");

    for (const sim::Endpoint& endpoint : machine.endpoints)
    {
        const sim::PropertyValue* const guid = sim::findProperty(endpoint.properties, sim::keys::endpointGuid);
        EXPECT_TRUE(guid == nullptr || guid->tag == VT_LPWSTR || guid->tag == VT_EMPTY) << endpoint.id;
    }
}

TEST(MachineBroken, HasWiresThatLeadNowhereAndDoorsThatStayClosed)
{
    const Machine machine = sim::findMachine("broken");

    std::size_t closed = 0;
    std::size_t loose = 0;
    std::size_t withoutPeer = 0;
    for (const sim::Endpoint& endpoint : machine.endpoints)
    {
        if (!endpoint.topology)
            continue;
        const auto peer = machine.peer(endpoint.topology->connectors.front().id);
        loose += peer ? 0u : 1u;
        withoutPeer += peer && peer->connector.empty() ? 1u : 0u;
        closed += peer && machine.openDevice(peer->device.value_or("")) == nullptr ? 1u : 0u;
    }
    EXPECT_THAT((std::vector<std::size_t>{closed, loose, withoutPeer}), Each(Ge(1u)));
}

TEST(MachineBroken, HasTwinsWhoseIdsDifferInCaseOnly)
{
    const Machine machine = sim::findMachine("broken");

    std::size_t twins = 0;
    for (const sim::Endpoint& left : machine.endpoints)
    {
        for (const sim::Endpoint& right : machine.endpoints)
            twins += left.id < right.id && sim::equalNoCase(left.id, right.id) ? 1u : 0u;
    }
    EXPECT_EQ(1u, twins);
}

TEST(MachineBroken, PlansFailingCallsOfBothKinds)
{
    const Machine machine = sim::findMachine("broken");

    std::set<sim::FaultRule::Outcome> outcomes;
    for (const sim::FaultRule& rule : machine.faults)
        outcomes.insert(rule.outcome);
    EXPECT_THAT(outcomes, ElementsAre(sim::FaultRule::Outcome::result, sim::FaultRule::Outcome::nullSuccess));
}

TEST(MachineEmpty, HasNothing)
{
    const Machine machine = sim::findMachine("empty");

    EXPECT_THAT(machine.endpoints, IsEmpty());
    EXPECT_THAT(machine.adapters, IsEmpty());
    EXPECT_THAT(machine.waveOut, IsEmpty());
}
}
