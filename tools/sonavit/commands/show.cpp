#include "tools/sonavit/choice.h"
#include "tools/sonavit/commands/commands.h"
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
        result += digits[(value >> static_cast<unsigned>(shift)) & 0xFU];
    return result;
}

void addJacks(Lines& lines, const Endpoint& endpoint)
{
    const std::vector<Jack>& jacks = endpoint.jacks();
    if (jacks.empty())
        lines.emplace_back("jack", nothing);
    for (std::size_t i = 0; i < jacks.size(); ++i)
    {
        const std::string key = jacks.size() > 1 ? "jack " + std::to_string(i + 1) : "jack";
        const std::string type = jacks[i].type ? "  " + jacks[i].type->text() : "";
        lines.emplace_back(key, printable(jacks[i].sentence()) + type);
    }
}

void addVolume(Lines& lines, const std::optional<Volume>& known)
{
    const Volume volume = known.value_or(Volume());
    lines.emplace_back("volume", levelWords(volume.master));
    lines.emplace_back("range", rangeWords(volume.range));
    const std::vector<Level> channels = volume.channels.value_or(std::vector<Level>());
    for (std::size_t channel = 0; channel < channels.size(); ++channel)
        lines.emplace_back("channel " + std::to_string(channel + 1), levelWords(channels[channel]));
    lines.emplace_back("mute", muteWords(volume.isMuted));
    if (volume.isInHardware)
        lines.emplace_back("attenuator", *volume.isInHardware ? "hardware" : "software");
}

void addProblems(Lines& lines, const Endpoint& endpoint)
{
    for (const EndpointProblem& known : endpoint.problems())
        lines.emplace_back("not read", std::string(wordsOf(known.field)) + ": " + printable(known.problem.sentence()));
}

Lines describe(const Card& card, const Endpoint& endpoint)
{
    const std::string id = endpoint.id().isEmpty() ? nothing : printable(endpoint.id().text());
    Lines lines = {{"card", printable(card.title())},
                   {"instance id", orNothing(card.instanceId())},
                   {"endpoint id", id},
                   {"short name", orNothing(endpoint.description())},
                   {"flow", wordsOf(endpoint.flow())}};
    addJacks(lines, endpoint);
    const std::optional<Format>& format = endpoint.format();
    const std::optional<std::uint32_t> speakers = endpoint.speakers();
    const Lines more = {{"state", stateWords(endpoint.state())},
                        {"default for", rolesWords(endpoint.roles())},
                        {"wave id", endpoint.waveId() ? std::to_string(*endpoint.waveId()) : nothing},
                        {"DirectSound", orNothing(endpoint.directSoundId())},
                        {"container", orNothing(endpoint.container())},
                        {"driver node", orNothing(endpoint.driverNode())},
                        {"format", format ? format->sentence() : nothing},
                        {"speakers", speakers ? speakerWords(*speakers) + "  " + hexText(*speakers) : nothing}};
    lines.insert(lines.end(), more.begin(), more.end());
    addVolume(lines, endpoint.volume());
    addProblems(lines, endpoint);
    return lines;
}
}

void runShow(Context& context)
{
    const Snapshot snapshot = readSnapshot(context);
    const CardEndpoint found = requestedEndpoint(context, snapshot);
    const Environment& environment = context.environment;
    if (context.arguments.isJson)
    {
        environment.out << machineDocument(context.session.machineName())
                               .set("card", cardJson(found.card))
                               .set("endpoint", endpointDetailsJson(found.endpoint))
                               .text()
                        << "\n";
        return;
    }
    environment.out << painted(titleWords(found.endpoint), Paint::bold, environment.hasColours) << "\n";
    Table table({{Table::Column::Align::left, 0, 0, 0}, {}});
    for (const auto& [key, value] : describe(found.card, found.endpoint))
        table.add({{"  " + key, Paint::dim}, {value, Paint::none}});
    for (const std::string& line : table.lines(0, environment.hasColours))
        environment.out << line << "\n";
}
}
