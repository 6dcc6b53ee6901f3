#include "tests/program/programtest.h"

#include <nlohmann/json.hpp>

using nlohmann::json;
using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;

namespace
{
class ProgramControls : public support::ProgramTest
{
};
}

TEST_F(ProgramControls, ShowsTheHardwareBesideTheEndpointItself)
{
    run(support::smallMachine());

    const support::Answer answer = call({"controls", "Speakers"});

    EXPECT_EQ(0, answer.code);
    EXPECT_THAT(answer.lines(), ElementsAre("Speakers (Analog Audio), 1 hardware control",
                                            "CONTROL   JACK      CH  LEVEL   DECIBELS              RANGE  STEP  MUTE",
                                            "endpoint           all    72%  -18.00 dB  -65.25 to 0.00 dB  0.75  off",
                                            "Speakers  Speaker    1    91%   -6.00 dB  -65.25 to 0.00 dB  0.75  off",
                                            "                     2    91%   -6.00 dB  -65.25 to 0.00 dB  0.75"));
}

TEST_F(ProgramControls, AnswersInJson)
{
    run(support::smallMachine());

    const json answer = json::parse(call({"controls", "Speakers", "--json"}).out);

    EXPECT_EQ(json({{"id", support::speakerId()}, {"name", "Speakers (Analog Audio)"}}), answer["endpoint"]);
    ASSERT_EQ(1u, answer["controls"].size());
    json control = answer["controls"][0];
    EXPECT_TRUE(control["id"].is_string());
    control.erase("id");
    EXPECT_EQ(json::parse(R"({"name": "Volume", "ownerName": "Speakers", "ownerJack": "speaker",
        "ownerType": "{DFF21CE1-F70F-11D0-B917-00A0C9223196}",
        "channels": [{"decibels": -6, "percent": 91, "range": {"min": -65.25, "max": 0, "step": 0.75}},
                     {"decibels": -6, "percent": 91, "range": {"min": -65.25, "max": 0, "step": 0.75}}],
        "hasMute": true, "muted": false, "problems": []})"),
              control);
    EXPECT_EQ(72, answer["volume"]["percent"]);
    EXPECT_EQ(false, answer["muted"]);
}

TEST_F(ProgramControls, AreNoneBehindAPlainWire)
{
    run(support::smallMachine());

    const support::Answer answer = call({"controls", "Microphone"});

    EXPECT_EQ(0, answer.code);
    EXPECT_EQ("Microphone (Analog Audio), 0 hardware controls", answer.lines()[0]);
    EXPECT_EQ(json::array(), json::parse(call({"controls", "Microphone", "--json"}).out)["controls"]);
}

TEST_F(ProgramControls, ShowDashesForWhatCannotBeRead)
{
    sim::Simulation& simulation = run(support::smallMachine());
    simulation.faults().fail("IAudioVolumeLevel::GetLevelRange");
    simulation.faults().fail("IAudioMute::GetMute");

    const support::Answer text = call({"controls", "Speakers"});
    const json control = json::parse(call({"controls", "Speakers", "--json"}).out)["controls"][0];

    EXPECT_THAT(text.lines(), Contains("Speakers  Speaker    1      -   -6.00 dB                  -     -  -"));
    EXPECT_EQ(json::parse(R"({"decibels": -6, "percent": null, "range": null})"), control["channels"][0]);
    EXPECT_EQ(true, control["hasMute"]);
    EXPECT_TRUE(control["muted"].is_null());
}

TEST_F(ProgramControls, AreNoWorseForEventsThatTheyDoNotNeed)
{
    sim::Simulation& simulation = run(support::smallMachine());
    const support::Answer before = call({"controls", "Speakers"});
    simulation.faults().fail("IPart::RegisterControlChangeCallback");

    const support::Answer text = call({"controls", "Speakers"});

    EXPECT_EQ(before.code, text.code);
    EXPECT_EQ(before.out, text.out);
    EXPECT_EQ(before.err, text.err);
    EXPECT_EQ(json::array(), json::parse(call({"controls", "Speakers", "--json"}).out)["problems"]);
}

TEST_F(ProgramControls, ShowAControlWhoseChannelsCannotBeCounted)
{
    sim::Simulation& simulation = run(support::smallMachine());
    simulation.faults().fail("IAudioVolumeLevel::GetChannelCount");

    const support::Answer text = call({"controls", "Speakers"});
    const json control = json::parse(call({"controls", "Speakers", "--json"}).out)["controls"][0];

    EXPECT_THAT(text.lines(), Contains("Speakers  Speaker    -      -          -                  -     -  off"));
    EXPECT_TRUE(control["channels"].is_null());
}

