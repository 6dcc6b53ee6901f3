// The commands that read, through either library.
#include "simulator/machine/file/machinefile.h"
#include "tests/program/programtest.h"
#include "tests/support/pace.h"
#include "tools/sonavit/output/text.h"

#include <nlohmann/json.hpp>

#include <algorithm>
#include <iterator>
#include <map>
#include <set>
#include <thread>

using nlohmann::json;
using support::Answer;
using testing::HasSubstr;

namespace
{
class ProgramVia : public support::ProgramTest
{
protected:
    /// Both answers to a command, in JSON.
    std::pair<json, json> answers(std::vector<std::string> words)
    {
        words.emplace_back("--json");
        const json layer = json::parse(call(words).out);
        words.insert(words.end(), {"--via", "model"});
        return {layer, json::parse(call(words).out)};
    }
};

bool canHaveHardware(const json& endpoint)
{
    return endpoint["state"] == "active" || endpoint["state"] == "unplugged";
}

/// Leaves of an endpoint what both libraries read.
json commonPartOfEndpoint(json endpoint)
{
    endpoint.erase("problems");
    json jacks = json::array();
    if (!endpoint["jacks"].empty() && canHaveHardware(endpoint))
        jacks.push_back({{"kind", endpoint["jacks"][0]["kind"]}, {"type", endpoint["jacks"][0]["type"]}});
    endpoint["jacks"] = jacks;
    if (!canHaveHardware(endpoint))
    {
        endpoint["jack"] = nullptr;
        endpoint["jackType"] = nullptr;
        endpoint["volume"] = nullptr;
        endpoint["muted"] = nullptr;
    }
    if (!endpoint["volume"].is_null())
        endpoint["volume"].erase("inHardware");
    return endpoint;
}

/// What both libraries read of the cards of a list: without problems, with all endpoints without instance id on one
/// card, with the first of several endpoints whose ids differ in case alone.
json commonPart(const json& list)
{
    std::set<std::string> known;
    json cards = json::array();
    json pathless = json::object();
    for (const json& card : list["cards"])
    {
        json endpoints = json::array();
        for (const json& endpoint : card["endpoints"])
        {
            if (known.insert(sonavit::program::lowerCase(endpoint["id"].get<std::string>())).second)
                endpoints.push_back(commonPartOfEndpoint(endpoint));
        }
        if (card["instanceId"].is_null())
        {
            for (const json& endpoint : endpoints)
                pathless[endpoint["id"].get<std::string>()] = endpoint;
            continue;
        }
        cards.push_back({{"id", card["id"]}, {"name", card["name"]}, {"endpoints", endpoints}});
    }
    return {{"cards", cards}, {"pathless", pathless}};
}

/// Takes away what the object model does not read, wherever it is.
void forgetWhatOneLibraryReads(json& value)
{
    if (value.is_object())
    {
        for (const char* const key : {"inHardware", "formFactor", "colour", "colourName", "place", "geometry",
                                      "connection", "port", "isConnected", "container", "problems"})
            value.erase(key);
        if (value.contains("ownerName"))
        {
            value.erase("id");
            value.erase("name");
        }
    }
    for (json& member : value)
    {
        if (member.is_structured())
            forgetWhatOneLibraryReads(member);
    }
}

/// A jack that only the property store describes, the object model does not know.
void forgetUnjoinedJack(json& endpoint, const json& other)
{
    if (!other["jacks"].empty())
        return;
    endpoint["jacks"] = json::array();
    endpoint["jack"] = nullptr;
    endpoint["jackType"] = nullptr;
}

void forgetUnjoinedJacks(json& layer, const json& model)
{
    for (std::size_t i = 0; i < std::min(layer["cards"].size(), model["cards"].size()); ++i)
    {
        json& endpoints = layer["cards"][i]["endpoints"];
        for (std::size_t j = 0; j < std::min(endpoints.size(), model["cards"][i]["endpoints"].size()); ++j)
            forgetUnjoinedJack(endpoints[j], model["cards"][i]["endpoints"][j]);
    }
    for (auto& [id, endpoint] : layer["pathless"].items())
    {
        if (model["pathless"].contains(id))
            forgetUnjoinedJack(endpoint, model["pathless"][id]);
    }
}

/// What both libraries answer to `show`. The object model reads neither short formats nor a card without instance id.
void leaveCommonPartOfShow(json& layer, json& model)
{
    layer["endpoint"] = commonPartOfEndpoint(layer["endpoint"]);
    model["endpoint"] = commonPartOfEndpoint(model["endpoint"]);
    forgetUnjoinedJack(layer["endpoint"], model["endpoint"]);
    if (model["endpoint"]["format"].is_null())
        layer["endpoint"]["format"] = nullptr;
    if (model["card"]["instanceId"].is_null() && layer["card"]["instanceId"].is_null())
        layer["card"] = model["card"];
}

bool contains(const json& list, const json& value)
{
    return std::find(list.begin(), list.end(), value) != list.end();
}

/// A control without the connector that it was met at.
json withoutOwner(json control)
{
    for (const char* const key : {"ownerName", "ownerJack", "ownerType"})
        control.erase(key);
    return control;
}

/// Whether a control has the name or the kind of the connector next to it; a level between two nodes has neither.
bool isNextToConnector(const json& control)
{
    return !control["ownerName"].is_null() || !control["ownerType"].is_null();
}

/// What both libraries answer to `controls` of an endpoint in that state. The object model's list has a control once
/// for each connector next to it and none between two nodes, and the volume of an endpoint that cannot have hardware.
void leaveCommonPartOfControls(json& layer, json& model, bool canHaveHardware)
{
    json met = json::array();
    json once = json::array();
    for (const json& control : model["controls"])
    {
        if (contains(layer["controls"], control) ? !contains(once, control) : !contains(met, withoutOwner(control)))
            once.push_back(control);
        met.push_back(withoutOwner(control));
    }
    model["controls"] = once;
    json comparable = json::array();
    for (const json& control : layer["controls"])
    {
        if (isNextToConnector(control) || contains(once, control))
            comparable.push_back(control);
    }
    layer["controls"] = comparable;
    if (!canHaveHardware)
    {
        model["volume"] = layer["volume"];
        model["muted"] = layer["muted"];
    }
}

/// Devices and edges in one order, and the parts by their ids instead of their numbers: those have the order of the
/// cards, and the libraries group endpoints without instance id in different ways.
void sortGraph(json& graph)
{
    std::map<std::size_t, json> ids;
    for (json& device : graph["devices"])
    {
        for (json& part : device["parts"])
        {
            ids[part["number"]] = part["id"];
            part.erase("number");
        }
    }
    for (json& edge : graph["edges"])
    {
        for (const char* const end : {"from", "to"})
        {
            if (!edge[end].is_null())
                edge[end] = ids.at(edge[end]);
        }
    }
    const auto byText = [](const json& left, const json& right) { return left.dump() < right.dump(); };
    for (const char* const key : {"devices", "edges"})
        std::sort(graph[key].begin(), graph[key].end(), byText);
}

/// Each question, about one endpoint of each flow and state of a machine, as the others are like it. Each endpoint of
/// the broken machine is broken in its own way.
class ProgramViaOnMachine : public ProgramVia, public testing::WithParamInterface<const char*>
{
protected:
    ProgramViaOnMachine()
    {
        findMachine = [machine = sim::findMachine(GetParam())](const std::string&) { return machine; }; // read once
    }

