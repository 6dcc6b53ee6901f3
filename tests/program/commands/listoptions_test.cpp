#include "tests/program/programtest.h"

#include <nlohmann/json.hpp>

using nlohmann::json;
using testing::ElementsAre;

namespace
{
/// The endpoints that `list` shows with these options, by the lines of `--short`.
class ProgramListOptions : public support::ProgramTest
{
protected:
    ProgramListOptions()
    {
        sim::MachineBuilder builder;
        sim::CardBuilder board = builder.card("Board");
        board.speaker("Speakers").isDefault().level(-18.0f);
        board.headphones("Headphones").unplugged();
        board.microphone("Microphone").muted();
        builder.usbCard("Headset").headphones("Earphones");
        machine = builder.build();
    }

    std::vector<std::string> names(std::vector<std::string> options)
    {
        options.insert(options.begin(), {"list", "--short"});
        std::vector<std::string> result;
        for (const std::string& line : call(options).lines())
            result.push_back(line.substr(line.rfind('\t') + 1));
        return result;
    }

    sim::Machine machine;
};
}

TEST_F(ProgramListOptions, LeaveOnlyWhatIsActive)
{
    run(machine);

    EXPECT_THAT(names({"--active"}),
                testing::UnorderedElementsAre("Speakers (Board)", "Microphone (Board)", "Earphones (Headset)"));
}

TEST_F(ProgramListOptions, LeaveOnlyOneFlow)
{
    run(machine);

    EXPECT_THAT(names({"--outputs"}),
                testing::UnorderedElementsAre("Speakers (Board)", "Headphones (Board)", "Earphones (Headset)"));
    EXPECT_THAT(names({"--inputs"}), ElementsAre("Microphone (Board)"));
    EXPECT_THAT(names({"--outputs", "--active", "--card", "Board"}), ElementsAre("Speakers (Board)"));
}

TEST_F(ProgramListOptions, LeaveOnlyOneCard)
{
    run(machine);

    EXPECT_THAT(names({"--card", "Headset"}), ElementsAre("Earphones (Headset)"));
    const json answer = json::parse(call({"list", "--card", "Headset", "--json"}).out);
    ASSERT_EQ(1u, answer["cards"].size());
    EXPECT_EQ("Headset", answer["cards"][0]["name"]);
}

TEST_F(ProgramListOptions, LeaveCardsOutOfWhichNothingIsLeft)
{
    run(machine);

    const json answer = json::parse(call({"list", "--inputs", "--json"}).out);

    ASSERT_EQ(1u, answer["cards"].size());
    EXPECT_EQ(1u, answer["cards"][0]["endpoints"].size());
    EXPECT_EQ("There is no such endpoint.\n", call({"list", "--inputs", "--card", "Headset"}).out);
    EXPECT_EQ("", call({"list", "--inputs", "--card", "Headset", "--short"}).out);
}

TEST_F(ProgramListOptions, PrintLinesThatScriptsCanCut)
{
    run(machine);

    const support::Answer answer = call({"list", "--short", "--card", "Board"});

    EXPECT_EQ(0, answer.code);
    EXPECT_THAT(
        answer.lines(),
        ElementsAre(machine.endpoints[0].id +
                        "\toutput\tactive\tconsole,multimedia,communications\t72\t-18.00\tunmuted\tspeaker\tBoard\t"
                        "Speakers (Board)",
                    testing::StartsWith(machine.endpoints[1].id + "\toutput\tunplugged\t\t"),
                    testing::EndsWith("\tmuted\tmicrophone\tBoard\tMicrophone (Board)")));
}

TEST_F(ProgramListOptions, PrintNothingForWhatIsNotKnown)
{
    sim::MachineBuilder builder;
    builder.card("Card").speaker("Gone").notPresent().withoutVolume().unjoined();
    builder.withoutDefaults();
    run(builder.build());

    EXPECT_THAT(call({"list", "--short"}).out,
                testing::EndsWith("\toutput\tnotPresent\t\t\t\t\t\tCard\tGone (Card)\n"));
}

TEST_F(ProgramListOptions, ShowIdsThatEndpointsThatAreLeftOutDoNotHaveEither)
{
    sim::MachineBuilder builder;
    builder.card("Board").speaker("Speakers");
    builder.usbCard("Headset").headphones("Earphones");
    sim::Machine alike = builder.build();
    std::string id = alike.endpoints[0].id; // the other one's but for its last digit
    char& lastDigit = id[id.size() - 2];
    lastDigit = lastDigit == '0' ? '1' : '0';
    alike.endpoints[1].id = id;
    run(alike);

    EXPECT_THAT(call({"list", "--card", "Headset"}).out, testing::HasSubstr("  " + id + "\n"));
}
