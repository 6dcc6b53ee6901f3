#include "tests/program/programtest.h"

#include "simulator/machine/propertykeys.h"
#include "tools/sonavit/output/text.h"

#include <nlohmann/json.hpp>

using nlohmann::json;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::Not;

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
    EXPECT_THAT(answer.lines(),
                ElementsAre("     ENDPOINT    JACK        FLOW    STATE      LEVEL   DECIBELS  MUTE   ID",
                            "Analog Audio", support::smallInstanceId(),
                            "├─ * Speakers    Speaker     output  active       72%  -18.00 dB         " +
                                shortId(support::speakerId()),
                            "├─   Headphones  Headphones  output  unplugged    54%  -30.00 dB         " +
                                shortId(support::headphonesId()),
                            "└─ * Microphone  Microphone  input   active       74%    0.00 dB  muted  " +
                                shortId(support::microphoneId()),
                            "", "1 card, 3 endpoints, * default"));
}

TEST_F(ProgramList, AnswersInJson)
{
    run(support::smallMachine());

    const support::Answer answer = call({"list", "--json"});

    json expected = json::parse(R"json({
      "schemaVersion": 2,
      "machine": null,
      "cards": [{
        "name": "Analog Audio",
        "endpoints": [
          {"name": "Speakers (Analog Audio)", "description": "Speakers", "interfaceName": "Analog Audio",
           "flow": "render", "jack": "speaker", "jackType": "{DFF21CE1-F70F-11D0-B917-00A0C9223196}",
           "state": "active", "isDefault": true, "defaultFor": ["console", "multimedia", "communications"],
           "volume": {"percent": 72, "decibels": -18, "range": {"min": -65.25, "max": 0, "step": 0.75},
                      "channels": [{"percent": 72, "decibels": -18}, {"percent": 72, "decibels": -18}],
                      "inHardware": false},
           "muted": false, "problems": []},
          {"name": "Headphones (Analog Audio)", "description": "Headphones", "interfaceName": "Analog Audio",
           "flow": "render", "jack": "headphones", "jackType": "{DFF21CE2-F70F-11D0-B917-00A0C9223196}",
           "state": "unplugged", "isDefault": false, "defaultFor": [],
           "volume": {"percent": 54, "decibels": -30, "range": {"min": -65.25, "max": 0, "step": 0.75},
                      "channels": [{"percent": 54, "decibels": -30}, {"percent": 54, "decibels": -30}],
                      "inHardware": false},
           "muted": false, "problems": []},
          {"name": "Microphone (Analog Audio)", "description": "Microphone", "interfaceName": "Analog Audio",
           "flow": "capture", "jack": "microphone", "jackType": "{DFF21BE1-F70F-11D0-B917-00A0C9223196}",
           "state": "active", "isDefault": true, "defaultFor": ["console", "multimedia", "communications"],
           "volume": {"percent": 74, "decibels": 0, "range": {"min": -34.5, "max": 12, "step": 1.5},
                      "channels": [{"percent": 74, "decibels": 0}, {"percent": 74, "decibels": 0}],
                      "inHardware": false},
           "muted": true, "problems": []}
        ],
        "problems": []}],
      "problems": []})json");
    json& card = expected["cards"][0];
    card["id"] = support::smallCardId();
    card["instanceId"] = support::smallInstanceId();
    card["endpoints"][0]["id"] = support::speakerId();
    card["endpoints"][1]["id"] = support::headphonesId();
    card["endpoints"][2]["id"] = support::microphoneId();
    json found = json::parse(answer.out);
    for (json& endpoint : found["cards"][0]["endpoints"])
    {
        ASSERT_EQ(1u, endpoint["jacks"].size());
        EXPECT_EQ(endpoint["jack"], endpoint["jacks"][0]["kind"]);
        EXPECT_EQ(endpoint["jackType"], endpoint["jacks"][0]["type"]);
        endpoint.erase("jacks");
    }
    EXPECT_EQ(expected, found) << answer.out;
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

    EXPECT_THAT(text.out, HasSubstr("└─   Gone      -     output  not present      -         -  -     "));
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

    EXPECT_EQ(json::parse(R"({"percent": null, "decibels": null, "range": null, "channels": null,
                              "inHardware": false})"),
              endpoint["volume"]);
    EXPECT_TRUE(endpoint["muted"].is_null()); // the library says muted
}

