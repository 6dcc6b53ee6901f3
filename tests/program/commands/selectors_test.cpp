#include "tests/program/programtest.h"

#include "simulator/machine/nodetypes.h"

#include <nlohmann/json.hpp>

using nlohmann::json;
using testing::ElementsAre;
using testing::HasSubstr;

namespace
{
/// A card with a microphone and a line input, between which a selector chooses the latter, and another card without.
class ProgramSelectors : public support::ProgramTest
{
protected:
    ProgramSelectors() : builder("selecting")
    {
        sim::CardBuilder card = builder.card("Mixer");
        const std::string microphone = card.microphone("Microphone").jackId();
        const std::string line = card.lineIn("Line In").jackId();
        selection = builder.machine().part(line)->localId;
        sim::Subunit subunit;
        subunit.name = "Source";
        subunit.subType = sim::nodetypes::multiplexer;
        subunit.selector = sim::SelectorControl{selection};
        selector = card.subunit(subunit);
        card.chain({microphone, selector});
        card.chain({line, selector});
        cardId = card.instancePath();
        instanceId = card.instanceId();
        adapterId = card.adapter().id;
        builder.card("Plain").speaker();
    }

    sim::MachineBuilder builder;
    unsigned selection;
    std::string selector;
    std::string cardId;
    std::string instanceId;
    std::string adapterId;
};
}

TEST_F(ProgramSelectors, AreShownWithWhatTheySelect)
{
    run(builder.build());

    const support::Answer answer = call({"selectors"});

    EXPECT_EQ(0, answer.code);
    EXPECT_THAT(answer.lines(), ElementsAre("Mixer, Source", "     Microphone  Microphone  through Microphone",
                                            "  *  Line In     Line        through Line In"));
}

TEST_F(ProgramSelectors, AreAnsweredInJson)
{
    run(builder.build());

    const json answer = json::parse(call({"selectors", "--json"}).out);

    ASSERT_EQ(1u, answer["selectors"].size());
    const json& only = answer["selectors"][0];
    EXPECT_EQ(json({{"id", cardId}, {"name", "Mixer"}, {"instanceId", instanceId}}), only["card"]);
    EXPECT_EQ(adapterId, only["device"]["id"]);
    EXPECT_EQ("Mixer", only["device"]["name"]);
    EXPECT_EQ("Source", only["name"]);
    EXPECT_EQ(selection, only["selection"]);
    EXPECT_EQ("microphone", only["inputs"][0]["jack"]);
    EXPECT_EQ(false, only["inputs"][0]["isSelected"]);
    EXPECT_EQ("line", only["inputs"][1]["jack"]);
    EXPECT_EQ(true, only["inputs"][1]["isSelected"]);
}

TEST_F(ProgramSelectors, AreThoseOfOneCardWhereOneIsNamed)
{
    run(builder.build());

    EXPECT_THAT(call({"selectors", "mix"}).out, HasSubstr("Mixer, Source"));
    EXPECT_EQ("There is no input selector.\n", call({"selectors", "Plain"}).out);
    EXPECT_EQ(3, call({"selectors", "Nothing"}).code);
}

TEST_F(ProgramSelectors, ShowADashForASelectionThatCannotBeRead)
{
    sim::Simulation& simulation = run(builder.build());
    simulation.faults().fail("IAudioInputSelector::GetSelection");

    const support::Answer text = call({"selectors"});
    const json answer = json::parse(call({"selectors", "--json"}).out);

    EXPECT_THAT(text.out, HasSubstr("  selection -\n"));
    EXPECT_TRUE(answer["selectors"][0]["selection"].is_null());
    for (const json& input : answer["selectors"][0]["inputs"])
        EXPECT_TRUE(input["isSelected"].is_null());
}

TEST_F(ProgramSelectors, SayNothingOfTheChoiceOfAnInputWithoutANumber)
{
    sim::Simulation& simulation = run(builder.build());
    simulation.faults().fail("IPart::GetLocalId");

    const json answer = json::parse(call({"selectors", "--json"}).out);

    for (const json& input : answer["selectors"][0]["inputs"])
        EXPECT_TRUE(input["id"].is_null() && input["isSelected"].is_null()) << input;
}

TEST_F(ProgramSelectors, ShowASelectionThatIsNoneOfTheInputs)
{
    builder.machine().part(selector)->selector->selection = 7;
    run(builder.build());

    EXPECT_THAT(call({"selectors"}).out, HasSubstr("  selection 7\n"));
}

TEST_F(ProgramSelectors, KeepWhatIsSelectedInANarrowTerminalAndSayWhatIsMissing)
{
    run(builder.build());
    width = 26;

    EXPECT_THAT(call({"selectors"}).lines(),
                ElementsAre("Mixer, Source", "    Microphone Microphone", "  * Line In    Line",
                            "Left out at 26 columns:", "input name"));
}

namespace
{
using ProgramSelect = ProgramSelectors;
}

