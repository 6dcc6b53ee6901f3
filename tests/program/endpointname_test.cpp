#include "tools/sonavit/endpointname.h"

#include "tests/program/programtest.h"
#include "tools/sonavit/failure.h"

using namespace sonavit::program;
using testing::HasSubstr;
using testing::StartsWith;

namespace
{
/// Endpoints that have no platform behind them; defaults are not asked for.
class ProgramEndpointName : public testing::Test
{
protected:
    ProgramEndpointName()
    {
        add("{0.0.0.00000000}.{aaaaaaaa-0000}", "Speakers", "Analog Audio");
        add("{0.0.0.00000000}.{bbbbbbbb-0000}", "Rear Speakers", "Analog Audio");
        add("{0.0.1.00000000}.{cccccccc-0000}", "Microphone", "USB Headset");
        add("{0.0.1.00000000}.{CCCCCCCC-0000}", "Twin", "USB Headset");
        add("{0.0.1.00000000}.{dddddddd-0000}", "", "");
    }

    void add(const std::string& id, const std::string& description, const std::string& friendlyName)
    {
        Endpoint endpoint;
        endpoint.id = id;
        endpoint.flow = id.find("{0.0.1.") == 0 ? eCapture : eRender;
        if (!description.empty())
            endpoint.description = description;
        if (!friendlyName.empty())
            endpoint.friendlyName = friendlyName;
        endpoints.push_back(endpoint);
    }

    std::string complaint(const std::string& name)
    {
        try
        {
            endpointIndex(endpoints, name);
        }
        catch (const UsageError& error)
        {
            return error.what();
        }
        return "";
    }

    std::vector<Endpoint> endpoints;
};
}

TEST_F(ProgramEndpointName, FindsAWholeIdInAnyCase)
{
    EXPECT_EQ(0u, endpointIndex(endpoints, "{0.0.0.00000000}.{aaaaaaaa-0000}"));
    EXPECT_EQ(0u, endpointIndex(endpoints, "{0.0.0.00000000}.{AAAAAAAA-0000}"));
}

TEST_F(ProgramEndpointName, PrefersTheExactSpelling)
{
    EXPECT_EQ(2u, endpointIndex(endpoints, "{0.0.1.00000000}.{cccccccc-0000}"));
    EXPECT_EQ(3u, endpointIndex(endpoints, "{0.0.1.00000000}.{CCCCCCCC-0000}"));
}

TEST_F(ProgramEndpointName, PrefersAWholeNameToAPieceOfOne)
{
    EXPECT_EQ(0u, endpointIndex(endpoints, "speakers"));
    EXPECT_EQ(0u, endpointIndex(endpoints, "Speakers (Analog Audio)"));
}

TEST_F(ProgramEndpointName, FindsAPieceThatNoOtherHas)
{
    EXPECT_EQ(1u, endpointIndex(endpoints, "rear"));
    EXPECT_EQ(4u, endpointIndex(endpoints, "dddd"));
    EXPECT_EQ(2u, endpointIndex(endpoints, "phone (USB"));
}

TEST_F(ProgramEndpointName, NamesTheCandidatesForWhatIsAmbiguous)
{
    EXPECT_EQ("\"Analog\" matches 2 endpoints: Speakers (Analog Audio) {0.0.0.00000000}.{aaaaaaaa-0000} (output) and "
              "Rear Speakers (Analog Audio) {0.0.0.00000000}.{bbbbbbbb-0000} (output)",
              complaint("Analog"));
}

TEST_F(ProgramEndpointName, NamesTheFlowsOfTheCandidates)
{
    add("{0.0.0.00000000}.{eeeeeeee-0000}", "Headset", "Field Headset");
    add("{0.0.1.00000000}.{ffffffff-0000}", "Headset", "Field Headset");

    EXPECT_EQ(
        "\"Headset (Field\" matches 2 endpoints: Headset (Field Headset) {0.0.0.00000000}.{eeeeeeee-0000} (output) "
        "and Headset (Field Headset) {0.0.1.00000000}.{ffffffff-0000} (input)",
        complaint("Headset (Field"));
}

TEST_F(ProgramEndpointName, NamesNoMoreThanSixCandidates)
{
    for (int i = 0; i < 8; ++i)
        add("{x" + std::to_string(i) + "}", "Output", "Card");

    const std::string text = complaint("Output");

    EXPECT_THAT(text, StartsWith("\"Output\" matches 8 endpoints: Output (Card) {x0} (output), "));
    EXPECT_THAT(text, HasSubstr("{x5} (output) and 2 more"));
    EXPECT_EQ(std::string::npos, text.find("{x6}"));
}

