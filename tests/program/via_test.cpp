// The commands that read, through either library.
#include "simulator/machine/file/machinefile.h"
#include "tests/program/programtest.h"
#include "tools/sonavit/output/text.h"

#include <nlohmann/json.hpp>

#include <algorithm>
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

/// Takes away what the object model does not read, wherever it stands.
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
void forgetUnjoinedJacks(json& layer, const json& model)
{
    const auto forget = [](json& endpoint, const json& other)
    {
        if (other["jacks"].empty())
        {
            endpoint["jacks"] = json::array();
            endpoint["jack"] = nullptr;
            endpoint["jackType"] = nullptr;
        }
    };
    for (std::size_t i = 0; i < std::min(layer["cards"].size(), model["cards"].size()); ++i)
    {
        json& endpoints = layer["cards"][i]["endpoints"];
        for (std::size_t j = 0; j < std::min(endpoints.size(), model["cards"][i]["endpoints"].size()); ++j)
            forget(endpoints[j], model["cards"][i]["endpoints"][j]);
    }
    for (auto& [id, endpoint] : layer["pathless"].items())
    {
        if (model["pathless"].contains(id))
            forget(endpoint, model["pathless"][id]);
    }
}

class ProgramViaOnMachine : public ProgramVia, public testing::WithParamInterface<const char*>
{
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

INSTANTIATE_TEST_SUITE_P(MachinesThatShip, ProgramViaOnMachine,
                         testing::Values("bluetooth", "broken", "crowded", "desktop", "empty", "laptop", "laptop-user",
                                         "published", "remote-desktop", "studio", "virtual", "waking"),
                         [](const auto& name) { return support::testName(name.param); });
