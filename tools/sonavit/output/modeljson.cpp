#include "tools/sonavit/output/modeljson.h"

#include "tools/sonavit/output/endpointproblems.h"
#include "tools/sonavit/output/text.h"

namespace sonavit::program
{
namespace
{
/// The platform's levels have the precision of a float; more digits would not be its own.
Json numberJson(double value)
{
    return static_cast<float>(value);
}

Json decibelsJson(const std::optional<Decibels>& decibels)
{
    return decibels ? numberJson(decibels->value()) : Json();
}

Json percentJson(const std::optional<Percent>& percent)
{
    return percent ? Json(percent->rounded()) : Json();
}

Json channelsJson(const std::optional<std::vector<Level>>& channels)
{
    if (!channels)
        return {};
    Json result = Json::array();
    for (const Level& level : *channels)
        result.append(levelJson(level));
    return result;
}

Json colourJson(const std::optional<Colour>& colour)
{
    if (!colour)
        return {};
    constexpr const char* digits = "0123456789ABCDEF";
    std::string text = "#";
    for (const unsigned part : {colour->red, colour->green, colour->blue})
    {
        text += digits[part / 16];
        text += digits[part % 16];
    }
    return text;
}

Json rolesJson(Roles roles)
{
    Json result = Json::array();
    for (const Role role : roles.list())
        result.append(keyOf(role));
    return result;
}

template<class Value>
Json keyJson(const std::optional<Value>& value)
{
    return value ? Json(keyOf(*value)) : Json();
}

/// Null if the selection or the number of the input is unknown.
Json isSelectedJson(const Selector& selector, const SelectorInput& input)
{
    return selector.selection && input.number ? Json(*input.number == *selector.selection) : Json();
}

Json inputJson(const Selector& selector, const SelectorInput& input)
{
    return Json::object({{"id", input.number},
                         {"name", input.name},
                         {"connector", input.connectorName},
                         {"jack", kindJson(input.connectorType)},
                         {"isSelected", isSelectedJson(selector, input)}});
}
}

Json flowJson(Flow flow)
{
    return keyOf(flow);
}

Json stateJson(const std::optional<State>& state)
{
    return keyJson(state);
}

Json textsJson(const std::vector<std::string>& texts)
{
    Json result = Json::array();
    for (const std::string& text : texts)
        result.append(text);
    return result;
}

Json guidJson(const std::optional<Guid>& guid)
{
    return guid ? Json(guid->text()) : Json();
}

Json kindJson(const std::optional<Guid>& type)
{
    return type ? Json(keyOf(kindOf(*type))) : Json();
}

Json levelJson(const Level& level)
{
    return Json::object({{"percent", percentJson(level.percent)}, {"decibels", decibelsJson(level.decibels)}});
}

Json rangeJson(const std::optional<LevelRange>& range)
{
    if (!range)
        return {};
    return Json::object(
        {{"min", numberJson(range->minimum)}, {"max", numberJson(range->maximum)}, {"step", numberJson(range->step)}});
}

Json volumeJson(const std::optional<Volume>& volume)
{
    if (!volume)
        return {};
    return levelJson(volume->master)
        .set("range", rangeJson(volume->range))
        .set("channels", channelsJson(volume->channels))
        .set("inHardware", volume->isInHardware);
}

Json mutedJson(const std::optional<Volume>& volume)
{
    return volume ? Json(volume->isMuted) : Json();
}

Json formatJson(const std::optional<Format>& format)
{
    if (!format)
        return {};
    return Json::object({{"rate", format->rate},
                         {"bits", format->bits},
                         {"validBits", format->validBits},
                         {"channels", format->channels},
                         {"encoding", keyOf(format->encoding)},
                         {"channelMask", format->speakers}});
}

Json speakersJson(const std::optional<std::uint32_t>& mask)
{
    if (!mask)
        return {};
    return Json::object({{"mask", *mask}, {"names", textsJson(speakerNames(*mask))}});
}

Json jackJson(const Jack& jack)
{
    return Json::object({{"kind", kindJson(jack.type)},
                         {"type", guidJson(jack.type)},
                         {"formFactor", keyJson(jack.formFactor)},
                         {"colour", colourJson(jack.colour)},
                         {"colourName", jack.colour ? Json(jack.colour->name()) : Json()},
                         {"place", keyJson(jack.place)},
                         {"geometry", keyJson(jack.geometry)},
                         {"connection", keyJson(jack.connection)},
                         {"port", keyJson(jack.port)},
                         {"isConnected", jack.isConnected}});
}

Json channelsJson(const std::optional<std::vector<ControlChannel>>& channels)
{
    if (!channels)
        return {};
    Json result = Json::array();
    for (const ControlChannel& channel : *channels)
        result.append(levelJson(channel.level).set("range", rangeJson(channel.range)));
    return result;
}

Json problemJson(const Problem& problem)
{
    const std::string code = problem.codeText();
    return Json::object({{"operation", problem.operation()},
                         {"object", problem.object()},
                         {"code", code.empty() ? Json() : Json(code)},
                         {"sentence", problem.sentence()}});
}

Json problemsJson(const std::vector<Problem>& problems)
{
    Json result = Json::array();
    for (const Problem& problem : problems)
        result.append(problemJson(problem));
    return result;
}

Json problemsJson(const std::vector<EndpointProblem>& problems)
{
    Json result = Json::array();
    for (const EndpointProblem& known : problems)
        result.append(problemJson(known.problem).set("field", keyOf(known.field)));
    return result;
}

Json endpointNameJson(const Endpoint& endpoint)
{
    return Json::object({{"id", endpoint.id().text()}, {"name", endpoint.name()}});
}

Json endpointJson(const Snapshot& snapshot, const Endpoint& endpoint)
{
    Json jacks = Json::array();
    for (const Jack& jack : endpoint.jacks())
        jacks.append(jackJson(jack));
    const std::optional<Guid> jackType = endpoint.jacks().empty() ? std::nullopt : endpoint.jacks().front().type;
    const bool isConsoleKnown = !snapshot.problemWithDefault(endpoint.flow());
    const bool areRolesKnown = problemsWithDefaults(snapshot, endpoint.flow()).empty();
    return endpointNameJson(endpoint)
        .set("description", endpoint.description())
        .set("interfaceName", endpoint.interfaceName())
        .set("flow", flowJson(endpoint.flow()))
        .set("jack", kindJson(jackType))
        .set("jackType", guidJson(jackType))
        .set("jacks", jacks)
        .set("state", stateJson(endpoint.state()))
        .set("isDefault", isConsoleKnown ? Json(endpoint.roles().contains(Role::console)) : Json())
        .set("defaultFor", areRolesKnown ? rolesJson(endpoint.roles()) : Json())
        .set("volume", volumeJson(endpoint.volume()))
        .set("muted", mutedJson(endpoint.volume()))
        .set("problems", problemsJson(problemsOf(snapshot, endpoint)));
}

Json endpointDetailsJson(const Snapshot& snapshot, const Endpoint& endpoint)
{
    return endpointJson(snapshot, endpoint)
        .set("waveId", endpoint.waveId())
        .set("directSoundGuid", guidJson(endpoint.directSoundId()))
        .set("driverNodeStrongName", endpoint.driverNode())
        .set("format", formatJson(endpoint.format()))
        .set("speakers", speakersJson(endpoint.speakers()))
        .set("container", guidJson(endpoint.container()))
        .set("instancePath", endpoint.instancePath());
}

Json cardJson(const Card& card)
{
    return Json::object({{"id", card.id().text()}, {"instanceId", card.instanceId()}, {"name", card.title()}});
}

Json controlJson(const Control& control)
{
    return Json::object({{"id", control.id.text()},
                         {"name", control.name},
                         {"ownerName", control.ownerName},
                         {"ownerJack", kindJson(control.ownerType)},
                         {"ownerType", guidJson(control.ownerType)},
                         {"channels", channelsJson(control.channels)},
                         {"hasMute", control.hasMute},
                         {"muted", control.isMuted},
                         {"problems", problemsJson(control.problems)}});
}

Json selectorJson(const Card& card, const Selector& selector)
{
    Json inputs = Json::array();
    for (const SelectorInput& input : selector.inputs)
        inputs.append(inputJson(selector, input));
    return Json::object({{"id", selector.id.text()},
                         {"card", cardJson(card)},
                         {"device", Json::object({{"id", selector.deviceId}, {"name", selector.deviceName}})},
                         {"name", selector.name},
                         {"selection", selector.selection},
                         {"inputs", inputs},
                         {"problems", problemsJson(selector.problems)}});
}

Json machineDocument(const std::optional<std::string>& machine)
{
    return Json::document({{"machine", machine}});
}
}
