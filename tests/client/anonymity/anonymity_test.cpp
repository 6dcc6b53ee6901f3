#include "client/anonymity/anonymity.h"

#include "client/anonymity/letters.h"
#include "simulator/machine/casefolding.h"
#include "simulator/machine/file/check.h"
#include "simulator/machine/file/machinefile.h"
#include "simulator/machine/identity.h"
#include "simulator/machine/propertykeys.h"
#include "simulator/machine/valuetext.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <regex>
#include <sstream>
#include <string>
#include <vector>

namespace
{
using sonavit::anonymity::makeAnonymous;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;

constexpr const char* wholeInstance = "USB\\VID_1235&PID_8210&MI_00\\7&1A2B3C4&0&0000";
constexpr const char* wholeParent = "USB\\VID_1235&PID_8210\\Y8H3KQ2P";
constexpr const char* stickInstance = "USB\\VID_2641&PID_247B\\A17";
constexpr const char* wirelessInstance = "BTHENUM\\{0000110B-0000-1000-8000-00805F9B34FB}_VID&000105D6_PID&000A\\"
                                         "7&3B5C1D2&0&28E14CA0B1F7_C00000000";
constexpr const char* wirelessParent = "BTHENUM\\DEV_28E14CA0B1F7\\7&3B5C1D2&0&BLUETOOTHDEVICE_28E14CA0B1F7";
constexpr const char* containerText = "{8F3A61C2-5D77-4B0E-9A41-C6D2E7F80B19}";
constexpr const char* wholeAdapter =
    "{2}.\\\\?\\usb#vid_1235&pid_8210#y8h3kq2p#{6994ad04-93ef-11d0-a3cc-00a0c9223196}\\topo";
constexpr PROPERTYKEY furtherKey = {{0x11112222, 0x3333, 0x4444, {0x55, 0x66, 0x77, 0x88, 0x99, 0xAA, 0xBB, 0xCC}}, 7};
constexpr PROPERTYKEY nextKey = {{0x11112222, 0x3333, 0x4444, {0x55, 0x66, 0x77, 0x88, 0x99, 0xAA, 0xBB, 0xCC}}, 8};

/// What identifies the owner of ownedMachine().
const std::vector<std::string> secretsOfOwner = {"Y8H3KQ2P", "28E14CA0B1F7", "8F3A61C2-5D77-4B0E-9A41-C6D2E7F80B19",
                                                 "Anna",     "Jürgen",       "DESKTOP-4F2K9"};
const std::vector<std::string> namesOfOwner = {"Jürgen", "DESKTOP-4F2K9", ""};

std::vector<std::uint8_t> asciiBytes(const std::string& text)
{
    return {text.begin(), text.end()};
}

std::vector<std::uint8_t> wideBytes(const std::string& text)
{
    const std::u32string characters = sonavit::anonymity::charactersOf(text);
    std::size_t units = 0;
    for (const char32_t character : characters)
        units += character < 0x10000 ? 1 : 2;
    std::vector<std::uint8_t> bytes(2 * units);
    sonavit::anonymity::storeWide(characters, bytes, 0);
    return bytes;
}

std::vector<std::uint8_t> memoryBytes(const GUID& guid)
{
    const auto* const first = reinterpret_cast<const std::uint8_t*>(&guid);
    return {first, first + sizeof guid};
}

std::vector<std::uint8_t> joined(const std::vector<std::vector<std::uint8_t>>& parts)
{
    std::vector<std::uint8_t> all;
    for (const std::vector<std::uint8_t>& part : parts)
        all.insert(all.end(), part.begin(), part.end());
    return all;
}

std::string hexOf(const std::vector<std::uint8_t>& bytes)
{
    std::ostringstream text;
    for (const std::uint8_t byte : bytes)
        text << "0123456789abcdef"[byte >> 4] << "0123456789abcdef"[byte & 15];
    return text.str();
}

std::string foldedText(const std::string& text)
{
    return sonavit::anonymity::ofCharacters(sonavit::anonymity::folded(sonavit::anonymity::charactersOf(text)));
}

sim::Endpoint ownedEndpoint(int number, const std::string& instance, const std::string& name)
{
    sim::Endpoint endpoint;
    endpoint.id = sim::endpointId(eRender, sim::derivedGuid("owned/" + std::to_string(number)));
    endpoint.properties = {
        {sim::keys::instancePath, sim::PropertyValue::ofText("{1}." + instance)},
        {sim::keys::deviceDescription, sim::PropertyValue::ofText("Speakers")},
        {sim::keys::friendlyName, sim::PropertyValue::ofText(name)},
        {sim::keys::containerId, sim::PropertyValue::ofGuid(*sim::guidFromText(containerText))},
    };
    sim::Connector plug;
    plug.id = endpoint.id + "/plug";
    endpoint.topology = sim::Topology{endpoint.id, {plug}, {}, {}};
    return endpoint;
}

/// Each of its secrets in each place where it can be.
sim::Machine ownedMachine()
{
    sim::Machine machine;
    machine.name = "computer of Jürgen";
    machine.description = "Captured on desktop-4f2k9 by JÜRGEN";
    machine.endpoints = {ownedEndpoint(1, wholeInstance, "Anna's Interface"),
                         ownedEndpoint(2, wholeInstance, "Anna’s Interface"), ownedEndpoint(3, stickInstance, "Stick"),
                         ownedEndpoint(4, wirelessInstance, "ANNA")};
    sim::Adapter adapter;
    adapter.id = wholeAdapter;
    adapter.properties = {{sim::keys::instanceId, sim::PropertyValue::ofText(wholeParent)}};
    sim::Connector jack;
    jack.id = adapter.id + "/00010000";
    jack.name = "Jürgens Buchse Y8H3KQ2P";
    jack.direction = In;
    jack.furtherControls = {{GUID{1, 2, 3, {}}, sim::OptionalString("Gain of Anna")}};
    adapter.topology = sim::Topology{adapter.id, {jack}, {}, {}};
    machine.adapters = {adapter};
    machine.joins = {{machine.endpoints[0].topology->connectors[0].id, jack.id, wholeAdapter, true}};
    machine.deviceInstances = {{wholeInstance, sim::OptionalString(wholeParent)},
                               {wholeParent, sim::OptionalString("HTREE\\ROOT\\0")},
                               {stickInstance, std::nullopt},
                               {wirelessInstance, sim::OptionalString(wirelessParent)}};
    machine.waveOut = {{wholeAdapter, 0, 0}, {machine.endpoints[0].id, 0, 0}};
    machine.waveIn = {{sim::upperCase(wholeAdapter), 0, 0}};
    sim::Properties& further = machine.endpoints[1].unlistedProperties;
    further = {{sim::keys::interfacePath, sim::PropertyValue::ofText(wholeAdapter)},
               {furtherKey, sim::PropertyValue::ofNumber(0x28E14CA0B1F7, VT_UI8)},
               {nextKey, sim::PropertyValue::ofText("28:e1:4c:a0:b1:f7 in 8f3a61c25d774b0e9a41c6d2e7f80b19")}};
    const std::vector<std::uint8_t> address = {0x28, 0xE1, 0x4C, 0xA0, 0xB1, 0xF7};
    sim::setProperty(machine.endpoints[3].properties, furtherKey,
                     sim::PropertyValue::ofBytes(joined({{1},
                                                         wideBytes("y8h3kq2p"),
                                                         asciiBytes("Y8H3kq2P anna"),
                                                         wideBytes("JÜrgen"),
                                                         asciiBytes("jürgen"),
                                                         asciiBytes("J\xDCRGEN J\xFCrgen "),
                                                         memoryBytes(*sim::guidFromText(containerText)),
                                                         address,
                                                         {address.rbegin(), address.rend()},
                                                         wideBytes(containerText)})));
    sim::FaultRule fault;
    fault.operation = "IPart::GetName";
    fault.object = jack.id;
    machine.faults = {fault};
    fault.operation = "IMMDeviceEnumerator::GetDevice";
    fault.object = "*";
    fault.arguments = {wholeAdapter};
    machine.faults.push_back(fault);
    fault.operation = "IDeviceTopology::GetSignalPath";
    fault.object = jack.id + " to " + machine.endpoints[0].topology->connectors[0].id;
    fault.arguments = {};
    machine.faults.push_back(fault);
    return machine;
}

sim::Machine anonymous(sim::Machine machine, const std::vector<std::string>& names = {})
{
    makeAnonymous(machine, names);
    return machine;
}

std::vector<std::string> faultsOf(const sim::Machine& machine)
{
    std::vector<std::string> sentences;
    for (const sim::MachineProblem& problem : sim::checkMachine(machine))
        sentences.push_back(problem.place + ": " + problem.expected + ", " + problem.found);
    return sentences;
}

/// The size of the file, whatever the decimal digits of the number are.
std::size_t sizeOf(sim::Machine machine)
{
    machine.endpoints[1].unlistedProperties[1].value.number = 0;
    return sim::writeMachine(machine).size();
}

std::string textOfProperty(const sim::Device& device, const PROPERTYKEY& key)
{
    return sim::findProperty(device.properties, key)->text.value_or("");
}

std::string lastElement(const std::string& id)
{
    return id.substr(id.rfind('\\') + 1);
}
}

