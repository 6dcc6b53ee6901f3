#include "client/anonymity/places.h"

#include "simulator/machine/propertykeys.h"

#include <algorithm>

namespace sonavit::anonymity
{
namespace
{
bool isWordCharacter(char character)
{
    return (character >= '0' && character <= '9') || (character >= 'A' && character <= 'Z') ||
           (character >= 'a' && character <= 'z') || character == '_' || character == '-' || character == '.';
}

/// "IAudioClient", "eRender", "23", "-1", "deviceFormat", "{FORMAT-ID}/2": what no owner has chosen.
bool isWordOfPlatform(const std::string& argument)
{
    return std::all_of(argument.begin(), argument.end(), isWordCharacter) || sim::keyFromText(argument);
}

/// "*", "enumerator" and "endpoints(eAll, 15)" are not the ids of devices and parts.
bool isNameOfPlatform(const std::string& object)
{
    return object == "*" || object == "enumerator" || object.compare(0, 10, "endpoints(") == 0;
}

class Walk
{
public:
    explicit Walk(PlaceVisitor& visitor) : m_visitor(visitor) {}

    void machine(sim::Machine& machine);

private:
    void text(std::string& text) { m_visitor.text(text); }
    void text(sim::OptionalString& text)
    {
        if (text)
            m_visitor.text(*text);
    }
    void texts(std::vector<std::string>& all)
    {
        for (std::string& each : all)
            m_visitor.text(each);
    }
    void argument(std::string& argument)
    {
        if (!isWordOfPlatform(argument))
            m_visitor.text(argument);
    }

    void device(sim::Device& device);
    void endpoint(sim::Endpoint& endpoint);
    void properties(sim::Properties& properties);
    void value(sim::PropertyValue& value);
    void topology(sim::Topology& topology);
    void part(sim::Part& part);
    void fault(sim::FaultRule& rule);

    PlaceVisitor& m_visitor;
};

void Walk::machine(sim::Machine& machine)
{
    text(machine.name);
    text(machine.description);
    for (sim::DeviceInstance& instance : machine.deviceInstances)
    {
        text(instance.id);
        text(instance.parent);
    }
    for (sim::Endpoint& each : machine.endpoints)
        endpoint(each);
    for (sim::Adapter& adapter : machine.adapters)
        device(adapter);
    for (sim::Join& join : machine.joins)
    {
        text(join.from);
        text(join.to);
        text(join.toDevice);
    }
    for (std::vector<sim::WaveDevice>* const list : {&machine.waveOut, &machine.waveIn})
        for (sim::WaveDevice& wave : *list)
            text(wave.endpointId);
    for (sim::ScriptEvent& event : machine.script)
    {
        text(event.endpoint);
        value(event.value);
    }
    for (sim::FaultRule& rule : machine.faults)
        fault(rule);
    for (sim::LatencyRule& rule : machine.latency)
        argument(rule.argument);
}

void Walk::device(sim::Device& device)
{
    text(device.id);
    properties(device.properties);
    properties(device.unlistedProperties);
    if (device.topology)
        topology(*device.topology);
}

void Walk::endpoint(sim::Endpoint& endpoint)
{
    device(endpoint);
    m_visitor.bytes(endpoint.mixFormatBytes);
    if (!endpoint.volume)
        return;
    text(endpoint.volume->hardware.volume);
    text(endpoint.volume->hardware.mute);
}

void Walk::properties(sim::Properties& properties)
{
    for (sim::Property& property : properties)
        value(property.value);
}

void Walk::value(sim::PropertyValue& value)
{
    text(value.text);
    m_visitor.bytes(value.bytes);
    if (value.tag == VT_CLSID)
        m_visitor.guid(value.guid);
    if (value.tag == VT_UI8 || value.tag == VT_I8)
        m_visitor.number(value.number);
}

void Walk::topology(sim::Topology& topology)
{
    text(topology.deviceId);
    for (sim::Connector& connector : topology.connectors)
        part(connector);
    for (sim::Subunit& subunit : topology.subunits)
        part(subunit);
    for (sim::SignalPath& path : topology.signalPaths)
    {
        text(path.from);
        text(path.to);
        texts(path.through);
    }
}

void Walk::part(sim::Part& part)
{
    text(part.id);
    text(part.name);
    texts(part.incoming);
    texts(part.outgoing);
    for (sim::FurtherControl& control : part.furtherControls)
        text(control.name);
}

void Walk::fault(sim::FaultRule& rule)
{
    if (!isNameOfPlatform(rule.object))
        text(rule.object);
    argument(rule.argument);
    for (std::string& each : rule.arguments)
        argument(each);
}
}

void visitPlaces(sim::Machine& machine, PlaceVisitor& visitor)
{
    Walk(visitor).machine(machine);
}
}
