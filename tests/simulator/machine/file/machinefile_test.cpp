#include "simulator/machine/file/machinefile.h"

#include "simulator/machine/builder/machinebuilder.h"
#include "simulator/machine/propertykeys.h"
#include "tests/simulator/machine/file/machinesample.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <functional>

namespace
{
using testing::AllOf;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::StartsWith;

/// A folder of its own that is gone with the object.
class TemporaryFolder
{
public:
    TemporaryFolder() : m_path(std::filesystem::temp_directory_path() / ("sonavit-machines-" + name()))
    {
        std::filesystem::create_directories(m_path);
    }

    ~TemporaryFolder() { std::filesystem::remove_all(m_path); }

    std::string write(const std::string& file, const std::string& content) const
    {
        std::ofstream(m_path / std::filesystem::u8path(file), std::ios::binary) << content;
        return (m_path / std::filesystem::u8path(file)).u8string();
    }

    std::string path() const { return m_path.u8string(); }

private:
    static std::string name()
    {
        const auto* test = testing::UnitTest::GetInstance()->current_test_info();
        return std::string(test->test_suite_name()) + "-" + test->name();
    }

    std::filesystem::path m_path;
};

/// Sets an environment variable until the end of the object's life.
class ChosenFolder
{
public:
    explicit ChosenFolder(const std::string& path) { set(path); }

    ~ChosenFolder() { set(""); }

private:
    static void set(const std::string& value)
    {
#if defined(_WIN32)
        _putenv_s("SONAVIT_MACHINES", value.c_str());
#else
        setenv("SONAVIT_MACHINES", value.c_str(), 1);
#endif
    }
};

std::string errorOf(const std::function<void()>& action)
{
    try
    {
        action();
    }
    catch (const sim::MachineFileError& error)
    {
        return error.what();
    }
    return "no error";
}

TEST(MachineFileWrite, GivesATextThatReadsBackAsAnEqualMachine)
{
    const sim::Machine machine = sample::machine();

    const sim::Machine again = sim::readMachine(sim::writeMachine(machine), "sample.json");

    EXPECT_TRUE(machine == again);
    EXPECT_EQ(sim::writeMachine(machine), sim::writeMachine(again));
}

TEST(MachineFileWrite, GivesATextThatReadsBackAsAnEqualMachineWhenEverythingIsUsual)
{
    sim::MachineBuilder bench;
    sim::CardBuilder codec = bench.card("Analog Audio");
    codec.speaker().hardwareVolume({-34.5f, 12.0f, 1.5f, -0.3f}).hardwareMute();
    codec.microphone().unplugged();

    const sim::Machine again = sim::readMachine(sim::writeMachine(bench.build()), "bench.json");

    EXPECT_TRUE(bench.build() == again);
}

TEST(MachineFileWrite, LeavesOutWhatIsUsual)
{
    sim::Machine machine;
    machine.name = "plain";
    machine.endpoints.emplace_back();
    machine.endpoints.front().id = "{0.0.0.00000000}.{1}";

    EXPECT_EQ("{\n"
              "  \"$schema\": \"machine.schema.json\",\n"
              "  \"name\": \"plain\",\n"
              "  \"endpoints\": [{\"id\": \"{0.0.0.00000000}.{1}\", \"flow\": \"render\"}]\n"
              "}\n",
              sim::writeMachine(machine));
}

TEST(MachineFileWrite, WritesFormatsAndLevelsAsPeopleDo)
{
    const std::string text = sim::writeMachine(sample::machine());

    EXPECT_THAT(text, AllOf(HasSubstr("\"deviceFormat\": {\"format\": \"24/96000/6\"}"), HasSubstr("-12.34,"),
                            HasSubstr("{\"blob\": \"00FF5A\"}"), HasSubstr("\"type\": \"selector\"")));
}

TEST(MachineFileRead, TakesTheUsualForWhatIsNotGiven)
{
    const sim::Machine machine = sim::readMachine(
        R"({"name": "one", "endpoints": [{"id": "E", "flow": "capture", "topology": {"connectors": [{"id": "C"}]}}]})",
        "one.json");

    const sim::Endpoint& endpoint = machine.endpoints.at(0);
    EXPECT_EQ(eCapture, endpoint.flow);
    EXPECT_EQ(sim::stateActive, endpoint.state);
    EXPECT_TRUE(endpoint.openable && endpoint.installed);
    EXPECT_FALSE(endpoint.volume);
    EXPECT_EQ("E", endpoint.topology->deviceId);
    EXPECT_EQ(0x00010000u, endpoint.topology->connectors.at(0).localId);
    EXPECT_FALSE(endpoint.topology->connectors.at(0).name);
}

TEST(MachineFileRead, TellsANullTextFromAnEmptyValueAndFromAnEmptyText)
{
    const sim::Machine machine = sim::readMachine(
        R"({"name": "n", "adapters": [{"id": "A", "properties":
            {"friendlyName": null, "instancePath": {"text": null}, "deviceDescription": ""}}]})",
        "n.json");

    const sim::Properties& properties = machine.adapters.at(0).properties;
    ASSERT_EQ(3u, properties.size());
    EXPECT_EQ(VT_EMPTY, properties[0].value.tag);
    EXPECT_EQ(VT_LPWSTR, properties[1].value.tag);
    EXPECT_FALSE(properties[1].value.text);
    EXPECT_EQ("", properties[2].value.text.value());
}

