#include "simulator/machine/file/machinefile.h"

#include "tests/simulator/machine/file/machinesample.h"
#include "tests/support/pace.h"

#include <gtest/gtest.h>

#include <ostream>

namespace
{
/// A file that cannot be used, and the text of the error that says so.
struct Broken
{
    const char* name; ///< of the test
    std::string text;
    std::string error;
};

/// The keys of a machine, as an error lists them.
const std::string machineKeys =
    "$schema, name, description, account, removedEndpoints, "
    "callbackThread, notPresentNames, composition, captureAccess, endpoints, adapters, joins, "
    "deviceInstances, waveOut, waveIn, script, faults, latencyPreset, latency";

std::ostream& operator<<(std::ostream& stream, const Broken& broken)
{
    return stream << broken.text;
}

std::string nameOf(const testing::TestParamInfo<Broken>& info)
{
    return info.param.name;
}

/// The file with @p inside as further members of the machine.
std::string with(const std::string& inside)
{
    return "{\"name\": \"m\",\n" + inside + "}";
}

/// The file whose only endpoint E has @p inside as further members.
std::string endpointWith(const std::string& inside)
{
    return with(R"("endpoints": [{"id": "E", "flow": "render",)" + ("\n" + inside + "}]"));
}

/// The file whose only endpoint E has a topology with the connectors C and D, the subunit S, and @p inside.
std::string graphWith(const std::string& inside)
{
    return endpointWith(R"("topology": {"connectors": [{"id": "C"}, {"id": "D"}], "subunits": [{"id": "S"}]},)" +
                        ("\n" + inside));
}

class MachineFileError : public testing::TestWithParam<Broken>
{
};

TEST_P(MachineFileError, SaysWhereWhatWasExpectedAndWhatStoodThere)
{
    std::string error = "no error";

    try
    {
        sim::readMachine(GetParam().text, "m.json");
    }
    catch (const sim::MachineFileError& failure)
    {
        error = failure.what();
    }

    EXPECT_EQ(GetParam().error, error);
}

const std::string deepLists = std::string(100, '[') + std::string(100, ']');

const Broken notJson[] = {
    {"NothingAtAll", "",
     "m.json:1:1: expected JSON, found syntax error while parsing value - unexpected end of input; "
     "expected '[', '{', or a literal"},
    {"AMissingComma", "{\"name\": \"m\"\n \"joins\": []}",
     "m.json:2:8: expected JSON, found syntax error while parsing object - unexpected string literal; expected "
     "'}'"},
    {"AnEndTooEarly", "{\"endpoints\": [{\"id\":",
     "m.json:1:22: /endpoints/0/id: expected JSON, found syntax error while parsing value - unexpected end of input; "
     "expected '[', '{', or a literal"},
    {"SomethingBehindTheEnd", "{\"name\": \"m\"}\n}",
     "m.json:2:1: expected JSON, found syntax error while parsing value - unexpected '}'; expected end of input"},
    {"ANumberBeyondAllBounds", with("\"latency\": [{\"operation\": \"*\", \"microseconds\": 1e999}]"),
     "m.json:2:52: /latency/0/microseconds: expected JSON, found number overflow parsing '1e999'"},
    {"AKeyTwice", with("\"waveIn\": [],\n\"waveIn\": []"),
     "m.json:3: expected each key once, found duplicate \"waveIn\""},
    {"AZeroCharacter", with("\"description\": \"a\\u0000b\""),
     "m.json:2: /description: expected a string without a zero character, found a string with one"},
    {"ABrokenCharacter", with("\"description\": \"a\xC3\""),
     "m.json:2:19: /description: expected JSON, found syntax error while parsing value - invalid string: ill-formed "
     "UTF-8 byte; last read: '\"a\\xC3\"'"},
    {"HalfASurrogatePair", with(R"("description": "\ud83d")"),
     "m.json:2:23: /description: expected JSON, found syntax error while parsing value - invalid string: surrogate "
     "U+D800..U+DBFF must be followed by U+DC00..U+DFFF; last read: '\"\\ud83d\"'"},
    {"AControlCharacterInAKey", with("\"a\\u001b[31m\\n\": 1"),
     "m.json:2: /a\\u001B[31m\\n: expected one of the keys " + machineKeys + ", found the key \"a\\u001B[31m\\n\""},
    {"DeepNesting", deepLists,
     "m.json:1: /0/0/0/0/0/0/0/0/0/0/0/0/0/0/0/0/0/0/0/0/0/0/0/0/0/0/0/0/0/0/0/0: expected at most 32 levels, found "
     "more"},
};

const Broken wrongKinds[] = {
    {"AList", "[]", "m.json:1: expected an object, found a list"},
    {"NoName", "{\n}", "m.json:1: expected the key \"name\", found an object without it"},
    {"ANumberAsName", R"({"name": 5})", "m.json:1: /name: expected a string, found 5"},
    {"AnUnknownKey", with(R"("colour": "red")"),
     "m.json:2: /colour: expected one of the keys " + machineKeys + ", found the key \"colour\""},
    {"AnUnknownAccount", with(R"("account": "guest")"),
     "m.json:2: /account: expected \"administrator\" or \"ordinary\", found \"guest\""},
    {"AnObjectAsList", with(R"("endpoints": {})"), "m.json:2: /endpoints: expected a list, found an object"},
    {"AnUnknownFlow", with(R"("endpoints": [{"id": "E", "flow": "sideways"}])"),
     "m.json:2: /endpoints/0/flow: expected \"render\" or \"capture\", found \"sideways\""},
    {"AnUnknownFateOfRemovedEndpoints", with(R"("removedEndpoints": "gone")"),
     "m.json:2: /removedEndpoints: expected \"open\" or \"unknown\", found \"gone\""},
    {"AnUnknownCallbackThread", with(R"("callbackThread": "mine")"),
     "m.json:2: /callbackThread: expected \"com\" or \"bare\", found \"mine\""},
    {"AnUnknownState", endpointWith(R"("state": "asleep")"),
     "m.json:3: /endpoints/0/state: expected \"active\", \"disabled\", \"notPresent\" or \"unplugged\", found "
     "\"asleep\""},
    {"ATooLargeState", endpointWith(R"("state": 4294967296)"),
     "m.json:3: /endpoints/0/state: expected a whole number from 0 to 4294967295, found 4294967296"},
    {"ATextAsTruth", endpointWith(R"("openable": "no")"),
     "m.json:3: /endpoints/0/openable: expected true or false, found \"no\""},
    {"AnUnknownInterface", endpointWith(R"("interfaces": ["IAudioClient", "IFoo"])"),
     "m.json:3: /endpoints/0/interfaces/1: expected \"IAudioClient\", \"IBaseFilter\" or \"IAudioMeterInformation\", "
     "found \"IFoo\""},
    {"AnUnknownType", endpointWith(R"("topology": {"connectors": [{"id": "C", "type": "{123}"}]})"),
     "m.json:3: /endpoints/0/topology/connectors/0/type: expected the name of a jack or node type, or a GUID like "
     "\"{01234567-89AB-CDEF-0123-456789ABCDEF}\", found \"{123}\""},
    {"ANegativeNumber", with(R"("latency": [{"operation": "*", "microseconds": -1}])"),
     "m.json:2: /latency/0/microseconds: expected a whole number from 0 to 4294967295, found -1"},
    {"AFraction", with(R"("latency": [{"operation": "*", "microseconds": 1.5}])"),
     "m.json:2: /latency/0/microseconds: expected a whole number from 0 to 4294967295, found 1.5"},
    {"ATooLargeNumber", with(R"("latency": [{"operation": "*", "microseconds": 4294967296}])"),
     "m.json:2: /latency/0/microseconds: expected a whole number from 0 to 4294967295, found 4294967296"},
    {"AnEventWithoutKind", with(R"("script": [{"endpoint": "E"}])"),
     "m.json:2: /script/0: expected an object with the key \"event\", found an object"},
    {"AKeyOfAnotherEvent", endpointWith(R"("state": 1}], "script": [{"event": "plugged", "endpoint": "E", "level": 1)"),
     "m.json:3: /script/0/level: expected one of the keys afterMilliseconds, event, endpoint, found the key \"level\""},
    {"AnUnknownPresetOfLatencies", with(R"("latencyPreset": "linux")"),
     "m.json:2: /latencyPreset: expected \"none\" or \"windows\", found \"linux\""},
    {"AnEventOfTheMachineWithAnEndpoint", endpointWith(R"("state": 1}], "script": [{"event": "wake", "endpoint": "E")"),
     "m.json:3: /script/0/endpoint: expected one of the keys afterMilliseconds, event, found the key \"endpoint\""},
    {"ABurstOfNoEndpoint", with(R"("script": [{"event": "plugUsb", "endpoint": "E"}])"),
     "m.json:2: /script/0/endpoint: expected the id of an endpoint, found \"E\""},
    {"AnUnknownEventOfAFault", with(R"("faults": [{"operation": "Release", "result": "null", "after": "dinner"}])"),
     "m.json:2: /faults/0/after: expected \"start\" or the name of an event, found \"dinner\""},
    {"AFaultThatHoldsForAFraction",
     with(R"("faults": [{"operation": "Release", "result": "null", "forMilliseconds": 0.5}])"),
     "m.json:2: /faults/0/forMilliseconds: expected a whole number from 0 to 4294967295, found 0.5"},
    {"AnUnknownResult", with(R"("faults": [{"operation": "Release", "result": "0x8000"}])"),
     "m.json:2: /faults/0/result: expected a result like \"0x80004005\", \"null\" or \"throw\", found \"0x8000\""},
};

const Broken wrongProperties[] = {
    {"AnUnknownProperty", endpointWith(R"("properties": {"colour": "red"})"),
     "m.json:3: /endpoints/0/properties/colour: expected a property's name, or a key like "
     "{01234567-89AB-CDEF-0123-456789ABCDEF}/2, found \"colour\" (property names: deviceDescription, deviceFormat, "
     "instancePath, driverNodeStrongName, friendlyName, speakerConfig, endpointGuid, instanceId, interfacePath, "
     "enumeratorName, containerId, baseContainerId, formFactor, jackSubType, association)"},
    {"AMisspeltProperty", endpointWith(R"("properties": {"FriendlyNam": "red"})"),
     "m.json:3: /endpoints/0/properties/FriendlyNam: expected a property's name, or a key like "
     "{01234567-89AB-CDEF-0123-456789ABCDEF}/2, found \"FriendlyNam\" (did you mean \"friendlyName\"?)"},
    {"AKeyWithoutNumber", endpointWith(R"("properties": {"{01234567-89AB-CDEF-0123-456789ABCDEF}/": "red"})"),
     "m.json:3: /endpoints/0/properties/{01234567-89AB-CDEF-0123-456789ABCDEF}~1: expected a property's name, or a key "
     "like "
     "{01234567-89AB-CDEF-0123-456789ABCDEF}/2, found \"{01234567-89AB-CDEF-0123-456789ABCDEF}/\""},
    {"APropertyInTwoSpellings",
     endpointWith(R"("properties": {"friendlyName": "a", "{B3F8FA53-0004-438E-9003-51A46E139BFC}/6": "b"})"),
     "m.json:3: /endpoints/0/properties: expected each property once, found duplicate \"friendlyName\""},
    {"AListAsValue", endpointWith(R"("properties": {"friendlyName": []})"),
     "m.json:3: /endpoints/0/properties/friendlyName: expected a string, a number, null or an object, found a list"},
    {"ANumberWithoutTag", endpointWith(R"("properties": {"friendlyName": {"number": 3}})"),
     "m.json:3: /endpoints/0/properties/friendlyName: expected the key \"tag\", found an object without it"},
    {"AnUnknownTag", endpointWith(R"("properties": {"friendlyName": {"number": 3, "tag": "VT_BLOB"}})"),
     "m.json:3: /endpoints/0/properties/friendlyName/tag: expected \"VT_I2\", \"VT_I4\", \"VT_BOOL\", \"VT_I1\", "
     "\"VT_UI1\", \"VT_UI2\", \"VT_UI4\", \"VT_UI8\", \"VT_INT\", \"VT_UINT\", \"VT_I8\" or \"VT_FILETIME\", "
     "found \"VT_BLOB\""},
    {"AGuidThatIsNone", endpointWith(R"("properties": {"containerId": {"guid": "{0}"}})"),
     "m.json:3: /endpoints/0/properties/containerId/guid: expected a GUID like "
     "\"{01234567-89AB-CDEF-0123-456789ABCDEF}\", found \"{0}\""},
    {"ARealThatIsNone", endpointWith(R"("properties": {"formFactor": {"real": "1.5"}})"),
     "m.json:3: /endpoints/0/properties/formFactor/real: expected a number in the range of single precision, found "
     "\"1.5\""},
    {"ALargeNumberUnderASmallTag",
     endpointWith(R"("properties": {"formFactor": {"number": 4294967296, "tag": "VT_I4"}})"),
     "m.json:3: /endpoints/0/properties/formFactor: expected a number of 32 bits, or the tag VT_UI8, found 4294967296"},
    {"ANegativeNumberUnderATagWithoutSign",
     endpointWith(R"("properties": {"formFactor": {"number": -1, "tag": "VT_UI8"}})"),
     "m.json:3: /endpoints/0/properties/formFactor/number: expected a whole number from 0 to 18446744073709551615, "
     "found -1"},
    {"ATooLowNumberUnderASmallTag", endpointWith(R"("properties": {"formFactor": {"number": -32769, "tag": "VT_I2"}})"),
     "m.json:3: /endpoints/0/properties/formFactor/number: expected a whole number of at least -32768, found -32769"},
    {"ANegativeFraction", endpointWith(R"("properties": {"formFactor": {"number": -1.5, "tag": "VT_I4"}})"),
     "m.json:3: /endpoints/0/properties/formFactor/number: expected a whole number of at least -2147483648, found "
     "-1.5"},
    {"ANumberBeyond63BitsUnderATagWithSign",
     endpointWith(R"("properties": {"formFactor": {"number": 9223372036854775808, "tag": "VT_I8"}})"),
     "m.json:3: /endpoints/0/properties/formFactor/number: expected a whole number from -9223372036854775808 to "
     "9223372036854775807, found 9223372036854775808"},
    {"ALongRealThatIsTooLarge", endpointWith(R"("properties": {"formFactor": {"longReal": "1e309"}})"),
     "m.json:3: /endpoints/0/properties/formFactor/longReal: expected a number in the range of double precision, found "
     "\"1e309\""},
    {"ALongRealWithTheBitsOfARealNumber", endpointWith(R"("properties": {"formFactor": {"longReal": "0x7FC00000"}})"),
     "m.json:3: /endpoints/0/properties/formFactor/longReal: expected 16 hexadecimal digits behind \"0x\", found "
     "\"0x7FC00000\""},
    {"ANarrowTextWithAWideCharacter", endpointWith(R"("properties": {"formFactor": {"narrowText": "a\u0100"}})"),
     "m.json:3: /endpoints/0/properties/formFactor/narrowText: expected characters from U+0001 to U+00FF, one for each "
     "byte, found \"a\xC4\x80\""},
    {"ATagAloneThatHasAForm", endpointWith(R"("properties": {"formFactor": {"tag": "0x001F"}})"),
     "m.json:3: /endpoints/0/properties/formFactor/tag: expected a tag like \"0x1003\" that no other form of value "
     "has, "
     "found \"0x001F\""},
    {"ATagOfFiveDigits", endpointWith(R"("properties": {"formFactor": {"tag": "0x01003"}})"),
     "m.json:3: /endpoints/0/properties/formFactor/tag: expected a tag like \"0x1003\" that no other form of value "
     "has, "
     "found \"0x01003\""},
    {"ATagWithBothForms", endpointWith(R"("properties": {"formFactor": {"number": 1, "tag": "0x1003"}})"),
     "m.json:3: /endpoints/0/properties/formFactor/tag: expected \"VT_I2\", \"VT_I4\", \"VT_BOOL\", \"VT_I1\", "
     "\"VT_UI1\", \"VT_UI2\", \"VT_UI4\", \"VT_UI8\", \"VT_INT\", \"VT_UINT\", \"VT_I8\" or \"VT_FILETIME\", "
     "found \"0x1003\""},
    {"ANumberBeyond64Bits",
     endpointWith(R"("properties": {"formFactor": {"number": 18446744073709551616, "tag": "VT_UI8"}})"),
     "m.json:3: /endpoints/0/properties/formFactor/number: expected a whole number from 0 to 18446744073709551615, "
     "found 18446744073709551616"},
    {"HalfAByte", endpointWith(R"("properties": {"deviceFormat": {"blob": "FFF"}})"),
     "m.json:3: /endpoints/0/properties/deviceFormat/blob: expected pairs of hexadecimal digits, found \"FFF\""},
    {"NoByte", endpointWith(R"("properties": {"deviceFormat": {"blob": "0G"}})"),
     "m.json:3: /endpoints/0/properties/deviceFormat/blob: expected pairs of hexadecimal digits, found \"0G\""},
    {"AnUnusualFormat", endpointWith(R"("properties": {"deviceFormat": {"format": "20/48000/2"}})"),
     "m.json:3: /endpoints/0/properties/deviceFormat/format: expected a format \"bits/rate/channels\" such as "
     "\"24/48000/2\", found \"20/48000/2\""},
};

const Broken wrongIds[] = {
    {"AnEmptyId", with(R"("adapters": [{"id": ""}])"), "m.json:2: /adapters/0/id: expected an id, found \"\""},
    {"ADeviceIdTwice", endpointWith(R"("state": 1}], "adapters": [{"id": "E")"),
     "m.json:3: /adapters/0/id: expected a unique id, found duplicate \"E\""},
    {"APartIdTwice", graphWith(R"("state": 1}], "adapters": [{"id": "A", "topology": {"subunits": [{"id": "C"}]})"),
     "m.json:4: /adapters/0/topology/subunits/0/id: expected a unique id, found duplicate \"C\""},
    {"ALocalIdTwice",
     endpointWith(R"("topology": {"connectors": [{"id": "C", "localId": 131072}], "subunits": [{"id": "S"}]})"),
     "m.json:3: /endpoints/0/topology/subunits/0/localId: expected a local id that is unique in the topology, "
     "found duplicate 131072"},
    {"ANeighbourOfAnotherDevice",
     graphWith(R"("state": 1}], "adapters": [{"id": "A", "topology": {"subunits": [{"id": "T", "incoming": ["S"]}]})"),
     "m.json:4: /adapters/0/topology/subunits/0/incoming/0: expected the id of a part of this topology, found \"S\""},
    {"APathToNowhere",
     endpointWith(R"("topology": {"connectors": [{"id": "C"}], "signalPaths": [{"from": "C", "to": "X"}]})"),
     "m.json:3: /endpoints/0/topology/signalPaths/0/to: expected the id of a part of this topology, found \"X\""},
    {"APathTwice", endpointWith(R"("topology": {"connectors": [{"id": "C"}, {"id": "D"}],
        "signalPaths": [{"from": "C", "to": "D"}, {"from": "D", "to": "C"},
        {"from": "C", "to": "D", "mixed": true}]})"),
     "m.json:5: /endpoints/0/topology/signalPaths/2: expected each pair of parts once, found duplicate \"C\" to \"D\""},
    {"ASelectionThatDoesNotFeed",
     endpointWith(
         R"("topology": {"subunits": [{"id": "S"}, {"id": "T", "incoming": ["S"], "selector": {"selection": 3}}]})"),
     "m.json:3: /endpoints/0/topology/subunits/1/selector/selection: expected the local id of an incoming part, or 0, "
     "found 3"},
    {"AJoinFromNowhere", graphWith(R"("state": 1}], "joins": [{"from": "X", "to": "C")"),
     "m.json:4: /joins/0/from: expected the id of a connector, found \"X\""},
    {"AJoinToASubunit", graphWith(R"("state": 1}], "joins": [{"from": "C", "to": "S")"),
     "m.json:4: /joins/0/to: expected the id of a connector, found \"S\""},
    {"AJoinToItself", graphWith(R"("state": 1}], "joins": [{"from": "C", "to": "C")"),
     "m.json:4: /joins/0/to: expected another connector than \"from\", found \"C\""},
    {"AJoinToNothing", graphWith(R"("state": 1}], "joins": [{"from": "C")"),
     "m.json:4: /joins/0: expected \"to\" or \"toDevice\", found an object without them"},
    {"ADefaultTwice", with(R"("endpoints": [{"id": "E", "flow": "render", "defaultFor": ["console"]},
        {"id": "F", "flow": "capture", "defaultFor": ["console"]},
        {"id": "G", "flow": "render", "defaultFor": ["multimedia", "console"]}])"),
     "m.json:4: /endpoints/2/defaultFor/1: expected a role that no other endpoint of this flow has, found duplicate "
     "\"console\""},
    {"AnInstanceTwice", with(R"("deviceInstances": [{"id": "I", "parent": null}, {"id": "I", "parent": "P"}])"),
     "m.json:2: /deviceInstances/1/id: expected a unique id, found duplicate \"I\""},
};