    std::pair<json, json> answersHere(std::vector<std::string> words)
    {
        words.insert(words.end(), {"--machine", GetParam()});
        auto [layer, model] = answers(words);
        forgetWhatOneLibraryReads(layer);
        forgetWhatOneLibraryReads(model);
        return {layer, model};
    }

    json endpoints()
    {
        std::set<std::pair<json, json>> known;
        json result = json::array();
        const json list = json::parse(call({"list", "--json", "--machine", GetParam()}).out);
        for (const json& card : list["cards"])
        {
            for (const json& endpoint : card["endpoints"])
            {
                const bool isNew = known.emplace(endpoint["flow"], endpoint["state"]).second;
                if (isNew || GetParam() == std::string("broken"))
                    result.push_back(endpoint);
            }
        }
        return result;
    }
};
}

TEST_F(ProgramVia, AnswersTheSameToEachQuestion)
{
    run(support::smallMachine());

    for (const std::vector<std::string>& words : std::vector<std::vector<std::string>>{{"list"},
                                                                                       {"show", "Speakers"},
                                                                                       {"controls", "Speakers"},
                                                                                       {"selectors"},
                                                                                       {"graph"},
                                                                                       {"get-volume", "Microphone"}})
    {
        const auto [ofLayer, ofModel] = answers(words);
        json layer = ofLayer;
        json model = ofModel;
        forgetWhatOneLibraryReads(layer);
        forgetWhatOneLibraryReads(model);
        EXPECT_EQ(layer, model) << words[0] << ": " << json::diff(layer, model);
    }
}