/// Whether the text has the form that a regular expression describes.
bool hasForm(const std::string& text, const std::string& form)
{
    return std::regex_match(text, std::regex(form));
}

TEST(MakeAnonymous, LeavesNoSecretInTheFileInAnyCaseOrEncoding)
{
    const std::string before = foldedText(sim::writeMachine(ownedMachine()));

    const std::string after = foldedText(sim::writeMachine(anonymous(ownedMachine(), namesOfOwner)));

    for (const std::string& secret : secretsOfOwner)
    {
        const std::string text = foldedText(secret);
        EXPECT_THAT(before, HasSubstr(text));
        EXPECT_THAT(after, Not(HasSubstr(text)));
        for (const std::string& written : {secret, sim::upperCase(secret), sim::lowerCase(secret), text})
        {
            EXPECT_THAT(after, Not(HasSubstr(hexOf(asciiBytes(written)))));
            EXPECT_THAT(after, Not(HasSubstr(hexOf(wideBytes(written)))));
        }
    }
    for (const char* const more : {"4adc5247454e", "4afc7267656e", "28:e1:4c", "28e14ca0b1f7", "f7b1a04ce128",
                                   "c2613a8f775d0e4b9a41c6d2e7f80b19", "8f3a61c25d774b0e", "\\\\a17"})
    {
        EXPECT_THAT(before, HasSubstr(more));
        EXPECT_THAT(after, Not(HasSubstr(more)));
    }
    EXPECT_THAT(before, HasSubstr(std::to_string(0x28E14CA0B1F7)));
    EXPECT_THAT(after, Not(HasSubstr(std::to_string(0x28E14CA0B1F7))));
}

