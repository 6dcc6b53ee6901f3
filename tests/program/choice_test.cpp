#include "tools/sonavit/choice.h"

#include "tests/program/programtest.h"

using testing::StartsWith;

namespace
{
class ProgramChoice : public support::ProgramTest
{
};
}

TEST_F(ProgramChoice, SaysWhereToLookForANameThatNamesNothing)
{
    run(support::smallMachine());

    const support::Answer answer = call({"show", "Trumpet"});

    EXPECT_EQ(3, answer.code);
    EXPECT_EQ("sonavit: there is no endpoint \"Trumpet\"; sonavit list shows what there is\n", answer.err);
}

TEST_F(ProgramChoice, NamesTheCandidatesForWhatIsAmbiguous)
{
    run(support::smallMachine());

    const support::Answer answer = call({"show", "phone"});

    EXPECT_EQ(2, answer.code);
    EXPECT_EQ("sonavit: \"phone\" matches 2 endpoints: Headphones (Analog Audio) " + support::headphonesId() +
                  " (output) and Microphone (Analog Audio) " + support::microphoneId() + " (input)\n",
              answer.err);
}

TEST_F(ProgramChoice, SaysThatAnUnreadableEndpointMayBeTheOne)
{
    run(support::smallMachine());
    simulation().faults().fail("IMMDevice::OpenPropertyStore", E_ACCESSDENIED).on(support::microphoneId());

    const support::Answer answer = call({"show", "Trum\npet"});

    EXPECT_EQ(1, answer.code);
    EXPECT_EQ(support::unreadableNote(1) +
                  "sonavit: the endpoint \"Trum\\npet\" cannot be found, as the system fails to report the name of 1 "
                  "endpoint: 0x80070005, access denied\n",
              answer.err);
    EXPECT_EQ(0, call({"show", "Speakers"}).code);
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

    EXPECT_EQ(3, answer.code);
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

TEST_F(ProgramDefaultName, IsAFailureWhereTheObjectModelCannotFindItEither)
{
    sim::Simulation& simulation = run(support::smallMachine());
    simulation.faults().fail("IMMDeviceEnumerator::GetDefaultAudioEndpoint", E_ACCESSDENIED);

    const support::Answer answer = call({"show", "@DEFAULT_OUTPUT@", "--via", "model"});

    EXPECT_EQ(1, answer.code);
    EXPECT_EQ("sonavit: the system cannot report the default output: 0x80070005, access denied\n", answer.err);
}

/// An empty id is that of no endpoint, and no sign that there is no default.
TEST_F(ProgramDefaultName, IsAFailureWhereTheDefaultHasAnEmptyId)
{
    sim::Simulation& simulation = run(support::smallMachine());
    simulation.faults().lie("IMMDevice::GetId", sim::Lie::ofText(u"")).on(support::speakerId()).at(2); // after the list

    const support::Answer answer = call({"show", "@DEFAULT_OUTPUT@"});

    EXPECT_EQ(1, answer.code);
    EXPECT_THAT(answer.err, testing::StartsWith("sonavit: the system cannot report the default output: 0x8007000D"));
}

TEST_F(ProgramDefaultName, IsAFailureWhereTheDefaultDoesNotTellItsId)
{
    sim::Simulation& simulation = run(support::smallMachine());
    simulation.faults().fail("IMMDevice::GetId", E_ACCESSDENIED).on(support::speakerId()).at(2); // the list is first

    const support::Answer answer = call({"get-volume", "@DEFAULT_OUTPUT@"});

    EXPECT_EQ(1, answer.code);
    EXPECT_EQ("sonavit: the system cannot report the default output: 0x80070005, access denied\n", answer.err);
}

TEST_F(ProgramDefaultName, IsAFailureWhereTheSystemReportsNothing)
{
    sim::Simulation& simulation = run(support::smallMachine());
    simulation.faults().succeedWithNull("IMMDeviceEnumerator::GetDefaultAudioEndpoint");

    const support::Answer answer = call({"get-volume", "@DEFAULT_INPUT@"});

    EXPECT_EQ(1, answer.code);
    EXPECT_EQ("sonavit: the system cannot report the default input: 0x80004003, success without a result\n",
              answer.err);
}
