// The tables of what is planned for a machine: events, faults and latencies.
#include "simulator/machine/file/codecs.h"
#include "simulator/machine/file/propertycodecs.h"
#include "simulator/machine/valuetext.h"

#include <algorithm>
#include <tuple>

namespace sim
{
namespace
{
using EventKind = ScriptEvent::Kind;

/// A group of events with the same keys.
struct EventGroup
{
    const char* name;
    std::vector<EventKind> events;
};

const std::vector<EventGroup>& eventGroups()
{
    static const std::vector<EventGroup> groups = {
        {"endpointEvent", {EventKind::added, EventKind::removed, EventKind::plugged, EventKind::unplugged}},
        {"stateEvent", {EventKind::stateChanged}},
        {"defaultEvent", {EventKind::defaultChanged}},
        {"volumeEvent", {EventKind::volumeChanged}},
        {"propertyEvent", {EventKind::propertyChanged}},
    };
    return groups;
}

/// The name of an event, of which the schema admits those of one group.
struct EventCodec
{
    EventGroup group;

    EventKind read(const JsonCursor& cursor) const { return cursor.named(eventNames); }

    JsonValue write(EventKind kind) const { return JsonValue::ofString(nameOf(eventNames, kind)); }

    JsonValue schema() const
    {
        JsonValue names = JsonValue::array();
        for (const EventKind kind : group.events)
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

/// A kind with the keys that all events have.
template<class EndpointCodec>
Kind<ScriptEvent> newEventKind(std::size_t group, const EndpointCodec& endpoint, const std::string& endpointDescription,
                               const std::string& description = {})
{
    Kind<ScriptEvent> kind(eventGroups()[group].name, description);
    kind.optional("afterMilliseconds", &ScriptEvent::afterMilliseconds, NumberCodec(),
                  "Counted from the event before, or from the start of the script.")
        .required("event", &ScriptEvent::kind, EventCodec{eventGroups()[group]})
        .required("endpoint", &ScriptEvent::endpoint, endpoint, endpointDescription);
    return kind;
}

Kind<ScriptEvent> volumeEventKind()
{
    return newEventKind(3, StringCodec(), "", "At least one of level and muted is needed.")
        .optional("level", &ScriptEvent::level, optionalCodec(DecibelsCodec()), "Of all channels, in decibels.")
        .optional("muted", &ScriptEvent::muted, optionalCodec(BooleanCodec()));
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
void addOutcome(Kind<FaultRule>& kind)
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
    const JsonValue schema = JsonValue::object()
                                 .add("type", JsonValue::ofString("string"))
                                 .add("pattern", JsonValue::ofString("^(0x[0-9A-Fa-f]{8}|null|throw)$"));
    kind.add({"result", true,
              annotated(schema,
                        "An HRESULT; null: success with null pointers; throw: an exception leaves the operation.", {})},
             {read, write, isEqual});
}

Kind<FaultRule> faultKind()
{
    Kind<FaultRule> kind("faultRule");
    kind.required("operation", &FaultRule::operation, StringCodec(),
                  "IMMDevice::Activate, CoCreateInstance; a bare Release: that of every interface.")
        .optional("object", &FaultRule::object, StringCodec(), "Id of a device or part; *: any.")
        .optional("argument", &FaultRule::argument, StringCodec(),
                  "The first argument as the journal writes it, such as IAudioClient.")
        .optional("call", &FaultRule::call, NumberCodec(), "The n-th matching call; 0: every call.");
    addOutcome(kind);
    return kind;
}
}

template<>
const std::vector<Kind<ScriptEvent>>& kindsOf<ScriptEvent>()
{
    static const std::vector<Kind<ScriptEvent>> kinds = {
        newEventKind(0, StringCodec(), ""),
        newEventKind(1, StringCodec(), "").required("state", &ScriptEvent::state, StateCodec()),
        newEventKind(2, EndpointOrNoneCodec(), "null: the flow has no default any more.")
            .required("flow", &ScriptEvent::flow, nameCodec(flowNames, "flow"))
            .required("role", &ScriptEvent::role, nameCodec(roleNames, "role")),
        volumeEventKind(),
        newEventKind(4, StringCodec(), "")
            .required("property", &ScriptEvent::key, PropertyKeyCodec())
            .required("value", &ScriptEvent::value, PropertyValueCodec()),
    };
    return kinds;
}

const Kind<ScriptEvent>& eventKind(ScriptEvent::Kind kind)
{
    const std::vector<EventGroup>& groups = eventGroups();
    const auto contains = [&](const EventGroup& group)
    { return std::count(group.events.begin(), group.events.end(), kind) != 0; };
    const auto found = std::find_if(groups.begin(), groups.end(), contains);
    return kindsOf<ScriptEvent>().at(static_cast<std::size_t>(found - groups.begin()));
}

template<>
const std::vector<Kind<FaultRule>>& kindsOf<FaultRule>()
{
    static const std::vector<Kind<FaultRule>> kinds = {faultKind()};
    return kinds;
}

template<>
const std::vector<Kind<LatencyRule>>& kindsOf<LatencyRule>()
{
    static const std::vector<Kind<LatencyRule>> kinds = {
        Kind<LatencyRule>("latencyRule")
            .required("operation", &LatencyRule::operation, StringCodec(),
                      "As in faults; *: every call that no other rule names.")
            .required("microseconds", &LatencyRule::microseconds, NumberCodec())};
    return kinds;
}
}