TEST_F(ProgramControls, ShowAControlWithoutMute)
{
    sim::MachineBuilder builder;
    builder.card("Card").speaker("Speakers").hardwareVolume({-60.0f, 0.0f, 1.0f, -30.0f}, 1);
    run(builder.build());

    const support::Answer text = call({"controls", "Speakers"});
    const json control = json::parse(call({"controls", "Speakers", "--json"}).out)["controls"][0];

    EXPECT_THAT(text.lines(), Contains("Speakers  Speaker    1    50%  -30.00 dB  -60.00 to 0.00 dB  1.00  none"));
    EXPECT_EQ(false, control["hasMute"]);
    EXPECT_TRUE(control["muted"].is_null());
}

TEST_F(ProgramControls, AreThoseBehindADoorThatDoesNotOpen)
{
    sim::Machine machine = support::smallMachine();
    machine.adapters[0].openable = false; // its connectors are joined to all the same
    run(std::move(machine));

    const json answer = json::parse(call({"controls", "Speakers", "--json"}).out);

    ASSERT_EQ(1u, answer["controls"].size());
    EXPECT_EQ(-6, answer["controls"][0]["channels"][0]["decibels"]);
}

TEST_F(ProgramControls, SayWhatCouldNotBeReadOnTheWay)
{
    sim::Simulation& simulation = run(support::smallMachine());
    sim::PlannedFault fault = simulation.faults().succeedWithNull("IPart::EnumPartsIncoming");

    const support::Answer answer = call({"controls", "Speakers"});
    const json problems = json::parse(call({"controls", "Speakers", "--json"}).out)["problems"];

    EXPECT_LT(0u, fault.fired());
    EXPECT_EQ(0, answer.code);
    EXPECT_EQ("Speakers (Analog Audio), 0 hardware controls", answer.lines().front());
    EXPECT_THAT(answer.lines().back(), testing::EndsWith(" could not be read; --json says why"));
    ASSERT_FALSE(problems.empty());
    EXPECT_EQ("IPart::EnumPartsIncoming", problems[0]["operation"]);
    EXPECT_EQ("0x80004003", problems[0]["code"]);
}

TEST_F(ProgramControls, SayWhyTheEndpointBesideThemHasNoName)
{
    sim::Simulation& simulation = run(support::smallMachine());
    simulation.faults().fail("IMMDevice::OpenPropertyStore");

    const json answer = json::parse(call({"controls", support::speakerId(), "--json"}).out);

    EXPECT_TRUE(answer["endpoint"]["name"].is_null());
    ASSERT_FALSE(answer["problems"].empty());
    EXPECT_EQ("IMMDevice::OpenPropertyStore", answer["problems"][0]["operation"]);
    EXPECT_EQ("description", answer["problems"][0]["field"]);
}

TEST_F(ProgramControls, SayWhyTheVolumeOfTheEndpointBesideThemIsUnknown)
{
    sim::Simulation& simulation = run(support::smallMachine());
    simulation.faults().fail("IMMDevice::GetState");

    const json answer = json::parse(call({"controls", "Speakers", "--json"}).out);

    EXPECT_TRUE(answer["muted"].is_null());
    ASSERT_FALSE(answer["problems"].empty());
    EXPECT_EQ("IMMDevice::GetState", answer["problems"][0]["operation"]);
}

TEST_F(ProgramControls, ShowEachStateInANarrowTerminalAndSayWhatIsMissing)
{
    run(support::smallMachine());
    width = 40;

    EXPECT_THAT(call({"controls", "Speakers"}).lines(),
                ElementsAre("Speakers (Analog Audio), 1 hardware control", "CONTROL   CH LEVEL  DECIBELS MUTE",
                            "endpoint all   72% -18.00 dB off", "Speakers   1   91%  -6.00 dB off",
                            "           2   91%  -6.00 dB", "Left out at 40 columns: jack, range and", "step"));
}

TEST_F(ProgramControls, FitIntoEachTerminal)
{
    run(support::smallMachine());

    for (unsigned columns = 30; columns <= 80; ++columns)
    {
        width = columns;
        const std::vector<std::string> lines = call({"controls", "Speakers"}).lines();
        for (std::size_t i = 1; i < lines.size(); ++i)
            EXPECT_LE(lines[i].size(), columns) << lines[i];
    }
}

