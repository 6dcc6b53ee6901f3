#include "simulator/machine/file/schema.h"

#include "simulator/machine/file/fieldtables.h"
#include "simulator/machine/file/json.h"
#include "simulator/machine/file/machinefile.h"
#include "simulator/machine/namedvalues.h"
#include "simulator/machine/nodetypes.h"
#include "simulator/machine/propertykeys.h"
#include "tests/simulator/machine/file/machinesample.h"
#include "tests/simulator/machine/file/schemavalidator.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <set>

namespace
{
using Words = std::set<std::string>;

std::string contentOf(const std::string& path)
{
    std::ifstream file(std::filesystem::u8path(path), std::ios::binary);
    return std::string(std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>());
}

class MachineSchema : public testing::Test
{
protected:
    static sim::JsonValue read()
    {
        const auto folder = std::filesystem::u8path(sim::machineFile("desktop")).parent_path();
        const std::string path = (folder / "machine.schema.json").u8string();
        return sim::parseJson(contentOf(path), path);
    }

    const sim::JsonValue& definition(const std::string& name) const
    {
        const sim::JsonValue* const found = schema.member("$defs")->member(name);
        if (found == nullptr)
            throw std::logic_error("the schema does not define " + name);
        return *found;
    }

    static Words wordsOf(const sim::JsonValue* list)
    {
        Words words;
        for (const sim::JsonValue& element : list == nullptr ? std::vector<sim::JsonValue>() : list->elements)
            words.insert(element.text);
        return words;
    }

    Words wordsOf(const std::string& name) const { return wordsOf(definition(name).member("enum")); }

    template<class Table>
    static Words namesOf(const Table& table)
    {
        Words words;
        for (const auto& named : table)
            words.insert(std::string(named.name));
        return words;
    }

    bool accepts(const std::string& text) const
    {
        return MachineSchemaValidator(schema).accepts(sim::parseJson(text, "test.json"));
    }

    static bool readerAccepts(const std::string& text)
    {
        try
        {
            sim::readMachine(text, "test.json");
            return true;
        }
        catch (const sim::MachineFileError&)
        {
            return false;
        }
    }

