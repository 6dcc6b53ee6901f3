// The checks of a machine's script, faults and latencies.
#include "simulator/machine/file/machinecheck.h"
#include "simulator/machine/operations.h"

#include <set>
#include <utility>

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
        event(m_machine.script[index], FilePlace(m_file, "script", index));
}

void MachineCheck::event(const ScriptEvent& event, const FilePlace& place)
{
    const bool isDefault = event.kind == ScriptEvent::Kind::defaultChanged;
    const auto found = m_endpoints.find(event.endpoint);
    const Endpoint* const endpoint = found == m_endpoints.end() ? nullptr : found->second;
    const bool needsNone = isOfMachine(event.kind) || (isDefault && event.endpoint.empty());
    if (endpoint == nullptr && !needsNone)
        report(FilePlace(place, "endpoint"), "the id of an endpoint", inQuotes(event.endpoint));
    if (isDefault)
    {
        requireName(flowNames, event.flow, FilePlace(place, "flow"));
        requireName(roleNames, event.role, FilePlace(place, "role"));
    }
    if (isDefault && endpoint != nullptr && endpoint->flow != event.flow)
        report(FilePlace(place, "flow"), "the flow of the endpoint", inQuotes(nameOf(flowNames, event.flow)));
    if ((event.state & ~allStates) != 0)
        report(FilePlace(place, "state"), stateRange, std::to_string(event.state));
    propertyValue(event.value, FilePlace(place, "value"));
    if (event.kind == ScriptEvent::Kind::volumeChanged && endpoint != nullptr)
        volumeEvent(event, *endpoint, place);
}

void MachineCheck::volumeEvent(const ScriptEvent& event, const Endpoint& endpoint, const FilePlace& place)
{
    if (!endpoint.volume)
        report(FilePlace(place, "endpoint"), "an endpoint with a volume", inQuotes(event.endpoint));
    if (!event.level && !event.muted)
        report(place, "\"level\" or \"muted\"", "an object without them");
    if (event.level && endpoint.volume)
        level(*event.level, endpoint.volume->minimum, endpoint.volume->maximum, FilePlace(place, "level"));
}

void MachineCheck::faults()
{
    for (std::size_t index = 0; index < m_machine.faults.size(); ++index)
    {
        const FaultRule& rule = m_machine.faults[index];
        const FilePlace place(m_file, "faults", index);
        if (!isOperation(rule.operation))
            report(FilePlace(place, "operation"), "an operation of the simulated platform",
                   inQuotes(rule.operation) + operationSuggestion(rule.operation));
        if (rule.object != "*" && m_devices.count(rule.object) == 0 && m_parts.count(rule.object) == 0)
            report(FilePlace(place, "object"), "\"*\" or the id of a device or part", inQuotes(rule.object));
        if (rule.after)
            requireName(eventNames, *rule.after, FilePlace(place, "after"));
    }
}

void MachineCheck::latency()
{
    std::set<std::pair<std::string_view, std::string_view>> known;
    for (std::size_t index = 0; index < m_machine.latency.size(); ++index)
    {
        const auto& [operation, microseconds, argument] = m_machine.latency[index];
        const FilePlace rule(m_file, "latency", index);
        const FilePlace place(rule, "operation");
        if (operation != "*" && !isOperation(operation))
            report(place, "\"*\" or an operation of the simulated platform",
                   inQuotes(operation) + operationSuggestion(operation));
        if (!known.insert({operation, argument}).second)
            report(place, "each operation once", "duplicate " + inQuotes(operation));
    }
}
}
