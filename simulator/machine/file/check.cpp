#include "simulator/machine/file/check.h"

#include "simulator/machine/file/json.h"
#include "simulator/machine/namedvalues.h"
#include "simulator/machine/operations.h"
#include "simulator/machine/printable.h"
#include "simulator/machine/propertykeys.h"
#include "simulator/machine/valuetext.h"

#include <cmath>
#include <set>
#include <type_traits>
#include <unordered_map>
#include <unordered_set>
#include <utility>

namespace sim
{
namespace
{
constexpr std::uint32_t allStates = stateActive | stateDisabled | stateNotPresent | stateUnplugged;
constexpr std::uint32_t allHardwareSupport = 1 | 2 | 4;
constexpr const char* stateRange = "a state or a sum of states, 0 to 15";

std::string inner(const std::string& place, const char* field)
{
    return place + "/" + field;
}

std::string inner(const std::string& place, std::size_t index)
{
    return place + "/" + std::to_string(index);
}

/// The parts of one topology.
using PartsById = std::unordered_map<std::string, const Part*>;

/// Walks a machine once, in the order of its file, and collects what is wrong.
class Check
{
public:
    explicit Check(const Machine& machine) : m_machine(machine) {}

    std::vector<MachineProblem> run()
    {
        devices();
        defaults();
        joins();
        deviceInstances();
        script();
        faults();
        latency();
        return m_problems;
    }

private:
    /// Notes a problem unless it @p holds; returns whether it does.
    bool require(bool holds, const std::string& place, const std::string& expected, const std::string& found)
    {
        if (!holds)
            m_problems.push_back({place, expected, found});
        return holds;
    }

    void requireNew(std::set<std::string>& known, const std::string& id, const std::string& place)
    {
        if (require(!id.empty(), place, "an id", inQuotes(id)))
            require(known.insert(id).second, place, "an id that is not given yet",
                    inQuotes(id) + " for the second time");
    }

    /// Requires that the table has a name for @p value: a file cannot contain any other.
    template<class Value, std::size_t Size>
    void requireName(const Names<Value, Size>& names, const Value& value, const std::string& place)
    {
        require(!nameOf(names, value).empty(), place, oneOf(names), std::to_string(value));
    }

    void devices();
    void device(const Device& device, const std::string& place);
    void properties(const Properties& properties, const std::string& place);
    void propertyValue(const PropertyValue& value, const std::string& place);
    void endpointVolume(const EndpointVolume& volume, const std::string& place);
    void topology(const Topology& topology, const std::string& place);
    template<class AnyPart>
    void partList(const std::vector<AnyPart>& parts, std::set<std::uint32_t>& localIds, const PartsById& known,
                  const std::string& place);
    void part(const Part& part, const PartsById& known, const std::string& place);
    void partIds(const std::vector<std::string>& ids, const PartsById& known, const std::string& place);
    void signalPaths(const Topology& topology, const PartsById& known, const std::string& place);
    void defaults();
    void joins();
    void connectorId(const std::string& id, const std::string& place);
    void deviceInstances();
    void script();
    void event(const ScriptEvent& event, const std::string& place);
    void volumeEvent(const ScriptEvent& event, const Endpoint& endpoint, const std::string& place);
    void faults();
    void latency();

    void range(float minimum, float maximum, float step, const std::string& place);
    void level(float level, float minimum, float maximum, const std::string& place);
    void channelCount(std::size_t count, const std::string& place);