TEST(MakeAnonymous, LeavesAValidMachineOfTheSameSize)
{
    const sim::Machine before = ownedMachine();

    const sim::Machine after = anonymous(before, namesOfOwner);

    EXPECT_THAT(faultsOf(before), IsEmpty());
    EXPECT_THAT(faultsOf(after), IsEmpty());
    EXPECT_EQ(sizeOf(before), sizeOf(after));
    EXPECT_EQ(sim::findProperty(before.endpoints[3].properties, furtherKey)->bytes.size(),
              sim::findProperty(after.endpoints[3].properties, furtherKey)->bytes.size());
    EXPECT_EQ(after, sim::readMachine(sim::writeMachine(after), "anonymous.json"));
}

TEST(MakeAnonymous, ReplacesEqualOnesByEqualOnesOfTheSameForm)
{
    const sim::Machine after = anonymous(ownedMachine(), namesOfOwner);

    const std::string serial = lastElement(*after.deviceInstances[0].parent);
    EXPECT_TRUE(hasForm(serial, "[A-Z][0-9][A-Z][0-9][A-Z][A-Z][0-9][A-Z]")) << serial;
    EXPECT_EQ(*after.deviceInstances[0].parent, after.deviceInstances[1].id);
    EXPECT_EQ(after.deviceInstances[1].id, textOfProperty(after.adapters[0], sim::keys::instanceId));
    EXPECT_THAT(after.adapters[0].id, HasSubstr("#" + sim::lowerCase(serial) + "#"));
    EXPECT_EQ(after.adapters[0].id, *after.adapters[0].topology->deviceId);
    EXPECT_EQ(after.adapters[0].id + "/00010000", after.joins[0].to);
    EXPECT_EQ(after.adapters[0].id, *after.joins[0].toDevice);
    EXPECT_EQ(after.adapters[0].id, after.waveOut[0].endpointId);
    EXPECT_EQ(sim::upperCase(after.adapters[0].id), after.waveIn[0].endpointId);
    EXPECT_EQ(after.joins[0].to, after.faults[0].object);
    EXPECT_EQ(after.adapters[0].id, after.faults[1].arguments[0]);
    EXPECT_EQ(after.joins[0].to + " to " + after.joins[0].from, after.faults[2].object);
    EXPECT_THAT(*after.adapters[0].topology->connectors[0].name, testing::EndsWith(serial));
}

