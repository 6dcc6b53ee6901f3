// The tables of a machine's script, faults and latencies.
#include "simulator/machine/file/codecs.h"
#include "simulator/machine/file/propertycodecs.h"
#include "simulator/machine/valuetext.h"

#include <algorithm>
#include <stdexcept>
#include <tuple>

namespace sim
{
namespace
{
using EventKind = ScriptEvent::Kind;

/// The name of an event, of which the schema admits some.
struct EventCodec
{
    std::vector<EventKind> admitted;

    EventKind read(const JsonCursor& cursor) const { return cursor.named(eventNames); }

    JsonValue write(EventKind kind) const { return JsonValue::ofString(nameOf(eventNames, kind)); }

    JsonValue schema() const
    {
        JsonValue names = JsonValue::array();
        for (const EventKind kind : admitted)
            names.elements.push_back(write(kind));
        return JsonValue::object().add("enum", names);
    }
};

/// The id of an endpoint; null means an empty one.
struct EndpointOrNoneCodec
{
    std::string read(const JsonCursor& cursor) const { return cursor.stringOrNull().value_or(""); }

    JsonValue write(const std::string& id) const { return id.empty() ? JsonValue() : JsonValue::ofString(id); }

    JsonValue schema() const { return NullableStringCodec().schema(); }
};

/// A group of events with the same keys.
struct EventGroup
{
    std::vector<EventKind> events;
    FieldTable<ScriptEvent> form;
};

/// The form of a group, with the keys that all events have.
FieldTable<ScriptEvent> newForm(const std::string& name, const std::vector<EventKind>& events,
                                const std::string& description = {})
{
    return FieldTable<ScriptEvent>(name, description)
        .optional("afterMilliseconds", &ScriptEvent::afterMilliseconds, NumberCodec(),
                  "Counted from the event before, or from the start of the script.")
        .required("event", &ScriptEvent::kind, EventCodec{events});
}

/// A group whose form contains the keys that all events of endpoints have.
template<class EndpointCodec>
EventGroup newGroup(const std::string& name, const std::vector<EventKind>& events, const EndpointCodec& endpoint,
                    const char* endpointDescription = "", const char* description = "")
{
    FieldTable<ScriptEvent> form = newForm(name, events, description);
    form.required("endpoint", &ScriptEvent::endpoint, endpoint, endpointDescription);
    return {events, form};
}

EventGroup endpointEvents()
{
    return newGroup("endpointEvent",
                    {EventKind::added, EventKind::removed, EventKind::plugged, EventKind::unplugged, EventKind::plugUsb,
                     EventKind::unplugUsb, EventKind::plugJack, EventKind::unplugJack, EventKind::driverUpdate},
                    StringCodec());
}

EventGroup machineEvents()
{
    const std::vector<EventKind> events = {EventKind::wake, EventKind::serviceStop, EventKind::serviceStart,
                                           EventKind::remoteLogon};
    return {events, newForm("machineEvent", events)};
}

EventGroup stateEvents()
{
    EventGroup group = newGroup("stateEvent", {EventKind::stateChanged}, StringCodec());
    group.form.required("state", &ScriptEvent::state, StateCodec());
    return group;
}

EventGroup defaultEvents()
{
    EventGroup group = newGroup("defaultEvent", {EventKind::defaultChanged}, EndpointOrNoneCodec(),
                                "null: the flow has no default any more.");
    group.form.required("flow", &ScriptEvent::flow, flowCodec).required("role", &ScriptEvent::role, roleCodec);
    return group;
}

EventGroup volumeEvents()
{
    EventGroup group = newGroup("volumeEvent", {EventKind::volumeChanged}, StringCodec(), "",
                                "At least one of level and muted is needed.");
    group.form.optional("level", &ScriptEvent::level, optionalCodec(DecibelsCodec()), "Of all channels, in decibels.")
        .optional("muted", &ScriptEvent::muted, optionalCodec(BooleanCodec()));
    return group;
}

EventGroup propertyEvents()
{
    EventGroup group = newGroup("propertyEvent", {EventKind::propertyChanged}, StringCodec());
    group.form.required("property", &ScriptEvent::key, PropertyKeyCodec())
        .required("value", &ScriptEvent::value, PropertyValueCodec());
    return group;
}

const std::vector<EventGroup>& eventGroups()
{
    static const auto& groups = *new std::vector<EventGroup>{endpointEvents(), stateEvents(),    defaultEvents(),
                                                             volumeEvents(),   propertyEvents(), machineEvents()};
    return groups;
}

/// The outcome of a fault: an HRESULT, or a word.
struct Outcome
{
    FaultRule::Outcome outcome;
    HRESULT result;
};

Outcome readOutcome(const JsonCursor& cursor, HRESULT usualResult)
{
    const std::string text = cursor.isString() ? cursor.string() : std::string();
    if (text == "null")
        return {FaultRule::Outcome::nullSuccess, usualResult};
    if (text == "throw")
        return {FaultRule::Outcome::thrown, usualResult};
    const std::optional<HRESULT> code = resultFromText(text);
    if (!code)
        cursor.fail("a result like \"0x80004005\", \"null\" or \"throw\"");
    return {FaultRule::Outcome::result, *code};
}

std::string outcomeText(const FaultRule& rule)
{
    switch (rule.outcome)
    {
    case FaultRule::Outcome::nullSuccess:
        return "null";
    case FaultRule::Outcome::thrown:
        return "throw";
    case FaultRule::Outcome::result:
        break;
    }
    return resultText(rule.result);
}

/// One key for two members of the data.
void addOutcome(FieldTable<FaultRule>& table)
{
    const auto read = [](const JsonCursor& cursor, FaultRule& rule)
    {
        const Outcome outcome = readOutcome(cursor, rule.result);
        rule.outcome = outcome.outcome;
        rule.result = outcome.result;
    };
    const auto write = [](const FaultRule& rule) { return JsonValue::ofString(outcomeText(rule)); };
    const auto isEqual = [](const FaultRule& left, const FaultRule& right)
    { return std::tie(left.outcome, left.result) == std::tie(right.outcome, right.result); };
    const auto schema = []
    {
        const JsonValue pattern = JsonValue::object()
                                      .add("type", JsonValue::ofString("string"))
                                      .add("pattern", JsonValue::ofString("^(0x[0-9A-Fa-f]{8}|null|throw)$"));
        return annotated(pattern,
                         "An HRESULT; null: success with null pointers; throw: an exception leaves the operation.", {});
    };
    table.add({"result", true, schema}, read, write, isEqual);
}

/// The event after which a fault holds; "start" is the start of the simulation.
struct AfterCodec
{
    std::optional<EventKind> read(const JsonCursor& cursor) const
    {
        if (cursor.isString() && cursor.string() == start)
            return std::nullopt;
        const std::optional<EventKind> event = cursor.isString() ? valueOf(eventNames, cursor.string()) : std::nullopt;
        if (!event)
            cursor.fail("\"start\" or the name of an event");
        return event;
    }

