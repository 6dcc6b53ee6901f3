#include "tests/program/programtest.h"

#include <nlohmann/json.hpp>

using nlohmann::json;
using testing::ElementsAre;

namespace
{
class ProgramVolume : public support::ProgramTest
{
protected:
    const sim::EndpointVolume& speaker()
    {
        m_machine = simulation().machine();
        return *m_machine.endpoint(support::speakerId())->volume;
    }

    /// The small machine, whose speaker refuses @p operations.
    void runRefusing(const std::vector<std::string>& operations)
    {
        sim::Machine machine = support::smallMachine();
        machine.endpoints[0].volume->refused = operations;
        run(std::move(machine));
    }

private:
    sim::Machine m_machine;
};
}

TEST_F(ProgramVolume, IsShownInPercentAndDecibels)
{
    run(support::smallMachine());

    EXPECT_EQ("Speakers (Analog Audio): 72% (-18.00 dB)\n", call({"get-volume", "Speakers"}).out);
    EXPECT_EQ("Microphone (Analog Audio): 74% (0.00 dB), muted\n", call({"get-volume", "Microphone"}).out);
}

TEST_F(ProgramVolume, IsAnsweredInJson)
{
    run(support::smallMachine());

    const json answer = json::parse(call({"get-volume", "Speakers", "--json"}).out);

    EXPECT_EQ(json::parse(R"json({"schemaVersion": 2, "machine": null,
        "endpoint": {"id": ")json" +
                          support::speakerId() + R"json(", "name": "Speakers (Analog Audio)"},
        "volume": {"percent": 72, "decibels": -18, "range": {"min": -65.25, "max": 0, "step": 0.75},
                   "channels": [{"percent": 72, "decibels": -18}, {"percent": 72, "decibels": -18}],
                   "inHardware": false},
        "muted": false})json"),
              answer);
}

TEST_F(ProgramVolume, IsSetInPercent)
{
    run(support::smallMachine());

    const support::Answer answer = call({"set-volume", "Speakers", "50%"});

    EXPECT_EQ("Speakers (Analog Audio): 72% (-18.00 dB) \xE2\x86\x92 50% (-32.62 dB)\n", answer.out);
    EXPECT_EQ(0, answer.code);
    EXPECT_THAT(speaker().channels, ElementsAre(-32.625f, -32.625f));
}

TEST_F(ProgramVolume, IsSetInDecibels)
{
    run(support::smallMachine());

    const support::Answer answer = call({"set-volume", "Speakers", "-12.5dB"});

    EXPECT_EQ("Speakers (Analog Audio): 72% (-18.00 dB) \xE2\x86\x92 81% (-12.50 dB)\n", answer.out);
    EXPECT_THAT(speaker().channels, ElementsAre(-12.5f, -12.5f));
}

TEST_F(ProgramVolume, IsSetInSteps)
{
    run(support::smallMachine());

    EXPECT_EQ(0, call({"set-volume", "Speakers", "5%+"}).code);
    EXPECT_THAT(call({"get-volume", "Speakers"}).out, testing::HasSubstr(": 77% "));
    EXPECT_EQ(0, call({"set-volume", "Speakers", "10%-"}).code);
    EXPECT_THAT(call({"get-volume", "Speakers"}).out, testing::HasSubstr(": 67% "));
    EXPECT_EQ(0, call({"set-volume", "Speakers", "-20dB"}).code);
    EXPECT_EQ(0, call({"set-volume", "Speakers", "2dB-"}).code);
    EXPECT_THAT(speaker().channels, ElementsAre(-22.0f, -22.0f));
}

TEST_F(ProgramVolume, StepsNoFurtherThanTheEnds)
{
    run(support::smallMachine());

    EXPECT_EQ(0, call({"set-volume", "Speakers", "90%+"}).code);
    EXPECT_THAT(speaker().channels, ElementsAre(0.0f, 0.0f));
    EXPECT_EQ(0, call({"set-volume", "Speakers", "100%-"}).code);
    EXPECT_EQ(0, call({"set-volume", "Speakers", "1%-"}).code);
    EXPECT_THAT(speaker().channels, ElementsAre(-65.25f, -65.25f));
}

TEST_F(ProgramVolume, AnswersInJsonHowItWasAndIs)
{
    run(support::smallMachine());

    const json answer = json::parse(call({"set-volume", "Speakers", "0%", "--json"}).out);

    EXPECT_EQ(json::parse(R"({"percent": 72, "decibels": -18})"), answer["before"]);
    EXPECT_EQ(json::parse(R"({"percent": 0, "decibels": -65.25})"), answer["after"]);
    EXPECT_EQ(0, answer["volume"]["percent"]);
}

