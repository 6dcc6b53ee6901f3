#include "simulator/machine/deviceformat.h"
#include "simulator/machine/propertykeys.h"
#include "tests/program/dotreader.h"
#include "tests/program/programtest.h"
#include "tests/support/pace.h"
#include "tools/sonavit/output/text.h"

#include <nlohmann/json.hpp>

#include <algorithm>
#include <set>

using nlohmann::json;

namespace
{
const char* stateName(std::uint32_t state)
{
    if (state == sim::stateActive)
        return "active";
    if (state == sim::stateDisabled)
        return "disabled";
    return state == sim::stateUnplugged ? "unplugged" : "notPresent";
}

/// Every command on a machine that ships.
class ProgramOnMachine : public support::ProgramTest, public testing::WithParamInterface<const char*>
{
protected:
    ProgramOnMachine()
    {
        findMachine = [this](const std::string&) { return machine; }; // its file is read once
    }

    support::Answer callHere(std::vector<std::string> words)
    {
        words.insert(words.end(), {"--machine", GetParam()});
        return call(words);
    }

    /// The ids of all endpoints; of a large machine's some, as the others are like them. Each endpoint of the broken
    /// machine is broken in its own way, so of these it leaves out some only where there is little time.
    std::vector<std::string> endpointIds()
    {
        constexpr std::size_t large = 10;
        constexpr std::size_t fewOfThem = 2;
        std::vector<std::string> ids;
        for (const json& card : cards())
        {
            for (const json& endpoint : card["endpoints"])
                ids.push_back(endpoint["id"]);
        }
        if (GetParam() == std::string("broken"))
            return support::share(ids, 4);
        if (ids.size() <= large)
            return ids;
        std::vector<std::string> some;
        for (std::size_t index = 0; index < fewOfThem; ++index)
            some.push_back(ids[index * ids.size() / fewOfThem]);
        return some;
    }

    /// All cards; of a large machine the first ones, as the others are like them.
    json someCards()
    {
        constexpr std::size_t large = 10;
        constexpr std::size_t fewOfThem = 1;
        json some = cards();
        if (some.size() > large)
            some.erase(some.begin() + fewOfThem, some.end());
        return some;
    }

    json cards() { return json::parse(callHere({"list", "--json"}).out)["cards"]; }

    /// Both forms of a command: they end with @p code and are well formed. @return the JSON answer
    json tryBoth(const std::vector<std::string>& words, int code)
    {
        SCOPED_TRACE(testing::PrintToString(words));
        const support::Answer text = callHere(words);
        std::vector<std::string> inJson = words;
        inJson.push_back("--json");
        const support::Answer answer = callHere(inJson);
        const json document = json::parse(answer.out);

        EXPECT_EQ(code, text.code) << text.err;
        EXPECT_EQ(code, answer.code) << answer.err;
        EXPECT_THAT(text.err, testing::StartsWith("Simulated machine " + std::string(GetParam())));
        EXPECT_EQ(2, document["schemaVersion"]);
        EXPECT_EQ(code != 0, document.contains("error"));
        const std::string note = unreadableNote(words);
        if (code == 0)
        {
            EXPECT_EQ(note, answer.err);
            EXPECT_EQ(GetParam(), document["machine"]);
            EXPECT_NE("", text.out);
        }
        else
        {
            EXPECT_EQ(note + "sonavit: " + document["error"].get<std::string>() + "\n", answer.err);
            EXPECT_THAT(text.err, testing::EndsWith("\n" + answer.err));
            EXPECT_EQ("", text.out);
            EXPECT_EQ(code, document["exitCode"]);
        }
        return document;
    }

    /// What is said about endpoints whose properties the system denies to the command's account; of a command on one
    /// endpoint about that one only.
    std::string unreadableNote(const std::vector<std::string>& words)
    {
        const bool isOnOne = words.size() > 1 && machine.endpoint(words[1]) != nullptr;
        const bool isOnOneCard = words.size() > 1 && words[0] == "selectors";
        if (isOnOneCard) // those that are denied have no instance id
            return "";
        const auto isDenied = [&](const sim::Endpoint& endpoint)
        { return hasFault("IMMDevice::OpenPropertyStore", endpoint.id) && (!isOnOne || words[1] == endpoint.id); };
        const auto denied = std::count_if(machine.endpoints.begin(), machine.endpoints.end(), isDenied);
        return denied == 0 ? "" : support::unreadableNote(static_cast<std::size_t>(denied));
    }

    /// Whether the device's format is 16/44100/2, so that nothing has to be set.
    bool hasThatFormat(const std::string& id)
    {
        const sim::PropertyValue* const value = sim::findProperty(described(id).properties, sim::keys::deviceFormat);
        return value != nullptr && value->bytes == sim::DeviceFormat{16, 44100, 2}.bytes();
    }

    const sim::Endpoint& described(const std::string& id) { return *machine.endpoint(id); }

