#include "tests/program/programtest.h"

#include "simulator/machine/file/machinefile.h"

#include <nlohmann/json.hpp>

#include <algorithm>

using nlohmann::json;
using testing::AllOf;
using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::StartsWith;

namespace
{
class ProgramExplain : public support::ProgramTest
{
};
}

TEST_F(ProgramExplain, AnswersTheFourQuestionsWithTheCallOfEachFact)
{
    run(support::smallMachine());

    const support::Answer answer = call({"explain", "Speakers"});

    EXPECT_EQ(0, answer.code);
    EXPECT_EQ("Speakers (Analog Audio), output, active", answer.lines()[0]);
    EXPECT_EQ(support::speakerId(), answer.lines()[1]);
    EXPECT_THAT(answer.out,
                AllOf(HasSubstr("\nWhy is it in this card?\n"), HasSubstr("\nWhy does it have these jacks?\n"),
                      HasSubstr("\nWhy these hardware controls, and no others?\n"),
                      HasSubstr("\nWhy is it the default, or not?\n")));
    EXPECT_THAT(answer.lines(), Contains("       IPropertyStore::GetValue(instancePath)"));
    EXPECT_THAT(answer.lines(), Contains("  So it is in the card \"Analog Audio\", with 2 other endpoints."));
    EXPECT_THAT(answer.lines(), Contains("  So it is the default output for console, multimedia and communications."));
}

TEST_F(ProgramExplain, NamesTheObjectOfACallOnAnotherThanTheEndpointByTheEndOfItsId)
{
    const sim::Machine machine = support::smallMachine();
    const std::string jack = machine.peer(machine.endpoints[0].topology->connectors[0].id)->connector;
    run(machine);

    const support::Answer answer = call({"explain", "Speakers"});
    const json facts = json::parse(call({"explain", "Speakers", "--json"}).out)["reasons"][1]["facts"];

    EXPECT_THAT(answer.lines(), Contains("       IPart::GetSubType on …" + jack.substr(jack.rfind('}') + 1)));
    EXPECT_EQ("IPart::GetSubType", facts[2]["call"]);
    EXPECT_EQ(jack, facts[2]["object"]);
}

TEST_F(ProgramExplain, FitsIntoATerminal)
{
    width = 60;
    run(support::smallMachine());

    const support::Answer answer = call({"explain", "Speakers"});

    // An id has no blank at which a line could end.
    for (const std::string& line : answer.lines())
        EXPECT_TRUE(line.size() <= 60 || line.find(' ', line.find_first_not_of(' ')) == std::string::npos) << line;
}

TEST_F(ProgramExplain, AnswersInJson)
{
    run(support::smallMachine());

    const json answer = json::parse(call({"explain", "Speakers", "--json"}).out);

    EXPECT_EQ("Analog Audio", answer["card"]["name"]);
    EXPECT_EQ(support::speakerId(), answer["endpoint"]["id"]);
    std::vector<std::string> questions;
    for (const json& reason : answer["reasons"])
        questions.push_back(reason["question"]);
    EXPECT_THAT(questions, ElementsAre("card", "jacks", "controls", "default"));
    const json& card = answer["reasons"][0];
    EXPECT_EQ("Why is it in this card?", card["title"]);
    EXPECT_EQ("IPropertyStore::GetValue(instancePath)", card["facts"][0]["call"]);
    EXPECT_EQ(support::speakerId(), card["facts"][0]["object"]);
    EXPECT_TRUE(card["facts"][0]["code"].is_null());
    EXPECT_TRUE(card["facts"][1]["call"].is_null());
    EXPECT_EQ("So it is in the card \"Analog Audio\", with 2 other endpoints.", card["conclusion"]);
}

TEST_F(ProgramExplain, ReportsTheCodeOfACallThatFails)
{
    sim::Machine machine = support::smallMachine();
    sim::FaultRule rule;
    rule.operation = "IPropertyStore::GetValue";
    rule.object = support::speakerId();
    rule.argument = "instancePath";
    rule.result = E_ACCESSDENIED;
    machine.faults.push_back(rule);
    run(machine);

    const json facts = json::parse(call({"explain", "Speakers", "--json"}).out)["reasons"][0]["facts"];

    EXPECT_EQ(
        "This call failed: 0x80070005, access denied. So it has no instance path, by which endpoints belong together.",
        facts[0]["sentence"]);
    EXPECT_EQ("0x80070005", facts[0]["code"]);
}

TEST_F(ProgramExplain, ReportsAnEndpointThatDoesNotExist)
{
    run(support::smallMachine());

    const support::Answer answer = call({"explain", "Trumpet"});

    EXPECT_EQ(3, answer.code);
    EXPECT_EQ("", answer.out);
    EXPECT_THAT(answer.err, StartsWith("sonavit: there is no endpoint \"Trumpet\""));
}
