#include "simulator/machine/casefolding.h"
#include "simulator/machine/file/machinefile.h"
#include "simulator/machine/valuetext.h"
#include "tests/simulator/machine/machinefacts.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <set>

// What each machine that ships is there for.
namespace
{
using testing::Each;
using testing::ElementsAre;
using testing::Ge;
using testing::Gt;
using testing::IsEmpty;
using testing::IsSupersetOf;
using testing::SizeIs;

using facts::cardsOf;
using facts::countParts;
using facts::inState;
using facts::jacksOf;
using facts::textOf;
using sim::Machine;

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

TEST(MachineLaptopUser, IsALaptopOfAnOrdinaryAccount)
{
    const Machine machine = sim::findMachine("laptop-user");

    EXPECT_EQ(sim::Account::ordinary, machine.account);
    EXPECT_THAT(cardsOf(machine), SizeIs(3));
    EXPECT_EQ(2u, inState(machine, sim::stateActive));
    EXPECT_EQ(2u, inState(machine, sim::stateUnplugged));
    EXPECT_EQ(3u, inState(machine, sim::stateNotPresent));
}

TEST(MachineLaptopUser, IsTheOnlyOneThatIsNotAnAdministrators)
{
    for (const std::string& name : sim::machineNames())
        EXPECT_EQ(name != "laptop-user", sim::findMachine(name).account == sim::Account::administrator) << name;
}

/// The container of each endpoint, where the machine says it.
std::vector<std::string> containersOf(const Machine& machine)
{
    std::vector<std::string> containers;
    for (const sim::Endpoint& endpoint : machine.endpoints)
    {
        const sim::PropertyValue* const value = sim::findProperty(endpoint.properties, sim::keys::containerId);
        containers.push_back(value == nullptr ? "none" : sim::guidText(value->guid));
    }
    return containers;
}

/// The types of the connections between two adapters, from the side of the first.
std::vector<ConnectorType> bridgesOf(const Machine& machine)
{
    std::vector<ConnectorType> types;
    for (const sim::Join& join : machine.joins)
    {
        const sim::PartPlace from = machine.part(join.from);
        if (machine.adapter(from.device->id) != nullptr)
            types.push_back(from.connector->type);
    }
    return types;
}

// Microsoft's documentation of device topologies: a wave filter and a topology filter, joined by a fixed software
// connection. A published listing of a display shows a physical one instead.
TEST(MachinePublished, HasTwoFiltersForEachJack)
{
    const Machine machine = sim::findMachine("published");

    EXPECT_THAT(machine.adapters, SizeIs(6));
    EXPECT_THAT(bridgesOf(machine), ElementsAre(Software_Fixed, Software_Fixed, Physical_Internal));
}

TEST(MachineLaptopUser, HasTwoFiltersForEachDevice)
{
    const Machine machine = sim::findMachine("laptop-user");

    EXPECT_THAT(machine.adapters, SizeIs(6));
    EXPECT_THAT(bridgesOf(machine), Each(Software_Fixed));
    EXPECT_THAT(bridgesOf(machine), SizeIs(6));
}

TEST(MachinePublished, DescribesItsAnalogJacks)
{
    const Machine machine = sim::findMachine("published");

    std::vector<std::uint32_t> colours;
    for (const sim::Adapter& adapter : machine.adapters)
    {
        for (const sim::Connector& connector : adapter.topology->connectors)
        {
            for (const sim::Jack& jack : connector.jacks)
                colours.push_back(jack.colour);
        }
    }
    EXPECT_THAT(colours, ElementsAre(0x00FF00, 0xFF8080));
}

TEST(MachinePublished, HasThePropertiesOfAnAbsentEndpointWithTheirTags)
{
    const Machine machine = sim::findMachine("published");

    std::multiset<VARTYPE> tags;
    for (const sim::Endpoint& endpoint : machine.endpoints)
    {
        if (endpoint.state != sim::stateNotPresent)
            continue;
        for (const sim::Property& property : endpoint.properties)
            tags.insert(property.value.tag);
    }
    EXPECT_EQ(3u, tags.count(VT_BLOB));
    EXPECT_EQ(2u, tags.count(VT_CLSID));
    EXPECT_EQ(1u, tags.count(VT_UI4));
    EXPECT_EQ(7u, tags.count(VT_LPWSTR));
}

TEST(MachineRemoteDesktop, HasOneOutputWithoutHardware)
{
    const Machine machine = sim::findMachine("remote-desktop");

    ASSERT_THAT(machine.endpoints, SizeIs(1));
    EXPECT_EQ(eRender, machine.endpoints[0].flow);
    EXPECT_THAT(machine.adapters, IsEmpty());
    const sim::PropertyValue* const name =
        sim::findProperty(machine.endpoints[0].properties, sim::keys::enumeratorName);
    ASSERT_NE(nullptr, name);
    EXPECT_EQ("", name->text);
}

TEST(MachineBluetooth, HasAHeadsetOfTwoProfilesInOneContainer)
{
    const Machine machine = sim::findMachine("bluetooth");

    const std::vector<std::string> containers = containersOf(machine);
    ASSERT_THAT(containers, SizeIs(5));
    EXPECT_EQ(3, std::count(containers.begin(), containers.end(), containers[0]));
    EXPECT_THAT(cardsOf(machine), SizeIs(3));
    EXPECT_NE(textOf(machine.endpoints[0], sim::keys::instancePath),
              textOf(machine.endpoints[1], sim::keys::instancePath));
}

TEST(MachineVirtual, HasCablesWithoutTopology)
{
    const Machine machine = sim::findMachine("virtual");

    EXPECT_THAT(machine.endpoints, SizeIs(4));
    for (const sim::Endpoint& endpoint : machine.endpoints)
        EXPECT_FALSE(endpoint.topology.has_value()) << endpoint.id;
    EXPECT_THAT(machine.adapters, IsEmpty());
}

TEST(MachineWaking, FindsNoDeviceForEightSecondsAfterItWakes)
{
    const Machine machine = sim::findMachine("waking");

    ASSERT_THAT(machine.faults, SizeIs(1));
    EXPECT_EQ("IMMDeviceEnumerator::GetDevice", machine.faults[0].operation);
    EXPECT_EQ(E_NOTFOUND, machine.faults[0].result);
    EXPECT_EQ(8000u, machine.faults[0].forMilliseconds);
    EXPECT_EQ(sim::ScriptEvent::Kind::wake, machine.faults[0].after);
    ASSERT_FALSE(machine.script.empty());
    EXPECT_EQ(sim::ScriptEvent::Kind::wake, machine.script[0].kind);
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
