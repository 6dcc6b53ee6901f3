#include "tests/program/dotreader.h"
#include "tests/program/programtest.h"

#include <nlohmann/json.hpp>

using nlohmann::json;
using testing::AnyOf;

namespace
{
/// Every command on a machine that ships.
class ProgramOnMachine : public support::ProgramTest, public testing::WithParamInterface<const char*>
{
protected:
    support::Answer callHere(std::vector<std::string> words)
    {
        words.insert(words.end(), {"--machine", GetParam()});
        return call(words);
    }

    /// The ids of all endpoints; of a large machine's first ones, as the others are like them.
    std::vector<std::string> endpointIds()
    {
        constexpr std::size_t large = 50;
        constexpr std::size_t fewOfThem = 5;
        std::vector<std::string> ids;
        for (const json& card : cards())
        {
            for (const json& endpoint : card["endpoints"])
                ids.push_back(endpoint["id"]);
        }
        if (ids.size() > large)
            ids.resize(fewOfThem);
        return ids;
    }

    /// All cards; of a large machine the first ones, as the others are like them.
    json someCards()
    {
        constexpr std::size_t large = 10;
        constexpr std::size_t fewOfThem = 3;
        json some = cards();
        if (some.size() > large)
            some.erase(some.begin() + fewOfThem, some.end());
        return some;
    }

    json cards() { return json::parse(callHere({"list", "--json"}).out)["cards"]; }

    /// Both forms of a command: what it says is well formed, whether it could be done or not.
    void tryBoth(const std::vector<std::string>& words)
    {
        SCOPED_TRACE(testing::PrintToString(words));
        const support::Answer text = callHere(words);
        std::vector<std::string> inJson = words;
        inJson.push_back("--json");
        const support::Answer answer = callHere(inJson);

        EXPECT_THAT(text.code, AnyOf(0, 1));
        EXPECT_EQ(text.code, answer.code);
        EXPECT_EQ(text.err, answer.err);
        if (text.code == 0)
            EXPECT_EQ("", text.err);
        else
            EXPECT_THAT(text.err, testing::MatchesRegex("sonavit: .+\n"));
        const json document = json::parse(answer.out);
        EXPECT_EQ(1, document["schemaVersion"]);
        EXPECT_EQ(text.code != 0, document.contains("error"));
    }
};
}

TEST_P(ProgramOnMachine, Lists)
{
    const support::Answer text = callHere({"list"});
    const json document = json::parse(callHere({"list", "--json"}).out);

    EXPECT_EQ(0, text.code);
    EXPECT_EQ("", text.err);
    EXPECT_EQ(GetParam(), document["machine"]);
    for (const json& card : document["cards"])
    {
        EXPECT_TRUE(card["id"].is_string());
        EXPECT_FALSE(card["name"].get<std::string>().empty());
        for (const json& endpoint : card["endpoints"])
        {
            EXPECT_THAT(endpoint["flow"], AnyOf("render", "capture"));
            EXPECT_THAT(endpoint["state"], AnyOf("active", "disabled", "notPresent", "unplugged"));
            EXPECT_TRUE(endpoint["isDefault"].is_boolean());
            EXPECT_TRUE(endpoint["volume"].is_object() || endpoint["volume"].is_null());
        }
    }
}

TEST_P(ProgramOnMachine, AnswersForEachEndpoint)
{
    for (const std::string& id : endpointIds())
    {
        tryBoth({"show", id});
        tryBoth({"controls", id});
        tryBoth({"get-volume", id});
        tryBoth({"format", id});
    }
}

TEST_P(ProgramOnMachine, SetsWhatCanBeSet)
{
    pause = [](std::chrono::milliseconds) { return false; }; // the hold of a format ends by itself
    for (const std::string& id : endpointIds())
    {
        tryBoth({"set-volume", id, "50%"});
        tryBoth({"set-volume", id, "-3dB"});
        tryBoth({"set-volume", id, "5%+"});
        tryBoth({"mute", id, "on"});
        tryBoth({"mute", id, "toggle"});
        tryBoth({"format", id, "--set", "16/44100/2"});
    }
}

TEST_P(ProgramOnMachine, AnswersForEachCard)
{
    tryBoth({"selectors"});
    for (const json& card : someCards())
    {
        if (card["instanceId"].is_null())
            continue;
        tryBoth({"ask", card["instanceId"]});
        tryBoth({"selectors", card["instanceId"]});
    }
}

TEST_P(ProgramOnMachine, DrawsASoundGraph)
{
    const support::Answer text = callHere({"graph"});
    const json document = json::parse(callHere({"graph", "--json"}).out);

    EXPECT_EQ(0, text.code);
    EXPECT_EQ("", support::brokenDot(text.out));
    EXPECT_TRUE(document["devices"].is_array());
    for (const std::string& id : endpointIds())
        EXPECT_EQ("", support::brokenDot(callHere({"graph", "--endpoint", id}).out));
}

TEST_P(ProgramOnMachine, ListensAndEnds)
{
    EXPECT_EQ(0, callHere({"monitor"}).code);
    EXPECT_EQ(0, callHere({"monitor", "--json"}).code);
}

/// A suite for each machine, so that they can be run side by side.
#define ON_MACHINE(Suite, machine)                                              \
    INSTANTIATE_TEST_SUITE_P(Suite, ProgramOnMachine, testing::Values(machine), \
                             [](const auto& name) { return std::string(name.param); })
ON_MACHINE(Broken, "broken");
ON_MACHINE(Crowded, "crowded");
ON_MACHINE(Desktop, "desktop");
ON_MACHINE(Empty, "empty");
ON_MACHINE(Laptop, "laptop");
ON_MACHINE(Studio, "studio");

TEST(ProgramOnMachines, HaveASuiteForEachMachineThatShips)
{
    EXPECT_THAT(sim::machineNames(),
                testing::UnorderedElementsAre("broken", "crowded", "desktop", "empty", "laptop", "studio"));
}
