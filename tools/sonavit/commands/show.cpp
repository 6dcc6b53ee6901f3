#include "libModuleCommon/guid.h"
#include "tools/sonavit/accountrights.h"
#include "tools/sonavit/commands/commands.h"
#include "tools/sonavit/endpointproperties.h"
#include "tools/sonavit/output/formatwords.h"
#include "tools/sonavit/output/modeljson.h"
#include "tools/sonavit/output/modelwords.h"
#include "tools/sonavit/output/table.h"
#include "tools/sonavit/output/text.h"

#include <utility>

namespace sonavit::program
{
namespace
{
using Lines = std::vector<std::pair<std::string, std::string>>;

std::string hexText(unsigned value)
{
    constexpr const char* digits = "0123456789ABCDEF";
    std::string result = "0x";
    for (int shift = 28; shift >= 0; shift -= 4)
        result += digits[(value >> shift) & 0xFu];
    return result;
}

std::string orNothing(const std::optional<std::string>& text)
{
    return text ? printable(*text) : nothing;
}

std::string rolesWords(const std::vector<std::string>& roles)
{
    return roles.empty() ? nothing : enumeration(roles);
}

std::string jackWords(const std::optional<GUID>& type)
{
    return type ? kindWords(type) + "  " + *typeText(type) : nothing;
}

std::string speakersText(const std::optional<unsigned>& mask)
{
    return mask ? speakerWords(*mask) + "  " + hexText(*mask) : nothing;
}

void addVolume(Lines& lines, const EndpointLevel& level)
{
    lines.emplace_back("volume", percentText(level.master.percent) + "  " + decibelText(level.master.decibels));
    lines.emplace_back("range", rangeWords(level.range));
    for (std::size_t channel = 0; channel < level.channelLevels.size(); ++channel)
    {
        const Level& own = level.channelLevels[channel];
        lines.emplace_back("channel " + std::to_string(channel + 1),
                           percentText(own.percent) + "  " + decibelText(own.decibels));
    }
    lines.emplace_back("mute", muteWords(level.isMuted));
}

Lines describe(const Card& card, Endpoint& endpoint, const EndpointProperties& properties)
{
    const std::string id = endpoint.id.empty() ? nothing : printable(endpoint.id);
    Lines lines = {{"card", printable(card.name)},
                   {"instance id", orNothing(card.instanceId)},
                   {"endpoint id", id},
                   {"short name", orNothing(endpoint.description)},
                   {"flow", flowWords(endpoint.flow)},
                   {"jack", jackWords(endpoint.jackType)},
                   {"state", stateWords(endpoint.state)},
                   {"default for", rolesWords(properties.defaultRoles)},
                   {"wave id", properties.waveId ? std::to_string(*properties.waveId) : nothing},
                   {"DirectSound", orNothing(typeText(properties.directSoundId))},
                   {"driver node", orNothing(properties.driverNode)},
                   {"format", formatWords(endpoint.device.deviceProperty().format)},
                   {"speakers", speakersText(properties.speakers)}};
    addVolume(lines, readLevel(endpoint.device));
    return lines;
}

Json textsJson(const std::vector<std::string>& texts)
{
    Json result = Json::array();
    for (const std::string& text : texts)
        result.append(text);
    return result;
}

Json speakersJson(const std::optional<unsigned>& mask)
{
    if (!mask)
        return {};
    return Json::object({{"mask", *mask}, {"names", textsJson(speakerNames(*mask))}});
}

Json showJson(const Context& context, const Card& card, Endpoint& endpoint, const EndpointProperties& properties)
{
    const EndpointLevel level = readLevel(endpoint.device);
    Json details = endpointJson(endpoint, level);
    details.set("volume", volumeWithChannelsJson(level))
        .set("friendlyName", endpoint.friendlyName)
        .set("defaultFor", textsJson(properties.defaultRoles))
        .set("waveId", properties.waveId)
        .set("directSoundGuid", typeText(properties.directSoundId))
        .set("driverNodeStrongName", properties.driverNode)
        .set("format", formatJson(endpoint.device.deviceProperty().format))
        .set("speakers", speakersJson(properties.speakers));
    return Json::document(
        {{"machine", context.session.machineName()}, {"card", cardJson(card)}, {"endpoint", details}});
}
}

void runShow(Context& context)
{
    std::vector<Card> cards = readCards();
    const EndpointOfCard found = requestedEndpoint(context, cards);
    const EndpointProperties properties = readProperties(found.endpoint);
    const Environment& environment = context.environment;
    if (context.arguments.isJson)
    {
        environment.out << showJson(context, found.card, found.endpoint, properties).text() << "\n";
        return;
    }
    environment.out << painted(titleWords(found.endpoint), Paint::bold, environment.hasColours) << "\n";
    Table table({{Table::Column::Align::left, 0, 0, 0}, {}});
    for (const auto& [key, value] : describe(found.card, found.endpoint, properties))
        table.add({{"  " + key, Paint::dim}, {value, Paint::none}});
    for (const std::string& line : table.lines(0, environment.hasColours))
        environment.out << line << "\n";
}
}
