#include "tools/sonavit/output/eventjson.h"

#include "tools/sonavit/output/modeljson.h"
#include "tools/sonavit/output/timetext.h"

namespace sonavit::program
{
namespace
{
/// The name of the event: what scripts look for most has a name of its own.
const char* eventKey(const Event& event)
{
    switch (event.kind)
    {
    case Event::Kind::endpointAdded:
        return "added";
    case Event::Kind::endpointRemoved:
        return "removed";
    case Event::Kind::endpointReappeared:
        return "reappeared";
    case Event::Kind::endpointMoved:
        return "moved";
    case Event::Kind::endpointChanged:
        break;
    default:
        return keyOf(event.kind);
    }
    switch (event.field.value_or(EndpointField::problems))
    {
    case EndpointField::state:
        return "stateChanged";
    case EndpointField::volume:
        return "volumeChanged";
    case EndpointField::description:
    case EndpointField::interfaceName:
        return "nameChanged";
    case EndpointField::format:
        return "formatChanged";
    default:
        return "changed";
    }
}

Json volumeWithMuteJson(const Endpoint& endpoint)
{
    return endpoint.volume() ? volumeJson(endpoint.volume()).set("muted", mutedJson(endpoint.volume())) : Json();
}

Json fieldJson(const Snapshot& snapshot, const Endpoint& endpoint, EndpointField field)
{
    switch (field)
    {
    case EndpointField::state:
        return stateJson(endpoint.state());
    case EndpointField::volume:
        return volumeWithMuteJson(endpoint);
    case EndpointField::description:
    case EndpointField::interfaceName:
        return endpoint.name();
    case EndpointField::format:
        return formatJson(endpoint.format());
    default:
        return endpointDetailsJson(snapshot, endpoint);
    }
}

Json hardwareJson(const std::optional<Hardware>& hardware)
{
    if (!hardware)
        return {};
    Json endpoints = Json::array();
    for (const Hardware::EndpointControls& known : hardware->controls)
    {
        Json controls = Json::array();
        for (const Control& control : known.controls)
            controls.append(controlJson(control));
        endpoints.append(Json::object({{"endpoint", known.endpoint.text()}, {"controls", controls}}));
    }
    Json selectors = Json::array();
    for (const Selector& selector : hardware->selectors)
        selectors.append(Json::object({{"id", selector.id.text()}, {"selection", selector.selection}}));
    return Json::object({{"endpoints", endpoints}, {"selectors", selectors}});
}

Json nameJson(const std::optional<Endpoint>& endpoint)
{
    return endpoint ? endpointNameJson(*endpoint) : Json();
}

Json cardOrNull(const std::optional<Card>& card)
{
    return card ? cardJson(*card) : Json();
}

/// Why the default is not known after the event; null if it is known, be it that there is none.
Json unknownDefaultJson(const Event& event, const Snapshot& after)
{
    const std::optional<Problem> problem = after.problemWithDefault(*event.flow, *event.role);
    return problem ? problemJson(*problem) : Json();
}

/// Adds before and after, whose kind depends on the event.
void addValues(Json& result, const Event& event, const Change& change)
{
    switch (event.kind)
    {
    case Event::Kind::endpointChanged:
        result.set("field", keyOf(*event.field))
            .set("before", fieldJson(change.before(), *event.before, *event.field))
            .set("after", fieldJson(change.after(), *event.after, *event.field));
        break;
    case Event::Kind::defaultChanged:
        result.set("flow", flowJson(*event.flow))
            .set("role", keyOf(*event.role))
            .set("before", nameJson(event.before))
            .set("after", nameJson(event.after))
            .set("problem", unknownDefaultJson(event, change.after()));
        break;
    case Event::Kind::hardwareChanged:
        result.set("before", hardwareJson(event.hardwareBefore)).set("after", hardwareJson(event.hardwareAfter));
        break;
    case Event::Kind::serviceChanged:
        result.set("before", Json()).set("after", event.service ? Json(keyOf(*event.service)) : Json());
        break;
    case Event::Kind::problemsChanged:
        result.set("before", Json()).set("after", problemsJson(event.problems));
        break;
    case Event::Kind::cardAdded:
    case Event::Kind::cardRemoved:
    case Event::Kind::cardMoved:
    case Event::Kind::cardChanged:
        result.set("before", cardOrNull(event.cardBefore)).set("after", cardOrNull(event.cardAfter));
        break;
    default:
        result.set("before", event.before ? endpointDetailsJson(change.before(), *event.before) : Json())
            .set("after", event.after ? endpointDetailsJson(change.after(), *event.after) : Json());
        break;
    }
}
}

Json eventJson(const Event& event, const Change& change, const Card& card, const std::optional<std::string>& machine)
{
    const bool isCardKnown = !card.id().isEmpty() || !card.endpoints().empty();
    const bool isDefault = event.kind == Event::Kind::defaultChanged; // of nothing, if there is none any more
    const std::optional<Endpoint> endpoint = event.after || isDefault ? event.after : event.before;
    Json result = machineDocument(machine)
                      .set("time", universalTimeText(change.after().time()))
                      .set("event", eventKey(event))
                      .set("card", isCardKnown ? cardJson(card) : Json())
                      .set("endpoint", nameJson(endpoint));
    addValues(result, event, change);
    return result.set("origin", keyOf(event.origin));
}
}