    /// Whether the machine has a rule that makes @p operation of an endpoint fail.
    bool hasFault(const std::string& operation, const std::string& id)
    {
        return std::any_of(machine.faults.begin(), machine.faults.end(),
                           [&](const sim::FaultRule& rule)
                           { return rule.operation == operation && rule.object == id; });
    }

    /// Whether @p operation of an endpoint's volume works. That of an endpoint that is disabled is not asked.
    bool volumeWorks(const std::string& id, const std::string& operation)
    {
        const sim::Endpoint& endpoint = described(id);
        const bool isUsable = endpoint.state == sim::stateActive || endpoint.state == sim::stateUnplugged;
        if (!endpoint.volume || !isUsable || hasFault("IMMDevice::Activate", id))
            return false;
        const std::vector<std::string>& refused = endpoint.volume->refused;
        return std::find(refused.begin(), refused.end(), operation) == refused.end() &&
               !hasFault("IAudioEndpointVolume::" + operation, id);
    }

    /// Whether the volume answers as that of a device that has gone; then nothing can be set.
    bool isLost(const std::string& id)
    {
        return std::any_of(machine.faults.begin(), machine.faults.end(),
                           [&](const sim::FaultRule& rule)
                           {
                               return rule.object == id && rule.result == AUDCLNT_E_DEVICE_INVALIDATED &&
                                      rule.operation.find("IAudioEndpointVolume::") == 0;
                           });
    }

    /// Whether a louder volume would be the same.
    bool isAtItsLoudest(const std::string& id)
    {
        const sim::EndpointVolume& volume = *described(id).volume;
        return std::all_of(volume.channels.begin(), volume.channels.end(),
                           [&](float level) { return level == volume.maximum; });
    }

    /// Whether the device reports a format; a mistyped one is none.
    bool hasFormat(const std::string& id)
    {
        const sim::PropertyValue* const value = sim::findProperty(described(id).properties, sim::keys::deviceFormat);
        return value != nullptr && value->tag == VT_BLOB &&
               (value->bytes.size() == sizeof(WAVEFORMATEXTENSIBLE) || value->bytes.size() == sizeof(WAVEFORMATEX)) &&
               !hasFault("IMMDevice::OpenPropertyStore", id);
    }

    sim::Machine machine = sim::findMachine(GetParam());
};
}

TEST_P(ProgramOnMachine, Lists)
{
    const support::Answer text = callHere({"list"});
    const json document = tryBoth({"list"}, 0);

    std::size_t listed = 0;
    for (const json& card : document["cards"])
    {
        EXPECT_TRUE(card["id"].is_string());
        EXPECT_FALSE(card["name"].get<std::string>().empty());
        listed += card["endpoints"].size();
    }
    std::set<std::string> installed; // upper and lower case are alike in ids
    for (const sim::Endpoint& endpoint : machine.endpoints)
    {
        if (endpoint.installed && endpoint.state != 0) // no state: never listed
            installed.insert(sonavit::program::lowerCase(endpoint.id));
    }
    EXPECT_EQ(installed.size(), listed);
    EXPECT_EQ(installed.empty(), text.out == "There is no sound card.\n");
}

TEST_P(ProgramOnMachine, ListsEachEndpointAsItIs)
{
    for (const json& card : cards())
    {
        for (const json& endpoint : card["endpoints"])
        {
            const std::string id = endpoint["id"];
            SCOPED_TRACE(id);
            const sim::Endpoint& real = described(id);

            EXPECT_EQ(real.flow == eRender ? "render" : "capture", endpoint["flow"]);
            EXPECT_EQ(stateName(real.state), endpoint["state"]);
            EXPECT_TRUE(endpoint["isDefault"].is_boolean());
            EXPECT_EQ(volumeWorks(id, ""), endpoint["volume"].is_object());
            EXPECT_EQ(volumeWorks(id, "GetMute") ? json(real.volume->muted) : json(), endpoint["muted"]);
            if (!volumeWorks(id, "GetVolumeRange"))
                continue;
            EXPECT_EQ(json(real.volume->minimum), endpoint["volume"]["range"]["min"]);
        }
    }
}

TEST_P(ProgramOnMachine, AnswersForEachEndpoint)
{
    for (const std::string& id : endpointIds())
    {
        EXPECT_EQ(id, tryBoth({"show", id}, 0)["endpoint"]["id"]);
        tryBoth({"controls", id}, 0);
        tryBoth({"get-volume", id}, volumeWorks(id, "") ? 0 : 1);
        EXPECT_EQ(hasFormat(id), tryBoth({"format", id}, 0)["format"].is_object()) << id;
    }
}

