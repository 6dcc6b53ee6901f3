#include "tests/program/programtest.h"

#include "simulator/machine/propertykeys.h"
#include "tools/sonavit/text.h"

#include <nlohmann/json.hpp>

using nlohmann::json;
using testing::ElementsAre;
using testing::HasSubstr;

namespace
{
class ProgramList : public support::ProgramTest
{
};

/// The beginning of an endpoint's own GUID.
std::string shortId(const std::string& id)
{
    return id.substr(id.rfind('{') + 1, 8);
}
}

TEST_F(ProgramList, ShowsCardsAsATreeOfEndpoints)
{
    run(support::smallMachine());

    const support::Answer answer = call({});

    EXPECT_EQ(0, answer.code);
    EXPECT_EQ("", answer.err);
    EXPECT_THAT(answer.lines(), ElementsAre("Analog Audio", support::smallInstanceId(),
                                            "├─ * Speakers    Speaker     output  active     72%  -18.00 dB         " +
                                                shortId(support::speakerId()),
                                            "├─   Headphones  Headphones  output  unplugged  54%  -30.00 dB         " +
                                                shortId(support::headphonesId()),
                                            "└─ * Microphone  Microphone  input   active     74%    0.00 dB  muted  " +
                                                shortId(support::microphoneId()),
                                            "", "1 card, 3 endpoints, * default"));
}

TEST_F(ProgramList, AnswersInJson)
{
    run(support::smallMachine());

    const support::Answer answer = call({"list", "--json"});

    json expected = json::parse(R"json({
      "schemaVersion": 1,
      "machine": null,
      "cards": [{
        "name": "Analog Audio",
        "endpoints": [
          {"name": "Speakers (Analog Audio)", "description": "Speakers", "flow": "render",
           "jack": "speaker", "jackType": "{DFF21CE1-F70F-11D0-B917-00A0C9223196}",
           "state": "active", "isDefault": true,
           "volume": {"percent": 72, "decibels": -18, "range": {"min": -65.25, "max": 0, "step": 0.75}, "channels": 2},
           "muted": false},
          {"name": "Headphones (Analog Audio)", "description": "Headphones", "flow": "render",
           "jack": "headphones", "jackType": "{DFF21CE2-F70F-11D0-B917-00A0C9223196}",
           "state": "unplugged", "isDefault": false,
           "volume": {"percent": 54, "decibels": -30, "range": {"min": -65.25, "max": 0, "step": 0.75}, "channels": 2},
           "muted": false},
          {"name": "Microphone (Analog Audio)", "description": "Microphone", "flow": "capture",
           "jack": "microphone", "jackType": "{DFF21BE1-F70F-11D0-B917-00A0C9223196}",
           "state": "active", "isDefault": true,
           "volume": {"percent": 74, "decibels": 0, "range": {"min": -34.5, "max": 12, "step": 1.5}, "channels": 2},
           "muted": true}
        ]}]})json");
    json& card = expected["cards"][0];
    card["id"] = support::smallCardId();
    card["instanceId"] = support::smallInstanceId();
    card["endpoints"][0]["id"] = support::speakerId();
    card["endpoints"][1]["id"] = support::headphonesId();
    card["endpoints"][2]["id"] = support::microphoneId();
    EXPECT_EQ(expected, json::parse(answer.out)) << answer.out;
    EXPECT_EQ(0, answer.code);
}

TEST_F(ProgramList, MarksCardsWithLineAndDigitalJacks)
{
    sim::MachineBuilder builder;
    builder.card("Both").lineIn();
    sim::CardBuilder digital = builder.card("Digital");
    digital.hdmi();
    builder.card("Line").lineOut();
    builder.card("Neither").speaker();
    run(builder.build());

    const support::Answer answer = call({});

    EXPECT_THAT(answer.out, HasSubstr("Both [line]\n"));
    EXPECT_THAT(answer.out, HasSubstr("Digital [digital]\n"));
    EXPECT_THAT(answer.out, HasSubstr("Line [line]\n"));
    EXPECT_THAT(answer.out, HasSubstr("Neither\n"));
}