    const sim::JsonValue schema = read();
};

TEST_F(MachineSchema, IsTheOneThatTheTablesOfFieldsMake)
{
    const auto folder = std::filesystem::u8path(sim::machineFile("desktop")).parent_path();

    EXPECT_TRUE(sim::machineSchema() == contentOf((folder / "machine.schema.json").u8string()))
        << "after a change on purpose: build the target machine-schema and run it, see its source";
}

TEST_F(MachineSchema, HasTheReadersKeysForEachFormOfObject)
{
    for (const sim::ObjectRule& object : sim::objectRules())
    {
        Words keys;
        Words required;
        for (const sim::KeyRule* key : object.keys)
        {
            keys.insert(key->name);
            if (key->isRequired)
                required.insert(key->name);
        }

        const sim::JsonValue& described = definition(object.name);

        const std::vector<std::string>& properties = described.member("properties")->keys;
        EXPECT_EQ(keys, Words(properties.begin(), properties.end())) << object.name;
        EXPECT_EQ(required, wordsOf(described.member("required"))) << object.name;
        ASSERT_NE(nullptr, described.member("additionalProperties")) << object.name;
        EXPECT_FALSE(described.member("additionalProperties")->boolean) << object.name;
    }
}

TEST_F(MachineSchema, DescribesNoObjectThatTheReaderDoesNotKnow)
{
    const sim::JsonValue& definitions = *schema.member("$defs");
    Words known;
    for (const sim::ObjectRule& object : sim::objectRules())
        known.insert(object.name);

    for (std::size_t index = 0; index < definitions.keys.size(); ++index)
    {
        if (definitions.elements[index].member("properties") != nullptr)
        {
            EXPECT_EQ(1u, known.count(definitions.keys[index])) << definitions.keys[index];
        }
    }
}

TEST_F(MachineSchema, HasTheReadersWords)
{
    EXPECT_EQ(namesOf(sim::accountNames), wordsOf("account"));
    EXPECT_EQ(namesOf(sim::flowNames), wordsOf("flow"));
    EXPECT_EQ(namesOf(sim::roleNames), wordsOf("role"));
    EXPECT_EQ(namesOf(sim::stateNames), wordsOf("stateName"));
    EXPECT_EQ(namesOf(sim::directionNames), wordsOf("direction"));
    EXPECT_EQ(namesOf(sim::connectorTypeNames), wordsOf("connectorType"));
    EXPECT_EQ(namesOf(sim::hardwareSupportNames), wordsOf("hardwareSupport"));
    EXPECT_EQ(namesOf(sim::interfaceNames), wordsOf("interface"));
    EXPECT_EQ(namesOf(sim::numberTagNames), wordsOf("numberTag"));
    EXPECT_EQ(namesOf(sim::nodeTypeNames), wordsOf("nodeTypeName"));
    EXPECT_EQ(namesOf(sim::controlInterfaceNames), wordsOf("controlInterfaceName"));
    EXPECT_EQ(namesOf(sim::compositionNames), wordsOf("composition"));
    EXPECT_EQ(namesOf(sim::removedEndpointsNames), wordsOf("removedEndpoints"));
    EXPECT_EQ(namesOf(sim::callbackThreadNames), wordsOf("callbackThread"));
    EXPECT_EQ(namesOf(sim::latencyPresetNames), wordsOf("latencyPreset"));
    EXPECT_EQ(namesOf(sim::keyNames),
              wordsOf(definition("propertyName").member("oneOf")->elements.at(0).member("enum")));
}

TEST_F(MachineSchema, HasTheReadersEventsUnderTheSameFormsOfObjects)
{
    for (const auto& named : sim::eventNames)
    {
        const std::string object = sim::eventForm(named.value).name();

        const Words words = wordsOf(definition(object).member("properties")->member("event")->member("enum"));

        EXPECT_EQ(1u, words.count(std::string(named.name))) << named.name;
    }
}

TEST_F(MachineSchema, AcceptsAMachineInWhichEveryFieldIsGiven)
{
    EXPECT_TRUE(accepts(sim::writeMachine(sample::machine())));
}

TEST_F(MachineSchema, AcceptsEachMachineThatShips)
{
    for (const std::string& name : sim::machineNames())
        EXPECT_TRUE(accepts(contentOf(sim::machineFile(name)))) << name;
}

TEST_F(MachineSchema, AndTheReaderAcceptTheExamplesOfTheReadme)
{
    const auto folder = std::filesystem::u8path(sim::machineFile("desktop")).parent_path();
    const std::string readme = contentOf((folder / "README.md").u8string());
    const std::string start = "```json\n";

    std::size_t examples = 0;
    for (std::size_t at = readme.find(start); at != std::string::npos; at = readme.find(start, at + 1), ++examples)
    {
        const std::size_t begin = at + start.size();
        const std::string example = readme.substr(begin, readme.find("```", begin) - begin);
        EXPECT_TRUE(accepts(example)) << example;
        EXPECT_NO_THROW(sim::readMachine(example, "README.md")) << example;
    }

    EXPECT_EQ(2u, examples);
}

TEST_F(MachineSchema, AgreesWithTheReaderOnWhatMayStandInOnePlace)
{
    struct Case
    {
        std::string text;
        bool isGood;
    };
    const auto endpoint = [](const std::string& inside)
    { return R"({"name": "m", "endpoints": [{"id": "E", "flow": "render", )" + inside + "}]}"; };
    const Case cases[] = {
        {R"({"name": "m"})", true},
        {R"({"title": "m"})", false},
        {R"({"name": 1})", false},
        {endpoint(R"("state": "disabled")"), true},
        {endpoint(R"("state": 0)"), true},
        {endpoint(R"("state": 16)"), true},
        {endpoint(R"("state": 4294967295)"), true},
        {endpoint(R"("state": 4294967296)"), false},
        {endpoint(R"("state": -1)"), false},
        {endpoint(R"("state": "broken")"), false},
        {endpoint(R"("colour": "red")"), false},
        {endpoint(R"("properties": {"friendlyName": null, "speakerConfig": 4294967295})"), true},
        {endpoint(R"("properties": {"speakerConfig": 4294967296})"), false},
        {endpoint(R"("properties": {"speakerConfig": 1.5})"), false},
        {endpoint(R"("properties": {"FriendlyName": "x"})"), false},
        {endpoint(R"("properties": {"{01234567-89ab-cdef-0123-456789abcdef}/0": {"blob": "0aF1"}})"), true},
        {endpoint(R"("properties": {"{01234567-89ab-cdef-0123-456789abcdef}/01": "x"})"), false},
        {endpoint(R"("properties": {"deviceFormat": {"blob": "0aF"}})"), false},
        {endpoint(R"("properties": {"deviceFormat": {"format": "32/999999/8"}})"), true},
        {endpoint(R"("properties": {"deviceFormat": {"format": "32/1000000/8"}})"), false},
        {endpoint(R"("properties": {"deviceFormat": {"format": "32/48000/9"}})"), false},
        {endpoint(R"("properties": {"deviceFormat": {"format": "12/48000/2"}})"), false},
        {endpoint(R"("properties": {"deviceFormat": {"format": "16/048000/2"}})"), false},
        {endpoint(R"("properties": {"deviceFormat": {"number": 1, "tag": "VT_UI1"}})"), true},
        {endpoint(R"("properties": {"deviceFormat": {"number": 1, "tag": "VT_LPWSTR"}})"), false},
        {endpoint(R"("properties": {"deviceFormat": {"number": -1, "tag": "VT_I8"}})"), true},
        {endpoint(R"("properties": {"deviceFormat": {"number": -9223372036854780000, "tag": "VT_I8"}})"), false},
        {endpoint(R"("properties": {"deviceFormat": {"longReal": 1e308}})"), true},
        {endpoint(R"("properties": {"deviceFormat": {"longReal": "0x7FF8000000000000"}})"), true},
        {endpoint(R"("properties": {"deviceFormat": {"longReal": "0x7FF800000000000"}})"), false},
        {endpoint(R"("properties": {"deviceFormat": {"real": "0x7FC00000"}})"), true},
        {endpoint(R"("properties": {"deviceFormat": {"real": "NaN"}})"), false},
        {endpoint(R"("properties": {"deviceFormat": {"narrowText": "caf\u00e9"}})"), true},
        {endpoint(R"("properties": {"deviceFormat": {"narrowText": null}})"), true},
        {endpoint(R"("properties": {"deviceFormat": {"narrowText": 1}})"), false},
        {endpoint(R"("properties": {"deviceFormat": {"tag": "0x1003"}})"), true},
        {endpoint(R"("properties": {"deviceFormat": {"tag": "0xe00"}})"), false},
        {endpoint(R"("properties": {"deviceFormat": {"tag": "VT_UI1"}})"), false},
        {endpoint(R"("topology": {"connectors": [{"id": "/a", "type": "headset"}]})"), true},
        {endpoint(R"("topology": {"connectors": [{"id": "", "type": "headset"}]})"), false},
        {endpoint(R"("topology": {"connectors": [{"id": "/a", "type": "Headset"}]})"), false},
        {endpoint(R"("topology": {"connectors": [{"id": "/a", "kind": "usb"}]})"), false},
        {endpoint(R"("topology": {"connectors": [{"id": "/a", "kind": 77}]})"), true},
        {endpoint(R"("topology": {"connectors": [{"id": "/a", "kind": -1}]})"), false},
        {endpoint(R"("topology": {"connectors": [{"id": "/a", "direction": 2}]})"), false},
        {endpoint(R"("topology": {"connectors": [{"id": "/a", "jacks": [{"connection": 99, "portConnection": 9}]}]})"),
         true},
        {endpoint(R"("topology": {"connectors": [{"id": "/a", "jacks": [{"connection": "mini"}]}]})"), false},
        {endpoint(R"("topology": {"subunits": [{"id": "/a", "furtherControls": [{"interface": "IAudioBass"}]}]})"),
         true},
        {endpoint(R"("topology": {"subunits": [{"id": "/a", "furtherControls":
            [{"interface": "{01234567-89ab-cdef-0123-456789abcdef}", "name": "Bass"}]}]})"),
         true},
        {endpoint(R"("topology": {"subunits": [{"id": "/a", "furtherControls": [{"interface": "IBass"}]}]})"), false},
        {endpoint(R"("topology": {"subunits": [{"id": "/a", "furtherControls": [{"name": "Bass"}]}]})"), false},
        {endpoint(R"("mixFormat": "32f/48000/2")"), true},
        {endpoint(R"("mixFormat": {"blob": "550002000000000000000000000000000000"})"), true},
        {endpoint(R"("mixFormat": {"blob": "5"})"), false},
        {endpoint(R"("mixFormat": {"format": "16/48000/2"})"), false},
        {endpoint(R"("topology": {"subunits": [{"id": "/a", "direction": "in"}]})"), false},
        {endpoint(R"("volume": {"minimum": -1, "maximum": 0, "step": 0.5, "channels": []})"), true},
        {endpoint(R"("volume": {"minimum": 0, "maximum": 0, "step": 0, "channels": [3]})"), true},
        {endpoint(R"("volume": {"minimum": -1, "maximum": 0, "step": -0.5, "channels": [0]})"), false},
        {endpoint(R"("volume": {"minimum": -1, "maximum": 0, "step": 1, "channels": [0], "steps": -1})"), false},
        {endpoint(R"("volume": {"minimum": -1, "maximum": 0, "step": 1, "channels": [0], "taper": "measured",
            "taperPoints": [{"level": -0.5, "scalar": 0.75}], "master": -0.5, "steps": 51})"),
         true},
        {endpoint(R"("volume": {"minimum": -1, "maximum": 0, "step": 1, "channels": [0], "taper": "measured",
            "taperPoints": [{"level": -0.5}]})"),
         false},
        {endpoint(R"("volume": {"minimum": -1, "maximum": 0, "step": 0.5, "channels": [0, -1e0]})"), true},
        {R"({"name": "m", "faults": [{"operation": "IPart::GetName", "result": "0x80004005"}]})", true},
        {R"({"name": "m", "faults": [{"operation": "IPart::GetName", "result": "80004005"}]})", false},
        {R"({"name": "m", "faults": [{"operation": "Release", "result": "throw", "arguments": ["a", "b"]}]})", true},
        {R"({"name": "m", "faults": [{"operation": "Release", "result": "throw", "arguments": []}]})", true},
        {R"({"name": "m", "faults": [{"operation": "Release", "result": "throw", "arguments": "a"}]})", false},
        {R"({"name": "m", "faults": [{"operation": "Release", "result": "throw", "arguments": [1]}]})", false},
        {R"({"name": "m", "composition": "none"})", true},
        {R"({"name": "m", "composition": true})", false},
        {endpoint(R"("properties": {"jackSubType": "a"}, "unlistedProperties": {"formFactor": 1})"), true},
        {endpoint(R"("unlistedProperties": {"FormFactor": 1})"), false},
        {R"({"name": "m", "faults": [{"operation": "Release", "result": "throw", "forMilliseconds": 8000}]})", true},
        {R"({"name": "m", "faults": [{"operation": "Release", "result": "throw", "forMilliseconds": -1}]})", false},
        {R"({"name": "m", "faults": [{"operation": "Release", "result": "throw", "after": "start"}]})", true},
        {R"({"name": "m", "faults": [{"operation": "Release", "result": "throw", "after": "unplugged"}]})", true},
        {R"({"name": "m", "faults": [{"operation": "Release", "result": "throw", "after": "dinner"}]})", false},
        {R"({"name": "m", "faults": [{"operation": "Release", "result": "throw", "after": 1}]})", false},
        {R"({"name": "m", "script":
            [{"event": "defaultChanged", "endpoint": null, "flow": "render", "role": "console"}]})",
         true},
        {R"({"name": "m", "script": [{"event": "exploded", "endpoint": "E"}]})", false},
        {R"({"name": "m", "waveOut": ["a", {"endpoint": "b", "sizeResult": 8}]})", true},
        {R"({"name": "m", "waveOut": [null]})", false},
    };

    for (const Case& each : cases)
    {
        EXPECT_EQ(each.isGood, accepts(each.text)) << "schema: " << each.text;
        EXPECT_EQ(each.isGood, readerAccepts(each.text)) << "reader: " << each.text;
    }
}
}