TEST_P(ProgramOnMachine, SetsWhatCanBeSet)
{
    for (const std::string& id : endpointIds())
    {
        const bool takesPercent = volumeWorks(id, "SetMasterVolumeLevelScalar") && !isLost(id);
        const bool tellsPercent = volumeWorks(id, "GetMasterVolumeLevelScalar") && !isLost(id);
        const json half = tryBoth({"set-volume", id, "50%"}, takesPercent ? 0 : 1);
        EXPECT_EQ(takesPercent ? json(50) : json(), half.value(json::json_pointer("/after/percent"), json())) << id;
        tryBoth({"set-volume", id, "-3dB"}, volumeWorks(id, "SetMasterVolumeLevel") && !isLost(id) ? 0 : 1);
        tryBoth({"set-volume", id, "5%+"}, tellsPercent && (takesPercent || isAtItsLoudest(id)) ? 0 : 1);
    }
}

TEST_P(ProgramOnMachine, MutesWhatCanBeMuted)
{
    for (const std::string& id : endpointIds())
    {
        const bool takesMute = volumeWorks(id, "SetMute") && !isLost(id);
        const bool tellsMute = volumeWorks(id, "GetMute");
        const json muted = tryBoth({"mute", id, "on"}, takesMute ? 0 : 1);
        const json toggled = tryBoth({"mute", id, "toggle"}, takesMute && tellsMute ? 0 : 1);
        if (takesMute && tellsMute)
        {
            EXPECT_EQ(true, muted["muted"]) << id;
            EXPECT_EQ(!described(id).volume->muted, toggled["muted"].get<bool>()) << id;
        }
    }
}

TEST_P(ProgramOnMachine, SetsFormatsThatItCanPutBack)
{
    pause = [](std::chrono::milliseconds) { return false; }; // the end is not requested
    for (const std::string& id : endpointIds())
    {
        const bool isChangeable =
            hasFormat(id) && (machine.account == sim::Account::administrator || hasThatFormat(id));
        const json answer = tryBoth({"format", id, "--set", "16/44100/2"}, isChangeable ? 0 : 1);
        if (!isChangeable)
            continue;
        EXPECT_EQ(44100, answer["during"]["rate"]) << id;
        EXPECT_EQ(answer["before"], answer["after"]) << id;
    }
}

TEST_P(ProgramOnMachine, AnswersForEachCard)
{
    tryBoth({"selectors"}, 0);
    for (const json& card : someCards())
    {
        if (card["instanceId"].is_null())
            continue;
        const json answer = tryBoth({"ask", card["instanceId"]}, 0);
        tryBoth({"selectors", card["instanceId"]}, 0);

        const json& endpoints = card["endpoints"];
        const bool hasLine = std::any_of(endpoints.begin(), endpoints.end(),
                                         [](const json& endpoint)
                                         { return endpoint["flow"] == "capture" && endpoint["jack"] == "line"; });
        EXPECT_EQ(hasLine, answer["lineIn"].get<bool>()) << card["name"];
        EXPECT_EQ(true, answer["known"]) << card["name"];
    }
}

TEST_P(ProgramOnMachine, DrawsASoundGraph)
{
    const support::Answer text = callHere({"graph"});
    const json document = tryBoth({"graph"}, 0);

    EXPECT_EQ("", support::brokenDot(text.out));
    EXPECT_EQ(machine.endpoints.empty(), document["devices"].empty());
    for (const std::string& id : endpointIds())
    {
        const support::Answer path = callHere({"graph", "--endpoint", id});
        EXPECT_EQ(0, path.code);
        EXPECT_EQ("", support::brokenDot(path.out));
        EXPECT_THAT(path.out, testing::HasSubstr("penwidth=\"3\"")) << id;
    }
}

TEST_P(ProgramOnMachine, ListensAndEnds)
{
    EXPECT_EQ(0, callHere({"monitor"}).code);
    EXPECT_EQ(0, callHere({"monitor", "--json"}).code);
}

/// A suite for each machine, so that they can be run side by side.
#define ON_MACHINE(Suite, machine)                                              \
    INSTANTIATE_TEST_SUITE_P(Suite, ProgramOnMachine, testing::Values(machine), \
                             [](const auto& name) { return support::testName(name.param); })
ON_MACHINE(Bluetooth, "bluetooth");
ON_MACHINE(Broken, "broken");
ON_MACHINE(Crowded, "crowded");
ON_MACHINE(Desktop, "desktop");
ON_MACHINE(Empty, "empty");
ON_MACHINE(Laptop, "laptop");
ON_MACHINE(LaptopUser, "laptop-user");
ON_MACHINE(Published, "published");
ON_MACHINE(RemoteDesktop, "remote-desktop");
ON_MACHINE(Studio, "studio");
ON_MACHINE(Virtual, "virtual");
ON_MACHINE(Waking, "waking");

TEST(ProgramOnMachines, HaveASuiteForEachMachineThatShips)
{
    EXPECT_THAT(sim::machineNames(), testing::UnorderedElementsAre("bluetooth", "broken", "crowded", "desktop", "empty",
                                                                   "laptop", "laptop-user", "published",
                                                                   "remote-desktop", "studio", "virtual", "waking"));
}