TEST_F(ProgramVia, AsksTheLibraryThatTheUserNames)
{
    run(support::smallMachine());
    const auto callsHere = [this](const std::vector<std::string>& words)
    {
        const std::size_t before = simulation().journal().entries().onThread(std::this_thread::get_id()).size();
        call(words);
        return simulation().journal().entries().onThread(std::this_thread::get_id()).size() - before;
    };

    EXPECT_EQ(0u, callsHere({"list"}) - callsHere({"list", "--via", "layer"}));
    EXPECT_LT(20u, callsHere({"list", "--via", "model"}));
}

TEST_P(ProgramViaOnMachine, ListsTheSame)
{
    const auto [ofLayer, ofModel] = answers({"list", "--machine", GetParam()});
    json layer = commonPart(ofLayer);
    const json model = commonPart(ofModel);
    forgetUnjoinedJacks(layer, model);

    EXPECT_EQ(layer, model) << json::diff(layer, model);
    EXPECT_EQ(GetParam() == std::string("empty"), ofLayer["cards"].empty());
}

TEST_P(ProgramViaOnMachine, ShowsTheSame)
{
    for (const json& endpoint : endpoints())
    {
        auto [layer, model] = answersHere({"show", endpoint["id"]});
        leaveCommonPartOfShow(layer, model);

        EXPECT_EQ(layer, model) << json::diff(layer, model);
        EXPECT_EQ(endpoint["id"], layer["endpoint"]["id"]);
    }
}

/// The object model fails where its walk meets a device that cannot be opened.
TEST_P(ProgramViaOnMachine, FindsTheSameControlsAndVolumes)
{
    std::size_t failed = 0;
    for (const json& endpoint : endpoints())
    {
        SCOPED_TRACE(endpoint["name"]);
        auto [controls, controlsOfModel] = answersHere({"controls", endpoint["id"]});
        leaveCommonPartOfControls(controls, controlsOfModel, canHaveHardware(endpoint));
        const auto [volume, volumeOfModel] = answersHere({"get-volume", endpoint["id"]});

        EXPECT_TRUE(controls.contains("controls"));
        if (controlsOfModel.contains("error"))
            ++failed;
        else
            EXPECT_EQ(controls, controlsOfModel) << json::diff(controls, controlsOfModel);
        if (canHaveHardware(endpoint) && volume.contains("volume"))
            EXPECT_EQ(volume, volumeOfModel) << json::diff(volume, volumeOfModel);
        else
            EXPECT_TRUE(volume.contains("error"));
    }
    EXPECT_EQ(GetParam() == std::string("broken") ? 3u : 0u, failed);
}

TEST_P(ProgramViaOnMachine, FindsTheSameHardware)
{
    const auto [selectors, selectorsOfModel] = answersHere({"selectors"});
    auto [graph, graphOfModel] = answersHere({"graph"});
    sortGraph(graph);
    sortGraph(graphOfModel);

    EXPECT_EQ(selectors, selectorsOfModel) << json::diff(selectors, selectorsOfModel);
    EXPECT_EQ(graph, graphOfModel) << json::diff(graph, graphOfModel);
}

constexpr const char* machinesThatShip[] = {"desktop",   "empty",     "laptop", "remote-desktop",
                                            "virtual",   "waking",    "broken", "laptop-user",
                                            "bluetooth", "published", "studio", "crowded"};

/// Without those that are much like others, and the largest, which are last, where there is time for few cases only.
INSTANTIATE_TEST_SUITE_P(MachinesThatShip, ProgramViaOnMachine,
                         testing::ValuesIn(std::begin(machinesThatShip),
                                           std::end(machinesThatShip) - support::cases(0, 6)),
                         [](const auto& name) { return support::testName(name.param); });
