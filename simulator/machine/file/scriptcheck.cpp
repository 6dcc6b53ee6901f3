// The checks of a machine's script, faults and latencies.
#include "simulator/machine/file/machinecheck.h"
#include "simulator/machine/operations.h"

namespace sim
{
namespace
{
/// Whether the event happens to the whole machine, not to one endpoint.
bool isOfMachine(ScriptEvent::Kind kind)
{
    using Kind = ScriptEvent::Kind;
    return kind == Kind::wake || kind == Kind::serviceStop || kind == Kind::serviceStart || kind == Kind::remoteLogon;
}
}

void MachineCheck::script()
{
    for (std::size_t index = 0; index < m_machine.script.size(); ++index)
        event(m_machine.script[index], inner("/script", index));
}

void MachineCheck::event(const ScriptEvent& event, const std::string& place)
{
    const bool isDefault = event.kind == ScriptEvent::Kind::defaultChanged;
    const Endpoint* endpoint = m_machine.endpoint(event.endpoint);
    const bool needsNone = isOfMachine(event.kind) || (isDefault && event.endpoint.empty());
    const bool hasEndpoint = endpoint != nullptr || needsNone;
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

void MachineCheck::volumeEvent(const ScriptEvent& event, const Endpoint& endpoint, const std::string& place)
{
    const bool hasVolume = require(endpoint.volume.has_value(), inner(place, "endpoint"), "an endpoint with a volume",
                                   inQuotes(event.endpoint));
    require(event.level || event.muted, place, "\"level\" or \"muted\"", "an object without them");
    if (event.level && hasVolume)
        level(*event.level, endpoint.volume->minimum, endpoint.volume->maximum, inner(place, "level"));
}

void MachineCheck::faults()
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
        if (rule.after)
            require(!nameOf(eventNames, *rule.after).empty(), inner(place, "after"), oneOf(eventNames),
                    std::to_string(static_cast<int>(*rule.after)));
    }
}

void MachineCheck::latency()
{
    std::set<std::pair<std::string, std::string>> known;
    for (std::size_t index = 0; index < m_machine.latency.size(); ++index)
    {
        const auto& [operation, microseconds, argument] = m_machine.latency[index];
        const std::string place = inner(inner("/latency", index), "operation");
        const bool isPlatforms = operation == "*" || isOperation(operation);
        require(isPlatforms, place, "\"*\" or an operation of the simulated platform",
                inQuotes(operation) + (isPlatforms ? "" : operationSuggestion(operation)));
        require(known.insert({operation, argument}).second, place, "each operation once",
                "duplicate " + inQuotes(operation));
    }
}
}
