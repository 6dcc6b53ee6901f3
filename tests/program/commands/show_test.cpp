#include "tests/program/programtest.h"

#include "simulator/machine/propertykeys.h"

#include <nlohmann/json.hpp>

using nlohmann::json;
using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;

namespace
{
class ProgramShow : public support::ProgramTest
{
};
}

TEST_F(ProgramShow, ShowsAllAboutAnEndpoint)
{
    run(support::smallMachine());

    const support::Answer answer = call({"show", "Speakers"});

    EXPECT_EQ(0, answer.code);
    EXPECT_THAT(answer.lines(),
                ElementsAre("Speakers (Analog Audio)", "  card         Analog Audio",
                            "  instance id  " + support::smallInstanceId(), "  endpoint id  " + support::speakerId(),
                            "  short name   Speakers", "  flow         output",
                            "  jack         Speaker  {DFF21CE1-F70F-11D0-B917-00A0C9223196}", "  state        active",
                            "  default for  console, multimedia and communications", "  wave id      0",
                            HasSubstr("  DirectSound  {"), "  container    {00000000-0000-0000-FFFF-FFFFFFFFFFFF}",
                            HasSubstr("  driver node  "), "  format       48000 Hz, 16 bit, 2 channels (stereo)",
                            "  speakers     stereo  0x00000003", "  volume       72%  -18.00 dB",
                            "  range        -65.25 to 0.00 dB in steps of 0.75", "  channel 1    72%  -18.00 dB",
                            "  channel 2    72%  -18.00 dB", "  mute         not muted", "  attenuator   software"));
}

TEST_F(ProgramShow, AnswersInJson)
{
    run(support::smallMachine());

    const json answer = json::parse(call({"show", "Speakers", "--json"}).out);

    EXPECT_EQ("Analog Audio", answer["card"]["name"]);
    const json& endpoint = answer["endpoint"];
    EXPECT_EQ(support::speakerId(), endpoint["id"]);
    EXPECT_EQ(json::parse(R"(["console", "multimedia", "communications"])"), endpoint["defaultFor"]);
    EXPECT_EQ(0, endpoint["waveId"]);
    EXPECT_EQ(json::parse(R"({"rate": 48000, "bits": 16, "validBits": 16, "channels": 2, "encoding": "pcm",
                              "channelMask": 3})"),
              endpoint["format"]);
    EXPECT_EQ(json::parse(R"({"mask": 3, "names": ["front left", "front right"]})"), endpoint["speakers"]);
    EXPECT_EQ(json::parse(R"({"percent": 72, "decibels": -18, "range": {"min": -65.25, "max": 0, "step": 0.75},
                              "channels": [{"percent": 72, "decibels": -18}, {"percent": 72, "decibels": -18}],
                              "inHardware": false})"),
              endpoint["volume"]);
}

TEST_F(ProgramShow, TellsAMissingMaskOfSpeakersFromAnEmptyOne)
{
    sim::MachineBuilder builder;
    sim::CardBuilder card = builder.card("Card");
    card.speaker("Missing").withoutProperty(sim::keys::speakerConfig);
    card.speaker("Empty").property(sim::keys::speakerConfig, sim::PropertyValue::ofNumber(0));
    builder.withoutDefaults();
    run(builder.build());

    EXPECT_THAT(call({"show", "Missing"}).lines(), Contains("  speakers     -"));
    EXPECT_THAT(call({"show", "Empty"}).lines(), Contains("  speakers     direct  0x00000000"));
    EXPECT_TRUE(json::parse(call({"show", "Missing", "--json"}).out)["endpoint"]["speakers"].is_null());
    EXPECT_EQ(0, json::parse(call({"show", "Empty", "--json"}).out)["endpoint"]["speakers"]["mask"]);
}

TEST_F(ProgramShow, ShowsAnEndpointThatTellsNothing)
{
    sim::Machine machine = support::smallMachine();
    machine.endpoints[1].properties.clear();
    machine.endpoints[1].topology.reset();
    machine.endpoints[1].volume.reset();
    run(std::move(machine));

    const support::Answer text = call({"show", support::headphonesId()});
    const json endpoint = json::parse(call({"show", support::headphonesId(), "--json"}).out)["endpoint"];

    EXPECT_EQ(0, text.code);
    EXPECT_EQ("unnamed output " + support::headphonesId(), text.lines()[0]);
    for (const char* const key : {"name", "description", "jack", "waveId", "directSoundGuid", "format", "speakers",
                                  "volume", "muted", "driverNodeStrongName", "interfaceName"})
        EXPECT_TRUE(endpoint[key].is_null()) << key;
}

TEST_F(ProgramShow, ShowsNoRoleWhereTheSystemReportsNoDefault)
{
    sim::Simulation& simulation = run(support::smallMachine());
    simulation.faults().succeedWithNull("IMMDeviceEnumerator::GetDefaultAudioEndpoint");

    const support::Answer answer = call({"show", support::speakerId()});

    EXPECT_EQ(0, answer.code);
    EXPECT_THAT(answer.lines(), Contains("  default for  -"));
    EXPECT_THAT(answer.lines(), Contains("  not read     roles: IMMDeviceEnumerator::GetDefaultAudioEndpoint(eRender, "
                                         "eConsole) failed: 0x80004003, success without a result"));
}

TEST_F(ProgramShow, ContinuesALongValueBelowItsBeginningInANarrowTerminal)
{
    run(support::smallMachine());
    simulation().faults().fail("IAudioEndpointVolume::GetMute");
    width = 60;

    const std::vector<std::string> lines = call({"show", "Speakers"}).lines();

    EXPECT_THAT(lines, Contains("  not read     volume: IAudioEndpointVolume::GetMute failed:"));
    EXPECT_THAT(lines, Contains("               0x80004005, unspecified error"));
    EXPECT_THAT(lines, Contains("  endpoint id  " + support::speakerId())) << "an id is not broken";
}
