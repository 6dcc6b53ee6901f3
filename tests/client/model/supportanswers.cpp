#include "tests/client/model/supportanswers.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <sstream>
#include <utility>

namespace support
{
namespace
{
template<class Reader>
Answers askEverything(Reader& reader)
{
    Answers answers;
    answers.rest = reader.snapshot().content();
    const std::vector<sonavit::Card> cards = std::exchange(answers.rest.cards, {});
    for (const sonavit::Card& card : cards)
    {
        Answers::OfCard& answer = answers.cards.emplace_back();
        answer.content = card.content();
        answer.content.endpoints.clear();
        for (const sonavit::Endpoint& endpoint : card.endpoints())
        {
            const sonavit::Result<std::vector<sonavit::Control>> controls = reader.controls(endpoint.id());
            answer.endpoints.push_back({endpoint.content(), std::nullopt});
            if (controls)
                answer.endpoints.back().controls = *controls;
        }
        answer.selectors = reader.selectors(card.id()).value();
        answer.graph = reader.graph(std::vector<sonavit::CardId>{card.id()}).value();
    }
    return answers;
}

template<class T>
std::string shown(const char* what, const T& client, const T& model)
{
    std::ostringstream out;
    out << what << "\n  client " << client << "\n  model  " << model << "\n";
    return out.str();
}

template<class T>
std::string differenceInList(const char* what, const std::vector<T>& client, const std::vector<T>& model)
{
    for (std::size_t i = 0; i < std::min(client.size(), model.size()); ++i)
    {
        if (!(client[i] == model[i]))
            return shown((what + (" " + std::to_string(i))).c_str(), client[i], model[i]);
    }
    std::string found;
    if (client.size() != model.size())
        found = std::string(what) + ": " + std::to_string(client.size()) + " in the client, " +
                std::to_string(model.size()) + " in the object model\n";
    return found;
}

std::string differenceInGraph(const sonavit::Graph& client, const sonavit::Graph& model)
{
    std::string found = differenceInList("device", client.devices, model.devices);
    if (found.empty())
        found = differenceInList("part", client.parts, model.parts);
    if (found.empty())
        found = differenceInList("edge", client.edges, model.edges);
    if (found.empty())
        found = differenceInList("problem", client.problems, model.problems);
    return found;
}

std::string differenceInControls(const Answers::OfEndpoint& client, const Answers::OfEndpoint& model)
{
    if (client.controls == model.controls)
        return {};
    const std::string title = "controls of " + client.content.id.text() + "\n";
    if (!client.controls || !model.controls)
        return title + (client.controls ? "the client alone has some\n" : "the object model alone has some\n");
    const std::string found = title + differenceInList("control", *client.controls, *model.controls);
    return found + shown("all", testing::PrintToString(*client.controls), testing::PrintToString(*model.controls));
}

std::string differenceInCard(const Answers::OfCard& client, const Answers::OfCard& model)
{
    for (std::size_t i = 0; i < std::min(client.endpoints.size(), model.endpoints.size()); ++i)
    {
        const sonavit::Endpoint clients(client.endpoints[i].content);
        const sonavit::Endpoint models(model.endpoints[i].content);
        if (clients != models)
            return shown("endpoint", clients, models);
        const std::string found = differenceInControls(client.endpoints[i], model.endpoints[i]);
        if (!found.empty())
            return found;
    }
    const std::string found = differenceInList("selector", client.selectors, model.selectors);
    return found.empty() && client.graph != model.graph ? differenceInGraph(client.graph, model.graph) : found;
}
}

void Answers::forEach(const std::function<void(OfEndpoint&)>& action)
{
    for (OfCard& card : cards)
        std::for_each(card.endpoints.begin(), card.endpoints.end(), action);
}

sonavit::Snapshot Answers::snapshot() const
{
    sonavit::Snapshot::Content content = rest;
    for (const OfCard& card : cards)
    {
        sonavit::Card::Content whole = card.content;
        for (const OfEndpoint& endpoint : card.endpoints)
            whole.endpoints.emplace_back(endpoint.content);
        content.cards.emplace_back(std::move(whole));
    }
    return sonavit::Snapshot(std::move(content));
}

Answers askAll(const sonavit::System& reader)
{
    return askEverything(reader);
}

Answers askAll(sonavit::model::ObjectModel& reader)
{
    return askEverything(reader);
}

std::string differenceBetween(const Answers& client, const Answers& model)
{
    const std::vector<sonavit::Card> clients = client.snapshot().cards();
    const std::vector<sonavit::Card> models = model.snapshot().cards();
    for (std::size_t i = 0; i < std::min(clients.size(), models.size()); ++i)
    {
        const std::string found = differenceInCard(client.cards[i], model.cards[i]);
        if (!found.empty())
            return "card " + clients[i].id().text() + "\n" + found;
    }
    const std::string found = differenceInList("card", clients, models);
    if (found.empty() && client.snapshot() != model.snapshot())
        return shown("snapshot", client.snapshot(), model.snapshot());
    return found;
}
}