    const Machine& m_machine;
    std::set<std::string> m_deviceIds;
    std::set<std::string> m_partIds;
    std::unordered_set<std::string> m_connectorIds;
    std::vector<MachineProblem> m_problems;
};

void Check::devices()
{
    for (std::size_t index = 0; index < m_machine.endpoints.size(); ++index)
    {
        const Endpoint& endpoint = m_machine.endpoints[index];
        const std::string place = inner("/endpoints", index);
        device(endpoint, place);
        requireName(flowNames, endpoint.flow, inner(place, "flow"));
        if (endpoint.volume)
            endpointVolume(*endpoint.volume, inner(place, "volume"));
    }
    for (std::size_t index = 0; index < m_machine.adapters.size(); ++index)
        device(m_machine.adapters[index], inner("/adapters", index));
}

void Check::device(const Device& device, const std::string& place)
{
    requireNew(m_deviceIds, device.id, inner(place, "id"));
    require((device.state & ~allStates) == 0, inner(place, "state"), stateRange, std::to_string(device.state));
    properties(device.properties, inner(place, "properties"));
    if (device.topology)
        topology(*device.topology, inner(place, "topology"));
}

void Check::properties(const Properties& properties, const std::string& place)
{
    std::set<std::string> keys;
    for (const Property& property : properties)
    {
        const std::string key = keyText(property.key);
        require(keys.insert(key).second, place, "each property once", inQuotes(key) + " for the second time");
        propertyValue(property.value, place + pointerStep(key));
    }
}

void Check::propertyValue(const PropertyValue& value, const std::string& place)
{
    const bool isNumber = !nameOf(numberTagNames, value.tag).empty();
    const bool isKnown = isNumber || value.tag == VT_EMPTY || value.tag == VT_LPWSTR || value.tag == VT_BLOB;
    require(isKnown, place, "an empty value, a text, a number or a blob", "the tag " + std::to_string(value.tag));
}

void Check::endpointVolume(const EndpointVolume& volume, const std::string& place)
{
    range(volume.minimum, volume.maximum, volume.step, place);
    channelCount(volume.channels.size(), inner(place, "channels"));
    for (std::size_t index = 0; index < volume.channels.size(); ++index)
        level(volume.channels[index], volume.minimum, volume.maximum, inner(inner(place, "channels"), index));
    require((volume.hardwareSupport & ~allHardwareSupport) == 0, inner(place, "hardwareSupport"), "a sum of 1, 2 and 4",
            std::to_string(volume.hardwareSupport));
    for (std::size_t index = 0; index < volume.refused.size(); ++index)
        require(isEndpointVolumeOperation(volume.refused[index]), inner(inner(place, "refused"), index),
                "an operation of IAudioEndpointVolume", inQuotes(volume.refused[index]));
}

PartsById partsOf(const Topology& topology)
{
    PartsById parts;
    for (const Connector& connector : topology.connectors)
        parts.emplace(connector.id, &connector);
    for (const Subunit& subunit : topology.subunits)
        parts.emplace(subunit.id, &subunit);
    return parts;
}

void Check::topology(const Topology& topology, const std::string& place)
{
    const PartsById known = partsOf(topology);
    std::set<std::uint32_t> localIds;
    for (const Connector& connector : topology.connectors)
        m_connectorIds.insert(connector.id);
    partList(topology.connectors, localIds, known, inner(place, "connectors"));
    partList(topology.subunits, localIds, known, inner(place, "subunits"));
    signalPaths(topology, known, inner(place, "signalPaths"));
}

template<class AnyPart>
void Check::partList(const std::vector<AnyPart>& parts, std::set<std::uint32_t>& localIds, const PartsById& known,
                     const std::string& place)
{
    for (std::size_t index = 0; index < parts.size(); ++index)
    {
        const std::string partPlace = inner(place, index);
        const std::string& id = parts[index].id;
        requireNew(m_partIds, id, inner(partPlace, "id"));
        // In a file such an id would be taken for a short one.
        require(id.compare(0, 1, "/") != 0, inner(partPlace, "id"), "an id that does not begin with /", inQuotes(id));
        require(localIds.insert(parts[index].localId).second, inner(partPlace, "localId"),
                "a local id that the topology has not given yet",
                std::to_string(parts[index].localId) + " for the second time");
        if constexpr (std::is_same_v<AnyPart, Connector>)
            requireName(connectorTypeNames, parts[index].type, inner(partPlace, "kind"));
        part(parts[index], known, partPlace);
    }
}

void Check::part(const Part& part, const PartsById& known, const std::string& place)
{
    partIds(part.incoming, known, inner(place, "incoming"));
    partIds(part.outgoing, known, inner(place, "outgoing"));
    if (part.volume)
    {
        const std::string channels = inner(inner(place, "volume"), "channels");
        channelCount(part.volume->channels.size(), channels);
        for (std::size_t index = 0; index < part.volume->channels.size(); ++index)
        {
            const ChannelLevel& channel = part.volume->channels[index];
            range(channel.minimum, channel.maximum, channel.step, inner(channels, index));
            level(channel.level, channel.minimum, channel.maximum, inner(inner(channels, index), "level"));
        }
    }
    if (part.selector && part.selector->selection != 0)
    {
        bool isIncoming = false;
        for (const std::string& id : part.incoming)
        {
            const auto neighbour = known.find(id);
            isIncoming =
                isIncoming || (neighbour != known.end() && neighbour->second->localId == part.selector->selection);
        }
        require(isIncoming, inner(inner(place, "selector"), "selection"), "the local id of an incoming part, or 0",
                std::to_string(part.selector->selection));
    }
}

void Check::partIds(const std::vector<std::string>& ids, const PartsById& known, const std::string& place)
{
    for (std::size_t index = 0; index < ids.size(); ++index)
        require(known.count(ids[index]) != 0, inner(place, index), "the id of a part of this topology",
                inQuotes(ids[index]));
}

void Check::signalPaths(const Topology& topology, const PartsById& known, const std::string& place)
{
    std::set<std::pair<std::string, std::string>> taken;
    for (std::size_t index = 0; index < topology.signalPaths.size(); ++index)
    {
        const SignalPath& path = topology.signalPaths[index];
        const std::string pathPlace = inner(place, index);
        require(known.count(path.from) != 0, inner(pathPlace, "from"), "the id of a part of this topology",
                inQuotes(path.from));
        require(known.count(path.to) != 0, inner(pathPlace, "to"), "the id of a part of this topology",
                inQuotes(path.to));
        partIds(path.through, known, inner(pathPlace, "through"));
        require(taken.insert({path.from, path.to}).second, pathPlace, "each pair of parts once",
                inQuotes(path.from) + " to " + inQuotes(path.to) + " for the second time");
    }
}

void Check::defaults()
{
    std::set<std::pair<int, int>> taken;
    for (std::size_t index = 0; index < m_machine.endpoints.size(); ++index)
    {
        const Endpoint& endpoint = m_machine.endpoints[index];
        for (std::size_t role = 0; role < endpoint.defaultFor.size(); ++role)
        {
            const std::string place = inner(inner(inner("/endpoints", index), "defaultFor"), role);
            requireName(roleNames, endpoint.defaultFor[role], place);
            require(taken.insert({endpoint.flow, endpoint.defaultFor[role]}).second, place,
                    "a role that no endpoint of this flow has yet",
                    inQuotes(nameOf(roleNames, endpoint.defaultFor[role])) + " for the second time");
        }
    }
}

void Check::joins()
{
    for (std::size_t index = 0; index < m_machine.joins.size(); ++index)
    {
        const Join& join = m_machine.joins[index];
        const std::string place = inner("/joins", index);
        connectorId(join.from, inner(place, "from"));
        if (join.to.empty())
            require(join.toDevice.has_value(), place, "\"to\" or \"toDevice\"", "neither");
        else
            connectorId(join.to, inner(place, "to"));
        require(join.from != join.to, inner(place, "to"), "another connector than \"from\"", inQuotes(join.to));
    }
}

void Check::connectorId(const std::string& id, const std::string& place)
{
    require(m_connectorIds.count(id) != 0, place, "the id of a connector", inQuotes(id));
}

void Check::deviceInstances()
{
    std::set<std::string> known;
    for (std::size_t index = 0; index < m_machine.deviceInstances.size(); ++index)
        requireNew(known, m_machine.deviceInstances[index].id, inner(inner("/deviceInstances", index), "id"));
}

void Check::script()
{
    for (std::size_t index = 0; index < m_machine.script.size(); ++index)
        event(m_machine.script[index], inner("/script", index));
}

void Check::event(const ScriptEvent& event, const std::string& place)
{
    const bool isDefault = event.kind == ScriptEvent::Kind::defaultChanged;
    const Endpoint* endpoint = m_machine.endpoint(event.endpoint);
    const bool hasEndpoint = endpoint != nullptr || (isDefault && event.endpoint.empty());
    require(hasEndpoint, inner(place, "endpoint"), "the id of an endpoint", inQuotes(event.endpoint));
    if (isDefault)
    {
        requireName(flowNames, event.flow, inner(place, "flow"));
        requireName(roleNames, event.role, inner(place, "role"));
    }
    if (isDefault && endpoint != nullptr)
        require(endpoint->flow == event.flow, inner(place, "flow"), "the flow of the endpoint",
                inQuotes(nameOf(flowNames, event.flow)));
    require((event.state & ~allStates) == 0, inner(place, "state"), stateRange, std::to_string(event.state));
    propertyValue(event.value, inner(place, "value"));
    if (event.kind == ScriptEvent::Kind::volumeChanged && endpoint != nullptr)
        volumeEvent(event, *endpoint, place);
}

void Check::volumeEvent(const ScriptEvent& event, const Endpoint& endpoint, const std::string& place)
{
    const bool hasVolume = require(endpoint.volume.has_value(), inner(place, "endpoint"), "an endpoint with a volume",
                                   inQuotes(event.endpoint));
    require(event.level || event.muted, place, "\"level\" or \"muted\"", "neither");
    if (event.level && hasVolume)
        level(*event.level, endpoint.volume->minimum, endpoint.volume->maximum, inner(place, "level"));
}

void Check::faults()
{
    for (std::size_t index = 0; index < m_machine.faults.size(); ++index)
    {
        const FaultRule& rule = m_machine.faults[index];
        const std::string place = inner("/faults", index);
        const bool isPlatforms = isOperation(rule.operation);
        require(isPlatforms, inner(place, "operation"), "an operation of the simulated platform",
                inQuotes(rule.operation) + (isPlatforms ? "" : operationSuggestion(rule.operation)));
        const bool isKnown = m_deviceIds.count(rule.object) != 0 || m_partIds.count(rule.object) != 0;
        require(rule.object == "*" || isKnown, inner(place, "object"), "\"*\" or the id of a device or part",
                inQuotes(rule.object));
    }
}

void Check::latency()
{
    std::set<std::string> known;
    for (std::size_t index = 0; index < m_machine.latency.size(); ++index)
    {
        const std::string& operation = m_machine.latency[index].operation;
        const std::string place = inner(inner("/latency", index), "operation");
        const bool isPlatforms = operation == "*" || isOperation(operation);
        require(isPlatforms, place, "\"*\" or an operation of the simulated platform",
                inQuotes(operation) + (isPlatforms ? "" : operationSuggestion(operation)));
        require(known.insert(operation).second, place, "an operation that has no latency yet",
                inQuotes(operation) + " for the second time");
    }
}

void Check::range(float minimum, float maximum, float step, const std::string& place)
{
    const bool isRange = std::isfinite(minimum) && std::isfinite(maximum) && minimum < maximum;
    require(isRange, place, "a minimum below the maximum", decimal(minimum) + " to " + decimal(maximum));
    require(step > 0.0f && step <= maximum - minimum, inner(place, "step"), "a step above 0 that fits into the range",
            decimal(step));
}

void Check::level(float level, float minimum, float maximum, const std::string& place)
{
    require(level >= minimum && level <= maximum, place, "a level from " + decimal(minimum) + " to " + decimal(maximum),
            decimal(level));
}

void Check::channelCount(std::size_t count, const std::string& place)
{
    require(count >= 1 && count <= maximumChannels, place, "1 to " + std::to_string(maximumChannels) + " channels",
            std::to_string(count));
}
}

std::vector<MachineProblem> checkMachine(const Machine& machine)
{
    return Check(machine).run();
}
}