TEST_F(ProgramList, ShowsEndpointsWithoutInstancePathOnTheCardsOfTheirAdapters)
{
    sim::MachineBuilder builder;
    sim::CardBuilder first = builder.card("First");
    sim::CardBuilder second = builder.card("Second");
    first.speaker("One").withoutProperty(sim::keys::instancePath);
    second.speaker("Two").withoutProperty(sim::keys::instancePath);
    run(builder.build());

    const support::Answer text = call({});
    const json answer = json::parse(call({"--json"}).out);

    EXPECT_THAT(text.out, HasSubstr("First\n(no instance path)\n"));
    EXPECT_THAT(text.out, HasSubstr("Second\n(no instance path)\n"));
    ASSERT_EQ(2u, answer["cards"].size());
    for (const json& card : answer["cards"])
    {
        EXPECT_NE("", card["id"]);
        EXPECT_TRUE(card["instanceId"].is_null());
        EXPECT_EQ(1u, card["endpoints"].size());
    }
}

TEST_F(ProgramList, FitsIntoTheTerminal)
{
    run(support::smallMachine());
    isTerminal = true;

    for (const unsigned columns : {120u, 80u, 60u, 40u, 34u})
    {
        width = columns;
        for (const std::string& line : call({}).lines())
        {
            const bool isId = line == support::smallInstanceId(); // never cut, on a line of its own
            EXPECT_LE(isId ? 0 : sonavit::program::displayWidth(line), columns) << line;
        }
    }
}

TEST_F(ProgramList, DropsDecorationFirstInANarrowTerminal)
{
    run(support::smallMachine());
    isTerminal = true;
    width = 74;

    const support::Answer answer = call({});

    EXPECT_THAT(answer.lines(), ElementsAre("     ENDPOINT   JACK       FLOW   STATE     LEVEL  DECIBELS MUTE  ID",
                                            "Analog Audio", support::smallInstanceId(),
                                            "├─ * Speakers   Speaker    output active      72% -18.00 dB       " +
                                                shortId(support::speakerId()).substr(0, 4),
                                            "├─   Headphones Headphones output unplugged   54% -30.00 dB       " +
                                                shortId(support::headphonesId()).substr(0, 4),
                                            "└─ * Microphone Microphone input  active      74%   0.00 dB muted " +
                                                shortId(support::microphoneId()).substr(0, 4),
                                            "", "1 card, 3 endpoints, * default"));
}

TEST_F(ProgramList, KeepsEachStateInAVeryNarrowTerminalAndSaysWhatIsMissing)
{
    run(support::smallMachine());
    isTerminal = true;
    width = 30;

    const support::Answer answer = call({});

    EXPECT_THAT(answer.lines(),
                ElementsAre("  ENDPO\xE2\x80\xA6 STATE     LEVEL MUTE", "Analog Audio", support::smallInstanceId(),
                            "* Speak\xE2\x80\xA6 active      72%", "  Headp\xE2\x80\xA6 unplugged   54%",
                            "* Micro\xE2\x80\xA6 active      74% muted", "", "1 card, 3 endpoints, * default",
                            "Left out at 30 columns: jack,", "flow, decibels and id"));
}

TEST_F(ProgramList, ShortensIdsOnlyToBeginningsThatNoOtherHas)
{
    sim::Machine machine = support::smallMachine();
    machine.endpoints[1].id = support::speakerId().substr(0, 24) + "0" + support::speakerId().substr(25);
    run(std::move(machine));
    isTerminal = true;
    width = 78;

    const std::string out = call({}).out;

    EXPECT_THAT(out, HasSubstr(" " + shortId(support::speakerId()).substr(0, 7) + "\n"));
    EXPECT_THAT(out, HasSubstr(" " + shortId(support::speakerId()).substr(0, 6) + "0\n"));
    EXPECT_THAT(out, HasSubstr(" " + shortId(support::microphoneId()).substr(0, 4) + "\n"));
}

TEST_F(ProgramList, DrawsABarOfTheVolumeInAWideTerminal)
{
    sim::Machine machine = support::smallMachine();
    machine.endpoints[1].volume->channels = {-65.25f, -65.25f};
    machine.endpoints[2].volume->channels = {12.0f, 12.0f};
    run(std::move(machine));
    width = 120;

    const support::Answer onPipe = call({});
    isTerminal = true;
    const support::Answer answer = call({});

    const auto bar = [](int full, int hollow)
    {
        std::string text = "  ";
        for (int i = 0; i < full + hollow; ++i)
            text += i < full ? "\xE2\x96\xAE" : "\xE2\x96\xAF";
        return text + "  ";
    };
    EXPECT_THAT(answer.out, HasSubstr("active   " + bar(7, 3) + "  72%"));
    EXPECT_THAT(answer.out, HasSubstr("unplugged" + bar(0, 10) + "   0%"));
    EXPECT_THAT(answer.out, HasSubstr("active   " + bar(10, 0) + " 100%"));
    EXPECT_THAT(onPipe.out, testing::Not(HasSubstr("\xE2\x96\xAE")));
}