TEST_F(ProgramSelect, ChoosesAnInputByTheNameOfItsConnector)
{
    run(builder.build());

    const support::Answer answer = call({"select", "Source", "Microphone"});

    EXPECT_EQ(0, answer.code) << answer.err;
    EXPECT_EQ("Mixer, Source: Line In \xE2\x86\x92 Microphone\n", answer.out);
    EXPECT_THAT(call({"selectors"}).lines(),
                ElementsAre("Mixer, Source", "  *  Microphone  Microphone  through Microphone",
                            "     Line In     Line        through Line In"));
}

TEST_F(ProgramSelect, AnswersInJsonHowItWasAndIs)
{
    run(builder.build());

    const json answer = json::parse(call({"select", "sour", "mic", "--card", "Mixer", "--json"}).out);

    EXPECT_EQ("Source", answer["selector"]["name"]);
    EXPECT_EQ(cardId, answer["selector"]["card"]["id"]);
    EXPECT_EQ(json({{"id", selection}, {"name", "Line In"}}), answer["before"]);
    EXPECT_EQ("Microphone", answer["after"]["name"]);
    EXPECT_EQ(answer["selector"]["selection"], answer["after"]["id"]);
}

TEST_F(ProgramSelect, TakesTheNumberOfAnInput)
{
    run(builder.build());
    const json selector = json::parse(call({"selectors", "--json"}).out)["selectors"][0];
    const unsigned number = selector["inputs"][0]["id"];

    EXPECT_EQ(0, call({"select", selector["id"], std::to_string(number)}).code);
    EXPECT_EQ(number, json::parse(call({"selectors", "--json"}).out)["selectors"][0]["selection"]);
}

TEST_F(ProgramSelect, EndsWithExitCode3IfThereIsNoSuchSelectorOrInput)
{
    run(builder.build());

    EXPECT_EQ(3, call({"select", "Trumpet", "Microphone"}).code);
    EXPECT_EQ(3, call({"select", "Source", "Trumpet"}).code);
    EXPECT_EQ(3, call({"select", "Source", "Microphone", "--card", "Plain"}).code);
}

TEST_F(ProgramSelect, SaysWhichCallTheSystemRefuses)
{
    run(builder.build());
    simulation().faults().fail("IAudioInputSelector::SetSelection", E_ACCESSDENIED);

    const support::Answer answer = call({"select", "Source", "Microphone"});

    EXPECT_EQ(1, answer.code);
    EXPECT_THAT(answer.err, HasSubstr("IAudioInputSelector::SetSelection"));
    EXPECT_THAT(answer.err, HasSubstr("0x80070005, access denied"));
}

TEST_F(ProgramSelect, TakesNoSelectorThatCannotBeReadForAMissingOne)
{
    run(builder.build());
    simulation().faults().fail("IDeviceTopology::GetConnector", E_FAIL);

    const support::Answer answer = call({"select", "Source", "Microphone"});

    EXPECT_EQ(1, answer.code);
    EXPECT_THAT(answer.err, HasSubstr("in the hardware that can be read: IDeviceTopology::GetConnector"));
}

TEST_F(ProgramSelectors, SayWhatCouldNotBeReadOnTheWay)
{
    run(builder.build());
    simulation().faults().fail("IDeviceTopology::GetConnector", E_FAIL);

    const support::Answer text = call({"selectors"});
    const json problems = json::parse(call({"selectors", "--json"}).out)["problems"];

    EXPECT_EQ(0, text.code);
    EXPECT_THAT(text.lines().front(), testing::Eq("There is no input selector."));
    EXPECT_THAT(text.lines().back(), testing::EndsWith(" could not be read; --json says why"));
    ASSERT_FALSE(problems.empty());
    EXPECT_EQ("0x80004005", problems[0]["code"]);
}

TEST_F(ProgramSelectors, SayInJsonWhyTheirCardHasAnotherId)
{
    run(builder.build());
    simulation().faults().fail("IPropertyStore::GetValue", E_FAIL).with("instancePath");

    const json answer = json::parse(call({"selectors", "--json"}).out);

    EXPECT_EQ(adapterId, answer["selectors"][0]["card"]["id"]);
    ASSERT_FALSE(answer["problems"].empty());
    EXPECT_EQ("IPropertyStore::GetValue(instancePath)", answer["problems"][0]["operation"]);
}

TEST_F(ProgramSelect, SaysWhereToLookForSelectorsAndInputs)
{
    run(builder.build());

    EXPECT_EQ("sonavit: there is no selector \"Trumpet\"; sonavit selectors shows what there is\n",
              call({"select", "Trumpet", "Microphone"}).err);
    EXPECT_EQ("sonavit: there is no input \"Trumpet\"; sonavit selectors shows what there is\n",
              call({"select", "Source", "Trumpet"}).err);
}

TEST_F(ProgramSelectors, AreChosenWithANoteIfNamesMayNotBeRead)
{
    run(builder.build());
    simulation().faults().fail("IMMDevice::OpenPropertyStore", E_ACCESSDENIED);

    EXPECT_THAT(call({"select", "Source", "Microphone"}).err, testing::StartsWith(support::unreadableNote(3)));
}
