#include "tests/program/programtest.h"

#include <nlohmann/json.hpp>

using nlohmann::json;

namespace
{
class ProgramAsk : public support::ProgramTest
{
protected:
    void SetUp() override
    {
        ProgramTest::SetUp();
        sim::MachineBuilder builder;
        sim::CardBuilder inputs = builder.card("Inputs", "INPUTS\\1");
        inputs.lineIn().disabled();
        inputs.spdifOut().unplugged();
        sim::CardBuilder outputs = builder.card("Outputs", "OUTPUTS\\1");
        outputs.headphones().notPresent();
        outputs.microphone();
        run(builder.build());
    }
};
}

TEST_F(ProgramAsk, AnswersFourQuestionsWhateverTheStates)
{
    const support::Answer answer = call({"ask", "INPUTS\\1"});

    EXPECT_EQ(0, answer.code);
    EXPECT_EQ("analog output     no\n"
              "digital output    yes\n"
              "line input        yes\n"
              "microphone input  no\n",
              answer.out);
}

TEST_F(ProgramAsk, AnswersInJsonInAnyCase)
{
    const json answer = json::parse(call({"ask", "outputs\\1", "--json"}).out);

    EXPECT_EQ(
        json::parse(
            R"({"schemaVersion": 2, "machine": null, "instanceId": "outputs\\1", "analogOut": true, "digitalOut": false,
                              "lineIn": false, "microphoneIn": true, "known": true})"),
        answer);
}

TEST_F(ProgramAsk, AnswersNoForACardThatThereIsNot)
{
    const support::Answer text = call({"ask", "NOTHING"});
    const json answer = json::parse(call({"ask", "NOTHING", "--json"}).out);

    EXPECT_EQ(3, text.code);
    EXPECT_EQ("analog output     no\n"
              "digital output    no\n"
              "line input        no\n"
              "microphone input  no\n"
              "No card has this instance id.\n",
              text.out);
    EXPECT_EQ(
        json::parse(
            R"({"schemaVersion": 2, "machine": null, "instanceId": "NOTHING", "analogOut": false, "digitalOut": false,
                              "lineIn": false, "microphoneIn": false, "known": false})"),
        answer);
}

TEST_F(ProgramAsk, LeavesComOnTheThreadAsItWas)
{
    call({"ask", "INPUTS\\1"});

    EXPECT_EQ(0u, simulation().comUnderflows());
    IMMDeviceEnumerator* enumerator = nullptr;
    const HRESULT result = CoCreateInstance(CLSID_MMDeviceEnumerator, nullptr, CLSCTX_INPROC_SERVER,
                                            IID_IMMDeviceEnumerator, reinterpret_cast<void**>(&enumerator));
    EXPECT_EQ(S_OK, result); // the test's own COM is still there
    if (enumerator != nullptr)
        enumerator->Release();
}
