#include "simulator/machine/defaults.h"

#include "simulator/machine/builder/machinebuilder.h"
#include "simulator/machine/nodetypes.h"

#include <gtest/gtest.h>

// Microsoft's "Default Audio Endpoint Selection Starting in Windows 10": only active endpoints count, first the user's
// choice, then the rank, in which the form of the endpoint is the strongest factor that a machine knows.
namespace
{
class MachineDefaultEndpoint : public testing::Test
{
protected:
    /// Names @p endpoint and takes it away.
    static void nameAndUnplug(sim::EndpointBuilder endpoint) { endpoint.isDefault().unplugged(); }

    std::string elected(EDataFlow flow, ERole role) const
    {
        const sim::Machine machine = bench.withoutDefaults().build();
        const sim::Endpoint* const endpoint = machine.defaultEndpoint(flow, role);
        return endpoint == nullptr ? "none" : endpoint->id;
    }

    mutable sim::MachineBuilder bench{"bench"};
    sim::CardBuilder card = bench.card("Analog Audio");
};

TEST_F(MachineDefaultEndpoint, IsTheNamedOneWhileThatIsActive)
{
    card.headphones();
    sim::EndpointBuilder digital = card.spdifOut();
    digital.isDefault();

    EXPECT_EQ(digital.id(), elected(eRender, eConsole));
}

TEST_F(MachineDefaultEndpoint, IsNoneWhereTheMachineNamesNone)
{
    card.speaker().defaultFor(eConsole);
    card.microphone();

    EXPECT_EQ("none", elected(eRender, eCommunications));
    EXPECT_EQ("none", elected(eCapture, eConsole));
}

TEST_F(MachineDefaultEndpoint, IsNoneIfNoEndpointOfTheFlowIsActive)
{
    nameAndUnplug(card.speaker());
    card.headphones().unplugged();
    card.lineOut().notPresent();
    card.spdifOut().disabled();
    card.hdmi().notInstalled();
    card.microphone();

    EXPECT_EQ("none", elected(eRender, eConsole));
}

TEST_F(MachineDefaultEndpoint, KeepsItsNameWhileAnotherStandsInForIt)
{
    sim::EndpointBuilder speaker = card.speaker();
    nameAndUnplug(speaker);
    card.lineOut();

    EXPECT_EQ(speaker.id(), bench.build().namedDefault(eRender, eConsole)->id);
}

TEST_F(MachineDefaultEndpoint, OfAConsoleIsTheOneWithTheBestForm)
{
    nameAndUnplug(card.speaker("Away"));
    const std::string digital = card.spdifOut().id();
    EXPECT_EQ(digital, elected(eRender, eConsole));
    const std::string display = card.hdmi().id();
    EXPECT_EQ(display, elected(eRender, eConsole));
    const std::string line = card.lineOut().id();
    EXPECT_EQ(line, elected(eRender, eMultimedia));
    const std::string speaker = card.speaker("Speakers").id();
    EXPECT_EQ(speaker, elected(eRender, eMultimedia));
    const std::string headphones = card.headphones().id();
    EXPECT_EQ(headphones, elected(eRender, eConsole));
}

TEST_F(MachineDefaultEndpoint, OfCallsIsAHeadsetBeforeHeadphones)
{
    nameAndUnplug(card.speaker());
    const std::string headphones = card.headphones().id();
    const std::string handset = card.endpoint("Handset", eRender, KSNODETYPE_HANDSET).id();
    EXPECT_EQ(handset, elected(eRender, eCommunications));
    const std::string headset = card.endpoint("Headset", eRender, sim::nodetypes::headset).id();

    EXPECT_EQ(headset, elected(eRender, eCommunications));
    EXPECT_EQ(headphones, elected(eRender, eConsole)); // headphones and headset are equally good there
}

TEST_F(MachineDefaultEndpoint, OfCapturePrefersHeadsetsAndArraysOfMicrophones)
{
    nameAndUnplug(card.microphone("Away"));
    const std::string line = card.lineIn().id();
    EXPECT_EQ(line, elected(eCapture, eConsole));
    const std::string microphone = card.microphone().id();
    EXPECT_EQ(microphone, elected(eCapture, eConsole));
    const std::string array = card.endpoint("Array", eCapture, sim::nodetypes::microphoneArray).id();
    EXPECT_EQ(array, elected(eCapture, eCommunications));
    const std::string headset = card.endpoint("Headset", eCapture, sim::nodetypes::headset).id();
    EXPECT_EQ(headset, elected(eCapture, eConsole));
}

TEST_F(MachineDefaultEndpoint, OfEqualFormIsTheFirstInTheMachinesOrder)
{
    nameAndUnplug(card.lineOut());
    const std::string first = card.speaker("Front").id();
    card.speaker("Rear");

    EXPECT_EQ(first, elected(eRender, eConsole));
}

TEST_F(MachineDefaultEndpoint, MayBeOneWithoutAJack)
{
    nameAndUnplug(card.speaker());
    sim::EndpointBuilder bare = card.lineOut();
    bare.endpoint().topology.reset();

    EXPECT_EQ(bare.id(), elected(eRender, eConsole));
}

/// How often the election of a default asks for a jack, on a machine whose named default is away.
std::size_t jacksAsked(std::size_t candidates)
{
    sim::MachineBuilder bench;
    sim::CardBuilder card = bench.card("Analog Audio");
    card.speaker().isDefault().unplugged();
    for (std::size_t index = 0; index < candidates; ++index)
        card.lineOut("Line Out " + std::to_string(index));
    const sim::Machine machine = bench.build();
    std::size_t count = 0;
    const auto jackOf = [&](const sim::Endpoint&)
    {
        ++count;
        return sim::nodetypes::line;
    };
    sim::electDefault(machine, machine.endpoints.front(), eConsole, jackOf);
    return count;
}

TEST(ElectDefault, AsksForTheJackOfEachCandidateOnce)
{
    EXPECT_EQ(10u, jacksAsked(10));
    EXPECT_EQ(200u, jacksAsked(200));
}
}
