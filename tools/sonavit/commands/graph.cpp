#include "tools/sonavit/choice.h"
#include "tools/sonavit/commands/commands.h"
#include "tools/sonavit/failure.h"
#include "tools/sonavit/output/dot.h"
#include "tools/sonavit/output/graphjson.h"
#include "tools/sonavit/output/text.h"
#include "tools/sonavit/textfile.h"

#include <utility>

namespace sonavit::program
{
namespace
{
std::string titleOf(const Context& context, const std::vector<Card>& cards)
{
    if (!context.arguments.card.empty())
        return printable(cards.front().title());
    return printable(context.session.machineName().value_or("sound cards"));
}

Graph readGraph(const Context& context, const std::vector<Card>& cards)
{
    std::vector<CardId> ids;
    ids.reserve(cards.size());
    for (const Card& card : cards)
        ids.push_back(card.id());
    Result<Graph> graph = context.session.source().graph(ids);
    if (!graph)
        raise(graph.problem(), "the hardware cannot be read");
    return *std::move(graph);
}

/// The graph to show, with the path to mark in it.
GraphView viewOf(const Context& context, const Snapshot& snapshot, const std::vector<Card>& cards)
{
    GraphView view{readGraph(context, cards)};
    const std::vector<Problem> unlisted = problemsOfLists(snapshot);
    view.graph.problems.insert(view.graph.problems.begin(), unlisted.begin(), unlisted.end());
    if (context.arguments.endpoint.empty())
        return view;
    const EndpointId endpoint = endpointNamed(snapshot, context.arguments.endpoint).endpoint.id();
    if (context.arguments.isOnlyPath)
        view.graph = view.graph.restrictedTo(endpoint);
    view.markPath(endpoint);
    return view;
}
}

void runGraph(Context& context)
{
    const Snapshot snapshot = readSnapshot(context);
    reportDenied(context, snapshot.cards());
    const std::vector<Card> cards = requestedCards(context, snapshot);
    const GraphView view = viewOf(context, snapshot, cards);
    const std::string text = context.arguments.isJson ? graphJson(view, context.session.machineName()).text() + "\n"
                                                      : dotText(view, titleOf(context, cards));
    if (context.arguments.outputFile.empty())
        context.environment.out << text;
    else
        writeFile(context.arguments.outputFile, text);
}
}
