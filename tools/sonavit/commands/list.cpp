#include "tools/sonavit/choice.h"
#include "tools/sonavit/commands/commands.h"
#include "tools/sonavit/output/cardtree.h"
#include "tools/sonavit/output/modeljson.h"
#include "tools/sonavit/output/modelwords.h"
#include "tools/sonavit/output/text.h"
#include "tools/sonavit/problemnote.h"

#include <algorithm>
#include <cstddef>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace sonavit::program
{
namespace
{
/// @p card with the endpoints that the user wants to see.
Card filtered(const Arguments& arguments, const Card& card)
{
    Card::Content content = card.content();
    std::vector<Endpoint>& endpoints = content.endpoints;
    const auto isUnwanted = [&](const Endpoint& endpoint)
    {
        return (arguments.isOnlyActive && !endpoint.isActive()) ||
               (arguments.isOnlyOutputs && endpoint.flow() != Flow::output) ||
               (arguments.isOnlyInputs && endpoint.flow() != Flow::input);
    };
    endpoints.erase(std::remove_if(endpoints.begin(), endpoints.end(), isUnwanted), endpoints.end());
    return Card(std::move(content));
}

/// Cards of which nothing is left are left out.
std::vector<Card> filtered(const Arguments& arguments, const std::vector<Card>& cards)
{
    if (!arguments.isOnlyActive && !arguments.isOnlyOutputs && !arguments.isOnlyInputs)
        return cards;
    std::vector<Card> result;
    for (const Card& card : cards)
    {
        Card kept = filtered(arguments, card);
        if (!kept.endpoints().empty())
            result.push_back(std::move(kept));
    }
    return result;
}

/// An endpoint on one line, in columns that scripts can cut; what is not known is empty.
std::string shortLine(const Card& card, const Endpoint& endpoint)
{
    const std::optional<Volume>& volume = endpoint.volume();
    const Level level = volume ? volume->master : Level();
    const std::string muted = volume && volume->isMuted ? (*volume->isMuted ? "muted" : "unmuted") : "";
    std::string roles;
    for (const Role role : endpoint.roles().list())
        roles += (roles.empty() ? "" : ",") + std::string(keyOf(role));
    const std::vector<std::string> columns = {
        endpoint.id().text(),
        wordsOf(endpoint.flow()),
        endpoint.state() ? keyOf(*endpoint.state()) : "",
        roles,
        level.percent ? std::to_string(level.percent->rounded()) : "",
        level.decibels ? decimalText(static_cast<float>(level.decibels->value()), 2) : "",
        muted,
        endpoint.jackKind() ? keyOf(*endpoint.jackKind()) : "",
        card.title(),
        endpoint.title()};
    std::string line;
    for (const std::string& column : columns)
        line += (&column == &columns.front() ? "" : "\t") + printable(column);
    return line;
}

void showShort(const Environment& environment, const std::vector<Card>& cards)
{
    for (const Card& card : cards)
    {
        for (const Endpoint& endpoint : card.endpoints())
            environment.out << shortLine(card, endpoint) << "\n";
    }
}

std::size_t countProblems(const Snapshot& snapshot, const std::vector<Card>& cards)
{
    std::size_t count = snapshot.problems().size();
    for (const Card& card : cards)
    {
        count += card.problems().size();
        for (const Endpoint& endpoint : card.endpoints())
            count += endpoint.problems().size();
    }
    return count;
}

Json listJson(const Context& context, const Snapshot& snapshot, const std::vector<Card>& cards)
{
    Json list = Json::array();
    for (const Card& card : cards)
    {
        Json endpoints = Json::array();
        for (const Endpoint& endpoint : card.endpoints())
            endpoints.append(endpointJson(snapshot, endpoint));
        list.append(cardJson(card).set("endpoints", endpoints).set("problems", problemsJson(card.problems())));
    }
    return machineDocument(context.session.machineName())
        .set("cards", list)
        .set("problems", problemsJson(snapshot.problems()));
}
}

void runList(Context& context)
{
    const Snapshot snapshot = readSnapshot(context);
    const std::vector<Card> cards = filtered(context.arguments, requestedCards(context, snapshot));
    reportDenied(context, cards);
    if (context.arguments.isJson)
    {
        context.environment.out << listJson(context, snapshot, cards).text() << "\n";
        return;
    }
    if (context.arguments.isShort)
    {
        showShort(context.environment, cards);
        return;
    }
    if (snapshot.cards().empty())
        context.environment.out << "There is no sound card.\n";
    else if (cards.empty())
        context.environment.out << "There is no such endpoint.\n";
    else
        showCardTree(context.environment, cards, shortIds(snapshot.cards()));
    showProblems(context, countProblems(snapshot, cards), "--json and sonavit show ENDPOINT say why");
}
}