const Broken wrongPlans[] = {
    {"AnEventOfNoEndpoint", with(R"("script": [{"event": "unplugged", "endpoint": "E"}])"),
     "m.json:2: /script/0/endpoint: expected the id of an endpoint, found \"E\""},
    {"ADefaultOfTheOtherFlow",
     endpointWith(
         R"("state": 1}], "script": [
             {"event": "defaultChanged", "endpoint": "E", "flow": "capture", "role": "console")"),
     "m.json:4: /script/0/flow: expected the flow of the endpoint, found \"capture\""},
    {"AVolumeEventWithoutVolume",
     endpointWith(R"("state": 1}], "script": [{"event": "volumeChanged", "endpoint": "E", "muted": true)"),
     "m.json:3: /script/0/endpoint: expected an endpoint with a volume, found \"E\""},
    {"AFaultOfAnUnknownOperation", with(R"("faults": [{"operation": "IMMDevice::Explode", "result": "null"}])"),
     "m.json:2: /faults/0/operation: expected an operation of the simulated platform, found \"IMMDevice::Explode\" "
     "(operations of IMMDevice: Activate, OpenPropertyStore, GetId, GetState, QueryInterface, AddRef, Release)"},
    {"AFaultOfAMisspeltOperation", with(R"("faults": [{"operation": "Relase", "result": "throw"}])"),
     "m.json:2: /faults/0/operation: expected an operation of the simulated platform, found \"Relase\" (did you mean "
     "\"Release\"?)"},
    {"ALatencyOfAMisspeltOperation", with(R"("latency": [{"operation": "IPart::GetNam", "microseconds": 1}])"),
     "m.json:2: /latency/0/operation: expected \"*\" or an operation of the simulated platform, found "
     "\"IPart::GetNam\" "
     "(did you mean \"IPart::GetName\"?)"},
    {"AFaultOfAnUnknownObject", with(R"("faults": [{"operation": "IPart::GetName", "object": "X", "result": "null"}])"),
     "m.json:2: /faults/0/object: expected \"*\" or the id of a device or part, found \"X\""},
    {"AFaultOnTheListOfAnUnknownPart",
     with(R"("faults": [{"operation": "Release", "object": "X incoming", "result": "null"}])"),
     "m.json:2: /faults/0/object: expected \"*\" or the id of a device or part, found \"X incoming\""},
    {"AFaultWithOneAndSeveralArguments",
     with(R"("faults": [{"operation": "Release", "argument": "a", "arguments": ["b"], "result": "null"}])"),
     "m.json:2: /faults/0/arguments: expected a fault without \"argument\", found \"a\""},
    {"AnUnlistedPropertyThatIsListed",
     endpointWith(R"("properties": {"formFactor": 1}, "unlistedProperties": {"formFactor": 2})"),
     "m.json:3: /endpoints/0/unlistedProperties/formFactor: expected a property that is not in \"properties\", found "
     "duplicate \"formFactor\""},
    {"AnUnknownComposition", with(R"("composition": "some")"),
     "m.json:2: /composition: expected \"usual\" or \"none\", found \"some\""},
    {"ALatencyTwice",
     with(R"("latency": [{"operation": "*", "microseconds": 1}, {"operation": "*", "microseconds": 2}])"),
     "m.json:2: /latency/1/operation: expected each operation once, found duplicate \"*\""},
    {"TwoProblems", with(R"("adapters": [{"id": ""}, {"id": ""}])"),
     "m.json:2: /adapters/0/id: expected an id, found \"\" (and 1 more)"},
};

/// A file whose endpoint has a volume with these levels.
std::string volume(const std::string& levels)
{
    return endpointWith("\"volume\": {" + levels + "}");
}

/// So many levels of 0.
std::string zeros(std::size_t count)
{
    std::string result = "0";
    while (--count > 0)
        result += ", 0";
    return result;
}

/// A file with a part that has a volume control with these channels.
std::string control(const std::string& channels)
{
    return endpointWith(R"("topology": {"subunits": [{"id": "S", "volume": {"channels": [)" + channels + "]}}]}");
}

const Broken wrongLevels[] = {
    {"ARangeTheWrongWayRound", volume(R"("minimum": -3, "maximum": -4, "step": 1, "channels": [-3])"),
     "m.json:3: /endpoints/0/volume: expected a minimum not above the maximum, found -3 to -4"},
    {"AStepBelowZero", volume(R"("minimum": -3, "maximum": 0, "step": -0.5, "channels": [-3])"),
     "m.json:3: /endpoints/0/volume/step: expected a step of 0 or more, found -0.5"},
    {"ALevelThatIsNoNumber", volume(R"("minimum": -3, "maximum": 0, "step": 0.5, "channels": [-3, null])"),
     "m.json:3: /endpoints/0/volume/channels/1: expected a number of decibels, found null"},
    {"TooManyChannels", volume(R"("minimum": 0, "maximum": 0, "step": 1, "channels": [)" + zeros(65) + "]"),
     "m.json:3: /endpoints/0/volume/channels: expected at most 64 channels, found 65"},
    {"ATextAsLevel", volume(R"("minimum": "quiet", "maximum": 0, "step": 1, "channels": [0])"),
     "m.json:3: /endpoints/0/volume/minimum: expected a number of decibels, found \"quiet\""},
    {"ALevelThatNoFloatHolds", volume(R"("minimum": -1e300, "maximum": 0, "step": 1, "channels": [0])"),
     "m.json:3: /endpoints/0/volume/minimum: expected a number of decibels, found -1e300"},
    {"AnUnknownRefusal", volume(R"("minimum": -3, "maximum": 0, "step": 1, "channels": [0], "refused": ["SetMood"])"),
     "m.json:3: /endpoints/0/volume/refused/0: expected an operation of IAudioEndpointVolume, found \"SetMood\""},
    {"APartLevelThatIsNoNumber", control(R"({"minimum": -3, "maximum": 0, "step": 1, "level": "loud"})"),
     "m.json:3: /endpoints/0/topology/subunits/0/volume/channels/0/level: expected a number of decibels, found "
     "\"loud\""},
    {"APartWithItsRangeTheWrongWayRound", control(R"({"minimum": 1.5, "maximum": 1, "step": 0.5, "level": 1.5})"),
     "m.json:3: /endpoints/0/topology/subunits/0/volume/channels/0: expected a minimum not above the maximum, found "
     "1.5 "
     "to 1"},
    {"AnEventLevelOutOfRange", endpointWith(R"("volume": {"minimum": -3, "maximum": 0, "step": 1, "channels": [0]}}],
        "script": [{"event": "volumeChanged", "endpoint": "E", "level": 1)"),
     "m.json:4: /script/0/level: expected a level from -3 to 0, found 1"},
    {"AVolumeEventWithoutChange", endpointWith(R"("volume": {"minimum": -3, "maximum": 0, "step": 1, "channels": [0]}}],
        "script": [{"event": "volumeChanged", "endpoint": "E")"),
     "m.json:4: /script/0: expected \"level\" or \"muted\", found an object without them"},
};

INSTANTIATE_TEST_SUITE_P(NotJson, MachineFileError, testing::ValuesIn(notJson), nameOf);
INSTANTIATE_TEST_SUITE_P(WrongKinds, MachineFileError, testing::ValuesIn(wrongKinds), nameOf);
INSTANTIATE_TEST_SUITE_P(WrongProperties, MachineFileError, testing::ValuesIn(wrongProperties), nameOf);
INSTANTIATE_TEST_SUITE_P(WrongIds, MachineFileError, testing::ValuesIn(wrongIds), nameOf);
INSTANTIATE_TEST_SUITE_P(WrongPlans, MachineFileError, testing::ValuesIn(wrongPlans), nameOf);
INSTANTIATE_TEST_SUITE_P(WrongLevels, MachineFileError, testing::ValuesIn(wrongLevels), nameOf);

TEST(MachineFileErrorText, HasALimitWhateverTheFileContains)
{
    const std::string longWord(1 << 20, 'x');
    const std::string texts[] = {with("\"" + longWord + "\": 1"),
                                 with("\"name\": \"" + longWord + "\""),
                                 with("\"description\": \"" + longWord + "\xC3\""),
                                 with("\"latency\": [{\"operation\": \"" + longWord + "\", \"microseconds\": 1}]"),
                                 with("\"latency\": [{\"operation\": \"*\", \"microseconds\": 1" + longWord + "}]"),
                                 endpointWith("\"properties\": {\"" + longWord + "\": 1}")};

    for (const std::string& text : texts)
    {
        try
        {
            sim::readMachine(text, longWord + "\n.json");
            FAIL() << "no error";
        }
        catch (const sim::MachineFileError& error)
        {
            EXPECT_LT(std::string(error.what()).size(), 2000u);
            EXPECT_EQ(longWord + "\n.json", error.file());
        }
    }
}

TEST(MachineFileErrorText, ShowsTheNameOfTheFileOnOneLine)
{
    try
    {
        sim::readMachine("[]", "a\n\x1B\xFF.json");
        FAIL() << "no error";
    }
    catch (const sim::MachineFileError& error)
    {
        EXPECT_STREQ("a\\n\\u001B\\xFF.json:1: expected an object, found a list", error.what());
    }
}

TEST(MachineFileErrorParts, CanBeAskedOneByOne)
{
    try
    {
        sim::readMachine("{\"name\":\n 5}", "m.json");
        FAIL() << "no error";
    }
    catch (const sim::MachineFileError& error)
    {
        EXPECT_EQ("m.json", error.file());
        EXPECT_EQ(2u, error.line());
        EXPECT_EQ(0u, error.column());
        EXPECT_EQ("/name", error.place());
        EXPECT_EQ("a string", error.expected());
        EXPECT_EQ("5", error.found());
    }
}

TEST(MachineFileErrorRobustness, IsTheOnlyThingThatATruncatedFileCauses)
{
    const std::string whole = sim::writeMachine(sample::machine());

    for (std::size_t length = 0; length + 2 < whole.size(); length += 29)
    {
        EXPECT_THROW(sim::readMachine(whole.substr(0, length), "cut.json"), sim::MachineFileError) << length;
    }
}

TEST(MachineFileErrorRobustness, IsTheOnlyThingThatADamagedByteCauses)
{
    const std::string whole = sim::writeMachine(sample::machine());
    std::size_t refused = 0;
    std::size_t read = 0;

    for (const char damage : {'"', '{', ']', '9', '\xC3', '\n'})
    {
        for (std::size_t position = 0; position < whole.size(); position += support::cases(61, 307))
        {
            std::string damaged = whole;
            damaged[position] = damage;
            try
            {
                sim::readMachine(damaged, "damaged.json");
                ++read;
            }
            catch (const sim::MachineFileError&)
            {
                ++refused;
            }
        }
    }

    EXPECT_GT(refused, read);
}
}