TEST_F(ProgramList, RoundsTheBarToTheNearestCell)
{
    sim::Machine machine = support::smallMachine();
    machine.endpoints[0].volume->minimum = -100.0f;
    run(std::move(machine));
    isTerminal = true;
    const auto fullCells = [&](const std::string& percent)
    {
        call({"set-volume", "Speakers", percent});
        const std::string line = call({}).lines()[3];
        std::size_t cells = 0;
        for (std::size_t at = line.find("\xE2\x96\xAE"); at != std::string::npos;
             at = line.find("\xE2\x96\xAE", at + 1))
            ++cells;
        return cells;
    };

    EXPECT_EQ(0u, fullCells("4%"));
    EXPECT_EQ(1u, fullCells("5%"));
    EXPECT_EQ(9u, fullCells("94%"));
    EXPECT_EQ(10u, fullCells("95%"));
}

TEST_F(ProgramList, CallsACardByTheFirstOfSeveralNames)
{
    sim::MachineBuilder builder;
    sim::CardBuilder card = builder.card("Real Name");
    card.speaker("One").property(sim::keys::friendlyName, sim::PropertyValue::ofText("Other Name"));
    card.microphone("Two");
    run(builder.build());

    EXPECT_EQ("Other Name", call({}).lines()[1]);
}

TEST_F(ProgramList, CallsEndpointsWithoutInstancePathByTheNameThatTheyShare)
{
    sim::MachineBuilder builder;
    sim::CardBuilder card = builder.card("Shared Name");
    card.speaker("One").withoutProperty(sim::keys::instancePath);
    card.microphone("Two").withoutProperty(sim::keys::instancePath);
    run(builder.build());

    EXPECT_EQ("Shared Name", call({}).lines()[1]);
}

