#include "tools/sonavit/accountrights.h"
#include "tools/sonavit/commands/commands.h"
#include "tools/sonavit/failure.h"
#include "tools/sonavit/output/modeljson.h"
#include "tools/sonavit/output/modelwords.h"
#include "tools/sonavit/output/text.h"
#include "tools/sonavit/simulationnote.h"

namespace sonavit::program
{
namespace
{
/// "72% (-18.00 dB)"
std::string levelWords(const Level& level)
{
    return percentText(level.percent) + " (" + decibelText(level.decibels) + ")";
}

Json levelJson(const Level& level)
{
    return Json::object({{"percent", level.percent}, {"decibels", level.decibels}});
}

EndpointVolume openVolume(Endpoint& endpoint)
{
    std::optional<EndpointVolume> volume = EndpointVolume::open(endpoint.device);
    if (volume)
        return *volume;
    const bool isActive = endpoint.state == std::optional<unsigned>(DEVICE_STATE_ACTIVE);
    const std::string state = isActive || !stateKey(endpoint.state) ? "" : "; it is " + stateWords(endpoint.state);
    throw OperationFailure(shortTitleWords(endpoint) + " has no volume control" + state);
}

/// ", which takes …" and the range, if it is known.
std::string rangeClause(const std::optional<LevelRange>& range)
{
    return range ? ", which takes " + rangeWords(range) : "";
}
}

void runGetVolume(Context& context)
{
    std::vector<Endpoint> endpoints = readEndpoints();
    Endpoint& endpoint = requestedEndpoint(context, endpoints);
    const EndpointLevel level = openVolume(endpoint).read();
    if (context.arguments.isJson)
    {
        const Json answer = endpointDocument(context.session.machineName(), endpoint)
                                .set("volume", volumeWithChannelsJson(level))
                                .set("muted", level.isMuted);
        context.environment.out << answer.text() << "\n";
        return;
    }
    context.environment.out << titleWords(endpoint) << ": " << levelWords(level.master)
                            << (level.isMuted.value_or(false) ? ", muted" : "") << "\n";
}

void runSetVolume(Context& context)
{
    std::vector<Endpoint> endpoints = readEndpoints();
    Endpoint& endpoint = requestedEndpoint(context, endpoints);
    EndpointVolume volume = openVolume(endpoint);
    const EndpointLevel before = volume.read();
    const LevelChange& change = context.arguments.level;
    if (!change.canStartAt(before.master))
        throw OperationFailure("the volume of " + shortTitleWords(endpoint) +
                               " cannot be read, so it cannot be changed by a step");
    if (!change.apply(volume, before.master))
        throw OperationFailure("the system refused that volume for " + shortTitleWords(endpoint) +
                               rangeClause(before.range));

    announceTemporaryChange(context);
    const EndpointLevel after = volume.read();
    if (context.arguments.isJson)
    {
        const Json answer = endpointDocument(context.session.machineName(), endpoint)
                                .set("before", levelJson(before.master))
                                .set("after", levelJson(after.master))
                                .set("volume", volumeWithChannelsJson(after))
                                .set("muted", after.isMuted);
        context.environment.out << answer.text() << "\n";
        return;
    }
    context.environment.out << titleWords(endpoint) << ": " << levelWords(before.master) << " \xE2\x86\x92 "
                            << levelWords(after.master) << (after.isMuted.value_or(false) ? ", muted" : "") << "\n";
}

void runMute(Context& context)
{
    std::vector<Endpoint> endpoints = readEndpoints();
    Endpoint& endpoint = requestedEndpoint(context, endpoints);
    EndpointVolume volume = openVolume(endpoint);
    const std::optional<bool> before = volume.read().isMuted;
    const MuteChange change = context.arguments.mute;
    if (change == MuteChange::toggle && !before)
        throw OperationFailure("the mute of " + shortTitleWords(endpoint) + " cannot be read, so it cannot be toggled");
    const bool isToBeMuted = change == MuteChange::toggle ? !*before : change == MuteChange::on;
    if (!volume.setMute(isToBeMuted))
        throw OperationFailure("the system refused to " + std::string(isToBeMuted ? "mute " : "unmute ") +
                               shortTitleWords(endpoint));

    announceTemporaryChange(context);
    const std::optional<bool> after = volume.read().isMuted;
    if (context.arguments.isJson)
    {
        const Json answer = endpointDocument(context.session.machineName(), endpoint)
                                .set("before", before)
                                .set("after", after)
                                .set("muted", after);
        context.environment.out << answer.text() << "\n";
        return;
    }
    context.environment.out << titleWords(endpoint) << ": " << muteWords(before) << " \xE2\x86\x92 " << muteWords(after)
                            << "\n";
}
}
