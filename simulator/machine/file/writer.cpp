// Writing a machine as the content of a file. What the reader takes for granted is left out.
#include "simulator/machine/file/machinefile.h"

#include "simulator/machine/deviceformat.h"
#include "simulator/machine/file/json.h"
#include "simulator/machine/file/shortids.h"
#include "simulator/machine/identity.h"
#include "simulator/machine/namedvalues.h"
#include "simulator/machine/nodetypes.h"
#include "simulator/machine/propertykeys.h"
#include "simulator/machine/valuetext.h"

#include <cmath>
#include <utility>

namespace sim
{
namespace
{
JsonValue number(std::uint32_t value)
{
    return JsonValue::ofNumber(std::to_string(value));
}

JsonValue decibels(float value)
{
    // JSON has no word for what is not finite, and no machine file may hold it.
    return std::isfinite(value) ? JsonValue::ofNumber(decimal(value)) : JsonValue();
}

JsonValue text(const std::string& value)
{
    return JsonValue::ofText(value);
}

JsonValue textOrNull(const Text& value)
{
    return value ? text(*value) : JsonValue();
}

template<class Elements, class Write>
JsonValue list(const Elements& elements, const Write& write)
{
    JsonValue result = JsonValue::array();
    for (const auto& element : elements)
        result.elements.push_back(write(element));
    return result;
}

/// An object that takes only what differs from what the reader takes for granted.
class Members
{
public:
    Members& always(const char* key, JsonValue value)
    {
        m_object.add(key, std::move(value));
        return *this;
    }

    Members& when(bool differs, const char* key, JsonValue value)
    {
        return differs ? always(key, std::move(value)) : *this;
    }

    template<class Elements, class Write>
    Members& unlessEmpty(const char* key, const Elements& elements, const Write& write)
    {
        return elements.empty() ? *this : always(key, list(elements, write));
    }

