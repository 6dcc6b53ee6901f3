#include "tests/program/dotreader.h"
#include "tests/program/programtest.h"

#include <nlohmann/json.hpp>

#include <filesystem>
#include <fstream>
#include <iterator>

using nlohmann::json;
using testing::HasSubstr;
using testing::Not;

namespace
{
class ProgramGraph : public support::ProgramTest
{
protected:
    json graph(std::vector<std::string> words = {})
    {
        words.insert(words.begin(), {"graph", "--json"});
        return json::parse(call(words).out);
    }

    /// The names of the parts that an edge of that kind joins, "from -> to".
    static std::vector<std::string> edges(const json& graph, const std::string& kind)
    {
        std::map<int, std::string> names;
        for (const json& device : graph["devices"])
        {
            for (const json& part : device["parts"])
                names[part["number"]] = part["name"].is_null() ? device["name"] : part["name"];
        }
        std::vector<std::string> result;
        for (const json& edge : graph["edges"])
        {
            if (edge["kind"] == kind)
                result.push_back(names.at(edge["from"]) + " -> " + names.at(edge["to"]));
        }
        return result;
    }

    static std::vector<std::string> namesOnPath(const json& graph)
    {
        std::vector<std::string> result;
        for (const json& device : graph["devices"])
        {
            for (const json& part : device["parts"])
            {
                if (part["onPath"] == true)
                    result.push_back(part["name"].is_null() ? device["name"] : part["name"]);
            }
        }
        return result;
    }
};
}

TEST_F(ProgramGraph, AnswersInJsonWhichWayTheSoundFlowsThroughConnectors)
{
    const sim::Machine machine = support::smallMachine();
    std::map<std::string, std::string> expected; // by the ids of connectors
    for (const sim::Adapter& adapter : machine.adapters)
    {
        for (const sim::Connector& connector : adapter.topology->connectors)
            expected[connector.id] = connector.direction == In ? "in" : "out";
    }
    expected[machine.endpoint(support::speakerId())->topology->connectors.front().id] = "in";
    expected[machine.endpoint(support::microphoneId())->topology->connectors.front().id] = "out";
    run(machine);

    std::map<std::string, json> directions;
    const json answer = graph();
    for (const json& device : answer["devices"])
    {
        for (const json& part : device["parts"])
        {
            EXPECT_EQ(part["kind"] == "subunit", part["direction"].is_null());
            directions[part["id"]] = part["direction"];
        }
    }

    for (const auto& [id, direction] : expected)
        EXPECT_EQ(direction, directions[id]) << id;
}

TEST_F(ProgramGraph, AnswersInJsonNoDirectionThatCannotBeRead)
{
    run(support::smallMachine());
    simulation().faults().fail("IConnector::GetDataFlow");

    EXPECT_TRUE(graph()["devices"][0]["parts"][0]["direction"].is_null());
}

TEST_F(ProgramGraph, TellsJoinsWiresAndPathsApart)
{
    sim::MachineBuilder builder;
    builder.card("Card").speaker("Speakers").hardwareVolume({-60.0f, 0.0f, 1.0f, -30.0f});
    run(builder.build());

    const json answer = graph();

    EXPECT_THAT(edges(answer, "join"), testing::ElementsAre("Speakers -> Speakers (Card)"));
    EXPECT_THAT(edges(answer, "wire"),
                testing::UnorderedElementsAre("Speakers Stream -> Volume", "Volume -> Speakers"));
    EXPECT_THAT(edges(answer, "signalPath"), testing::ElementsAre("Speakers Stream -> Speakers"));
}

TEST_F(ProgramGraph, DrawsDevicesPartsAndEdges)
{
    sim::MachineBuilder builder;
    builder.card("Card").speaker("Speakers").hardwareVolume({-60.0f, 0.0f, 1.0f, -30.0f}).hardwareMute();
    run(builder.build());

    const support::Answer answer = call({"graph"});

    EXPECT_EQ(0, answer.code);
    EXPECT_EQ("", support::brokenDot(answer.out));
    EXPECT_THAT(answer.out, HasSubstr(R"(label="Speakers (Card)\noutput")"));
    EXPECT_THAT(answer.out, HasSubstr(R"(label="Speaker\nSpeakers", shape="box")"));
    EXPECT_THAT(answer.out, HasSubstr(R"(label="Volume\n-30.00 dB", shape="invtrapezium")"));
    EXPECT_THAT(answer.out, HasSubstr(R"(label="Mute\nnot muted", shape="octagon")"));
    EXPECT_THAT(answer.out, Not(HasSubstr("connectors unknown")));
}

