#include "tools/sonavit/choice.h"
#include "tools/sonavit/commands/commands.h"
#include "tools/sonavit/failure.h"
#include "tools/sonavit/output/fieldlist.h"
#include "tools/sonavit/output/modeljson.h"
#include "tools/sonavit/output/modelwords.h"
#include "tools/sonavit/output/table.h"
#include "tools/sonavit/output/tableprinter.h"
#include "tools/sonavit/output/text.h"

#include <string>
#include <vector>

namespace sonavit::program
{
namespace
{
/// All ids of an endpoint.
void showIds(const Environment& environment, const Match& match)
{
    const Endpoint& endpoint = match.place.endpoint;
    const Card& card = match.place.card;
    environment.out << painted(titleWords(endpoint), Paint::bold, environment.hasColours) << ", by its "
                    << wordsOf(match.by) << "\n";
    showFields(environment, {{"flow", wordsOf(endpoint.flow())},
                             {"state", stateWords(endpoint.state())},
                             {"endpoint id", endpoint.id().isEmpty() ? nothing : printable(endpoint.id().text())},
                             {"wave id", endpoint.waveId() ? std::to_string(*endpoint.waveId()) : nothing},
                             {"DirectSound", orNothing(endpoint.directSoundId())},
                             {"container", orNothing(endpoint.container())},
                             {"card", printable(card.title())},
                             {"card id", printable(card.id().text())},
                             {"instance id", orNothing(card.instanceId())},
                             {"parent", orNothing(card.parent())}});
}

Json matchJson(const Snapshot& snapshot, const Match& match)
{
    return Json::object(
        {{"by", keyOf(match.by)},
         {"card",
          cardJson(match.place.card).set("parent", match.place.card.parent()).set("bus", match.place.card.bus())},
         {"endpoint", endpointDetailsJson(snapshot, match.place.endpoint)}});
}

Json candidateJson(const Snapshot& snapshot, const Candidate& candidate)
{
    return Json::object({{"evidence", keyOf(candidate.evidence)},
                         {"reason", candidate.reason},
                         {"card", cardJson(candidate.place.card)},
                         {"endpoint", endpointJson(snapshot, candidate.place.endpoint)}});
}

Reference requireReference(const std::string& text)
{
    const Result<Reference> reference = Reference::parse(text);
    if (!reference)
        throw UsageError(reference.problem().sentence());
    return *reference;
}
}

void runFind(Context& context)
{
    const Snapshot snapshot = readSnapshot(context);
    reportDenied(context, snapshot.cards());
    const std::vector<Match> matches = snapshot.find(context.arguments.id);
    if (matches.empty())
        raiseNotThere(snapshot, "there is no endpoint with the id " + inQuotes(context.arguments.id));
    if (!context.arguments.isJson)
    {
        for (const Match& match : matches)
            showIds(context.environment, match);
        return;
    }
    Json list = Json::array();
    for (const Match& match : matches)
        list.append(matchJson(snapshot, match));
    context.environment.out << machineDocument(context.session.machineName()).set("matches", list).text() << "\n";
}

void runRefer(Context& context)
{
    const Snapshot snapshot = readSnapshot(context);
    const Endpoint endpoint = requestedEndpoint(context, snapshot).endpoint;
    const Result<Reference> reference = refer(snapshot, endpoint.id());
    if (!reference)
        raise(reference.problem());
    if (context.arguments.isJson)
        context.environment.out << machineDocument(context.session.machineName())
                                       .set("endpoint", endpointNameJson(endpoint))
                                       .set("reference", reference->text())
                                       .text()
                                << "\n";
    else
        context.environment.out << reference->text() << "\n";
}

void runResolve(Context& context)
{
    const Reference reference = requireReference(context.arguments.reference);
    const Snapshot snapshot = readSnapshot(context);
    reportDenied(context, snapshot.cards());
    const Resolution resolution = resolve(snapshot, reference);
    if (resolution.candidates.empty())
        raiseNotThere(snapshot, "no endpoint fits the reference");
    if (context.arguments.isJson)
    {
        Json candidates = Json::array();
        for (const Candidate& candidate : resolution.candidates)
            candidates.append(candidateJson(snapshot, candidate));
        context.environment.out << machineDocument(context.session.machineName())
                                       .set("result", keyOf(resolution.kind))
                                       .set("candidates", candidates)
                                       .text()
                                << "\n";
        return;
    }
    const Environment& environment = context.environment;
    environment.out << painted(printable(resolution.sentence()), Paint::bold, environment.hasColours) << "\n";
    Table table({{Table::Column::Align::left, 0, 0, 0}, {}, {}, {}});
    for (const Candidate& candidate : resolution.candidates)
    {
        const Endpoint& endpoint = candidate.place.endpoint;
        table.add({{"  " + titleWords(endpoint), Paint::none},
                   {stateWords(endpoint.state()), Paint::dim},
                   {printable(candidate.reason), Paint::none},
                   {printable(endpoint.id().text()), Paint::dim}});
    }
    printTable(environment, table);
}
}
