#include "qor/exception.h"
#include "tools/sonavit/accountrights.h"
#include "tools/sonavit/commands/commands.h"
#include "tools/sonavit/failure.h"
#include "tools/sonavit/hardwarecontrol.h"
#include "tools/sonavit/output/modeljson.h"
#include "tools/sonavit/output/modelwords.h"
#include "tools/sonavit/output/table.h"
#include "tools/sonavit/output/text.h"

namespace sonavit::program
{
namespace
{
using Align = Table::Column::Align;

/// The library finds the controls on a walk through the card's graph, which may lead out of it.
std::vector<HardwareControl> readControls(const Card& card, const Endpoint& endpoint)
{
    const std::string sentence = "the hardware controls of " + shortTitleWords(endpoint) + " cannot be read: ";
    qor::Array<SoundCard::VolumeController> records;
    try
    {
        card.card.volumeController(endpoint.device, records);
    }
    catch (const qor::IndexOutOfBounds&)
    {
        throw OperationFailure(sentence + "the path leads to a part that the card's graph does not contain");
    }
    catch (const qor::AssertionFailure&)
    {
        throw OperationFailure(sentence + "the system reported success without a result");
    }
    std::vector<HardwareControl> controls;
    for (unsigned i = 0; i < records.size(); ++i)
        controls.push_back(readControl(records[i]));
    return controls;
}

/// "on" and "off", as `mute` takes them.
std::string shortMuteWords(const std::optional<bool>& isMuted)
{
    if (!isMuted)
        return nothing;
    return *isMuted ? "on" : "off";
}

std::string spanWords(const std::optional<LevelRange>& range)
{
    return range ? decimalText(range->minimum, 2) + " to " + decimalText(range->maximum, 2) + " dB" : nothing;
}

std::string stepWords(const std::optional<LevelRange>& range)
{
    return range ? decimalText(range->step, 2) : nothing;
}

/// The cells from the channel to the step.
void addLevel(std::vector<Table::Cell>& row, const std::string& channel, const Level& level,
              const std::optional<LevelRange>& range)
{
    row.push_back({channel, Paint::dim});
    row.push_back({percentText(level.percent), Paint::none});
    row.push_back({decibelText(level.decibels), Paint::none});
    row.push_back({spanWords(range), Paint::none});
    row.push_back({stepWords(range), Paint::none});
}

Table::Cell muteCell(const std::string& words, const std::optional<bool>& isMuted)
{
    return {words, isMuted.value_or(false) ? Paint::red : Paint::none};
}

/// A control without channels, or one that does not report them, still has a row.
void addRows(Table& table, const HardwareControl& control)
{
    const std::vector<ControlChannel> blank(1);
    const bool hasChannels = control.channels && !control.channels->empty();
    const std::vector<ControlChannel>& channels = hasChannels ? *control.channels : blank;
    for (std::size_t i = 0; i < channels.size(); ++i)
    {
        const bool isFirst = i == 0;
        std::vector<Table::Cell> row = {{isFirst ? printable(control.ownerName.value_or(nothing)) : "", Paint::bold},
                                        {isFirst ? kindWords(control.ownerType) : "", Paint::none}};
        addLevel(row, hasChannels ? std::to_string(i + 1) : nothing, channels[i].level, channels[i].range);
        const std::string mute = control.hasMute ? shortMuteWords(control.isMuted) : "none";
        row.push_back(isFirst ? muteCell(mute, control.isMuted) : Table::Cell());
        table.add(row);
    }
}

void showTable(const Environment& environment, const EndpointLevel& own, const std::vector<HardwareControl>& controls)
{
    Table table({{Align::left, 0, 0, 12, 6, ""},
                 {Align::left, 2, 2, 0, 0, "jack"},
                 {Align::right, 2, 0, 0, 0, ""},
                 {Align::right, 2, 0, 0, 0, ""},
                 {Align::right, 2, 1, 0, 0, "decibels"},
                 {Align::right, 2, 3, 0, 0, "range"},
                 {Align::right, 2, 4, 0, 0, "step"},
                 {Align::left, 2, 0, 0, 0, ""}});
    std::vector<Table::Cell> header;
    for (const char* const title : {"CONTROL", "JACK", "CH", "LEVEL", "DECIBELS", "RANGE", "STEP", "MUTE"})
        header.push_back({title, Paint::dim});
    table.add(header);
    std::vector<Table::Cell> row = {{"endpoint", Paint::none}, {}};
    addLevel(row, "all", own.master, own.range);
    row.push_back(muteCell(shortMuteWords(own.isMuted), own.isMuted));
    table.add(row);
    for (const HardwareControl& control : controls)
        addRows(table, control);
    for (const std::string& line : table.lines(environment.width, environment.hasColours))
        environment.out << line << "\n";
    for (const std::string& line : leftOutNote(table.leftOut(environment.width), environment.width))
        environment.out << painted(line, Paint::dim, environment.hasColours) << "\n";
}
}

void runControls(Context& context)
{
    std::vector<Card> cards = readCards();
    const EndpointOfCard found = requestedEndpoint(context, cards);
    const std::vector<HardwareControl> controls = readControls(found.card, found.endpoint);
    const EndpointLevel own = readLevel(found.endpoint.device);
    const Environment& environment = context.environment;
    if (context.arguments.isJson)
    {
        Json list = Json::array();
        for (const HardwareControl& control : controls)
            list.append(controlJson(control));
        const Json answer = Json::document({{"machine", context.session.machineName()},
                                            {"endpoint", found.endpoint.id},
                                            {"name", found.endpoint.name()},
                                            {"controls", list},
                                            {"endpointVolume", volumeWithChannelsJson(own)},
                                            {"endpointMuted", own.isMuted}});
        environment.out << answer.text() << "\n";
        return;
    }
    environment.out << painted(titleWords(found.endpoint), Paint::bold, environment.hasColours) << ", "
                    << counted(controls.size(), "hardware control") << "\n";
    showTable(environment, own, controls);
}
}