TEST(MakeAnonymous, ReplacesTheAddressOfABluetoothDeviceInEachForm)
{
    const sim::Machine after = anonymous(ownedMachine());

    const std::string parent = *after.deviceInstances[3].parent;
    const std::string address = parent.substr(parent.rfind('_') + 1);
    EXPECT_TRUE(hasForm(address, "[0-9][0-9][A-F][0-9][0-9][A-F][A-F][0-9][A-F][0-9][A-F][0-9]")) << address;
    EXPECT_THAT(parent, HasSubstr("DEV_" + address + "\\"));
    EXPECT_THAT(after.deviceInstances[3].id, HasSubstr("&" + address + "_C00000000"));
    EXPECT_THAT(after.deviceInstances[3].id, HasSubstr("{0000110B-0000-1000-8000-00805F9B34FB}_VID&000105D6_"));
    const std::uint64_t number = sim::findProperty(after.endpoints[1].unlistedProperties, furtherKey)->number;
    EXPECT_EQ(std::stoull(address, nullptr, 16), number);
}

TEST(MakeAnonymous, KeepsAContainerOneContainer)
{
    sim::Machine machine = ownedMachine();
    const GUID ofComputer = sim::containerOf("PCI\\VEN_1\\3&1", std::nullopt);
    machine.endpoints[2].properties[3].value.guid = ofComputer;
    machine.endpoints[0].unlistedProperties = {{sim::keys::baseContainerId, sim::PropertyValue::ofGuid(GUID{})}};

    makeAnonymous(machine, {});

    const auto containerAt = [&](std::size_t index) { return machine.endpoints[index].properties[3].value.guid; };
    EXPECT_EQ(sim::guidText(containerAt(0)), sim::guidText(containerAt(1)));
    EXPECT_EQ(sim::guidText(containerAt(0)), sim::guidText(containerAt(3)));
    EXPECT_NE(containerText, sim::guidText(containerAt(0)));
    EXPECT_EQ(sim::guidText(ofComputer), sim::guidText(containerAt(2)));
    EXPECT_TRUE(IsEqualGUID(GUID{}, machine.endpoints[0].unlistedProperties[0].value.guid));
    const std::vector<std::uint8_t>& bytes = sim::findProperty(machine.endpoints[3].properties, furtherKey)->bytes;
    EXPECT_THAT(hexOf(bytes), HasSubstr(hexOf(memoryBytes(containerAt(0)))));
    EXPECT_THAT(hexOf(bytes), HasSubstr(hexOf(wideBytes(sim::guidText(containerAt(0))))));
}

TEST(MakeAnonymous, ReplacesTheNameOfAnOwnerInTheNamesOfDevices)
{
    const sim::Machine after = anonymous(ownedMachine());

    const std::string name = textOfProperty(after.endpoints[0], sim::keys::friendlyName);
    EXPECT_TRUE(hasForm(name, "[A-Z][a-z][a-z][a-z]'s Interface")) << name;
    EXPECT_EQ(name.substr(0, 4) + "’s Interface", textOfProperty(after.endpoints[1], sim::keys::friendlyName));
    EXPECT_EQ(sim::upperCase(name.substr(0, 4)), textOfProperty(after.endpoints[3], sim::keys::friendlyName));
    EXPECT_EQ("Gain of " + name.substr(0, 4), *after.adapters[0].topology->connectors[0].furtherControls[0].name);
}