TEST_F(ProgramGraph, TitlesAdaptersOfOneNameWithTheEndsOfTheirIds)
{
    run(sim::findMachine("published"));

    const std::string text = call({"graph"}).out;

    for (const char* const title :
         {R"(High Definition Audio Device\nelineouttopo)", R"(High Definition Audio Device\nelineoutwave)",
          R"(High Definition Audio Device\nemicintopo)", R"(High Definition Audio Device\nemicinwave)"})
        EXPECT_THAT(text, HasSubstr("graph [label=\"" + std::string(title) + "\"")) << title;
    EXPECT_EQ("", support::brokenDot(text));
}

TEST_F(ProgramGraph, TitlesAnAdapterWithItsNameIfNoOtherHasIt)
{
    run(support::smallMachine());

    EXPECT_THAT(call({"graph"}).out, HasSubstr("graph [label=\"Analog Audio\", "));
}

TEST_F(ProgramGraph, DistinguishesADeviceWithoutHardwareGraphFromOneThatCannotBeRead)
{
    sim::MachineBuilder builder;
    const std::string id = builder.card("Cable").speaker("Cable Input").id();
    sim::Machine machine = builder.build();
    machine.endpoints.front().topology.reset();
    machine.adapters.clear();
    machine.joins.clear();
    run(std::move(machine));

    const std::string without = call({"graph"}).out;
    simulation().faults().fail("IMMDevice::Activate", E_FAIL).with("IDeviceTopology");
    const std::string unreadable = call({"graph"}).out;

    EXPECT_THAT(without, HasSubstr("label=\"no hardware graph\""));
    EXPECT_THAT(without, Not(HasSubstr("connectors unknown")));
    EXPECT_THAT(unreadable, HasSubstr("label=\"connectors unknown\""));
    EXPECT_THAT(unreadable, Not(HasSubstr("no hardware graph")));
}

TEST_F(ProgramGraph, ShowsThePathOfAnOutputAgainstTheWayOfTheSound)
{
    run(support::smallMachine());

    const json answer = graph({"--endpoint", "Speakers"});

    EXPECT_THAT(namesOnPath(answer), testing::UnorderedElementsAre("Speakers (Analog Audio)", "Speakers", "Volume",
                                                                   "Mute", "Speakers Stream"));
    EXPECT_THAT(namesOnPath(graph({})), testing::IsEmpty());
    EXPECT_THAT(call({"graph", "--endpoint", "Speakers"}).out, HasSubstr("penwidth=\"3\""));
}

TEST_F(ProgramGraph, DrawsTheNodesOfThePathAndNoOthersWithABroadLine)
{
    run(support::smallMachine());
    std::vector<std::string> onPath;
    const json answer = graph({"--endpoint", "Speakers"});
    for (const json& device : answer["devices"])
    {
        for (const json& part : device["parts"])
        {
            if (part["onPath"] == true)
                onPath.push_back("\"part" + part["number"].dump() + "\"");
        }
    }

    std::vector<std::string> broad;
    for (const std::string& line : call({"graph", "--endpoint", "Speakers"}).lines())
    {
        const std::size_t name = line.find("\"part");
        if (name != std::string::npos && line.find(" [label=") != std::string::npos &&
            line.find("penwidth=\"3\"") != std::string::npos)
            broad.push_back(line.substr(name, line.find(' ', name) - name));
    }

    EXPECT_EQ(5u, onPath.size());
    EXPECT_THAT(broad, testing::UnorderedElementsAreArray(onPath));
}

TEST_F(ProgramGraph, LeavesBranchesOutOfThePathOfAnOutput)
{
    sim::Machine machine = support::smallMachine();
    sim::Topology& topology = *machine.adapters[0].topology;
    sim::Subunit branch = topology.subunits[0];
    branch.id += "-branch";
    branch.localId = 100;
    branch.name = "Branch";
    branch.incoming = {topology.subunits[0].id};
    branch.outgoing = {};
    topology.subunits[0].outgoing.push_back(branch.id);
    topology.subunits.push_back(branch);
    run(machine);

    const json answer = graph({"--endpoint", "Speakers"});

    EXPECT_THAT(edges(answer, "wire"), testing::Contains("Volume -> Branch"));
    EXPECT_THAT(namesOnPath(answer), testing::AllOf(testing::Contains("Volume"), Not(testing::Contains("Branch"))));
}

TEST_F(ProgramGraph, ShowsThePathOfAnInputTheWayOfTheSound)
{
    run(support::smallMachine());

    EXPECT_THAT(namesOnPath(graph({"--endpoint", "Microphone"})),
                testing::UnorderedElementsAre("Microphone (Analog Audio)", "Microphone", "Microphone Stream"));
}