TEST_F(ProgramVolume, OutOfRangeInDecibelsIsAFailureThatNamesTheRange)
{
    run(support::smallMachine());

    const support::Answer answer = call({"set-volume", "Speakers", "3dB"});

    EXPECT_EQ(1, answer.code);
    EXPECT_EQ("", answer.out);
    EXPECT_EQ("sonavit: the volume of Speakers (Analog Audio) cannot be set: 3.00 dB is outside the range of -65.25 to "
              "0.00 dB\n",
              answer.err);
    EXPECT_THAT(speaker().channels, ElementsAre(-18.0f, -18.0f));
}

TEST_F(ProgramVolume, OutOfRangeInPercentIsWrongUsageAndReachesNobody)
{
    sim::Simulation& simulation = run(support::smallMachine());

    const support::Answer answer = call({"set-volume", "Speakers", "150%"});

    EXPECT_EQ(2, answer.code);
    EXPECT_EQ("sonavit: \"150%\" is not a volume: percentages range from 0 to 100\n", answer.err);
    EXPECT_EQ(0u, simulation.journal().count("CoCreateInstance"));
}

TEST_F(ProgramVolume, IsSetInFractionsOfAPercent)
{
    run(support::smallMachine());

    const support::Answer answer = call({"set-volume", "Speakers", "33.3%"});

    EXPECT_EQ("Speakers (Analog Audio): 72% (-18.00 dB) \xE2\x86\x92 33% (-43.52 dB)\n", answer.out);
    EXPECT_THAT(speaker().channels, testing::Each(testing::FloatNear(-65.25f + 65.25f * 0.333f, 0.001f)));
}

TEST_F(ProgramVolume, IsLeftToTheSystemToJudgeIfItsRangeCannotBeRead)
{
    runRefusing({"SetMasterVolumeLevel", "GetVolumeRange"});

    EXPECT_EQ(
        "sonavit: the volume of Speakers (Analog Audio) cannot be set: IAudioEndpointVolume::SetMasterVolumeLevel "
        "failed: 0x80004001, not implemented\n",
        call({"set-volume", "Speakers", "-3dB"}).err);
}

TEST_F(ProgramVolume, HasAnEmptyRangeAndNoPercentWhereTheSystemStoresNoRange)
{
    sim::Simulation& simulation = run(support::smallMachine());
    simulation.faults().succeedWithNull("IAudioEndpointVolume::GetVolumeRange");

    const json volume = json::parse(call({"get-volume", "Speakers", "--json"}).out)["volume"];

    EXPECT_EQ(json::parse(R"({"min": 0, "max": 0, "step": 0})"), volume["range"]);
    EXPECT_TRUE(volume["percent"].is_null());
    EXPECT_EQ(-18, volume["decibels"]);
    EXPECT_THAT(call({"show", "Speakers"}).lines(), testing::Contains("  volume       -  -18.00 dB"));
}

TEST_F(ProgramVolume, RefusalIsAFailure)
{
    runRefusing({"SetMasterVolumeLevelScalar"});

    const support::Answer answer = call({"set-volume", "Speakers", "50%", "--json"});

    EXPECT_EQ(1, answer.code);
    EXPECT_EQ("the volume of Speakers (Analog Audio) cannot be set: IAudioEndpointVolume::SetMasterVolumeLevelScalar "
              "failed: 0x80004001, not implemented",
              json::parse(answer.out)["error"]);
}

TEST_F(ProgramVolume, CannotStepFromALevelThatCannotBeRead)
{
    runRefusing({"GetMasterVolumeLevelScalar"});

    const support::Answer step = call({"set-volume", "Speakers", "5%+"});
    const support::Answer level = call({"set-volume", "Speakers", "50%"});

    EXPECT_EQ(1, step.code);
    EXPECT_EQ("sonavit: the volume of Speakers (Analog Audio) cannot be set: "
              "IAudioEndpointVolume::GetMasterVolumeLevelScalar failed: 0x80004001, not implemented\n",
              step.err);
    EXPECT_EQ("Speakers (Analog Audio): - (-18.00 dB) \xE2\x86\x92 - (-32.62 dB)\n", level.out);
}

TEST_F(ProgramVolume, IsMissingOnAnEndpointWithoutControl)
{
    sim::MachineBuilder builder;
    sim::CardBuilder card = builder.card("Card");
    card.speaker("Gone").notPresent().withoutVolume();
    card.headphones("Plain").withoutVolume();
    run(builder.build());

    for (const std::vector<std::string>& words :
         {std::vector<std::string>{"get-volume", "Gone"}, {"set-volume", "Gone", "5%"}, {"mute", "Gone", "on"}})
    {
        const support::Answer answer = call(words);
        EXPECT_EQ(1, answer.code);
        EXPECT_EQ("sonavit: Gone (Card) has no volume control; it is not present\n", answer.err);
    }
    EXPECT_EQ("sonavit: Plain (Card) has no volume control\n", call({"get-volume", "Plain"}).err);
}