TEST_F(ProgramControls, HaveNoRangeWhereTheSystemSucceedsWithoutOne)
{
    sim::Simulation& simulation = run(support::smallMachine());
    simulation.faults().succeedWithNull("IAudioVolumeLevel::GetLevelRange");

    const json control = json::parse(call({"controls", "Speakers", "--json"}).out)["controls"][0];

    EXPECT_EQ(json::parse(R"({"decibels": -6, "percent": null, "range": null})"), control["channels"][0]);
}

namespace
{
class ProgramSetControl : public support::ProgramTest
{
protected:
    /// The small machine's speaker has a volume of -6 dB and a mute in the hardware.
    json control()
    {
        const json answer = json::parse(call({"controls", "Speakers", "--json"}).out);
        return answer["controls"][0];
    }

    std::vector<double> levels()
    {
        std::vector<double> result;
        const json channels = control()["channels"];
        for (const json& channel : channels)
            result.push_back(channel["decibels"]);
        return result;
    }
};
}

TEST_F(ProgramSetControl, SetsTheLevelOfAllChannels)
{
    run(support::smallMachine());

    const support::Answer answer = call({"set-control", "Speakers", "Volume", "-12dB"});

    EXPECT_EQ(0, answer.code);
    EXPECT_EQ("Speakers (Analog Audio), Speakers: 91% (-6.00 dB) \xE2\x86\x92 82% (-12.00 dB)\n", answer.out);
    EXPECT_THAT(levels(), ElementsAre(-12, -12));
}

TEST_F(ProgramSetControl, SetsTheLevelOfOneChannel)
{
    run(support::smallMachine());

    const support::Answer answer = call({"set-control", "Speakers", "Volume", "-12dB", "--channel", "2"});

    EXPECT_EQ(0, answer.code);
    EXPECT_EQ("Speakers (Analog Audio), Speakers: 91% (-6.00 dB) \xE2\x86\x92 91% (-6.00 dB), 82% (-12.00 dB)\n",
              answer.out);
    EXPECT_THAT(levels(), ElementsAre(-6, -12));
}

TEST_F(ProgramSetControl, SetsALevelBetweenTwoNodes)
{
    run(sim::findMachine("desktop"));

    const support::Answer answer = call({"set-control", "Microphone", "Microphone Boost", "10dB"});

    EXPECT_EQ(0, answer.code) << answer.err;
    EXPECT_THAT(answer.out, HasSubstr("Microphone Boost"));
    EXPECT_THAT(call({"controls", "Microphone"}).out, HasSubstr("10.00 dB"));
}

TEST_F(ProgramSetControl, TakesTheIdAndTheNameOfTheConnectorAndAStep)
{
    run(support::smallMachine());

    EXPECT_EQ(0, call({"set-control", "Speakers", control()["id"], "-12dB"}).code);
    EXPECT_EQ(0, call({"set-control", "Speakers", "speakers", "3dB+"}).code);
    EXPECT_THAT(levels(), ElementsAre(-9, -9));
}

TEST_F(ProgramSetControl, MutesAndUnmutes)
{
    run(support::smallMachine());

    EXPECT_EQ("Speakers (Analog Audio), Speakers: not muted \xE2\x86\x92 muted\n",
              call({"set-control", "Speakers", "Volume", "on"}).out);
    EXPECT_EQ(true, control()["muted"]);
    EXPECT_EQ(0, call({"set-control", "Speakers", "Volume", "off"}).code);
    EXPECT_EQ(false, control()["muted"]);
}

TEST_F(ProgramSetControl, AnswersInJsonHowItWasAndIs)
{
    run(support::smallMachine());

    const json answer = json::parse(call({"set-control", "Speakers", "Volume", "-12dB", "--json"}).out);

    EXPECT_EQ(support::speakerId(), answer["endpoint"]["id"]);
    EXPECT_EQ(-6, answer["before"]["channels"][0]["decibels"]);
    EXPECT_EQ(-12, answer["after"]["channels"][0]["decibels"]);
    EXPECT_EQ(answer["before"]["id"], answer["after"]["id"]);
}

TEST_F(ProgramSetControl, SaysWhatRangeALevelIsOutsideOf)
{
    run(support::smallMachine());

    const support::Answer answer = call({"set-control", "Speakers", "Volume", "3dB"});

    EXPECT_EQ(1, answer.code);
    EXPECT_THAT(answer.err, HasSubstr("-65.25"));
    EXPECT_THAT(levels(), ElementsAre(-6, -6));
}

