#include "tools/sonavit/choice.h"
#include "tools/sonavit/commands/commands.h"
#include "tools/sonavit/failure.h"
#include "tools/sonavit/output/modeljson.h"
#include "tools/sonavit/output/modelwords.h"
#include "tools/sonavit/output/text.h"
#include "tools/sonavit/simulationnote.h"

#include <cstddef>

namespace sonavit::program
{
namespace
{
/// "72% (-18.00 dB)"
std::string sentenceWords(const Level& level)
{
    return percentWords(level.percent) + " (" + decibelWords(level.decibels) + ")";
}

Volume requireVolume(const Endpoint& endpoint)
{
    if (endpoint.volume())
        return *endpoint.volume();
    if (const std::optional<Problem> problem = endpoint.problemWith(EndpointField::volume))
        raise(*problem, "the volume of " + shortTitleWords(endpoint) + " cannot be read");
    const std::string state = endpoint.isActive() || !endpoint.state() ? "" : "; it is " + stateWords(endpoint.state());
    throw OperationFailure(shortTitleWords(endpoint) + " has no volume control" + state);
}

Json document(const Context& context, const Endpoint& endpoint)
{
    return machineDocument(context.session.machineName()).set("endpoint", endpointNameJson(endpoint));
}

std::string mutedClause(const Volume& volume)
{
    return volume.isMuted.value_or(false) ? ", muted" : "";
}

/// What the user wants to do and cannot.
std::string failedMute(MuteChange change, const Endpoint& endpoint)
{
    const std::string title = shortTitleWords(endpoint);
    if (change == MuteChange::toggle)
        return "the mute of " + title + " cannot be toggled";
    return title + " cannot be " + (change == MuteChange::on ? "muted" : "unmuted");
}

/// The level of the channel that a change is about.
Level levelOf(const Volume& volume, const LevelChange& change)
{
    const std::optional<unsigned> channel = change.channel();
    if (!channel)
        return volume.master;
    const std::vector<Level> channels = volume.channels.value_or(std::vector<Level>());
    return *channel < channels.size() ? channels[*channel] : Level();
}
}

void runGetVolume(Context& context)
{
    const Snapshot snapshot = readSnapshot(context);
    const Endpoint endpoint = requestedEndpoint(context, snapshot).endpoint;
    const Volume volume = requireVolume(endpoint);
    if (context.arguments.isJson)
    {
        context.environment.out
            << document(context, endpoint).set("volume", volumeJson(volume)).set("muted", volume.isMuted).text()
            << "\n";
        return;
    }
    context.environment.out << titleWords(endpoint) << ": " << sentenceWords(volume.master) << mutedClause(volume)
                            << "\n";
}

void runSetVolume(Context& context)
{
    const Snapshot snapshot = readSnapshot(context);
    const Endpoint endpoint = requestedEndpoint(context, snapshot).endpoint;
    const Volume before = requireVolume(endpoint);
    const LevelChange& change = *context.arguments.level;
    const Result<Volume> after = context.session.audio().setVolume(endpoint.id(), change);
    if (!after)
    {
        const std::string intention = "the volume of " + shortTitleWords(endpoint) + " cannot be set";
        if (after.problem().kind() == Problem::Kind::outOfRange && before.channels)
            requireChannel(change, before.channels->size(), intention);
        raise(after.problem(), intention);
    }

    announceTemporaryChange(context);
    if (context.arguments.isJson)
    {
        context.environment.out << document(context, endpoint)
                                       .set("before", levelJson(levelOf(before, change)))
                                       .set("after", levelJson(levelOf(*after, change)))
                                       .set("volume", volumeJson(*after))
                                       .set("muted", after->isMuted)
                                       .text()
                                << "\n";
        return;
    }
    const std::string channel = change.channel() ? ", channel " + std::to_string(*change.channel() + 1) : "";
    context.environment.out << titleWords(endpoint) << channel << ": " << sentenceWords(levelOf(before, change))
                            << " \xE2\x86\x92 " << sentenceWords(levelOf(*after, change)) << mutedClause(*after)
                            << "\n";
}

void runMute(Context& context)
{
    const Snapshot snapshot = readSnapshot(context);
    const Endpoint endpoint = requestedEndpoint(context, snapshot).endpoint;
    const std::optional<bool> before = requireVolume(endpoint).isMuted;
    System& audio = context.session.audio();
    const MuteChange change = context.arguments.mute;
    const Result<Volume> after = change == MuteChange::toggle ? audio.toggleMute(endpoint.id())
                                                              : audio.setMute(endpoint.id(), change == MuteChange::on);
    if (!after)
        raise(after.problem(), failedMute(change, endpoint));

    announceTemporaryChange(context);
    if (context.arguments.isJson)
    {
        context.environment.out << document(context, endpoint)
                                       .set("before", before)
                                       .set("after", after->isMuted)
                                       .set("muted", after->isMuted)
                                       .text()
                                << "\n";
        return;
    }
    context.environment.out << titleWords(endpoint) << ": " << muteWords(before) << " \xE2\x86\x92 "
                            << muteWords(after->isMuted) << "\n";
}
}
