// The checks of a machine's script, faults and latencies.
#include "simulator/machine/file/machinecheck.h"
#include "simulator/machine/operations.h"
#include "simulator/machine/valuetext.h"

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

/// Whether the journal calls a collection of endpoints so: "endpoints(eAll, 15)".
bool isCollection(const std::string& name)
{
    for (const char* const flow : {"eRender", "eCapture", "eAll"})
    {
        const std::string start = std::string("endpoints(") + flow + ", ";
        const bool fits = name.size() > start.size() && name.compare(0, start.size(), start) == 0 && name.back() == ')';
        if (fits && numberFromText(name.substr(start.size(), name.size() - start.size() - 1)))
            return true;
    }
    return false;
}

/// What comes before @p end, if @p text ends with it.
std::optional<std::string_view> textBefore(std::string_view end, std::string_view text)
{
    const bool fits = text.size() > end.size() && text.substr(text.size() - end.size()) == end;
    return fits ? std::make_optional(text.substr(0, text.size() - end.size())) : std::nullopt;
}

std::size_t controlCount(const Part& part)
{
    return std::size_t{part.volume.has_value()} + std::size_t{part.mute.has_value()} +
           std::size_t{part.selector.has_value()} + part.furtherControls.size();
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
        if (!isObject(rule.object))
            report(FilePlace(place, "object"), "\"*\" or the id of a device or part", inQuotes(rule.object));
        if (!rule.argument.empty() && !rule.arguments.empty())
            report(FilePlace(place, "arguments"), "a fault without \"argument\"", inQuotes(rule.argument));
        if (rule.after)
            requireName(eventNames, *rule.after, FilePlace(place, "after"));
    }
}

bool MachineCheck::isObject(const std::string& name) const
{
    return name == "*" || name == "enumerator" || m_devices.count(name) != 0 || m_parts.count(name) != 0 ||
           isCollection(name) || isListOfParts(name) || isControl(name);
}

bool MachineCheck::isListOfParts(const std::string& name) const
{
    for (const char* const direction : {" incoming", " outgoing"})
    {
        const std::optional<std::string_view> part = textBefore(direction, name);
        if (part && m_parts.count(*part) != 0)
            return true;
    }
    constexpr std::string_view between = " to ";
    for (std::size_t at = name.find(between); at != std::string::npos; at = name.find(between, at + 1))
    {
        const std::string_view whole = name;
        if (m_parts.count(whole.substr(0, at)) != 0 && m_parts.count(whole.substr(at + between.size())) != 0)
            return true;
    }
    return false;
}

bool MachineCheck::isControl(const std::string& name) const
{
    constexpr std::string_view between = " control ";
    const std::size_t at = name.rfind(between);
    if (at == std::string::npos)
        return false;
    const auto part = m_parts.find(std::string_view(name).substr(0, at));
    const std::optional<std::uint32_t> index = numberFromText(name.substr(at + between.size()));
    return part != m_parts.end() && index && *index < controlCount(*part->second);
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