TEST_F(ProgramEndpointName, RefusesWhatNamesNothing)
{
    EXPECT_EQ("there is no endpoint \"Trumpet\"; sonavit list shows what there is", complaint("Trumpet"));
    EXPECT_EQ("the name of the endpoint is empty", complaint(""));
    EXPECT_EQ("there is no default output", complaint("@DEFAULT_OUTPUT@"));
    EXPECT_EQ("there is no default input", complaint("@default_input@"));
}

TEST_F(ProgramEndpointName, SaysThatAnUnreadableEndpointMayBeTheOne)
{
    endpoints.back().failure = E_ACCESSDENIED;

    try
    {
        endpointIndex(endpoints, "Trum\npet");
        ADD_FAILURE() << "there is no such endpoint";
    }
    catch (const OperationFailure& failure)
    {
        EXPECT_STREQ("the endpoint \"Trum\\npet\" cannot be found, as the system fails to report the name of 1 "
                     "endpoint: 0x80070005, access denied",
                     failure.what());
    }
    EXPECT_EQ(0u, endpointIndex(endpoints, "speakers"));
}

TEST_F(ProgramEndpointName, CutsLongNamesOfCandidates)
{
    add("{one}", std::string(200, 'x'), "");
    add("{two}", std::string(200, 'x'), "");

    EXPECT_EQ("\"" + std::string(4, 'x') + "\" matches 2 endpoints: " + std::string(59, 'x') +
                  "\xE2\x80\xA6 {one} (output) and " + std::string(59, 'x') + "\xE2\x80\xA6 {two} (output)",
              complaint("xxxx"));
}

namespace
{
class ProgramDefaultName : public support::ProgramTest
{
};
}

TEST_F(ProgramDefaultName, FindsTheDefaultsOfBothFlows)
{
    run(support::smallMachine());

    EXPECT_EQ("Speakers (Analog Audio): 72% (-18.00 dB)\n", call({"get-volume", "@DEFAULT_OUTPUT@"}).out);
    EXPECT_THAT(call({"get-volume", "@DEFAULT_INPUT@"}).out, StartsWith("Microphone (Analog Audio): "));
}

TEST_F(ProgramDefaultName, GoesByTheConsoleRole)
{
    sim::MachineBuilder builder;
    sim::CardBuilder card = builder.card("Card");
    card.speaker("Speakers").defaultFor(eConsole).defaultFor(eMultimedia);
    card.headphones("Headset").defaultFor(eCommunications);
    run(builder.build());

    EXPECT_THAT(call({"get-volume", "@DEFAULT_OUTPUT@"}).out, StartsWith("Speakers (Card): "));
}

TEST_F(ProgramDefaultName, IsNothingOnAMachineWithoutDefaults)
{
    sim::MachineBuilder builder;
    builder.card("Card").speaker();
    builder.withoutDefaults();
    run(builder.build());

    const support::Answer answer = call({"get-volume", "@DEFAULT_OUTPUT@"});

    EXPECT_EQ(2, answer.code);
    EXPECT_EQ("sonavit: there is no default output\n", answer.err);
}

TEST_F(ProgramDefaultName, IsAFailureWhereTheSystemCannotReportIt)
{
    sim::Simulation& simulation = run(support::smallMachine());
    simulation.faults().fail("IMMDeviceEnumerator::GetDefaultAudioEndpoint", E_ACCESSDENIED);

    const support::Answer answer = call({"get-volume", "@DEFAULT_OUTPUT@"});

    EXPECT_EQ(1, answer.code);
    EXPECT_EQ("sonavit: the system cannot report the default output: 0x80070005, access denied\n", answer.err);
}

TEST_F(ProgramDefaultName, IsAFailureWhereTheSystemReportsNothing)
{
    sim::Simulation simulation(support::smallMachine());
    simulation.faults().succeedWithNull("IMMDeviceEnumerator::GetDefaultAudioEndpoint");

    const support::Answer answer = call({"get-volume", "@DEFAULT_INPUT@"});

    EXPECT_EQ(1, answer.code);
    EXPECT_EQ("sonavit: the default input cannot be identified\n", answer.err);
}