    JsonValue write(const std::optional<EventKind>& event) const
    {
        return JsonValue::ofString(event ? nameOf(eventNames, *event) : start);
    }

    JsonValue schema() const
    {
        JsonValue names = JsonValue::array({JsonValue::ofString(start)});
        for (const auto& event : eventNames)
            names.elements.push_back(JsonValue::ofString(std::string(event.name)));
        return JsonValue::object().add("enum", names);
    }

    const std::string start = "start";
};

FieldTable<FaultRule> faultTable()
{
    FieldTable<FaultRule> table("faultRule");
    table
        .required("operation", &FaultRule::operation, StringCodec(),
                  "IMMDevice::Activate, CoCreateInstance; a bare Release: that of every interface.")
        .optional(
            "object", &FaultRule::object, StringCodec(),
            "Id of a device or part, or another object name of the journal; *: any. PART incoming, PART outgoing, "
            "PART to PART, PART control INDEX: one list of parts, or one description of a control.")
        .optional("argument", &FaultRule::argument, StringCodec(),
                  "The first argument as the journal writes it, such as IAudioClient.")
        .optional("arguments", &FaultRule::arguments, listCodec(StringCodec()),
                  "The first arguments as the journal writes them; not together with argument.")
        .optional("call", &FaultRule::call, NumberCodec(), "The n-th matching call; 0: every call.")
        .optional("forMilliseconds", &FaultRule::forMilliseconds, NumberCodec(),
                  "How long the fault holds, from the event in after; 0: to the end.")
        .optional("after", &FaultRule::after, AfterCodec(),
                  "The kind of event after which the fault holds; each further one begins its time anew.");
    addOutcome(table);
    return table;
}
}

std::vector<const FieldTable<ScriptEvent>*> eventForms()
{
    std::vector<const FieldTable<ScriptEvent>*> forms;
    for (const EventGroup& group : eventGroups())
        forms.push_back(&group.form);
    return forms;
}

const FieldTable<ScriptEvent>& eventForm(ScriptEvent::Kind kind)
{
    for (const EventGroup& group : eventGroups())
    {
        if (std::count(group.events.begin(), group.events.end(), kind) != 0)
            return group.form;
    }
    throw std::logic_error("no group contains this kind of event");
}

template<>
const FieldTable<FaultRule>& fieldsOf<FaultRule>()
{
    static const auto& table = *new FieldTable<FaultRule>(faultTable());
    return table;
}

template<>
const FieldTable<LatencyRule>& fieldsOf<LatencyRule>()
{
    static const auto& table =
        *new FieldTable<LatencyRule>(FieldTable<LatencyRule>("latencyRule")
                                         .required("operation", &LatencyRule::operation, StringCodec(),
                                                   "As in faults; *: every call that no other rule names.")
                                         .optional("argument", &LatencyRule::argument, StringCodec(), "As in faults.")
                                         .required("microseconds", &LatencyRule::microseconds, NumberCodec()));
    return table;
}
}