TEST(MakeAnonymous, ReplacesAShortSerialNumberOnlyAsAnElementOfAnId)
{
    sim::Machine machine = ownedMachine();
    sim::setProperty(machine.endpoints[2].properties, nextKey, sim::PropertyValue::ofText("A17 PA170 \\A17"));

    makeAnonymous(machine, {});

    const std::string serial = lastElement(machine.deviceInstances[2].id);
    EXPECT_TRUE(hasForm(serial, "[A-F][0-9][0-9]")) << serial;
    EXPECT_NE("A17", serial);
    EXPECT_EQ("{1}." + machine.deviceInstances[2].id, textOfProperty(machine.endpoints[2], sim::keys::instancePath));
    EXPECT_EQ("A17 PA170 \\" + serial, textOfProperty(machine.endpoints[2], nextKey));
}

TEST(MakeAnonymous, ReplacesAShortNameOrOneOfHexadecimalDigitsOnlyAsAWord)
{
    sim::Machine machine;
    sim::Endpoint endpoint = ownedEndpoint(1, wholeInstance, "Al and Ada, Analog Adapter");
    sim::setProperty(endpoint.properties, nextKey, sim::PropertyValue::ofText("0ada0"));
    machine.endpoints = {endpoint};

    makeAnonymous(machine, {"Al", "Ada"});

    EXPECT_TRUE(hasForm(textOfProperty(machine.endpoints[0], sim::keys::friendlyName),
                        "[A-Z][a-z] and [A-F][a-f][a-f], Analog Adapter"))
        << textOfProperty(machine.endpoints[0], sim::keys::friendlyName);
    EXPECT_THAT(textOfProperty(machine.endpoints[0], sim::keys::friendlyName), Not(HasSubstr("Ada,")));
    EXPECT_EQ("0ada0", textOfProperty(machine.endpoints[0], nextKey));
}

TEST(MakeAnonymous, KeepsWhatWindowsOrADriverHasMadeUp)
{
    sim::Machine machine;
    machine.endpoints = {
        ownedEndpoint(1, "HDAUDIO\\FUNC_01&VEN_5B2F&DEV_73F9\\4&F9CAD74&0&0001", "Codec"),
        ownedEndpoint(2, "ROOT\\MEDIA\\0000", "Cable"),
        ownedEndpoint(3, "SWD\\MMDEVAPI\\{0.0.0.00000000}.{6f1d2c30-1111-4000-8000-0123456789ab}", "Remote Audio")};
    for (sim::Endpoint& endpoint : machine.endpoints)
        sim::removeProperty(endpoint.properties, sim::keys::containerId);

    EXPECT_EQ(machine, anonymous(machine));
}

TEST(MakeAnonymous, LeavesTheWordsOfThePlatformAlone)
{
    sim::Machine machine = ownedMachine();
    sim::FaultRule fault;
    fault.operation = "IMMDevice::Activate";
    fault.arguments = {"IAudioClient", "23"};
    machine.faults = {fault};
    fault.operation = "IPropertyStore::GetValue";
    fault.arguments = {"deviceFormat"};
    machine.faults.push_back(fault);
    fault.operation = "IMMDeviceCollection::Item";
    fault.object = "endpoints(eAll, 15)";
    fault.arguments = {"3"};
    machine.faults.push_back(fault);
    const std::vector<sim::FaultRule> faults = machine.faults;

    makeAnonymous(machine, {"audio", "device", "endpoints", "USB", "BTHENUM"});

    EXPECT_EQ(faults, machine.faults);
    EXPECT_THAT(machine.deviceInstances[0].id, testing::StartsWith("USB\\VID_1235&PID_8210"));
    EXPECT_THAT(machine.deviceInstances[3].id, testing::StartsWith("BTHENUM\\{0000110B"));
}

TEST(MakeAnonymous, LeavesTheNamesOfEnumeratorsAlone)
{
    sim::Machine machine;
    machine.endpoints = {ownedEndpoint(1, "ROOT\\MEDIA\\0000", "Cable of root")};
    sim::Properties& properties = machine.endpoints[0].properties;
    sim::setProperty(properties, sim::keys::enumeratorName, sim::PropertyValue::ofText("ROOT"));

    makeAnonymous(machine, {"root"});

    EXPECT_EQ("ROOT", sim::findProperty(properties, sim::keys::enumeratorName)->text);
    const std::string name = *sim::findProperty(properties, sim::keys::friendlyName)->text;
    EXPECT_THAT(name, testing::StartsWith("Cable of "));
    EXPECT_THAT(name, Not(HasSubstr("root")));
}