TEST_F(ProgramGraph, IsOfOneCardWhereOneIsNamed)
{
    sim::MachineBuilder builder;
    builder.card("First").speaker();
    builder.card("Second").speaker();
    run(builder.build());

    EXPECT_EQ(4u, graph()["devices"].size());
    EXPECT_EQ(2u, graph({"second"})["devices"].size());
    EXPECT_EQ(3, call({"graph", "Third"}).code);
    EXPECT_EQ(3, call({"graph", "first", "--endpoint", "Nothing"}).code);
}

TEST_F(ProgramGraph, ShowsWhatIsBehindADoorThatDoesNotOpen)
{
    sim::Machine machine = support::smallMachine();
    machine.adapters[0].openable = false;
    run(std::move(machine));

    const json answer = graph();

    EXPECT_EQ("closed", answer["devices"][3]["kind"]);
    EXPECT_EQ(3u, edges(answer, "join").size());
    EXPECT_EQ("", support::brokenDot(call({"graph"}).out));
}

TEST_F(ProgramGraph, ShowsAJoinWhoseFarEndIsNotToBeHad)
{
    sim::Machine machine = support::smallMachine();
    machine.joins[0].to.clear();
    machine.joins[0].toDevice = "{2}.gone";
    run(std::move(machine));

    const json answer = graph();

    EXPECT_EQ(1,
              std::count_if(answer["edges"].begin(), answer["edges"].end(),
                            [](const json& edge) { return edge["to"].is_null() && edge["toDevice"] == "{2}.gone"; }));
    EXPECT_EQ("", support::brokenDot(call({"graph"}).out));
}

TEST_F(ProgramGraph, DrawsADeviceWhoseConnectorsAreUnknownBesideThoseThatAreKnown)
{
    sim::Machine machine = support::smallMachine();
    machine.joins[0].to.clear(); // the device is known, the connector is not
    machine.joins[0].toDevice = machine.adapters[0].id;
    run(std::move(machine));

    const support::Answer answer = call({"graph"});
    EXPECT_EQ("", support::brokenDot(answer.out));
    EXPECT_THAT(answer.out, HasSubstr("label=\"Volume\\n"));
    EXPECT_THAT(answer.out, HasSubstr("connectors unknown"));
}

TEST_F(ProgramGraph, TellsPartsWithoutIdsApart)
{
    sim::Machine machine = support::smallMachine();
    for (sim::Connector& connector : machine.adapters[0].topology->connectors)
        connector.reportsId = false;
    run(std::move(machine));

    const json answer = graph();

    EXPECT_EQ(6u, answer["devices"][3]["parts"].size() - 2); // all connectors beside volume and mute
    EXPECT_EQ(3u, edges(answer, "join").size());
}

TEST_F(ProgramGraph, QuotesWhateverTheNamesAre)
{
    sim::MachineBuilder builder;
    builder.card("A \"quoted\" \\ card").speaker("Line\nbreak; } ->").jackName("]\\");
    run(builder.build());

    EXPECT_EQ("", support::brokenDot(call({"graph"}).out));
}

TEST_F(ProgramGraph, IsWrittenToAFile)
{
    run(support::smallMachine());
    const std::filesystem::path path = std::filesystem::temp_directory_path() / "sonavit-graph-test.dot";

    const support::Answer onOutput = call({"graph"});
    const support::Answer answer = call({"graph", "-o", path.u8string()});

    std::ifstream file(path, std::ios::binary);
    EXPECT_EQ(onOutput.out, std::string(std::istreambuf_iterator<char>(file), {}));
    EXPECT_EQ("", answer.out);
    EXPECT_EQ(0, answer.code);
    file.close();
    std::filesystem::remove(path);
}

TEST_F(ProgramGraph, FailsWhereTheFileCannotBeWritten)
{
    run(support::smallMachine());

    const support::Answer answer = call({"graph", "--output", "no-such-folder/graph.dot"});

    EXPECT_EQ(1, answer.code);
    EXPECT_EQ("sonavit: the file \"no-such-folder/graph.dot\" cannot be written\n", answer.err);
}