TEST(MachineFileRead, KeepsIdsApartThatDifferInCaseOnly)
{
    const sim::Machine machine = sim::readMachine(
        R"({"name": "n", "endpoints": [{"id": "{a}", "flow": "render"}, {"id": "{A}", "flow": "render"}]})", "n.json");

    EXPECT_EQ(2u, machine.endpoints.size());
    EXPECT_EQ(&machine.endpoints[1], machine.openDevice("{A}"));
    EXPECT_EQ(&machine.endpoints[0], machine.openDevice("{a}"));
}

TEST(MachineFileRead, OpensAFileWhoseNameIsNotAscii)
{
    const TemporaryFolder folder;
    const std::string path = folder.write("m\xC3\xA4schine.json", R"({"name": "umlaut"})");

    EXPECT_EQ("umlaut", sim::readMachineFile(path).name);
}

TEST(MachineFileRead, SaysWhenThereIsNoFileOrItIsAFolder)
{
    const TemporaryFolder folder;
    const std::string missing = folder.path() + "/missing.json";

    EXPECT_EQ(missing + ": expected a machine file, found a file that cannot be opened",
              errorOf([&] { sim::readMachineFile(missing); }));
    EXPECT_EQ(folder.path() + ": expected a machine file, found a folder",
              errorOf([&] { sim::readMachineFile(folder.path()); }));
}

TEST(MachineFileRead, RefusesAFileOfMoreThan64MiBAtOnce)
{
    const TemporaryFolder folder;
    const std::string large = folder.write("large.json", "[]");
    std::filesystem::resize_file(std::filesystem::u8path(large), (std::uintmax_t{64} << 20) + 1);

    EXPECT_EQ(large + ": expected a machine file, found a file larger than 64 MiB",
              errorOf([&] { sim::readMachineFile(large); }));
    EXPECT_EQ(large + ": expected a machine file, found a file larger than 64 MiB",
              errorOf([&] { sim::findMachine(large); }));
}

TEST(MachineFileRead, KeepsCharactersOfEveryLength)
{
    const sim::Machine machine = sim::readMachine(
        "{\"name\": \"\xC3\xA4\xE2\x82\xAC\xF0\x9F\x94\x8A\", \"description\": \"\\u00e4\\u20ac\\ud83d\\udd0a\"}",
        "n.json");

    EXPECT_EQ("\xC3\xA4\xE2\x82\xAC\xF0\x9F\x94\x8A", machine.name);
    EXPECT_EQ(machine.name, machine.description);
    EXPECT_THAT(sim::writeMachine(machine), HasSubstr("\"name\": \"\xC3\xA4\xE2\x82\xAC\xF0\x9F\x94\x8A\""));
}

TEST(MachineFileWrite, ReplacesWhatIsNotUtf8)
{
    sim::Machine machine;
    machine.name = "a\xC3\x28"
                   "b\xED\xA0\xBD";

    EXPECT_THAT(sim::writeMachine(machine), HasSubstr("\"name\": \"a\xEF\xBF\xBD(b\xEF\xBF\xBD"));
    EXPECT_NO_THROW(sim::readMachine(sim::writeMachine(machine), "n.json"));
}