TEST(MakeAnonymous, ReplacesTheSameInReports)
{
    sim::Machine machine = ownedMachine();
    std::string report = "The topology of " + machine.adapters[0].id + " lists a part twice.";

    makeAnonymous(machine, namesOfOwner, {&report});

    EXPECT_EQ("The topology of " + machine.adapters[0].id + " lists a part twice.", report);
    EXPECT_THAT(report, Not(HasSubstr("y8h3kq2p")));
}

TEST(MakeAnonymous, LeavesNoTraceOfTheOriginalInItsReplacement)
{
    sim::Machine other = ownedMachine();
    for (sim::DeviceInstance& instance : other.deviceInstances)
        if (instance.parent == sim::OptionalString(wholeParent))
            instance.parent = "USB\\VID_1235&PID_8210\\W1X5BR7T";
    other.deviceInstances[1].id = "USB\\VID_1235&PID_8210\\W1X5BR7T";

    const std::string parent = *anonymous(ownedMachine()).deviceInstances[0].parent;

    EXPECT_EQ(parent, *anonymous(other).deviceInstances[0].parent);
}

TEST(MakeAnonymous, NeverMakesTwoSerialNumbersOne)
{
    sim::Machine machine;
    for (int number = 0; number < 60; ++number)
        machine.deviceInstances.push_back(
            {"USB\\VID_1235&PID_8210\\" + std::to_string(10 + number), sim::OptionalString()});
    const sim::Machine before = machine;

    makeAnonymous(machine, {});

    EXPECT_THAT(faultsOf(machine), IsEmpty());
    int unchanged = 0;
    for (std::size_t index = 0; index < before.deviceInstances.size(); ++index)
        unchanged += before.deviceInstances[index] == machine.deviceInstances[index] ? 1 : 0;
    EXPECT_EQ(20, unchanged); // of two digits there are 40 that are no original
}

TEST(MakeAnonymous, AgreesInTwoRunsAndKeepsLengthsInAThird)
{
    const sim::Machine once = anonymous(ownedMachine(), namesOfOwner);
    const sim::Machine twice = anonymous(once, namesOfOwner);

    EXPECT_EQ(once, anonymous(ownedMachine(), namesOfOwner));
    EXPECT_EQ(sizeOf(once), sizeOf(twice));
    EXPECT_THAT(faultsOf(twice), IsEmpty());
}

TEST(MakeAnonymous, ReplacesNamesOfAllAlphabets)
{
    for (const char* const name : {"Żółw", "Ирина", "Ελένη", "李小龍", "\xF0\xA0\x80\x80\xF0\xA0\x80\x81"})
    {
        sim::Machine machine;
        machine.endpoints = {ownedEndpoint(1, wholeInstance, std::string("von ") + name)};
        sim::setProperty(machine.endpoints[0].properties, nextKey, sim::PropertyValue::ofBytes(wideBytes(name)));

        makeAnonymous(machine, {name});

        const std::string text = textOfProperty(machine.endpoints[0], sim::keys::friendlyName);
        EXPECT_THAT(text, Not(HasSubstr(name)));
        EXPECT_EQ(std::string("von ").size() + std::string(name).size(), text.size());
        EXPECT_EQ(wideBytes(text.substr(4)), sim::findProperty(machine.endpoints[0].properties, nextKey)->bytes);
    }
}

TEST(MakeAnonymous, ChangesNoByteThatIsNoSecret)
{
    sim::Machine machine = ownedMachine();
    std::vector<std::uint8_t> bytes;
    for (int number = 0; number < 4000; ++number)
        bytes.push_back(static_cast<std::uint8_t>(number * number / 7));
    sim::setProperty(machine.endpoints[0].properties, nextKey, sim::PropertyValue::ofBytes(bytes));
    sim::setProperty(machine.endpoints[0].properties, furtherKey,
                     sim::PropertyValue::ofBytes(joined({bytes, asciiBytes("Y8H3KQ2P"), bytes})));

    makeAnonymous(machine, {});

    EXPECT_EQ(bytes, sim::findProperty(machine.endpoints[0].properties, nextKey)->bytes);
    std::vector<std::uint8_t> rest = sim::findProperty(machine.endpoints[0].properties, furtherKey)->bytes;
    rest.erase(rest.begin() + 4000, rest.begin() + 4008);
    EXPECT_EQ(joined({bytes, bytes}), rest);
}
