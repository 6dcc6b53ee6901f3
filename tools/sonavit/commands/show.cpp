#include "tools/sonavit/choice.h"
#include "tools/sonavit/commands/commands.h"
#include "tools/sonavit/output/endpointproblems.h"
#include "tools/sonavit/output/fieldlist.h"
#include "tools/sonavit/output/modeljson.h"
#include "tools/sonavit/output/modelwords.h"
#include "tools/sonavit/output/table.h"
#include "tools/sonavit/output/text.h"

#include <optional>
#include <string>
#include <vector>

namespace sonavit::program
{
namespace
{
std::string hexText(unsigned value)
{
    constexpr const char* digits = "0123456789ABCDEF";
    std::string result = "0x";
    for (int shift = 28; shift >= 0; shift -= 4)
        result += digits[(value >> static_cast<unsigned>(shift)) & 0xFU];
    return result;
}

void addJacks(Fields& fields, const Endpoint& endpoint)
{
    const std::vector<Jack>& jacks = endpoint.jacks();
    if (jacks.empty())
        fields.emplace_back("jack", nothing);
    for (std::size_t i = 0; i < jacks.size(); ++i)
    {
        const std::string key = jacks.size() > 1 ? "jack " + std::to_string(i + 1) : "jack";
        const std::string type = jacks[i].type ? "  " + jacks[i].type->text() : "";
        fields.emplace_back(key, printable(jacks[i].sentence()) + type);
    }
}

void addVolume(Fields& fields, const std::optional<Volume>& known)
{
    const Volume volume = known.value_or(Volume());
    fields.emplace_back("volume", levelWords(volume.master));
    fields.emplace_back("range", rangeWords(volume.range));
    const std::vector<Level> channels = volume.channels.value_or(std::vector<Level>());
    for (std::size_t channel = 0; channel < channels.size(); ++channel)
        fields.emplace_back("channel " + std::to_string(channel + 1), levelWords(channels[channel]));
    fields.emplace_back("mute", muteWords(volume.isMuted));
    if (volume.isInHardware)
        fields.emplace_back("attenuator", *volume.isInHardware ? "hardware" : "software");
}

void addProblems(Fields& fields, const std::vector<EndpointProblem>& problems)
{
    for (const EndpointProblem& known : problems)
        fields.emplace_back("not read", std::string(wordsOf(known.field)) + ": " + printable(known.problem.sentence()));
}

Fields describe(const Snapshot& snapshot, const Card& card, const Endpoint& endpoint)
{
    const std::string id = endpoint.id().isEmpty() ? nothing : printable(endpoint.id().text());
    Fields fields = {{"card", printable(card.title())},
                     {"instance id", orNothing(card.instanceId())},
                     {"endpoint id", id},
                     {"short name", orNothing(endpoint.description())},
                     {"flow", wordsOf(endpoint.flow())}};
    addJacks(fields, endpoint);
    const std::optional<Format>& format = endpoint.format();
    const std::optional<std::uint32_t> speakers = endpoint.speakers();
    const Fields more = {{"state", stateWords(endpoint.state())},
                         {"default for", rolesWords(endpoint.roles())},
                         {"wave id", endpoint.waveId() ? std::to_string(*endpoint.waveId()) : nothing},
                         {"DirectSound", orNothing(endpoint.directSoundId())},
                         {"container", orNothing(endpoint.container())},
                         {"driver node", orNothing(endpoint.driverNode())},
                         {"format", format ? format->sentence() : nothing},
                         {"speakers", speakers ? speakerWords(*speakers) + "  " + hexText(*speakers) : nothing}};
    fields.insert(fields.end(), more.begin(), more.end());
    addVolume(fields, endpoint.volume());
    addProblems(fields, problemsOf(snapshot, endpoint));
    return fields;
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
                               .set("endpoint", endpointDetailsJson(snapshot, found.endpoint))
                               .text()
                        << "\n";
        return;
    }
    environment.out << painted(titleWords(found.endpoint), Paint::bold, environment.hasColours) << "\n";
    showFields(environment, describe(snapshot, found.card, found.endpoint));
}
}
