// Reading a machine from the content of a file.
#include "simulator/machine/file/machinefile.h"

#include "simulator/machine/deviceformat.h"
#include "simulator/machine/file/check.h"
#include "simulator/machine/file/cursor.h"
#include "simulator/machine/file/json.h"
#include "simulator/machine/file/objectkeys.h"
#include "simulator/machine/file/shortids.h"
#include "simulator/machine/identity.h"
#include "simulator/machine/propertykeys.h"
#include "simulator/machine/valuetext.h"

#include <utility>

namespace sim
{
namespace
{
template<class Element, class Read>
std::vector<Element> listOf(const std::optional<FilePlace>& place, const Read& read)
{
    std::vector<Element> result;
    if (!place)
        return result;
    for (const FilePlace& element : place->elements())
        result.push_back(read(element));
    return result;
}

std::vector<std::string> textsOf(const std::optional<FilePlace>& place)
{
    return place ? place->texts() : std::vector<std::string>();
}

bool booleanOf(const std::optional<FilePlace>& place, bool otherwise)
{
    return place ? place->boolean() : otherwise;
}

std::uint32_t numberOf(const std::optional<FilePlace>& place, std::uint32_t otherwise = 0)
{
    return place ? place->number() : otherwise;
}

// --- Properties --------------------------------------------------------------------------------------------------

std::vector<std::uint8_t> formatBytes(const FilePlace& place)
{
    const std::optional<DeviceFormat> format =
        place.isText() ? DeviceFormat::fromText(place.text()) : std::optional<DeviceFormat>();
    if (!format)
        place.fail("a format \"bits/rate/channels\" such as \"24/48000/2\"");
    return format->bytes();
}

/// A plain text, number or null stands for the usual tags, an object for anything else.
PropertyValue propertyValue(const FilePlace& place)
{
    if (place.isText())
        return PropertyValue::ofText(place.text());
    if (place.isNumber())
        return PropertyValue::ofNumber(place.number());
    if (place.isNull())
        return {};
    if (!place.isObject())
        place.fail("a text, a number, null or an object");
    if (place.find("text"))
        return PropertyValue::ofText(place.object("textValue").at("text").textOrNull());
    if (place.find("blob"))
        return PropertyValue::ofBytes(place.object("blobValue").at("blob").bytes());
    if (place.find("format"))
        return PropertyValue::ofBytes(formatBytes(place.object("formatValue").at("format")));
    place.object("numberValue");
    return PropertyValue::ofNumber(place.at("number").number(), place.at("tag").named(numberTagNames));
}

PROPERTYKEY propertyKey(const FilePlace& place, const std::string& text)
{
    const std::optional<PROPERTYKEY> key = keyFromText(text);
    if (!key)
        place.fail("a property's name, or a key like {01234567-89AB-CDEF-0123-456789ABCDEF}/2", inQuotes(text));
    return *key;
}

Properties properties(const std::optional<FilePlace>& place)
{
    Properties result;
    if (!place)
        return result;
    for (const auto& [name, value] : place->members())
        result.push_back({propertyKey(value, name), propertyValue(value)});
    return result;
}

// --- Topologies --------------------------------------------------------------------------------------------------

ChannelLevel channelLevel(const FilePlace& place)
{
    place.object("channelLevel");
    return {place.at("minimum").decibels(), place.at("maximum").decibels(), place.at("step").decibels(),
            place.at("level").decibels()};
}

void readPart(const FilePlace& place, std::uint32_t usualLocalId, Part& part)
{
    part.id = place.at("id").text();
    part.localId = numberOf(place.find("localId"), usualLocalId);
    part.reportsId = booleanOf(place.find("reportsId"), true);
    if (const auto name = place.find("name"))
        part.name = name->textOrNull();
    if (const auto type = place.find("type"))
        part.subType = type->nodeType();
    part.incoming = textsOf(place.find("incoming"));
    part.outgoing = textsOf(place.find("outgoing"));
    if (const auto volume = place.find("volume"))
        part.volume = VolumeControl{listOf<ChannelLevel>(volume->object("volumeControl").at("channels"), channelLevel)};
    if (const auto mute = place.find("mute"))
        part.mute = MuteControl{mute->object("muteControl").at("muted").boolean()};
    if (const auto selector = place.find("selector"))
        part.selector = SelectorControl{selector->object("selectorControl").at("selection").number()};
}

Connector connector(const FilePlace& place, std::size_t position)
{
    place.object("connector");
    Connector result;
    readPart(place, usualConnectorLocalId(position), result);
    if (const auto kind = place.find("kind"))
        result.type = kind->named(connectorTypeNames);
    if (const auto direction = place.find("direction"))
        result.direction = direction->named(directionNames);
    return result;
}

Subunit subunit(const FilePlace& place, std::size_t position)
{
    place.object("subunit");
    Subunit result;
    readPart(place, usualSubunitLocalId(position), result);
    return result;
}

SignalPath signalPath(const FilePlace& place)
{
    place.object("signalPath");
    return {place.at("from").text(), place.at("to").text(), textsOf(place.find("through")),
            booleanOf(place.find("mixed"), false)};
}

Topology topology(const FilePlace& place, const std::string& deviceId)
{
    place.object("topology");
    Topology result;
    const auto id = place.find("deviceId");
    result.deviceId = id ? id->textOrNull() : deviceId;
    std::size_t connectors = 0;
    result.connectors = listOf<Connector>(place.find("connectors"),
                                          [&](const FilePlace& element) { return connector(element, connectors++); });
    std::size_t subunits = 0;
    result.subunits =
        listOf<Subunit>(place.find("subunits"), [&](const FilePlace& element) { return subunit(element, subunits++); });
    result.signalPaths = listOf<SignalPath>(place.find("signalPaths"), signalPath);
    return withFullIds(std::move(result), deviceId);
}

// --- Devices -----------------------------------------------------------------------------------------------------

void readDevice(const FilePlace& place, Device& device)
{
    device.id = place.at("id").text();
    device.openable = booleanOf(place.find("openable"), true);
    if (const auto state = place.find("state"))
        device.state = state->state();
    device.properties = properties(place.find("properties"));
    for (const FilePlace& interfaceName :
         place.find("interfaces") ? place.at("interfaces").elements() : std::vector<FilePlace>())
        device.*interfaceName.named(interfaceNames) = true;
    if (const auto graph = place.find("topology"))
        device.topology = topology(*graph, device.id);
}

EndpointVolume endpointVolume(const FilePlace& place)
{
    place.object("endpointVolume");
    EndpointVolume result;
    result.minimum = place.at("minimum").decibels();
    result.maximum = place.at("maximum").decibels();
    result.step = place.at("step").decibels();
    result.channels = listOf<float>(place.at("channels"), [](const FilePlace& level) { return level.decibels(); });
    result.muted = booleanOf(place.find("muted"), false);
    if (const auto support = place.find("hardwareSupport"))
    {
        for (const FilePlace& bit : support->elements())
            result.hardwareSupport |= bit.named(hardwareSupportNames);
    }
    result.refused = textsOf(place.find("refused"));
    return result;
}

Endpoint endpoint(const FilePlace& place)
{
    place.object("endpoint");
    Endpoint result;
    readDevice(place, result);
    result.flow = place.at("flow").named(flowNames);
    result.installed = booleanOf(place.find("installed"), true);
    if (const auto volume = place.find("volume"))
        result.volume = endpointVolume(*volume);
    result.defaultFor =
        listOf<ERole>(place.find("defaultFor"), [](const FilePlace& role) { return role.named(roleNames); });
    return result;
}

Adapter adapter(const FilePlace& place)
{
    place.object("adapter");
    Adapter result;
    readDevice(place, result);
    return result;
}

// --- What lies around the devices --------------------------------------------------------------------------------

Join join(const FilePlace& place)
{
    place.object("join");
    Join result;
    result.from = place.at("from").text();
    if (const auto to = place.find("to"))
        result.to = to->text();
    if (const auto device = place.find("toDevice"))
        result.toDevice = device->text();
    result.bothWays = booleanOf(place.find("bothWays"), true);
    return result;
}

DeviceInstance deviceInstance(const FilePlace& place)
{
    place.object("deviceInstance");
    return {place.at("id").text(), place.at("parent").textOrNull()};
}

WaveDevice waveDevice(const FilePlace& place)
{
    if (place.isText())
        return {place.text()};
    place.object("waveDevice");
    return {place.at("endpoint").text(), numberOf(place.find("sizeResult")), numberOf(place.find("idResult"))};
}

ScriptEvent scriptEvent(const FilePlace& place)
{
    if (!place.isObject() || !place.find("event"))
        place.fail("an object with the key \"event\"");
    ScriptEvent result;
    result.kind = place.at("event").named(eventNames);
    place.object(eventObject(result.kind));
    result.afterMilliseconds = numberOf(place.find("afterMilliseconds"));
    const bool isDefault = result.kind == ScriptEvent::Kind::defaultChanged;
    result.endpoint = isDefault ? place.at("endpoint").textOrNull().value_or("") : place.at("endpoint").text();
    if (const auto state = place.find("state"))
        result.state = state->state();
    if (const auto flow = place.find("flow"))
        result.flow = flow->named(flowNames);
    if (const auto role = place.find("role"))
        result.role = role->named(roleNames);
    if (const auto level = place.find("level"))
        result.level = level->decibels();
    if (const auto muted = place.find("muted"))
        result.muted = muted->boolean();
    if (const auto property = place.find("property"))
    {
        result.key = propertyKey(*property, property->text());
        result.value = propertyValue(place.at("value"));
    }
    return result;
}

FaultRule faultRule(const FilePlace& place)
{
    place.object("faultRule");
    FaultRule result;
    result.operation = place.at("operation").text();
    if (const auto object = place.find("object"))
        result.object = object->text();
    if (const auto argument = place.find("argument"))
        result.argument = argument->text();
    result.call = numberOf(place.find("call"));

    const FilePlace outcome = place.at("result");
    const std::string text = outcome.isText() ? outcome.text() : std::string();
    const std::optional<HRESULT> code = resultFromText(text);
    if (text == "null")
        result.outcome = FaultRule::Outcome::nullSuccess;
    else if (text == "throw")
        result.outcome = FaultRule::Outcome::thrown;
    else if (!code)
        outcome.fail("a result like \"0x80004005\", \"null\" or \"throw\"");
    else
        result.result = *code;
    return result;
}

LatencyRule latencyRule(const FilePlace& place)
{
    place.object("latencyRule");
    return {place.at("operation").text(), place.at("microseconds").number()};
}

Machine machine(const FilePlace& place)
{
    place.object("machine");
    if (const auto schema = place.find("$schema"))
        schema->text();
    Machine result;
    result.name = place.at("name").text();
    if (const auto description = place.find("description"))
        result.description = description->text();
    result.endpoints = listOf<Endpoint>(place.find("endpoints"), endpoint);
    result.adapters = listOf<Adapter>(place.find("adapters"), adapter);
    result.joins = listOf<Join>(place.find("joins"), join);
    result.deviceInstances = listOf<DeviceInstance>(place.find("deviceInstances"), deviceInstance);
    result.waveOut = listOf<WaveDevice>(place.find("waveOut"), waveDevice);
    result.waveIn = listOf<WaveDevice>(place.find("waveIn"), waveDevice);
    result.script = listOf<ScriptEvent>(place.find("script"), scriptEvent);
    result.faults = listOf<FaultRule>(place.find("faults"), faultRule);
    result.latency = listOf<LatencyRule>(place.find("latency"), latencyRule);
    return result;
}
}

Machine readMachine(const std::string& text, const std::string& nameForMessages)
{
    const JsonValue json = parseJson(text, nameForMessages);
    Machine result = machine(FilePlace(json, nameForMessages));
    const std::vector<MachineProblem> problems = checkMachine(result);
    if (problems.empty())
        return result;

    const MachineProblem& first = problems.front();
    const std::string others = problems.size() == 1 ? "" : " (and " + std::to_string(problems.size() - 1) + " more)";
    throw MachineFileError(nameForMessages, json.nearest(first.place).line, 0, first.place, first.expected,
                           first.found + others);
}
}
