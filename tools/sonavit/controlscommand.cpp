#include "qor/exception.h"
#include "tools/sonavit/commands.h"
#include "tools/sonavit/endpointjson.h"
#include "tools/sonavit/endpointname.h"
#include "tools/sonavit/failure.h"
#include "tools/sonavit/hardwarecontrol.h"
#include "tools/sonavit/table.h"
#include "tools/sonavit/text.h"

namespace sonavit
{
namespace
{
using Align = Table::Column::Align;

/// The library finds the controls on a walk through the card's graph, which may lead out of it.
std::vector<HardwareControl> readControls(const Card& card, const Endpoint& endpoint)
{
    qor::Array<SoundCard::VolumeController> records;
    try
    {
        card.card.volumeController(endpoint.device, records);
    }
    catch (const qor::IndexOutOfBounds&)
    {
        throw OperationFailure("the way from " + endpoint.title() +
                               " leads out of what the card's graph knows, so its controls cannot be told");
    }
    std::vector<HardwareControl> controls;
    for (unsigned i = 0; i < records.size(); ++i)
        controls.push_back(readControl(records[i]));
    return controls;
}

std::string shortMuteWords(const HardwareControl& control)
{
    if (!control.hasMute)
        return "no mute";
    return muteWords(control.isMuted);
}

/// A control without channels, or one that does not tell them, still has a row.
void addRows(Table& table, const HardwareControl& control, std::size_t number)
{
    const Paint mutePaint = control.isMuted.value_or(false) ? Paint::red : Paint::none;
    const std::vector<ControlChannel> blank(1);
    const bool hasChannels = !control.channels.empty();
    const std::vector<ControlChannel>& channels = hasChannels ? control.channels : blank;
    for (std::size_t i = 0; i < channels.size(); ++i)
    {
        const bool isFirst = i == 0;
        table.add({{isFirst ? std::to_string(number) : "", Paint::dim},
                   {isFirst ? printable(control.ownerName.value_or(nothing)) : "", Paint::bold},
                   {isFirst ? kindWords(control.ownerType) : "", Paint::none},
                   {hasChannels ? std::to_string(i + 1) : nothing, Paint::dim},
                   {percentText(channels[i].level.percent), Paint::none},
                   {decibelText(channels[i].level.decibels), Paint::none},
                   {rangeWords(channels[i].range), Paint::none},
                   {isFirst ? shortMuteWords(control) : "", mutePaint}});
    }
}

void showTable(const Environment& environment, const EndpointLevel& own, const std::vector<HardwareControl>& controls)
{
    Table table({{Align::right, 0, 0, 0},
                 {Align::left, 2, 0, 12},
                 {Align::left, 2, Table::goodToHave, 0},
                 {Align::right, 2, 0, 0},
                 {Align::right, 2, 0, 0},
                 {Align::right, 2, 0, 0},
                 {Align::left, 2, 2, 24},
                 {Align::left, 2, 0, 0}});
    const std::vector<std::string> titles = {"#", "CONTROL", "JACK", "CHANNEL", "LEVEL", "DECIBELS", "RANGE", "MUTE"};
    std::vector<Table::Cell> header;
    for (const std::string& title : titles)
        header.push_back({title, Paint::dim});
    table.add(header);
    table.add({{"", Paint::none},
               {"endpoint itself", Paint::none},
               {"", Paint::none},
               {"all", Paint::dim},
               {percentText(own.master.percent), Paint::none},
               {decibelText(own.master.decibels), Paint::none},
               {rangeWords(own.range), Paint::none},
               {muteWords(own.isMuted), own.isMuted.value_or(false) ? Paint::red : Paint::none}});
    for (std::size_t i = 0; i < controls.size(); ++i)
        addRows(table, controls[i], i + 1);
    for (const std::string& line : table.lines(environment.width, environment.hasColours))
        environment.out << line << "\n";
}
}

void runControls(Context& context)
{
    std::vector<Card> cards = readCards();
    const EndpointOfCard found = findEndpoint(cards, context.arguments.endpoint);
    const std::vector<HardwareControl> controls = readControls(found.card, found.endpoint);
    const EndpointLevel own = readLevel(found.endpoint.device);
    const Environment& environment = context.environment;
    if (context.arguments.isJson)
    {
        Json list = Json::array();
        for (const HardwareControl& control : controls)
            list.append(controlJson(control));
        const Json answer = Json::document({{"endpoint", found.endpoint.id},
                                            {"name", found.endpoint.name()},
                                            {"controls", list},
                                            {"endpointVolume", volumeWithChannelsJson(own)},
                                            {"endpointMuted", own.isMuted}});
        environment.out << answer.text() << "\n";
        return;
    }
    environment.out << painted(found.endpoint.title(), Paint::bold, environment.hasColours) << ", "
                    << counted(controls.size(), "hardware control") << "\n";
    showTable(environment, own, controls);
}
}
