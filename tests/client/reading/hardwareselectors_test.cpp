#include "tests/client/reading/hardwaretest.h"

namespace
{
using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;
using HardwareWalkSelectors = HardwareTest;

/// A card with a selector between two jacks and one stream; each jack has a gain on its way.
struct Mixer
{
    sim::MachineBuilder builder;
    sim::CardBuilder card = builder.card("Mixer");
    sim::EndpointBuilder endpoint = card.microphone("Recording");
    std::string selector;
    std::vector<std::string> gains;

    Mixer()
    {
        sim::Subunit node;
        node.subType = KSNODETYPE_MUX;
        node.name = sim::OptionalString("Record Source");
        node.selector = sim::SelectorControl{0};
        selector = card.subunit(node);
        addInput("Microphone", KSNODETYPE_MICROPHONE);
        addInput("Line In", KSNODETYPE_LINE_CONNECTOR);
        card.chain({selector, endpoint.streamId()});
        choose(1);
    }

    void addInput(const std::string& name, const GUID& type)
    {
        const std::string jack = card.connector(sim::OptionalString(name), type, In, Physical_External);
        sim::Subunit gain;
        gain.subType = KSNODETYPE_VOLUME;
        gain.name = sim::OptionalString(name + " Gain");
        gains.push_back(card.subunit(gain));
        card.chain({jack, gains.back(), selector});
    }

    std::uint32_t numberOf(const std::string& part) { return builder.machine().part(part)->localId; }
    void choose(std::size_t input) { builder.machine().part(selector)->selector->selection = numberOf(gains[input]); }
};

TEST_F(HardwareWalkSelectors, HaveTheirInputsAndTheConnectorsBehindThem)
{
    Mixer mixer;
    start(mixer.builder.build());

    const std::vector<sonavit::Selector> found = selectors(mixer.endpoint.id());

    ASSERT_THAT(found, SizeIs(1));
    EXPECT_EQ(sonavit::SelectorId(mixer.selector), found[0].id);
    EXPECT_EQ("Record Source", found[0].name);
    EXPECT_EQ(mixer.card.adapter().id, found[0].deviceId);
    EXPECT_EQ("Mixer", found[0].deviceName);
    EXPECT_THAT(namesOf(found[0].inputs), ElementsAre("Microphone Gain", "Line In Gain"));
    EXPECT_EQ(mixer.numberOf(mixer.gains[0]), found[0].inputs[0].number);
    EXPECT_EQ("Microphone", found[0].inputs[0].connectorName);
    EXPECT_EQ("Line In", found[0].inputs[1].connectorName);
    EXPECT_EQ(sonavit::NodeKind::line, sonavit::kindOf(found[0].inputs[1].connectorType.value()));
    EXPECT_EQ(mixer.numberOf(mixer.gains[1]), found[0].selection);
    EXPECT_THAT(found[0].problems, IsEmpty());
}

TEST_F(HardwareWalkSelectors, HaveTheSelectionOfNow)
{
    Mixer mixer;
    start(mixer.builder.build());
    const sonavit::Card card = cardOf(mixer.endpoint.id());
    const reading::HardwareWalk walk(enumerator(), {card});
    const sonavit::reading::Handle<IAudioInputSelector> selector = walk.selector(sonavit::SelectorId(mixer.selector));
    ASSERT_NE(nullptr, selector.get());

    ASSERT_EQ(S_OK, selector->SetSelection(mixer.numberOf(mixer.gains[0]), nullptr));

    EXPECT_EQ(mixer.numberOf(mixer.gains[0]), walk.selectors(card.id()).at(0).selection);
    EXPECT_EQ(mixer.numberOf(mixer.gains[0]), partNamed(walk.graph(), "Record Source").selection);
}

TEST_F(HardwareWalkSelectors, HaveNoSelectionIfItCannotBeRead)
{
    Mixer mixer;
    sim::Simulation& simulation = start(mixer.builder.build());
    simulation.faults().fail("IAudioInputSelector::GetSelection", E_ACCESSDENIED);

    const std::vector<sonavit::Selector> found = selectors(mixer.endpoint.id());

    ASSERT_THAT(found, SizeIs(1));
    EXPECT_EQ(std::nullopt, found[0].selection);
    EXPECT_THAT(found[0].problems, ElementsAre(IsFailureOf("IAudioInputSelector::GetSelection", E_ACCESSDENIED)));
    EXPECT_EQ(mixer.selector, found[0].problems[0].object());
}

TEST_F(HardwareWalkSelectors, AreThoseOfTheDevicesBehindTheCardsConnectorsInTheOrderOfTheWalk)
{
    Mixer mixer;
    sim::CardBuilder first = mixer.builder.card("First");
    first.speaker();
    sim::Subunit node;
    node.subType = KSNODETYPE_MUX;
    node.name = sim::OptionalString("Other Source");
    node.selector = sim::SelectorControl{0};
    first.subunit(node);
    start(mixer.builder.build());
    const std::vector<sonavit::Card> all = cards();
    const reading::HardwareWalk walk(enumerator(), all);

    std::vector<std::string> names;
    for (const sonavit::Card& card : all)
    {
        for (const sonavit::Selector& selector : walk.selectors(card.id()))
            names.push_back(card.title() + ": " + selector.name.value_or("-"));
    }

    EXPECT_THAT(names, ElementsAre("Mixer: Record Source", "First: Other Source"));
}

/// A chain of parts that feeds itself has no connector to find.
TEST_F(HardwareWalkSelectors, HaveInputsWithoutConnector)
{
    Mixer mixer;
    sim::Part& gain = *mixer.builder.machine().part(mixer.gains[0]).part;
    const std::string jack = gain.incoming.at(0);
    gain.incoming = {mixer.gains[0]};
    gain.outgoing.push_back(mixer.gains[0]);
    mixer.builder.machine().part(jack)->outgoing.clear();
    start(mixer.builder.build());

    const std::vector<sonavit::Selector> found = selectors(mixer.endpoint.id());

    ASSERT_THAT(found, SizeIs(1));
    EXPECT_EQ(std::nullopt, found[0].inputs.at(0).connectorName);
    EXPECT_EQ("Line In", found[0].inputs.at(1).connectorName);
}
}
