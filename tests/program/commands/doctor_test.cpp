#include "tests/program/programtest.h"

#include "simulator/machine/propertykeys.h"

#include <nlohmann/json.hpp>

using nlohmann::json;
using testing::AllOf;
using testing::HasSubstr;
using testing::SizeIs;
using testing::StartsWith;

namespace
{
/// A machine whose microphone has the wrong sort of name.
class ProgramDoctor : public support::ProgramTest
{
protected:
    static sim::Machine mistyped()
    {
        sim::Machine machine = support::smallMachine();
        sim::setProperty(machine.endpoint(support::microphoneId())->properties, sim::keys::friendlyName,
                         sim::PropertyValue::ofNumber(42));
        return machine;
    }
};
}

TEST_F(ProgramDoctor, FindsNothingOnASoundMachine)
{
    run(support::smallMachine());

    const support::Answer answer = call({"doctor"});

    EXPECT_EQ(0, answer.code);
    EXPECT_EQ("Nothing is wrong with the sound hardware of this computer.\n", answer.out);
    EXPECT_EQ("", answer.err);
}

TEST_F(ProgramDoctor, SaysThatThereIsNoHardware)
{
    const support::Answer answer = call({"doctor", "--machine", "empty"});

    EXPECT_EQ(0, answer.code);
    EXPECT_EQ("There is no sound hardware to examine.\n", answer.out);
}

TEST_F(ProgramDoctor, SaysWhatIsWrongItsEffectAndItsCause)
{
    run(mistyped());

    const support::Answer answer = call({"doctor"});

    EXPECT_EQ(1, answer.code);
    EXPECT_EQ("", answer.err);
    const std::vector<std::string> lines = answer.lines();
    ASSERT_THAT(lines, SizeIs(6));
    EXPECT_THAT(lines[0], StartsWith("Microphone"));
    EXPECT_EQ("  wrong   The name of its device is the number 42, where Windows promises a text.", lines[1]);
    EXPECT_EQ("  effect  Lists show it without the name of its card.", lines[2]);
    EXPECT_THAT(lines[3], StartsWith("  cause   "));
    EXPECT_EQ("", lines[4]);
    EXPECT_EQ("1 finding: 1 thing is wrong.", lines[5]);
}

TEST_F(ProgramDoctor, LeavesOtherEndpointsOutIfOneIsNamed)
{
    run(mistyped());

    const support::Answer sound = call({"doctor", support::speakerId()});
    const support::Answer wrong = call({"doctor", support::microphoneId()});

    EXPECT_EQ(0, sound.code);
    EXPECT_THAT(sound.out, StartsWith("Nothing is wrong with Speakers"));
    EXPECT_EQ(1, wrong.code);
    EXPECT_THAT(wrong.out, HasSubstr("the number 42"));
}

TEST_F(ProgramDoctor, KnowsNoEndpointThatDoesNotExist)
{
    run(support::smallMachine());

    const support::Answer answer = call({"doctor", "Trumpet"});

    EXPECT_EQ(3, answer.code);
    EXPECT_EQ("", answer.out);
}

TEST_F(ProgramDoctor, AnswersInJson)
{
    run(mistyped());

    const support::Answer answer = call({"doctor", "--json"});

    EXPECT_EQ(1, answer.code);
    const json findings = json::parse(answer.out)["findings"];
    ASSERT_EQ(1u, findings.size());
    EXPECT_EQ("data", findings[0]["kind"]);
    EXPECT_EQ("property-of-another-type", findings[0]["rule"]);
    EXPECT_EQ(support::microphoneId(), findings[0]["endpoint"]);
    EXPECT_EQ(support::smallCardId(), findings[0]["card"]);
    EXPECT_TRUE(findings[0]["problem"].is_null());
}

TEST_F(ProgramDoctor, NamesTheCallThatFailedInJson)
{
    sim::Machine machine = support::smallMachine();
    sim::FaultRule fault;
    fault.operation = "IAudioEndpointVolume::GetMute";
    fault.object = support::speakerId();
    fault.result = static_cast<HRESULT>(0x88890004);
    machine.faults.push_back(fault);
    run(machine);

    const json findings = json::parse(call({"doctor", "--json"}).out)["findings"];

    ASSERT_EQ(1u, findings.size());
    EXPECT_EQ("failure", findings[0]["kind"]);
    EXPECT_EQ("IAudioEndpointVolume::GetMute", findings[0]["problem"]["operation"]);
    EXPECT_EQ("0x88890004", findings[0]["problem"]["code"]);
    EXPECT_EQ(support::speakerId(), findings[0]["problem"]["object"]);
}

TEST_F(ProgramDoctor, HasNoFindingsInJsonForASoundMachine)
{
    run(support::smallMachine());

    const support::Answer answer = call({"doctor", "--json"});

    EXPECT_EQ(0, answer.code);
    EXPECT_EQ(json::array(), json::parse(answer.out)["findings"]);
}

TEST_F(ProgramDoctor, FitsANarrowTerminal)
{
    run(mistyped());
    width = 40;

    const support::Answer answer = call({"doctor"});

    for (const std::string& line : answer.lines())
        EXPECT_LE(line.size(), 40u) << line;
    EXPECT_THAT(answer.out, HasSubstr("\n          number 42"));
}

TEST_F(ProgramDoctor, FindsNothingOnTheDesktop)
{
    const support::Answer answer = call({"doctor", "--machine", "desktop"});

    EXPECT_EQ(0, answer.code);
    EXPECT_EQ("Nothing is wrong with the sound hardware of this computer.\n", answer.out);
}

TEST_F(ProgramDoctor, FindsTheAccountOfAUser)
{
    const support::Answer answer = call({"doctor", "--machine", "laptop-user"});

    EXPECT_EQ(1, answer.code);
    EXPECT_THAT(answer.lines(), AllOf(testing::Contains("this computer"),
                                      testing::Contains("  odd     This program runs under an ordinary account.")));
}

TEST_F(ProgramDoctor, FindsManyThingsOnTheBrokenMachine)
{
    const support::Answer answer = call({"doctor", "--machine", "broken"});

    EXPECT_EQ(1, answer.code);
    EXPECT_THAT(answer.lines(), testing::Contains("Mistyped on Troubled Audio"));
}
