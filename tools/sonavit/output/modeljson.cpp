#include "tools/sonavit/output/modeljson.h"

namespace sonavit::program
{
namespace
{
Json channelsJson(const std::optional<std::vector<ControlChannel>>& channels)
{
    if (!channels)
        return {};
    Json result = Json::array();
    for (const ControlChannel& channel : *channels)
    {
        result.append(Json::object({{"decibels", channel.level.decibels},
                                    {"percent", channel.level.percent},
                                    {"range", rangeJson(channel.range)}}));
    }
    return result;
}
}

Json rangeJson(const std::optional<LevelRange>& range)
{
    if (!range)
        return {};
    return Json::object({{"min", range->minimum}, {"max", range->maximum}, {"step", range->step}});
}

Json volumeJson(const EndpointLevel& level)
{
    if (!level.isThere)
        return {};
    return Json::object({{"percent", level.master.percent},
                         {"decibels", level.master.decibels},
                         {"range", rangeJson(level.range)},
                         {"channels", level.channels}});
}

Json volumeWithChannelsJson(const EndpointLevel& level)
{
    Json result = volumeJson(level);
    if (!level.isThere)
        return result;
    Json levels = Json::array();
    for (const Level& channel : level.channelLevels)
        levels.append(Json::object({{"percent", channel.percent}, {"decibels", channel.decibels}}));
    return result.set("levels", level.channels ? levels : Json());
}

Json endpointJson(const Endpoint& endpoint, const EndpointLevel& level)
{
    return Json::object({{"id", endpoint.id},
                         {"name", endpoint.name()},
                         {"description", endpoint.description},
                         {"flow", flowKey(endpoint.flow)},
                         {"jack", kindKey(endpoint.jackType)},
                         {"jackType", typeText(endpoint.jackType)},
                         {"state", stateKey(endpoint.state)},
                         {"isDefault", isDefault(endpoint)},
                         {"volume", volumeJson(level)},
                         {"muted", level.isMuted}});
}

Json endpointDocument(const std::optional<std::string>& machine, const Endpoint& endpoint)
{
    return Json::document({{"machine", machine}, {"endpoint", endpoint.id}, {"name", endpoint.name()}});
}

Json cardJson(const Card& card)
{
    return Json::object({{"id", card.id}, {"instanceId", card.instanceId}, {"name", card.name}});
}

Json controlJson(const HardwareControl& control)
{
    return Json::object({{"ownerName", control.ownerName},
                         {"ownerJack", kindKey(control.ownerType)},
                         {"ownerType", typeText(control.ownerType)},
                         {"channels", channelsJson(control.channels)},
                         {"hasMute", control.hasMute},
                         {"muted", control.isMuted}});
}
}
