#include "tools/sonavit/choice.h"
#include "tools/sonavit/commands/commands.h"
#include "tools/sonavit/failure.h"
#include "tools/sonavit/output/modeljson.h"
#include "tools/sonavit/output/modelwords.h"
#include "tools/sonavit/output/table.h"
#include "tools/sonavit/output/tableprinter.h"
#include "tools/sonavit/output/text.h"
#include "tools/sonavit/problemnote.h"
#include "tools/sonavit/simulationnote.h"

#include <algorithm>
#include <cstddef>
#include <iterator>

namespace sonavit::program
{
namespace
{
using Align = Table::Column::Align;

Found<Control> readControls(const Context& context, const CardEndpoint& place)
{
    Result<Found<Control>> controls = context.session.source().controls(place);
    if (!controls)
        raise(controls.problem(), "the hardware controls of " + shortTitleWords(place.endpoint) + " cannot be read");
    return *std::move(controls);
}

std::size_t countProblems(const Found<Control>& found)
{
    std::size_t count = found.problems.size();
    for (const Control& control : found.things)
        count += control.problems.size();
    return count;
}

/// Why something of the endpoint that is printed beside its controls is unknown: its name, or its own volume.
std::vector<EndpointProblem> problemsBeside(const Endpoint& endpoint)
{
    std::vector<EndpointProblem> problems = endpoint.problems();
    const auto isElsewhere = [](const EndpointProblem& known)
    {
        return known.field != EndpointField::description && known.field != EndpointField::interfaceName &&
               known.field != EndpointField::state && known.field != EndpointField::volume;
    };
    problems.erase(std::remove_if(problems.begin(), problems.end(), isElsewhere), problems.end());
    return problems;
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
    return range ? decimalText(static_cast<float>(range->minimum), 2) + " to " +
                       decimalText(static_cast<float>(range->maximum), 2) + " dB"
                 : nothing;
}

std::string stepWords(const std::optional<LevelRange>& range)
{
    return range ? decimalText(static_cast<float>(range->step), 2) : nothing;
}

/// The owner's name, and that of the node where it says more than that it is a volume.
std::string nameWords(const Control& control)
{
    const std::string own = printable(control.name.value_or(""));
    if (!control.ownerName)
        return own.empty() ? nothing : own;
    const std::string owner = printable(*control.ownerName);
    const bool beginsWithOwner = equalNoCase(own.substr(0, owner.size() + 1), owner + " ");
    const std::string rest = beginsWithOwner ? own.substr(owner.size() + 1) : own;
    const bool saysMore =
        !rest.empty() && !equalNoCase(rest, "volume") && !equalNoCase(rest, "level") && !equalNoCase(rest, owner);
    return saysMore ? owner + ", " + rest : owner;
}

/// The cells from the channel to the step.
void addLevel(std::vector<Table::Cell>& row, const std::string& channel, const Level& level,
              const std::optional<LevelRange>& range)
{
    row.push_back({channel, Paint::dim});
    row.push_back({percentWords(level.percent), Paint::none});
    row.push_back({decibelWords(level.decibels), Paint::none});
    row.push_back({spanWords(range), Paint::none});
    row.push_back({stepWords(range), Paint::none});
}

Table::Cell muteCell(const std::string& words, const std::optional<bool>& isMuted)
{
    return {words, isMuted.value_or(false) ? Paint::red : Paint::none};
}

/// A control without channels, or one that does not report them, still has a row.
void addRows(Table& table, const Control& control)
{
    const std::vector<ControlChannel> blank(1);
    const bool hasChannels = control.channels && !control.channels->empty();
    const std::vector<ControlChannel>& channels = hasChannels ? *control.channels : blank;
    for (std::size_t i = 0; i < channels.size(); ++i)
    {
        const bool isFirst = i == 0;
        std::vector<Table::Cell> row = {{isFirst ? nameWords(control) : "", Paint::bold},
                                        {isFirst ? kindWords(control.ownerType) : "", Paint::none}};
        addLevel(row, hasChannels ? std::to_string(i + 1) : nothing, channels[i].level, channels[i].range);
        const std::string mute = control.hasMute ? shortMuteWords(control.isMuted) : "none";
        row.push_back(isFirst ? muteCell(mute, control.isMuted) : Table::Cell());
        table.add(row);
    }
}

void showTable(const Environment& environment, const Volume& own, const std::vector<Control>& controls)
{
    Table table({{Align::left, 0, 0, 0, 6, ""},
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
    for (const Control& control : controls)
        addRows(table, control);
    printTable(environment, table);
}

/// "-12.00 dB", of each channel where they differ.
std::string levelsWords(const Control& control)
{
    const std::vector<ControlChannel> channels = control.channels.value_or(std::vector<ControlChannel>());
    if (channels.empty())
        return nothing;
    const auto isFirst = [&](const ControlChannel& channel) { return channel.level == channels.front().level; };
    const bool isEqual = std::all_of(channels.begin(), channels.end(), isFirst);
    std::string words;
    for (std::size_t i = 0; i < (isEqual ? 1 : channels.size()); ++i)
        words += (i == 0 ? "" : ", ") + percentWords(channels[i].level.percent) + " (" +
                 decibelWords(channels[i].level.decibels) + ")";
    return words;
}

/// The id of the control that `controls` shows under the name that the user wrote; if there is none, or several, what
/// the user wrote.
std::string requestedControl(const Context& context, const std::vector<Control>& controls)
{
    const std::string& name = context.arguments.control;
    const auto isThat = [&](const Control& control) { return equalNoCase(nameWords(control), name); };
    const auto found = std::find_if(controls.begin(), controls.end(), isThat);
    const bool isOnly = found != controls.end() && std::none_of(std::next(found), controls.end(), isThat);
    return isOnly ? found->id.text() : name;
}

Result<Control> change(const Context& context, const Endpoint& endpoint, const std::string& control)
{
    const Arguments& arguments = context.arguments;
    System& audio = context.session.audio();
    if (const LevelChange* const level = std::get_if<LevelChange>(&arguments.controlChange))
        return audio.setControl(endpoint.id(), control, *level);
    const bool isMuted = std::get<MuteChange>(arguments.controlChange) == MuteChange::on;
    return audio.setControlMute(endpoint.id(), control, isMuted);
}

/// Throws NotThere, OperationFailure or UsageError, whose sentence counts channels from 1.
[[noreturn]] void raiseOfControl(const Context& context, const Problem& problem, const Found<Control>& known)
{
    const LevelChange* const level = std::get_if<LevelChange>(&context.arguments.controlChange);
    const ControlId id(problem.object());
    const auto control = std::find_if(known.things.begin(), known.things.end(),
                                      [&](const Control& candidate) { return candidate.id == id; });
    const bool isOutside = problem.kind() == Problem::Kind::outOfRange && control != known.things.end();
    if (level != nullptr && isOutside && control->channels)
        requireChannel(*level, control->channels->size(),
                       "the control " + inQuotes(nameWords(*control)) + " cannot be set");
    raiseOfHardware(problem, known.problems, "sonavit controls ENDPOINT");
}

/// The control as it was before it became @p after; no value if it was not there.
std::optional<Control> before(const std::vector<Control>& controls, const Control& after)
{
    const auto found =
        std::find_if(controls.begin(), controls.end(), [&](const Control& control) { return control.id == after.id; });
    return found == controls.end() ? std::nullopt : std::optional<Control>(*found);
}
}

void runControls(Context& context)
{
    const Snapshot snapshot = readSnapshot(context);
    const CardEndpoint found = requestedEndpoint(context, snapshot);
    const Found<Control> hardware = readControls(context, found);
    const std::vector<Control>& controls = hardware.things;
    const std::optional<Volume>& own = found.endpoint.volume();
    const Environment& environment = context.environment;
    if (context.arguments.isJson)
    {
        Json list = Json::array();
        for (const Control& control : controls)
            list.append(controlJson(control));
        Json problems = problemsJson(problemsBeside(found.endpoint));
        for (const Problem& problem : hardware.problems)
            problems.append(problemJson(problem));
        environment.out << machineDocument(context.session.machineName())
                               .set("endpoint", endpointNameJson(found.endpoint))
                               .set("controls", list)
                               .set("volume", volumeJson(own))
                               .set("muted", mutedJson(own))
                               .set("problems", problems)
                               .text()
                        << "\n";
        return;
    }
    environment.out << painted(titleWords(found.endpoint), Paint::bold, environment.hasColours) << ", "
                    << counted(controls.size(), "hardware control") << "\n";
    showTable(environment, own.value_or(Volume()), controls);
    showProblems(context, problemsBeside(found.endpoint).size() + countProblems(hardware), "--json says why");
}

void runSetControl(Context& context)
{
    const Snapshot snapshot = readSnapshot(context);
    const CardEndpoint place = requestedEndpoint(context, snapshot);
    const Endpoint& endpoint = place.endpoint;
    const Found<Control> known = readControls(context, place);
    const Result<Control> after = change(context, endpoint, requestedControl(context, known.things));
    if (!after)
        raiseOfControl(context, after.problem(), known);
    announceTemporaryChange(context);
    const std::optional<Control> former = before(known.things, *after);
    if (context.arguments.isJson)
    {
        context.environment.out << machineDocument(context.session.machineName())
                                       .set("endpoint", endpointNameJson(endpoint))
                                       .set("before", former ? controlJson(*former) : Json())
                                       .set("after", controlJson(*after))
                                       .text()
                                << "\n";
        return;
    }
    const bool isLevel = std::holds_alternative<LevelChange>(context.arguments.controlChange);
    const auto words = [&](const Control& control)
    { return isLevel ? levelsWords(control) : muteWords(control.isMuted); };
    context.environment.out << titleWords(endpoint) << ", " << nameWords(*after) << ": "
                            << (former ? words(*former) : nothing) << " \xE2\x86\x92 " << words(*after) << "\n";
}
}
