#include "tests/program/programtest.h"

#include <nlohmann/json.hpp>

#include <set>

using nlohmann::json;
using support::Answer;
using testing::Contains;
using testing::EndsWith;
using testing::HasSubstr;
using testing::StartsWith;

namespace
{
class ProgramIdentity : public support::ProgramTest
{
protected:
    json answered(std::vector<std::string> words)
    {
        words.emplace_back("--json");
        return json::parse(call(words).out);
    }

    /// The ids of the endpoints that find has found.
    std::set<std::string> found(const std::string& id)
    {
        std::set<std::string> ids;
        const json answer = answered({"find", id});
        for (const json& match : answer["matches"])
            ids.insert(match["endpoint"]["id"]);
        return ids;
    }

    std::string referenceTo(const std::string& endpoint)
    {
        std::string text = call({"refer", endpoint}).out;
        text.pop_back();
        return text;
    }
};

using ProgramFind = ProgramIdentity;
using ProgramRefer = ProgramIdentity;
using ProgramResolve = ProgramIdentity;
}

TEST_F(ProgramFind, ShowsAllIdsOfAnEndpointThatHasOneOfThem)
{
    run(support::smallMachine());

    const Answer answer = call({"find", support::speakerId()});

    EXPECT_EQ(0, answer.code);
    EXPECT_EQ("Speakers (Analog Audio), by its endpoint id", answer.lines()[0]);
    EXPECT_THAT(answer.lines(), Contains("  endpoint id  " + support::speakerId()));
    EXPECT_THAT(answer.lines(), Contains("  wave id      0"));
    EXPECT_THAT(answer.lines(), Contains("  instance id  " + support::smallInstanceId()));
    EXPECT_THAT(answer.lines(), Contains("  card         Analog Audio"));
}

TEST_F(ProgramFind, LeadsFromEachIdToTheEndpointAndBack)
{
    run(support::smallMachine());
    const json speakers = answered({"show", "Speakers"});
    const std::set<std::string> all = {support::speakerId(), support::headphonesId(), support::microphoneId()};

    EXPECT_THAT(found("0"), Contains(support::speakerId())); // a number of outputs and one of inputs
    EXPECT_EQ(std::set<std::string>{support::speakerId()}, found(speakers["endpoint"]["directSoundGuid"]));
    EXPECT_EQ(all, found(support::smallInstanceId()));
    EXPECT_EQ(all, found(support::smallCardId()));
}

TEST_F(ProgramFind, AnswersInJsonByWhatItFound)
{
    run(support::smallMachine());

    const json answer = answered({"find", "0"});

    EXPECT_EQ(2, answer["schemaVersion"]);
    const json& match = answer["matches"][0];
    EXPECT_EQ("waveId", match["by"]);
    EXPECT_EQ(support::smallCardId(), match["card"]["id"]);
    EXPECT_EQ(support::speakerId(), match["endpoint"]["id"]);
    EXPECT_EQ(0, match["endpoint"]["waveId"]);
}

TEST_F(ProgramFind, EndsWithExitCode3IfNothingHasTheId)
{
    run(support::smallMachine());

    const Answer answer = call({"find", "4711"});
    const Answer inJson = call({"find", "4711", "--json"});

    EXPECT_EQ(3, answer.code);
    EXPECT_EQ("", answer.out);
    EXPECT_EQ("sonavit: there is no endpoint with the id \"4711\"; sonavit list shows what there is\n", answer.err);
    EXPECT_EQ(3, inJson.code);
    EXPECT_EQ(3, json::parse(inJson.out)["exitCode"]);
}

TEST_F(ProgramFind, IsAFailureIfTheEndpointsCannotAllBeListed)
{
    run(support::smallMachine());
    simulation().faults().fail("IMMDeviceEnumerator::EnumAudioEndpoints", E_FAIL).with("eCapture");

    const Answer answer = call({"find", support::microphoneId()});

    EXPECT_EQ(1, answer.code);
    EXPECT_THAT(answer.err, EndsWith("among those that can be read, as the system cannot list its inputs: 0x80004005, "
                                     "unspecified error\n"));
    EXPECT_EQ(0, call({"find", support::speakerId()}).code);
}