TEST_F(ProgramList, CallsACardWithoutNameUnnamed)
{
    sim::MachineBuilder builder;
    builder.card("Card").speaker("One").withoutProperty(sim::keys::friendlyName);
    run(builder.build());

    EXPECT_EQ("Unnamed card", call({}).lines()[1]);
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

TEST_F(ProgramList, PaintsWhatIsActiveAndWhatIsMuted)
{
    sim::MachineBuilder builder;
    builder.card("Card").speaker("One").withoutVolume();
    builder.card("Card").headphones("Two").unplugged();
    run(builder.build());
    hasColours = true;

    const support::Answer painted = call({});

    EXPECT_THAT(painted.out, HasSubstr("\x1B[32mactive"));
    EXPECT_THAT(painted.out, HasSubstr("\x1B[2munplugged"));
    EXPECT_THAT(painted.out, Not(HasSubstr("\x1B[31m"))); // no mute is known
}

TEST_F(ProgramList, SaysThatThereIsNoCard)
{
    run(sim::Machine());

    const support::Answer text = call({});

    EXPECT_EQ("There is no sound card.\n", text.out);
    EXPECT_EQ(0, text.code);
    EXPECT_EQ(json::parse(R"({"schemaVersion": 2, "machine": null, "cards": [], "problems": []})"),
              json::parse(call({"--json"}).out));
}

TEST_F(ProgramList, FailsWhereCoreAudioCannotBeReached)
{
    sim::Simulation& simulation = run(support::smallMachine());
    simulation.faults().fail("CoCreateInstance", static_cast<HRESULT>(0x80040154));

    const support::Answer answer = call({"list", "--json"});

    const std::string sentence = "the system's audio cannot be reached: 0x80040154, class not registered";
    EXPECT_EQ(1, answer.code);
    EXPECT_EQ("sonavit: " + sentence + "\n", answer.err);
    EXPECT_EQ(json({{"schemaVersion", 2}, {"error", sentence}, {"exitCode", 1}}), json::parse(answer.out));
}

TEST_F(ProgramList, FailsWhereTheSystemCannotListItsEndpoints)
{
    sim::Simulation& simulation = run(support::smallMachine());
    sim::PlannedFault fault =
        simulation.faults().fail("IMMDeviceEnumerator::EnumAudioEndpoints", static_cast<HRESULT>(0x800706BA));

    for (const std::vector<std::string>& words : {std::vector<std::string>{"list"}, {"show", "Speakers"}, {"graph"}})
    {
        const support::Answer answer = call(words);

        EXPECT_EQ(1, answer.code);
        EXPECT_EQ("", answer.out);
        EXPECT_EQ("sonavit: the system cannot list its outputs: 0x800706BA, the audio service is not available\n",
                  answer.err);
    }
    EXPECT_LT(0u, fault.fired());
}

TEST_F(ProgramList, FailsWhereTheSystemListsNothingOrCannotCount)
{
    sim::Simulation& simulation = run(support::smallMachine());

    simulation.faults().succeedWithNull("IMMDeviceEnumerator::EnumAudioEndpoints");
    const support::Answer noList = call({"list"});
    simulation.faults().clear();
    simulation.faults().fail("IMMDeviceCollection::GetCount", E_FAIL);
    const support::Answer noCount = call({"list"});

    EXPECT_EQ("sonavit: the system cannot list its outputs: 0x80004003, success without a result\n", noList.err);
    EXPECT_EQ("sonavit: the system cannot list its endpoints: 0x80004005, unspecified error\n", noCount.err);
}

TEST_F(ProgramList, ShowsTheInputsIfTheOutputsCannotBeListed)
{
    sim::Simulation& simulation = run(support::smallMachine());
    simulation.faults().fail("IMMDeviceEnumerator::EnumAudioEndpoints", E_FAIL).with("eRender");

    const support::Answer answer = call({"list"});
    const json document = json::parse(call({"list", "--json"}).out);

    EXPECT_EQ(0, answer.code);
    EXPECT_THAT(answer.out, HasSubstr("Microphone "));
    EXPECT_THAT(answer.out, Not(HasSubstr("Speakers ")));
    EXPECT_EQ("1 thing could not be read; --json and sonavit show ENDPOINT say why", answer.lines().back());
    ASSERT_EQ(1u, document["problems"].size());
    EXPECT_EQ("IMMDeviceEnumerator::EnumAudioEndpoints(eRender)", document["problems"][0]["operation"]);
    EXPECT_EQ("0x80004005", document["problems"][0]["code"]);
}

TEST_F(ProgramList, ListsAllEndpointsOrSaysThatSomethingIsMissingWhereTheSystemFailsOnce)
{
    sim::Simulation& simulation = run(support::smallMachine());
    const std::string complete = call({"list"}).out;

    for (const char* const operation :
         {"CoCreateInstance", "IMMDeviceEnumerator::EnumAudioEndpoints", "IMMDeviceCollection::GetCount",
          "IMMDeviceCollection::Item", "IMMDevice::GetId"})
    {
        bool isFired = true;
        for (std::uint32_t number = 1; isFired; ++number)
        {
            SCOPED_TRACE(operation + std::string(" ") + std::to_string(number));
            simulation.faults().clear();
            sim::PlannedFault fault = simulation.faults().fail(operation).at(number);
            const support::Answer answer = call({"list"});

            isFired = fault.fired() > 0;
            if (!isFired)
                EXPECT_EQ(complete, answer.out);
            else if (answer.code == 0)
                EXPECT_THAT(answer.out, HasSubstr("1 thing could not be read"));
            else
                EXPECT_THAT(answer.err, testing::StartsWith("sonavit: the system"));
        }
    }
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

TEST_F(ProgramList, MarksTheDefaultsOfEachRole)
{
    sim::MachineBuilder builder;
    sim::CardBuilder card = builder.card("Card");
    card.speaker("Speakers").defaultFor(eConsole);
    card.headphones("Headset").defaultFor(eCommunications).defaultFor(eMultimedia);
    card.microphone("Microphone").isDefault();
    run(builder.build());

    const support::Answer answer = call({});

    EXPECT_THAT(answer.out, HasSubstr(" *  Speakers "));
    EXPECT_THAT(answer.out, HasSubstr(" mc Headset "));
    EXPECT_THAT(answer.out, HasSubstr(" *  Microphone "));
    EXPECT_THAT(answer.out, HasSubstr("1 card, 3 endpoints, * default, m default for multimedia, c default for "
                                      "communications\n"));
}

TEST_F(ProgramList, SaysThatSomethingCouldNotBeRead)
{
    run(support::smallMachine());
    simulation().faults().fail("IAudioEndpointVolume::GetMute", E_FAIL).on(support::speakerId());

    const support::Answer answer = call({"list"});
    const json problems = json::parse(call({"list", "--json"}).out)["cards"][0]["endpoints"][0]["problems"];

    EXPECT_EQ(0, answer.code);
    EXPECT_EQ("1 thing could not be read; --json and sonavit show ENDPOINT say why", answer.lines().back());
    ASSERT_EQ(1u, problems.size());
    EXPECT_EQ("volume", problems[0]["field"]);
    EXPECT_EQ("IAudioEndpointVolume::GetMute", problems[0]["operation"]);
    EXPECT_EQ(support::speakerId(), problems[0]["object"]);
    EXPECT_EQ("0x80004005", problems[0]["code"]);
    EXPECT_THAT(problems[0]["sentence"].get<std::string>(), HasSubstr("unspecified error"));
}