    JsonValue done() { return std::move(m_object); }

private:
    JsonValue m_object = JsonValue::object();
};

std::string hexadecimal(const std::vector<std::uint8_t>& bytes)
{
    constexpr const char* digits = "0123456789ABCDEF";
    std::string result;
    for (const std::uint8_t byte : bytes)
    {
        result += digits[byte >> 4];
        result += digits[byte & 0xF];
    }
    return result;
}

JsonValue propertyValue(const PropertyValue& value)
{
    switch (value.tag)
    {
    case VT_EMPTY:
        return {};
    case VT_LPWSTR:
        return value.text ? text(*value.text) : Members().always("text", {}).done();
    case VT_UI4:
        return number(value.number);
    case VT_BLOB:
        if (const auto format = DeviceFormat::fromBytes(value.bytes))
            return Members().always("format", text(format->text())).done();
        return Members().always("blob", text(hexadecimal(value.bytes))).done();
    default:
        return Members()
            .always("number", number(value.number))
            .always("tag", text(nameOf(numberTagNames, value.tag)))
            .done();
    }
}

JsonValue properties(const Properties& properties)
{
    JsonValue result = JsonValue::object();
    for (const Property& property : properties)
        result.add(keyText(property.key), propertyValue(property.value));
    return result;
}

JsonValue state(std::uint32_t states)
{
    const std::string name = nameOf(stateNames, states);
    return name.empty() ? number(states) : text(name);
}

JsonValue channelLevel(const ChannelLevel& channel)
{
    return Members()
        .always("minimum", decibels(channel.minimum))
        .always("maximum", decibels(channel.maximum))
        .always("step", decibels(channel.step))
        .always("level", decibels(channel.level))
        .done();
}

void addPartStart(Members& members, const Part& part, std::uint32_t usualLocalId)
{
    members.always("id", text(part.id))
        .when(part.localId != usualLocalId, "localId", number(part.localId))
        .when(!part.reportsId, "reportsId", JsonValue::ofBoolean(false))
        .when(part.name.has_value(), "name", textOrNull(part.name))
        .when(part.subType != GUID{}, "type", text(nodeTypeText(part.subType)));
}

void addPartEnd(Members& members, const Part& part)
{
    members.unlessEmpty("incoming", part.incoming, text).unlessEmpty("outgoing", part.outgoing, text);
    if (part.volume)
        members.always("volume", Members().always("channels", list(part.volume->channels, channelLevel)).done());
    if (part.mute)
        members.always("mute", Members().always("muted", JsonValue::ofBoolean(part.mute->muted)).done());
    if (part.selector)
        members.always("selector", Members().always("selection", number(part.selector->selection)).done());
}

JsonValue signalPath(const SignalPath& path)
{
    return Members()
        .always("from", text(path.from))
        .always("to", text(path.to))
        .unlessEmpty("through", path.through, text)
        .when(path.mixed, "mixed", JsonValue::ofBoolean(true))
        .done();
}

JsonValue topology(const Topology& topology, const std::string& deviceId)
{
    Members members;
    members.when(topology.deviceId != deviceId, "deviceId", textOrNull(topology.deviceId));
    std::size_t position = 0;
    members.unlessEmpty(
        "connectors", topology.connectors,
        [&](const Connector& connector)
        {
            Members part;
            addPartStart(part, connector, usualConnectorLocalId(position++));
            part.when(connector.type != Physical_External, "kind", text(nameOf(connectorTypeNames, connector.type)));
            part.when(connector.direction != Out, "direction", text(nameOf(directionNames, connector.direction)));
            addPartEnd(part, connector);
            return part.done();
        });
    position = 0;
    members.unlessEmpty("subunits", topology.subunits,
                        [&](const Subunit& subunit)
                        {
                            Members part;
                            addPartStart(part, subunit, usualSubunitLocalId(position++));
                            addPartEnd(part, subunit);
                            return part.done();
                        });
    return members.unlessEmpty("signalPaths", topology.signalPaths, signalPath).done();
}

void addDeviceStart(Members& members, const Device& device)
{
    members.always("id", text(device.id));
}

void addDeviceMiddle(Members& members, const Device& device)
{
    members.when(device.state != stateActive, "state", state(device.state))
        .when(!device.openable, "openable", JsonValue::ofBoolean(false));
    JsonValue interfaces = JsonValue::array();
    for (const auto& named : interfaceNames)
    {
        if (device.*named.value)
            interfaces.elements.push_back(text(std::string(named.name)));
    }
    members.when(!interfaces.elements.empty(), "interfaces", interfaces)
        .when(!device.properties.empty(), "properties", properties(device.properties));
}

void addDeviceEnd(Members& members, const Device& device)
{
    if (device.topology)
        members.always("topology", topology(withShortIds(*device.topology, device.id), device.id));
}

JsonValue endpointVolume(const EndpointVolume& volume)
{
    JsonValue support = JsonValue::array();
    for (const auto& named : hardwareSupportNames)
    {
        if ((volume.hardwareSupport & named.value) != 0)
            support.elements.push_back(text(std::string(named.name)));
    }
    return Members()
        .always("minimum", decibels(volume.minimum))
        .always("maximum", decibels(volume.maximum))
        .always("step", decibels(volume.step))
        .always("channels", list(volume.channels, decibels))
        .when(volume.muted, "muted", JsonValue::ofBoolean(true))
        .when(volume.hardwareSupport != 0, "hardwareSupport", support)
        .unlessEmpty("refused", volume.refused, text)
        .done();
}

JsonValue endpoint(const Endpoint& endpoint)
{
    Members members;
    addDeviceStart(members, endpoint);
    members.always("flow", text(nameOf(flowNames, endpoint.flow)));
    members.when(!endpoint.installed, "installed", JsonValue::ofBoolean(false));
    members.unlessEmpty("defaultFor", endpoint.defaultFor, [](ERole role) { return text(nameOf(roleNames, role)); });
    addDeviceMiddle(members, endpoint);
    if (endpoint.volume)
        members.always("volume", endpointVolume(*endpoint.volume));
    addDeviceEnd(members, endpoint);
    return members.done();
}

JsonValue adapter(const Adapter& adapter)
{
    Members members;
    addDeviceStart(members, adapter);
    addDeviceMiddle(members, adapter);
    addDeviceEnd(members, adapter);
    return members.done();
}

JsonValue join(const Join& join)
{
    return Members()
        .always("from", text(join.from))
        .when(!join.to.empty(), "to", text(join.to))
        .when(join.toDevice.has_value(), "toDevice", textOrNull(join.toDevice))
        .when(!join.bothWays, "bothWays", JsonValue::ofBoolean(false))
        .done();
}

JsonValue deviceInstance(const DeviceInstance& instance)
{
    return Members().always("id", text(instance.id)).always("parent", textOrNull(instance.parent)).done();
}

JsonValue waveDevice(const WaveDevice& device)
{
    if (device.sizeResult == 0 && device.idResult == 0)
        return text(device.endpointId);
    return Members()
        .always("endpoint", text(device.endpointId))
        .when(device.sizeResult != 0, "sizeResult", number(device.sizeResult))
        .when(device.idResult != 0, "idResult", number(device.idResult))
        .done();
}

JsonValue scriptEvent(const ScriptEvent& event)
{
    using Kind = ScriptEvent::Kind;
    const bool isDefault = event.kind == Kind::defaultChanged;
    const bool isProperty = event.kind == Kind::propertyChanged;
    const bool isVolume = event.kind == Kind::volumeChanged;
    return Members()
        .when(event.afterMilliseconds != 0, "afterMilliseconds", number(event.afterMilliseconds))
        .always("event", text(nameOf(eventNames, event.kind)))
        .always("endpoint", isDefault && event.endpoint.empty() ? JsonValue() : text(event.endpoint))
        .when(event.kind == Kind::stateChanged, "state", state(event.state))
        .when(isDefault, "flow", text(nameOf(flowNames, event.flow)))
        .when(isDefault, "role", text(nameOf(roleNames, event.role)))
        .when(isVolume && event.level, "level", decibels(event.level.value_or(0.0f)))
        .when(isVolume && event.muted, "muted", JsonValue::ofBoolean(event.muted.value_or(false)))
        .when(isProperty, "property", text(keyText(event.key)))
        .when(isProperty, "value", propertyValue(event.value))
        .done();
}

JsonValue faultRule(const FaultRule& rule)
{
    const bool isNull = rule.outcome == FaultRule::Outcome::nullSuccess;
    const bool isThrown = rule.outcome == FaultRule::Outcome::thrown;
    return Members()
        .always("operation", text(rule.operation))
        .when(rule.object != "*", "object", text(rule.object))
        .when(!rule.argument.empty(), "argument", text(rule.argument))
        .when(rule.call != 0, "call", number(rule.call))
        .always("result", text(isNull     ? "null"
                               : isThrown ? "throw"
                                          : resultText(rule.result)))
        .done();
}

JsonValue latencyRule(const LatencyRule& rule)
{
    return Members().always("operation", text(rule.operation)).always("microseconds", number(rule.microseconds)).done();
}
}

std::string writeMachine(const Machine& machine)
{
    const JsonValue result = Members()
                                 .always("$schema", text("machine.schema.json"))
                                 .always("name", text(machine.name))
                                 .when(!machine.description.empty(), "description", text(machine.description))
                                 .unlessEmpty("endpoints", machine.endpoints, endpoint)
                                 .unlessEmpty("adapters", machine.adapters, adapter)
                                 .unlessEmpty("joins", machine.joins, join)
                                 .unlessEmpty("deviceInstances", machine.deviceInstances, deviceInstance)
                                 .unlessEmpty("waveOut", machine.waveOut, waveDevice)
                                 .unlessEmpty("waveIn", machine.waveIn, waveDevice)
                                 .unlessEmpty("script", machine.script, scriptEvent)
                                 .unlessEmpty("faults", machine.faults, faultRule)
                                 .unlessEmpty("latency", machine.latency, latencyRule)
                                 .done();
    return printJson(result);
}
}