TEST_F(ProgramList, ShowsDashesForWhatCannotBeRead)
{
    sim::MachineBuilder builder;
    sim::CardBuilder card = builder.card("Card");
    card.speaker("Gone").notPresent().withoutVolume().unjoined();
    builder.withoutDefaults();
    run(builder.build());

    const support::Answer text = call({});
    const json endpoint = json::parse(call({"--json"}).out)["cards"][0]["endpoints"][0];

    EXPECT_THAT(text.out, HasSubstr("└─   Gone  -  output  not present  -  -  -  "));
    EXPECT_TRUE(endpoint["jack"].is_null());
    EXPECT_TRUE(endpoint["jackType"].is_null());
    EXPECT_TRUE(endpoint["volume"].is_null());
    EXPECT_TRUE(endpoint["muted"].is_null());
    EXPECT_EQ("notPresent", endpoint["state"]);
}

TEST_F(ProgramList, TakesNoStartValueOfTheLibraryForALevel)
{
    sim::Machine machine = support::smallMachine();
    machine.endpoints[0].volume->refused = {"GetMasterVolumeLevel", "GetMasterVolumeLevelScalar", "GetMute",
                                            "GetVolumeRange", "GetChannelCount"};
    run(std::move(machine));

    const json endpoint = json::parse(call({"--json"}).out)["cards"][0]["endpoints"][0];

    EXPECT_EQ(json::parse(R"({"percent": null, "decibels": null, "range": null, "channels": null})"),
              endpoint["volume"]);
    EXPECT_TRUE(endpoint["muted"].is_null()); // the library says muted
}

TEST_F(ProgramList, GathersEndpointsWithoutInstancePathUnderASensibleName)
{
    sim::MachineBuilder builder;
    sim::CardBuilder first = builder.card("First");
    sim::CardBuilder second = builder.card("Second");
    first.speaker("One").withoutProperty(sim::keys::instancePath);
    second.speaker("Two").withoutProperty(sim::keys::instancePath);
    run(builder.build());

    const support::Answer text = call({});
    const json card = json::parse(call({"--json"}).out)["cards"][0];

    EXPECT_THAT(text.out, HasSubstr("Endpoints of no known card\n(no instance path)\n"));
    EXPECT_EQ("", card["id"]);
    EXPECT_TRUE(card["instanceId"].is_null());
    EXPECT_EQ(2u, card["endpoints"].size());
}

TEST_F(ProgramList, FitsIntoTheTerminal)
{
    run(support::smallMachine());
    isTerminal = true;

    for (const unsigned columns : {120u, 80u, 60u})
    {
        width = columns;
        for (const std::string& line : call({}).lines())
        {
            const bool isRow = line.compare(0, 2, "\xE2\x94") == 0; // ids stand whole on lines of their own
            EXPECT_LE(isRow ? sonavit::displayWidth(line) : 0, columns) << line;
        }
    }
}

TEST_F(ProgramList, PaintsOnlyWhereThereAreColours)
{
    run(support::smallMachine());

    const support::Answer plain = call({});
    hasColours = true;
    const support::Answer painted = call({});

    EXPECT_EQ(std::string::npos, plain.out.find('\x1B'));
    EXPECT_THAT(painted.out, HasSubstr("\x1B[1mAnalog Audio\x1B[0m"));
    EXPECT_THAT(painted.out, HasSubstr("\x1B[31mmuted\x1B[0m"));
}

TEST_F(ProgramList, SaysThatThereIsNoCard)
{
    run(sim::Machine());

    const support::Answer text = call({});

    EXPECT_EQ("There is no sound card.\n", text.out);
    EXPECT_EQ(0, text.code);
    EXPECT_EQ(json::parse(R"({"schemaVersion": 1, "machine": null, "cards": []})"), json::parse(call({"--json"}).out));
}

TEST_F(ProgramList, FailsWhereCoreAudioCannotBeReached)
{
    sim::Simulation& simulation = run(support::smallMachine());
    simulation.faults().fail("CoCreateInstance");

    const support::Answer answer = call({"list", "--json"});

    EXPECT_EQ(1, answer.code);
    EXPECT_EQ("sonavit: Core Audio cannot be reached\n", answer.err);
    EXPECT_EQ(json::parse(R"({"schemaVersion": 1, "error": "Core Audio cannot be reached"})"), json::parse(answer.out));
}

TEST_F(ProgramList, ShowsNamesThatWouldSteerATerminalAsHarmlessText)
{
    sim::MachineBuilder builder;
    builder.card("Bad\x1B[2JCard").speaker("Line\nBreak");
    run(builder.build());

    const support::Answer answer = call({});

    EXPECT_EQ(std::string::npos, answer.out.find('\x1B'));
    EXPECT_THAT(answer.out, HasSubstr("Line\xEF\xBF\xBD"
                                      "Break"));
}
