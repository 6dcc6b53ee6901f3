// Levels in the hardware that are next to no connector.
#include "tests/client/reading/hardwaretest.h"

#include <string>
#include <vector>

namespace
{
using testing::ElementsAre;
using testing::IsEmpty;
using testing::Not;
using testing::SizeIs;

class HardwareWalkControlsBetween : public HardwareTest
{
protected:
    /// The id of the endpoint of that name.
    std::string endpointNamed(const std::string& name)
    {
        for (const sonavit::Card& card : cards())
        {
            for (const sonavit::Endpoint& endpoint : card.endpoints())
            {
                if (endpoint.title() == name)
                    return endpoint.id().text();
            }
        }
        ADD_FAILURE() << "there is no endpoint " << name;
        return {};
    }
};

sim::Subunit volumeNode(const std::string& name)
{
    sim::Subunit node;
    node.name = sim::OptionalString(name);
    node.subType = KSNODETYPE_VOLUME;
    node.volume = sim::VolumeControl{{sim::ChannelLevel{0, 30, 10, 20}}};
    return node;
}

sim::Subunit muteNode(bool isMuted)
{
    sim::Subunit node;
    node.subType = KSNODETYPE_MUTE;
    node.mute = sim::MuteControl{isMuted};
    return node;
}

sim::Subunit sumNode()
{
    sim::Subunit node;
    node.subType = KSNODETYPE_SUM;
    return node;
}

/// The only control of that name.
sonavit::Control controlNamed(const std::vector<sonavit::Control>& controls, const std::string& name)
{
    sonavit::Control found;
    int count = 0;
    for (const sonavit::Control& control : controls)
    {
        if (control.name == name)
        {
            found = control;
            ++count;
        }
    }
    EXPECT_EQ(1, count) << name;
    return found;
}

TEST_F(HardwareWalkControlsBetween, HaveNoOwnerAndTheRangeOfTheirNode)
{
    start("desktop");

    const std::vector<sonavit::Control> found = controls(endpointNamed("Microphone (Analog Audio)"));

    ASSERT_THAT(namesOf(found), ElementsAre("Rear Pink Jack Volume", "Rear Blue Jack Volume", "Microphone Boost"));
    const sonavit::Control& boost = found[2];
    EXPECT_EQ("Microphone Boost", boost.title());
    EXPECT_EQ(std::nullopt, boost.ownerName);
    EXPECT_EQ(std::nullopt, boost.ownerType);
    ASSERT_THAT(boost.channels.value(), Not(IsEmpty()));
    EXPECT_EQ((sonavit::LevelRange{0, 30, 10}), boost.channels->at(0).range);
    EXPECT_THAT(boost.problems, IsEmpty());
    // The mute node before it is that of the jack.
    EXPECT_FALSE(boost.hasMute);
    EXPECT_TRUE(found[0].hasMute);
}

TEST_F(HardwareWalkControlsBetween, FollowThoseNextToConnectorsInTheOrderOfTheParts)
{
    sim::MachineBuilder builder;
    sim::EndpointBuilder microphone = builder.card("Codec").microphone();
    microphone.node(volumeNode("Next to the jack"));
    microphone.node(sumNode());
    microphone.node(volumeNode("First"));
    microphone.node(volumeNode("Second"));
    microphone.node(sumNode());
    microphone.node(volumeNode("Next to the stream"));
    start(builder.build());

    EXPECT_THAT(namesOf(controls(microphone.id())),
                ElementsAre("Next to the jack", "Next to the stream", "First", "Second"));
}

TEST_F(HardwareWalkControlsBetween, AreFoundWhereNoVolumeNodeIsNextToAConnector)
{
    sim::MachineBuilder builder;
    sim::EndpointBuilder microphone = builder.card("Codec").microphone();
    microphone.node(sumNode());
    sim::Subunit boost = volumeNode("");
    boost.name = sim::OptionalString();
    microphone.node(boost);
    microphone.node(sumNode());
    start(builder.build());

    const std::vector<sonavit::Control> found = controls(microphone.id());

    ASSERT_THAT(found, SizeIs(1));
    EXPECT_EQ("Volume", found[0].title());
}

TEST_F(HardwareWalkControlsBetween, AreNoneOffTheWayFromOneConnectorToAnother)
{
    sim::MachineBuilder builder;
    sim::CardBuilder card = builder.card("Codec");
    sim::EndpointBuilder microphone = card.microphone();
    microphone.hardwareMute();
    microphone.node(sumNode());
    sim::EndpointBuilder speaker = card.speaker();
    speaker.node(sumNode());
    speaker.node(volumeNode("Of the speakers"));
    speaker.node(sumNode());
    const std::string deadEnd = card.subunit(volumeNode("Leads nowhere"));
    const std::string source = card.subunit(volumeNode("Is fed by nothing"));
    const std::string mute = card.adapter().topology->subunits[0].id;
    builder.machine().part(mute)->outgoing.push_back(deadEnd);
    builder.machine().part(source)->outgoing.push_back(mute);
    start(builder.build());

    EXPECT_THAT(controls(microphone.id()), IsEmpty());
    EXPECT_THAT(namesOf(controls(speaker.id())), ElementsAre("Of the speakers"));
}

TEST_F(HardwareWalkControlsBetween, AreThoseOfAllEndpointsThatShareThem)
{
    sim::MachineBuilder builder;
    sim::CardBuilder card = builder.card("Codec");
    sim::EndpointBuilder microphone = card.microphone();
    microphone.node(sumNode());
    microphone.node(volumeNode("Shared"));
    microphone.node(sumNode());
    const std::string sum = card.adapter().topology->subunits[0].id;
    sim::EndpointBuilder lineIn = card.lineIn();
    builder.machine().part(lineIn.jackId())->outgoing.push_back(sum);
    card.adapter().topology->signalPaths.push_back({lineIn.jackId(), microphone.streamId(), {}, false});
    start(builder.build());

    EXPECT_THAT(namesOf(controls(microphone.id())), ElementsAre("Shared"));
    EXPECT_EQ(controls(microphone.id()), controls(lineIn.id()));
}

TEST_F(HardwareWalkControlsBetween, AreThereOnceInWiresThatLeadInACircle)
{
    sim::MachineBuilder builder;
    sim::CardBuilder card = builder.card("Codec");
    sim::EndpointBuilder microphone = card.microphone();
    microphone.node(sumNode());
    microphone.node(volumeNode("In the circle"));
    microphone.node(sumNode());
    const std::vector<sim::Subunit>& nodes = card.adapter().topology->subunits;
    const std::string feedback = card.subunit(volumeNode("Back"));
    builder.machine().part(nodes[2].id)->outgoing.push_back(feedback);
    builder.machine().part(feedback)->outgoing.push_back(feedback);
    builder.machine().part(feedback)->outgoing.push_back(nodes[0].id);
    start(builder.build());

    EXPECT_THAT(namesOf(controls(microphone.id())), ElementsAre("In the circle", "Back"));
}

TEST_F(HardwareWalkControlsBetween, AreNotFoundInADeviceThatCannotBeOpened)
{
    sim::MachineBuilder builder;
    sim::CardBuilder card = builder.card("Codec");
    sim::EndpointBuilder microphone = card.microphone();
    microphone.node(volumeNode("Next to the jack"));
    microphone.node(sumNode());
    microphone.node(volumeNode("Between"));
    microphone.node(sumNode());
    card.adapter().openable = false;
    start(builder.build());

    EXPECT_THAT(namesOf(controls(microphone.id())), ElementsAre("Next to the jack"));
}

TEST_F(HardwareWalkControlsBetween, AreNoneWhereTheNodeHasNoLevel)
{
    sim::MachineBuilder builder;
    sim::CardBuilder card = builder.card("Codec");
    sim::EndpointBuilder microphone = card.microphone();
    microphone.node(sumNode());
    microphone.node(volumeNode("Between"));
    microphone.node(sumNode());
    card.adapter().topology->subunits[1].volume.reset();
    start(builder.build());

    EXPECT_THAT(controls(microphone.id()), IsEmpty());
}

/// Of a chain of levels with a mute after each, each level has the mute that it feeds.
TEST_F(HardwareWalkControlsBetween, TakeNoMuteOfAnotherLevel)
{
    sim::MachineBuilder builder;
    sim::EndpointBuilder microphone = builder.card("Codec").microphone();
    microphone.node(volumeNode("Jack"));
    microphone.node(muteNode(true));
    microphone.node(volumeNode("Boost"));
    microphone.node(muteNode(false));
    microphone.node(volumeNode("Gain"));
    microphone.node(sumNode());
    start(builder.build());

    const std::vector<sonavit::Control> found = controls(microphone.id());

    EXPECT_EQ(true, controlNamed(found, "Jack").isMuted);
    EXPECT_EQ(false, controlNamed(found, "Boost").isMuted);
    EXPECT_FALSE(controlNamed(found, "Gain").hasMute);
}

/// The level next to a connector has the mute before it, so that the one after it is free.
TEST_F(HardwareWalkControlsBetween, TakeAMuteThatTheLevelOfAConnectorLeaves)
{
    sim::MachineBuilder builder;
    sim::CardBuilder card = builder.card("Codec");
    sim::EndpointBuilder microphone = card.microphone();
    microphone.node(volumeNode("Jack"));
    microphone.node(muteNode(true));
    microphone.node(volumeNode("Boost"));
    microphone.node(sumNode());
    const std::string jack = card.adapter().topology->subunits[0].id;
    const std::string before = card.subunit(muteNode(false));
    builder.machine().part(before)->outgoing.push_back(jack);
    builder.machine().part(jack)->incoming.push_back(before);
    start(builder.build());

    const std::vector<sonavit::Control> found = controls(microphone.id());

    EXPECT_EQ(false, controlNamed(found, "Jack").isMuted);
    EXPECT_EQ(true, controlNamed(found, "Boost").isMuted);
}

TEST_F(HardwareWalkControlsBetween, GiveTheWalksObjectsOfTheirLevelAndMute)
{
    sim::MachineBuilder builder;
    sim::EndpointBuilder microphone = builder.card("Codec").microphone();
    microphone.node(volumeNode("Jack"));
    microphone.node(muteNode(false));
    microphone.node(volumeNode("Boost"));
    microphone.node(muteNode(false));
    microphone.node(volumeNode("Gain"));
    microphone.node(sumNode());
    start(builder.build());
    const reading::HardwareWalk walk(enumerator(), cards());
    const auto now = [&] { return walk.controls(sonavit::EndpointId(microphone.id())); };
    const sonavit::Control boost = controlNamed(now(), "Boost");

    ASSERT_EQ(S_OK, walk.level(boost.id)->SetLevel(0, 10, nullptr));
    ASSERT_EQ(S_OK, walk.mute(boost.id)->SetMute(TRUE, nullptr));

    EXPECT_EQ(sonavit::Decibels(10), controlNamed(now(), "Boost").channels->at(0).level.decibels);
    EXPECT_EQ(true, controlNamed(now(), "Boost").isMuted);
    EXPECT_EQ(sonavit::Decibels(20), controlNamed(now(), "Gain").channels->at(0).level.decibels);
    EXPECT_EQ(false, controlNamed(now(), "Jack").isMuted);
    EXPECT_EQ(nullptr, walk.mute(controlNamed(now(), "Gain").id).get());
}

/// Another problem of the node is that of its mute, whose type cannot be read.
TEST_F(HardwareWalkControlsBetween, HaveTheProblemsOfTheirNodesAndNoOtherValueHasThem)
{
    sim::MachineBuilder builder;
    sim::CardBuilder card = builder.card("Codec");
    sim::EndpointBuilder microphone = card.microphone();
    microphone.node(sumNode());
    microphone.node(volumeNode("Boost"));
    microphone.node(muteNode(false));
    microphone.node(sumNode());
    const std::string boost = card.adapter().topology->subunits[1].id;
    const std::string mute = card.adapter().topology->subunits[2].id;
    sim::Simulation& simulation = start(builder.build());
    simulation.faults().fail("IPart::GetName", E_ABORT).on(boost);
    simulation.faults().fail("IAudioVolumeLevel::GetLevel", E_ACCESSDENIED).on(boost);
    simulation.faults().fail("IPart::GetSubType", E_OUTOFMEMORY).on(mute);
    const sonavit::Card all = cardOf(microphone.id());

    const sonavit::Hardware hardware = reading::HardwareWalk(enumerator(), {all}).hardware(all.id());

    ASSERT_THAT(hardware.controls.at(0).controls, SizeIs(1));
    EXPECT_THAT(hardware.controls[0].controls[0].problems,
                ElementsAre(IsFailureOf("IPart::GetName", E_ABORT),
                            IsFailureOf("IAudioVolumeLevel::GetLevel(0)", E_ACCESSDENIED),
                            IsFailureOf("IPart::GetSubType", E_OUTOFMEMORY)));
    EXPECT_THAT(hardware.problems, IsEmpty());
}

TEST_F(HardwareWalkControlsBetween, AreAmongTheCardsProblemsIfTheirLevelCannotBeReached)
{
    sim::MachineBuilder builder;
    sim::CardBuilder card = builder.card("Codec");
    sim::EndpointBuilder microphone = card.microphone();
    microphone.node(sumNode());
    microphone.node(volumeNode("Boost"));
    microphone.node(sumNode());
    sim::Simulation& simulation = start(builder.build());
    simulation.faults().fail("IPart::Activate", E_ACCESSDENIED).with("IAudioVolumeLevel");
    const sonavit::Card all = cardOf(microphone.id());

    const sonavit::Hardware hardware = reading::HardwareWalk(enumerator(), {all}).hardware(all.id());

    EXPECT_THAT(hardware.controls.at(0).controls, IsEmpty());
    EXPECT_THAT(hardware.problems, ElementsAre(IsFailureOf("IPart::Activate(IAudioVolumeLevel)", E_ACCESSDENIED)));
}

TEST_F(HardwareWalkControlsBetween, ChangeLikeTheOthersOfTheCard)
{
    sim::MachineBuilder builder;
    sim::CardBuilder card = builder.card("Codec");
    sim::EndpointBuilder microphone = card.microphone();
    microphone.node(sumNode());
    microphone.node(volumeNode("Boost"));
    microphone.node(muteNode(false));
    microphone.node(sumNode());
    start(builder.build());
    const reading::HardwareWalk walk(enumerator(), cards());

    const std::vector<reading::HardwareWalk::ChangingControl> changing =
        walk.changingControls(cardOf(microphone.id()).id());

    std::vector<UINT> numbers;
    for (const reading::HardwareWalk::ChangingControl& each : changing)
        each.part->GetLocalId(&numbers.emplace_back());
    const std::vector<sim::Subunit>& nodes = card.adapter().topology->subunits;
    EXPECT_THAT(numbers, ElementsAre(nodes[1].localId, nodes[2].localId));
}
}