TEST(MachineFileWrite, KeepsEachTagThatAStoreTakesAndAnEmptyBlob)
{
    sim::Machine machine;
    machine.name = "tags";
    sim::Properties& properties = machine.adapters.emplace_back().properties;
    machine.adapters.front().id = "A";
    std::uint32_t number = 0;
    for (const VARTYPE tag : {VT_I2, VT_I4, VT_BOOL, VT_I1, VT_UI1, VT_UI2, VT_UI4, VT_INT, VT_UINT, VT_UI8})
    {
        const PROPERTYKEY key = {GUID{}, ++number};
        sim::setProperty(properties, key, sim::PropertyValue::ofNumber(number == 3 ? 0xFFFF : number, tag));
    }
    sim::setProperty(properties, {GUID{}, 10}, sim::PropertyValue::ofNumber(UINT64_MAX, VT_UI8));
    sim::setProperty(properties, {GUID{}, 11}, sim::PropertyValue::ofBoolean(false));
    sim::setProperty(properties, {GUID{}, 12}, sim::PropertyValue::ofNumber(7, VT_BOOL));
    sim::setProperty(properties, {GUID{}, 13}, sim::PropertyValue::ofReal(-0.1f));
    sim::setProperty(properties, sim::keys::containerId, sim::PropertyValue::ofGuid(KSNODETYPE_SPEAKER));
    sim::setProperty(properties, sim::keys::deviceFormat, sim::PropertyValue::ofBytes({}));

    const std::string text = sim::writeMachine(machine);

    EXPECT_TRUE(machine == sim::readMachine(text, "tags.json")) << text;
    EXPECT_THAT(text, AllOf(HasSubstr("/1\": {\"number\": 1, \"tag\": \"VT_I2\"}"),
                            HasSubstr("/3\": {\"boolean\": true}"), HasSubstr("/11\": {\"boolean\": false}"),
                            HasSubstr("/12\": {\"number\": 7, \"tag\": \"VT_BOOL\"}"),
                            HasSubstr("/10\": {\"number\": 18446744073709551615, \"tag\": \"VT_UI8\"}"),
                            HasSubstr("/13\": {\"real\": -0.1}"),
                            HasSubstr("\"containerId\": {\"guid\": \"{DFF21CE1-F70F-11D0-B917-00A0C9223196}\"}"),
                            HasSubstr("/6\": {\"number\": 6, \"tag\": \"VT_UI2\"}"), HasSubstr("/7\": 7"),
                            HasSubstr("\"deviceFormat\": {\"blob\": \"\"}")));
}

TEST(MachineFileWrite, KeepsEveryState)
{
    sim::Machine machine;
    machine.name = "states";
    for (const std::uint32_t state : {0u, 1u, 3u, 15u, 16u, 0x10000001u, 0xFFFFFFFFu})
    {
        machine.adapters.emplace_back().id = std::to_string(state);
        machine.adapters.back().state = state;
    }

    const std::string text = sim::writeMachine(machine);

    EXPECT_TRUE(machine == sim::readMachine(text, "states.json"));
    EXPECT_THAT(text, HasSubstr("\"state\": 4294967295"));
}

/// @p code as UTF-8.
std::string characterOf(std::uint32_t code)
{
    const auto byte = [](std::uint32_t bits) { return static_cast<char>(static_cast<unsigned char>(bits)); };
    const auto follower = [&](unsigned shift) { return byte(0x80 | (code >> shift & 0x3F)); };
    if (code < 0x80)
        return {byte(code)};
    if (code < 0x800)
        return {byte(0xC0 | code >> 6), follower(0)};
    if (code < 0x10000)
        return {byte(0xE0 | code >> 12), follower(6), follower(0)};
    return {byte(0xF0 | code >> 18), follower(12), follower(6), follower(0)};
}

TEST(MachineFileWrite, KeepsEveryCharacterButZero)
{
    sim::Machine machine;
    for (std::uint32_t code = 1; code <= 0x10FFFF; ++code)
    {
        if (code < 0xD800 || code > 0xDFFF)
            machine.description += characterOf(code);
    }
    for (std::uint32_t code = 1; code <= 0x200; ++code)
    {
        if (code == '/') // no id of a part begins with it
            continue;
        const std::string text = characterOf(code);
        sim::Endpoint& endpoint = machine.endpoints.emplace_back();
        endpoint.id = text;
        endpoint.properties = {{sim::keys::fullName, sim::PropertyValue::ofText(text + text)}};
        endpoint.topology.emplace().deviceId = text;
        endpoint.topology->connectors.emplace_back().id = text + "/" + text;
        machine.joins.push_back({text + "/" + text, "", text, true});
        machine.deviceInstances.push_back({text, text});
        machine.waveOut.push_back({text});
        machine.faults.push_back({"Release", text + "/" + text, text});
    }

    const std::string text = sim::writeMachine(machine);

    EXPECT_TRUE(machine == sim::readMachine(text, "characters.json"));
}