TEST_F(ProgramRefer, PrintsAReferenceAlone)
{
    run(support::smallMachine());

    const Answer answer = call({"refer", "Speakers"});

    EXPECT_EQ(0, answer.code);
    EXPECT_EQ(1u, answer.lines().size());
    EXPECT_THAT(answer.out, StartsWith("snv1:"));
    EXPECT_EQ(answer.lines()[0], answered({"refer", "Speakers"})["reference"]);
    EXPECT_EQ(support::speakerId(), answered({"refer", "Speakers"})["endpoint"]["id"]);
}

TEST_F(ProgramRefer, EndsWithExitCode3IfThereIsNoSuchEndpoint)
{
    run(support::smallMachine());

    EXPECT_EQ(3, call({"refer", "Trumpet"}).code);
}

TEST_F(ProgramResolve, FindsTheEndpointOfAReference)
{
    run(support::smallMachine());

    const Answer answer = call({"resolve", referenceTo("Speakers")});
    const json inJson = answered({"resolve", referenceTo("Speakers")});

    EXPECT_EQ(0, answer.code);
    EXPECT_THAT(answer.lines()[0], HasSubstr("Speakers (Analog Audio)"));
    EXPECT_THAT(answer.out, HasSubstr(support::speakerId()));
    EXPECT_EQ("exact", inJson["result"]);
    EXPECT_EQ("endpointId", inJson["candidates"][0]["evidence"]);
    EXPECT_EQ(support::speakerId(), inJson["candidates"][0]["endpoint"]["id"]);
    EXPECT_EQ(support::smallCardId(), inJson["candidates"][0]["card"]["id"]);
}

TEST_F(ProgramResolve, SaysWhyAnEndpointIsRecognisedThatHasAnotherId)
{
    const auto headset = [](const std::string& instance)
    {
        sim::MachineBuilder builder;
        builder.card("Headset", "USB\\VID_1234&PID_5678\\7&1A2B3C4&0&" + instance).headphones("Earphones");
        return builder.build();
    };
    std::string reference;
    {
        const sim::Simulation before(headset("1"));
        onWorkerStart = [&] { support::meet(const_cast<sim::Simulation&>(before)); };
        reference = referenceTo("Earphones");
    }
    sim::Machine machine = headset("2");
    machine.endpoints[0].id = "{0.0.0.00000000}.{01234567-0123-0123-0123-0123456789ab}";
    run(machine);
    onWorkerStart = [this] { support::meet(simulation()); };

    const json answer = answered({"resolve", reference});

    EXPECT_EQ("likely", answer["result"]);
    ASSERT_EQ(1u, answer["candidates"].size());
    EXPECT_EQ(machine.endpoints[0].id, answer["candidates"][0]["endpoint"]["id"]);
    EXPECT_NE("", answer["candidates"][0]["reason"]);
    EXPECT_EQ(0, call({"resolve", reference}).code);
}

TEST_F(ProgramResolve, EndsWithExitCode3IfTheReferenceMeansNothingHere)
{
    run(support::smallMachine());
    const std::string speakers = referenceTo("Speakers");
    simulation().events().remove(support::speakerId());

    const Answer answer = call({"resolve", speakers});

    EXPECT_EQ(3, answer.code);
    EXPECT_EQ("sonavit: no endpoint fits the reference; sonavit list shows what there is\n", answer.err);
    EXPECT_EQ("", answer.out);
}

TEST_F(ProgramResolve, RefusesWhatIsNoReference)
{
    run(support::smallMachine());

    for (const char* const text : {"Speakers", "snv1:", "snv1:%%%"})
    {
        const Answer answer = call({"resolve", text});
        EXPECT_EQ(2, answer.code) << text;
        EXPECT_THAT(answer.err, StartsWith("sonavit: ")) << text;
    }
}

TEST_F(ProgramResolve, TakesNoEndpointThatCannotBeListedForAMissingOne)
{
    run(support::smallMachine());
    const std::string speakers = referenceTo("Speakers");
    simulation().faults().fail("IMMDeviceEnumerator::EnumAudioEndpoints").with("eRender");

    const Answer answer = call({"resolve", speakers});

    EXPECT_EQ(1, answer.code);
    EXPECT_THAT(answer.err,
                HasSubstr("no endpoint fits the reference among those that can be read, as the system cannot "
                          "list its outputs: "));
}