TEST_F(ProgramGraph, SaysThatAnEndpointIsOfAnotherCard)
{
    sim::MachineBuilder builder;
    builder.card("Board").speaker("Speakers");
    builder.card("Headset").headphones("Earphones");
    run(builder.build());

    const support::Answer other = call({"graph", "Headset", "--endpoint", "Speakers"});

    EXPECT_EQ(2, other.code);
    EXPECT_EQ("sonavit: \"Speakers\" is an endpoint of the card \"Board\", not of \"Headset\"\n", other.err);
    EXPECT_EQ("sonavit: there is no endpoint \"Trumpet\"; sonavit list shows what there is\n",
              call({"graph", "Headset", "--endpoint", "Trumpet"}).err);
    EXPECT_EQ(0, call({"graph", "Board", "--endpoint", "Speakers"}).code);
    EXPECT_EQ(0, call({"graph", "Board", "--endpoint", "@DEFAULT_OUTPUT@"}).code);
    EXPECT_EQ("sonavit: \"@DEFAULT_OUTPUT@\" is an endpoint of the card \"Board\", not of \"Headset\"\n",
              call({"graph", "Headset", "--endpoint", "@DEFAULT_OUTPUT@"}).err);
}

TEST_F(ProgramGraph, ShowsOnlyThePathWhereThatIsAskedFor)
{
    run(support::smallMachine());

    const json answer = graph({"--endpoint", "Speakers", "--only"});

    std::vector<std::string> parts;
    for (const json& device : answer["devices"])
    {
        for (const json& part : device["parts"])
        {
            EXPECT_EQ(true, part["onPath"]) << part;
            parts.push_back(part["name"].is_null() ? device["name"] : part["name"]);
        }
    }
    EXPECT_THAT(parts, testing::UnorderedElementsAre("Speakers (Analog Audio)", "Speakers", "Volume", "Mute",
                                                     "Speakers Stream"));
    EXPECT_EQ("", support::brokenDot(call({"graph", "--endpoint", "Speakers", "--only"}).out));
}

TEST_F(ProgramGraph, ShowsLevelsMutesAndStates)
{
    sim::MachineBuilder builder;
    sim::CardBuilder card = builder.card("Card");
    card.speaker("Speakers").hardwareVolume({-60.0f, 0.0f, 1.0f, -30.0f}).hardwareMute();
    card.headphones("Headphones").unplugged();
    run(builder.build());

    const std::string text = call({"graph"}).out;
    const json answer = graph();

    EXPECT_THAT(text, HasSubstr(R"(label="Volume\n-30.00 dB")"));
    EXPECT_THAT(text, HasSubstr(R"(label="Mute\nnot muted")"));
    EXPECT_THAT(text, HasSubstr(R"(label="Headphones (Card)\noutput, unplugged")"));
    std::vector<json> volumes;
    std::vector<json> mutes;
    for (const json& device : answer["devices"])
    {
        for (const json& part : device["parts"])
        {
            if (!part["channels"].is_null())
                volumes.push_back(part["channels"][0]["decibels"]);
            if (!part["muted"].is_null())
                mutes.push_back(part["muted"]);
        }
    }
    EXPECT_EQ(std::vector<json>{-30.0}, volumes);
    EXPECT_EQ(std::vector<json>{false}, mutes);
}

TEST_F(ProgramGraph, MarksTheChosenInputOfASelector)
{
    const std::string text = call({"graph", "--machine", "studio"}).out;

    EXPECT_THAT(text, HasSubstr("label=\"chosen\""));
    EXPECT_EQ("", support::brokenDot(text));
}

TEST_F(ProgramGraph, WritesNoControlCharactersOfIds)
{
    run(support::smallMachine());
    simulation().faults().lie("IPart::GetGlobalId", sim::Lie::ofText(u"part\u001B[31m\u0001"));
    simulation().faults().lie("IConnector::GetDeviceIdConnectedTo", sim::Lie::ofText(u"device\u001B[31m\u0001"));

    const std::string text = call({"graph"}).out;

    EXPECT_THAT(text, HasSubstr("tooltip=\"part\uFFFD[31m\uFFFD\""));
    EXPECT_THAT(text, HasSubstr("tooltip=\"device\uFFFD[31m\uFFFD\""));
    EXPECT_THAT(text, Not(HasSubstr("\u001B")));
    EXPECT_EQ("", support::brokenDot(text));
}

TEST_F(ProgramGraph, ExplainsItsShapes)
{
    run(support::smallMachine());

    const std::string text = call({"graph"}).out;
    const std::string marked = call({"graph", "--endpoint", "Speakers"}).out;

    for (const char* const meaning :
         {"connector", "volume and its level", "mute", "selector and its chosen input", "other node", "endpoint",
          "wire within a device", "wire of the chosen input", "join between devices", "signal path within a device"})
        EXPECT_THAT(text, HasSubstr("label=\"" + std::string(meaning) + "\"")) << meaning;
    EXPECT_THAT(text, testing::Not(HasSubstr("path of the marked endpoint")));
    EXPECT_THAT(marked, HasSubstr("path of the marked endpoint"));
}