TEST(MachineFileWrite, KeepsTheNumbersOfJacksAndConnectorsThatHaveNoName)
{
    for (const std::uint32_t number : {99u, 0x80000000u, 0xFFFFFFFFu})
    {
        sim::Machine machine = sample::machine();
        sim::Connector& connector = machine.adapters.front().topology->connectors.front();
        connector.type = static_cast<ConnectorType>(number);
        connector.jacks.front().connection = static_cast<EPcxConnectionType>(number);
        connector.jacks.front().geometricLocation = static_cast<EPcxGeoLocation>(number);
        connector.jacks.front().generalLocation = static_cast<EPcxGenLocation>(number);
        connector.jacks.front().portConnection = static_cast<EPxcPortConnection>(number);

        const std::string text = sim::writeMachine(machine);

        EXPECT_TRUE(machine == sim::readMachine(text, "n.json")) << text;
        EXPECT_THAT(text, AllOf(HasSubstr("\"kind\": " + std::to_string(number)),
                                HasSubstr("\"connection\": " + std::to_string(number)),
                                HasSubstr("\"portConnection\": " + std::to_string(number))));
    }
}

TEST(MachineFileWrite, NamesTheInterfacesOfFurtherControlsThatItKnows)
{
    const std::string text = sim::writeMachine(sample::machine());

    EXPECT_THAT(text, AllOf(HasSubstr("{\"interface\": \"IAudioAutoGainControl\", \"name\": \"Automatic Gain\"}"),
                            HasSubstr("{\"interface\": \"{AAAAAAAA-0001-0002-0304-05060708090A}\"}")));
}

TEST(MachineFileRead, RefusesAMixFormatOfNoBytes)
{
    EXPECT_THAT(errorOf(
                    []
                    {
                        sim::readMachine(
                            R"({"name": "n", "endpoints": [{"id": "E", "flow": "render", "mixFormat": {"blob": ""}}]})",
                            "n.json");
                    }),
                HasSubstr("/endpoints/0/mixFormat: expected the bytes of a WAVEFORMATEX"));
}

TEST(MachineFileWrite, GivesEachMachineThatShipsBack)
{
    ASSERT_THAT(sim::machineNames(),
                ElementsAre("bluetooth", "broken", "crowded", "desktop", "empty", "laptop", "laptop-user", "published",
                            "remote-desktop", "studio", "virtual", "waking"));
    for (const std::string& name : sim::machineNames())
    {
        const sim::Machine machine = sim::findMachine(name);

        const std::string text = sim::writeMachine(machine);

        EXPECT_TRUE(machine == sim::readMachine(text, name)) << name;
        EXPECT_EQ(text, sim::writeMachine(sim::readMachine(text, name))) << name;
    }
}

TEST(MachineFileFind, LooksIntoTheChosenFolder)
{
    const TemporaryFolder folder;
    folder.write("second.json", R"({"name": "the second"})");
    folder.write("first.json", R"({"name": "the first"})");
    folder.write("machine.schema.json", "{}");
    folder.write("readme.txt", "");
    const ChosenFolder chosen(folder.path());

    EXPECT_THAT(sim::machineNames(), ElementsAre("first", "second"));
    EXPECT_EQ("the second", sim::findMachine("second").name);
}

TEST(MachineFileFind, TakesAPathAsItIs)
{
    const TemporaryFolder folder;
    const std::string path = folder.write("mine.json", R"({"name": "mine"})");
    const ChosenFolder chosen(folder.path() + "/none");

    EXPECT_EQ("mine", sim::findMachine(path).name);
}

TEST(MachineFileFind, ListsTheKnownNamesWhenItKnowsNoSuchMachine)
{
    const TemporaryFolder folder;
    folder.write("b.json", "{}");
    folder.write("a.json", "{}");
    const ChosenFolder chosen(folder.path());

    EXPECT_EQ("\"c\": expected the name of a machine (a, b) or of a file, found no such name",
              errorOf([] { sim::findMachine("c"); }));
    EXPECT_THAT(errorOf([] { sim::findMachine(""); }), HasSubstr("(a, b)"));
    EXPECT_THROW(sim::findMachine("c"), sim::UnknownMachine);
}

TEST(MachineFileFind, ShowsAnyNameOnOneShortLine)
{
    const TemporaryFolder folder;
    const ChosenFolder chosen(folder.path());

    EXPECT_THAT(errorOf([] { sim::findMachine("a\nb\xC3"); }), StartsWith("\"a\\nb\\xC3\": expected"));
    EXPECT_THAT(errorOf([] { sim::findMachine("folder/\xC3.json"); }),
                AllOf(StartsWith("folder/\\xC3.json: expected"), HasSubstr("a file that cannot be opened")));
    EXPECT_LT(errorOf([] { sim::findMachine(std::string(100000, 'x')); }).size(), 300u);
}

TEST(MachineFileFind, SaysWhenThereIsNoMachineAtAll)
{
    const TemporaryFolder folder;
    const ChosenFolder chosen(folder.path());

    EXPECT_THAT(sim::machineNames(), IsEmpty());
    EXPECT_THAT(errorOf([] { sim::findMachine("desktop"); }), HasSubstr("(none found)"));
}
}