TEST_F(ProgramSetControl, SaysWhichCallTheSystemRefuses)
{
    run(support::smallMachine());
    simulation().faults().fail("IAudioVolumeLevel::SetLevelUniform", E_ACCESSDENIED);
    simulation().faults().fail("IAudioVolumeLevel::SetLevel", E_ACCESSDENIED);
    simulation().faults().fail("IAudioVolumeLevel::SetLevelAllChannels", E_ACCESSDENIED);

    const support::Answer answer = call({"set-control", "Speakers", "Volume", "-12dB", "--json"});

    EXPECT_EQ(1, answer.code);
    EXPECT_THAT(json::parse(answer.out)["error"].get<std::string>(), HasSubstr("0x80070005, access denied"));
    EXPECT_EQ(1, json::parse(answer.out)["exitCode"]);
}

TEST_F(ProgramSetControl, RefusesANameThatSeveralHave)
{
    const support::Answer answer = call({"set-control", "Main Monitors", "Level", "-12dB", "--machine", "studio"});

    EXPECT_EQ(2, answer.code);
    EXPECT_THAT(answer.err, HasSubstr("\"Level\" matches 2 controls: "));
    EXPECT_THAT(answer.err, HasSubstr("Line Out 1/2"));
    EXPECT_THAT(answer.err, HasSubstr("Main Playback Level"));
}

TEST_F(ProgramSetControl, SaysThatAControlHasNoMute)
{
    sim::MachineBuilder builder;
    builder.card("Card").speaker("Speakers").hardwareVolume({-60.0f, 0.0f, 1.0f, -30.0f}, 1);
    run(builder.build());

    const support::Answer answer = call({"set-control", "Speakers", "Volume", "on"});

    EXPECT_EQ(1, answer.code);
    EXPECT_THAT(answer.err, HasSubstr("mute"));
}

namespace
{
/// The small machine; the node and the connector of the speaker's volume in the hardware have these names.
sim::Machine withNames(const std::string& node, const std::string& connector)
{
    sim::Machine machine = support::smallMachine();
    for (sim::Adapter& adapter : machine.adapters)
    {
        for (sim::Connector& known : adapter.topology->connectors)
        {
            if (known.name == "Speakers")
                known.name = connector;
        }
        for (sim::Subunit& subunit : adapter.topology->subunits)
        {
            if (subunit.name == "Volume")
                subunit.name = node;
        }
    }
    return machine;
}
}

TEST_F(ProgramControls, ShowTheNameOfTheNodeWhereTheConnectorHasNone)
{
    run(withNames("Front Gain", ""));

    EXPECT_THAT(call({"controls", "Speakers"}).lines()[3], testing::StartsWith("Front Gain "));
}

TEST_F(ProgramControls, LeaveColumnsOutBeforeTheyCutANameThatTheUserHasToWrite)
{
    run(withNames("Main Playback Level", "Main Monitors Bridge"));
    width = 80;

    EXPECT_THAT(call({"controls", "Speakers"}).lines(),
                testing::Contains(HasSubstr("Main Monitors Bridge, Main Playback Level Speaker ")));
}

TEST_F(ProgramSetControl, TakesTheNameThatControlsShows)
{
    run(withNames("Main Playback Level", "Main Monitors Bridge"));

    const support::Answer answer =
        call({"set-control", "Speakers", "main monitors bridge, Main Playback Level", "-12dB"});

    EXPECT_EQ(0, answer.code) << answer.err;
    EXPECT_THAT(levels(), ElementsAre(-12, -12));
}

TEST_F(ProgramSetControl, SaysWhichChannelsThereAre)
{
    run(support::smallMachine());

    const support::Answer answer = call({"set-control", "Speakers", "Volume", "-12dB", "--channel", "3"});

    EXPECT_EQ(1, answer.code);
    EXPECT_EQ("sonavit: the control \"Speakers\" cannot be set: there is no channel 3, they are 1 to 2\n", answer.err);
    EXPECT_THAT(levels(), ElementsAre(-6, -6));
}

TEST_F(ProgramSetControl, SaysWhereToLookForTheControls)
{
    run(support::smallMachine());

    EXPECT_EQ("sonavit: there is no control \"endpoint\"; sonavit controls ENDPOINT shows what there is\n",
              call({"set-control", "Speakers", "endpoint", "50%"}).err);
}
