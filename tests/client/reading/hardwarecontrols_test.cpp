#include "client/reading/text.h"
#include "tests/client/reading/hardwaretest.h"

#include <limits>

namespace
{
using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;
using HardwareWalkControls = HardwareTest;

sim::Subunit volumeNode(const std::string& name)
{
    sim::Subunit node;
    node.name = sim::OptionalString(name);
    node.subType = KSNODETYPE_VOLUME;
    node.volume = sim::VolumeControl{{sim::ChannelLevel{-60, 0, 1, -30}}};
    return node;
}

TEST_F(HardwareWalkControls, HaveTheNamesOfNodeAndConnectorAndTheMuteNextToThem)
{
    sim::MachineBuilder builder;
    const sim::EndpointBuilder speaker =
        builder.card("Codec").speaker().hardwareVolume({-60, 0, 1.5f, -15}).hardwareMute(true);
    start(builder.build());

    const std::vector<sonavit::Control> found = controls(speaker.id());

    ASSERT_THAT(found, SizeIs(1));
    EXPECT_EQ("Volume", found[0].name);
    EXPECT_EQ("Speakers", found[0].ownerName);
    EXPECT_EQ(sonavit::NodeKind::speaker, sonavit::kindOf(found[0].ownerType.value()));
    EXPECT_TRUE(found[0].hasMute);
    EXPECT_EQ(true, found[0].isMuted);
    ASSERT_THAT(found[0].channels.value(), SizeIs(2));
    EXPECT_EQ((sonavit::LevelRange{-60, 0, 1.5}), found[0].channels->at(0).range);
    EXPECT_EQ(sonavit::Decibels(-15), found[0].channels->at(0).level.decibels);
    EXPECT_EQ(sonavit::Percent(75), found[0].channels->at(0).level.percent);
    EXPECT_THAT(found[0].problems, IsEmpty());
}

TEST_F(HardwareWalkControls, AreInTheOrderOfTheWalkFromTheJack)
{
    sim::MachineBuilder builder;
    sim::CardBuilder card = builder.card("Codec");
    sim::EndpointBuilder speaker = card.speaker();
    speaker.node(volumeNode("Next to the jack"));
    sim::Subunit between;
    between.subType = KSNODETYPE_SUM;
    speaker.node(between);
    speaker.node(volumeNode("Next to the stream"));
    start(builder.build());

    EXPECT_THAT(namesOf(controls(speaker.id())), ElementsAre("Next to the jack", "Next to the stream"));
}

/// Of the joins and paths of one connector the join comes first, then the paths in the order of the connectors.
TEST_F(HardwareWalkControls, FollowJoinsBeforePathsAndPathsInTheOrderOfTheConnectors)
{
    sim::MachineBuilder builder;
    sim::CardBuilder card = builder.card("Codec");
    sim::EndpointBuilder speaker = card.speaker();
    std::vector<std::string> connectors;
    for (const char* const name : {"A", "B"})
    {
        connectors.push_back(card.connector(sim::OptionalString(name), KSNODETYPE_LINE_CONNECTOR, In));
        card.chain({connectors.back(), card.subunit(volumeNode(name))});
    }
    std::vector<sim::SignalPath>& paths = card.adapter().topology->signalPaths;
    paths.push_back({speaker.jackId(), connectors[1], {}, false});
    paths.push_back({connectors[0], speaker.jackId(), {}, false});
    sim::CardBuilder other = builder.card("Other");
    const std::string joined = other.connector(sim::OptionalString("Joined"), KSNODETYPE_LINE_CONNECTOR, In);
    other.chain({joined, other.subunit(volumeNode("Joined"))});
    std::vector<sim::Join>& joins = builder.machine().joins;
    joins.insert(joins.begin(), {speaker.jackId(), joined, {}, false});
    start(builder.build());

    EXPECT_THAT(namesOf(controls(speaker.id())), ElementsAre("Joined", "A", "B"));
}

TEST_F(HardwareWalkControls, AreThoseThatFeedAConnectorOrElseThoseThatItFeeds)
{
    sim::MachineBuilder builder;
    sim::CardBuilder card = builder.card("Codec");
    sim::EndpointBuilder speaker = card.speaker();
    speaker.node(volumeNode("Feeds it"));
    const std::string behind = card.subunit(volumeNode("Is fed by it"));
    builder.machine().part(speaker.jackId())->outgoing.push_back(behind);
    start(builder.build());

    EXPECT_THAT(namesOf(controls(speaker.id())), ElementsAre("Feeds it"));

    simulation().change([&](sim::Machine& machine) { machine.part(speaker.jackId())->incoming.clear(); });
    EXPECT_THAT(namesOf(controls(speaker.id())), ElementsAre("Is fed by it", "Feeds it"));
}

TEST_F(HardwareWalkControls, AreListedOnceEvenIfTheWalkMeetsThemTwice)
{
    sim::MachineBuilder builder;
    sim::EndpointBuilder speaker = builder.card("Codec").speaker();
    speaker.node(volumeNode("Between jack and stream"));
    start(builder.build());

    const std::vector<sonavit::Control> found = controls(speaker.id());

    ASSERT_THAT(namesOf(found), ElementsAre("Between jack and stream"));
    EXPECT_EQ("Speakers", found[0].ownerName);
}

TEST_F(HardwareWalkControls, AreFoundBehindAConnectorOfADeviceThatCannotBeOpened)
{
    sim::MachineBuilder builder;
    sim::CardBuilder card = builder.card("Codec");
    sim::EndpointBuilder speaker = card.speaker();
    speaker.node(volumeNode("Next to the jack"));
    sim::Subunit between;
    between.subType = KSNODETYPE_SUM;
    speaker.node(between);
    speaker.node(volumeNode("Next to the stream"));
    card.adapter().openable = false;
    start(builder.build());

    EXPECT_THAT(namesOf(controls(speaker.id())), ElementsAre("Next to the jack", "Next to the stream"));
}

TEST_F(HardwareWalkControls, TakeTheFirstMuteNextToThemAndNoOther)
{
    sim::MachineBuilder builder;
    sim::CardBuilder card = builder.card("Codec");
    const sim::EndpointBuilder speaker = card.speaker().hardwareVolume({});
    const std::string volume = card.adapter().topology->subunits[0].id;
    sim::Subunit mute;
    mute.subType = KSNODETYPE_MUTE;
    mute.mute = sim::MuteControl{true};
    const std::string first = card.subunit(mute);
    mute.mute = sim::MuteControl{false};
    const std::string second = card.subunit(mute);
    sim::Part& node = *builder.machine().part(volume).part;
    node.incoming.push_back(first);
    node.incoming.push_back(second);
    node.outgoing.push_back(second);
    sim::Simulation& simulation = start(builder.build());

    EXPECT_EQ(true, controls(speaker.id()).at(0).isMuted);

    simulation.faults().fail("IPart::Activate", E_NOINTERFACE).on(first);
    EXPECT_FALSE(controls(speaker.id()).at(0).hasMute);
    EXPECT_EQ(std::nullopt, controls(speaker.id()).at(0).isMuted);
}

TEST_F(HardwareWalkControls, HaveNoPercentWithoutARange)
{
    constexpr float infinite = std::numeric_limits<float>::infinity();
    sim::MachineBuilder builder;
    sim::CardBuilder card = builder.card("Codec");
    const sim::EndpointBuilder point = card.speaker("Point").hardwareVolume({-6, -6, 1, -6}, 1);
    const sim::EndpointBuilder endless = card.speaker("Endless").hardwareVolume({-infinite, 0, 1, -6}, 1);
    const sim::EndpointBuilder silent = card.speaker("Silent").hardwareVolume({-60, 0, 1, -infinite}, 1);
    const sim::EndpointBuilder reversed = card.speaker("Reversed").hardwareVolume({0, -60, 1, -30}, 1);
    start(builder.build());

    for (const sim::EndpointBuilder& speaker : {point, endless, silent, reversed})
    {
        const std::vector<sonavit::Control> found = controls(speaker.id());
        ASSERT_THAT(found, SizeIs(1)) << speaker.id();
        EXPECT_EQ(std::nullopt, found[0].channels->at(0).level.percent) << speaker.id();
        EXPECT_TRUE(found[0].channels->at(0).level.decibels) << speaker.id();
        EXPECT_TRUE(found[0].channels->at(0).range) << speaker.id();
    }
}

/// A level that is not a number has no value. It is a problem, and none for the other channel.
TEST_F(HardwareWalkControls, SurviveALevelThatIsNotANumber)
{
    sim::MachineBuilder builder;
    sim::CardBuilder card = builder.card("Codec");
    const sim::EndpointBuilder speaker = card.speaker().hardwareVolume({-60, 0, 1, -15});
    card.adapter().topology->subunits[0].volume->channels[0].level = std::numeric_limits<float>::quiet_NaN();
    start(builder.build());

    const std::vector<sonavit::Control> found = controls(speaker.id());

    ASSERT_THAT(found, SizeIs(1));
    EXPECT_EQ(std::nullopt, found[0].channels->at(0).level.decibels);
    EXPECT_EQ(sonavit::Percent(75), found[0].channels->at(1).level.percent);
    EXPECT_THAT(found[0].problems, ElementsAre(IsFailureOf("IAudioVolumeLevel::GetLevel(0)", 0x8007000D)));
}

TEST_F(HardwareWalkControls, HaveNoValueForWhatCannotBeRead)
{
    sim::MachineBuilder builder;
    const sim::EndpointBuilder speaker = builder.card("Codec").speaker().hardwareVolume({}).hardwareMute();
    sim::Simulation& simulation = start(builder.build());
    simulation.faults().fail("IAudioMute::GetMute", E_ACCESSDENIED);
    simulation.faults().fail("IAudioVolumeLevel::GetChannelCount", E_ABORT);

    const std::vector<sonavit::Control> found = controls(speaker.id());

    ASSERT_THAT(found, SizeIs(1));
    EXPECT_EQ(std::nullopt, found[0].channels);
    EXPECT_TRUE(found[0].hasMute);
    EXPECT_EQ(std::nullopt, found[0].isMuted);
    EXPECT_THAT(found[0].problems, ElementsAre(IsFailureOf("IAudioVolumeLevel::GetChannelCount", E_ABORT),
                                               IsFailureOf("IAudioMute::GetMute", E_ACCESSDENIED)));
}

/// Whether there is a mute is not known then, and the control says so.
TEST_F(HardwareWalkControls, SayWhyTheirMuteCannotBeReached)
{
    sim::MachineBuilder builder;
    const sim::EndpointBuilder speaker = builder.card("Codec").speaker().hardwareVolume({}).hardwareMute();
    sim::Simulation& simulation = start(builder.build());
    simulation.faults().fail("IPart::Activate", E_ACCESSDENIED).with("IAudioMute");

    const std::vector<sonavit::Control> found = controls(speaker.id());

    ASSERT_THAT(found, SizeIs(1));
    EXPECT_FALSE(found[0].hasMute);
    EXPECT_THAT(found[0].problems, ElementsAre(IsFailureOf("IPart::Activate(IAudioMute)", E_ACCESSDENIED)));
}

TEST_F(HardwareWalkControls, AreNoneWhereTheVolumeNodeHasNoLevel)
{
    sim::MachineBuilder builder;
    sim::CardBuilder card = builder.card("Codec");
    const sim::EndpointBuilder speaker = card.speaker().hardwareVolume({});
    card.adapter().topology->subunits[0].volume.reset();
    start(builder.build());
    const sonavit::Card all = cardOf(speaker.id());

    const sonavit::Hardware hardware = reading::HardwareWalk(enumerator(), {all}).hardware(all.id());

    EXPECT_THAT(hardware.controls.at(0).controls, IsEmpty());
    EXPECT_THAT(hardware.problems, IsEmpty());
}

TEST_F(HardwareWalkControls, OfAnUnknownEndpointAreNone)
{
    start("desktop");

    EXPECT_THAT(walkAll().controls(sonavit::EndpointId("{0.0.0.00000000}.{nothing}")), IsEmpty());
}

using HardwareWalkObjects = HardwareTest;

TEST_F(HardwareWalkObjects, AreThoseOfTheControls)
{
    sim::MachineBuilder builder;
    const sim::EndpointBuilder speaker =
        builder.card("Codec").speaker().hardwareVolume({-60, 0, 1, -15}).hardwareMute();
    const sim::EndpointBuilder bare = builder.card("Bare").speaker().hardwareVolume({});
    start(builder.build());
    const reading::HardwareWalk walk(enumerator(), cards());
    const sonavit::Control control = walk.controls(sonavit::EndpointId(speaker.id())).at(0);
    const sonavit::Control muteless = walk.controls(sonavit::EndpointId(bare.id())).at(0);

    const sonavit::reading::Handle<IAudioVolumeLevel> level = walk.level(control.id);
    const sonavit::reading::Handle<IAudioMute> mute = walk.mute(control.id);

    ASSERT_NE(nullptr, level.get());
    ASSERT_NE(nullptr, mute.get());
    ASSERT_EQ(S_OK, level->SetLevel(0, -30, nullptr));
    ASSERT_EQ(S_OK, mute->SetMute(TRUE, nullptr));
    const sonavit::Control now = walk.controls(sonavit::EndpointId(speaker.id())).at(0);
    EXPECT_EQ(sonavit::Percent(50), now.channels->at(0).level.percent);
    EXPECT_EQ(true, now.isMuted);
    EXPECT_EQ(nullptr, walk.mute(muteless.id).get());
    EXPECT_EQ(nullptr, walk.level(sonavit::ControlId("nothing")).get());
    EXPECT_EQ(nullptr, walk.mute(sonavit::ControlId()).get());
    EXPECT_EQ(nullptr, walk.selector(sonavit::SelectorId(control.id.text())).get());
}

TEST_F(HardwareWalkObjects, ThatChangeAreLevelsMutesAndSelectorsOfTheCardOnce)
{
    sim::MachineBuilder builder;
    sim::CardBuilder card = builder.card("Codec");
    const sim::EndpointBuilder speaker = card.speaker().hardwareVolume({}).hardwareMute();
    sim::Subunit mux;
    mux.subType = KSNODETYPE_MUX;
    mux.selector = sim::SelectorControl{1};
    card.subunit(mux);
    builder.card("Other").speaker().hardwareVolume({});
    start(builder.build());
    const std::vector<sonavit::Card> all = cards();
    const reading::HardwareWalk walk(enumerator(), all);

    const std::vector<reading::HardwareWalk::ChangingControl> changing =
        walk.changingControls(cardOf(speaker.id()).id());

    std::vector<UINT> numbers;
    std::vector<sonavit::Guid> interfaces;
    for (const reading::HardwareWalk::ChangingControl& each : changing)
    {
        each.part->GetLocalId(&numbers.emplace_back());
        interfaces.push_back(reading::guidOf(each.control));
    }
    const std::vector<sim::Subunit>& nodes = card.adapter().topology->subunits;
    EXPECT_THAT(numbers, ElementsAre(nodes[0].localId, nodes[1].localId, nodes[2].localId));
    EXPECT_THAT(interfaces, ElementsAre(reading::guidOf(IID_IAudioVolumeLevel), reading::guidOf(IID_IAudioMute),
                                        reading::guidOf(IID_IAudioInputSelector)));
}
}