TEST_F(ProgramVolume, IsMutedAndUnmuted)
{
    run(support::smallMachine());

    EXPECT_EQ("Speakers (Analog Audio): not muted \xE2\x86\x92 muted\n", call({"mute", "Speakers", "on"}).out);
    EXPECT_TRUE(speaker().muted);
    EXPECT_EQ("Speakers (Analog Audio): muted \xE2\x86\x92 muted\n", call({"mute", "Speakers", "on"}).out);
    EXPECT_EQ("Speakers (Analog Audio): muted \xE2\x86\x92 not muted\n", call({"mute", "Speakers", "toggle"}).out);
    EXPECT_EQ("Speakers (Analog Audio): not muted \xE2\x86\x92 muted\n", call({"mute", "Speakers", "toggle"}).out);
    EXPECT_EQ("Speakers (Analog Audio): muted \xE2\x86\x92 not muted\n", call({"mute", "Speakers", "off"}).out);
    EXPECT_FALSE(speaker().muted);
}

TEST_F(ProgramVolume, AnswersInJsonHowTheMuteWasAndIs)
{
    run(support::smallMachine());

    const json answer = json::parse(call({"mute", "Speakers", "on", "--json"}).out);

    EXPECT_EQ(json::parse(R"json({"schemaVersion": 2, "machine": null, "endpoint": {"id": ")json" +
                          support::speakerId() + R"json(",
        "name": "Speakers (Analog Audio)"}, "before": false, "after": true, "muted": true})json"),
              answer);
}

TEST_F(ProgramVolume, RefusedMuteIsAFailure)
{
    run(support::smallMachine());
    simulation().faults().fail("IAudioEndpointVolume::SetMute", E_ACCESSDENIED);
    const std::string reason = ": IAudioEndpointVolume::SetMute failed: 0x80070005, access denied\n";

    const support::Answer muting = call({"mute", "Speakers", "on"});
    const support::Answer unmuting = call({"mute", "Microphone", "off"});

    EXPECT_EQ(1, muting.code);
    EXPECT_EQ("sonavit: Speakers (Analog Audio) cannot be muted" + reason, muting.err);
    EXPECT_EQ("sonavit: Microphone (Analog Audio) cannot be unmuted" + reason, unmuting.err);
}

TEST_F(ProgramVolume, CannotToggleAMuteThatCannotBeRead)
{
    runRefusing({"GetMute"});

    const support::Answer toggling = call({"mute", "Speakers", "toggle"});
    const support::Answer muting = call({"mute", "Speakers", "on"});

    EXPECT_EQ(1, toggling.code);
    EXPECT_EQ("sonavit: the mute of Speakers (Analog Audio) cannot be toggled: IAudioEndpointVolume::GetMute failed: "
              "0x80004001, not implemented\n",
              toggling.err);
    EXPECT_EQ("Speakers (Analog Audio): - \xE2\x86\x92 -\n", muting.out);
    EXPECT_TRUE(speaker().muted);
}

TEST_F(ProgramVolume, IsSetOnOneChannel)
{
    run(support::smallMachine());

    const support::Answer answer = call({"set-volume", "Speakers", "-30dB", "--channel", "2"});

    EXPECT_EQ(0, answer.code);
    EXPECT_EQ("Speakers (Analog Audio), channel 2: 72% (-18.00 dB) \xE2\x86\x92 54% (-30.00 dB)\n", answer.out);
    EXPECT_THAT(speaker().channels, ElementsAre(-18.0f, -30.0f));
}

TEST_F(ProgramVolume, AnswersInJsonHowTheChannelWasAndIs)
{
    run(support::smallMachine());

    const json answer = json::parse(call({"set-volume", "Speakers", "3dB-", "--channel", "1", "--json"}).out);

    EXPECT_EQ(json::parse(R"({"percent": 72, "decibels": -18})"), answer["before"]);
    EXPECT_EQ(-21, answer["after"]["decibels"]);
    EXPECT_EQ(-21, answer["volume"]["channels"][0]["decibels"]);
    EXPECT_EQ(-18, answer["volume"]["channels"][1]["decibels"]);
}

TEST_F(ProgramVolume, HasNoOtherChannelsThanTheDevice)
{
    run(support::smallMachine());

    const support::Answer answer = call({"set-volume", "Speakers", "50%", "--channel", "3"});

    EXPECT_EQ(1, answer.code);
    EXPECT_EQ("sonavit: the volume of Speakers (Analog Audio) cannot be set: there is no channel 3, they are 1 to 2\n",
              answer.err);
    EXPECT_THAT(speaker().channels, ElementsAre(-18.0f, -18.0f));
}
