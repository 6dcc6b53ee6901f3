#include "tools/sonavit/endpointname.h"

#include "tools/sonavit/failure.h"
#include "tools/sonavit/text.h"

#include <algorithm>
#include <functional>
#include <utility>

namespace sonavit
{
namespace
{
/// More are not listed one by one.
constexpr std::size_t mostCandidates = 6;

/// What a thing can be called by.
struct Names
{
    std::vector<std::string> whole; ///< ids first
    std::string title;              ///< how it is shown to the user
};

using Match = bool (*)(std::string_view, std::string_view);

bool isEqual(std::string_view left, std::string_view right)
{
    return left == right;
}

std::vector<std::size_t> matches(const std::vector<Names>& things, const std::string& name, Match match)
{
    std::vector<std::size_t> found;
    for (std::size_t i = 0; i < things.size(); ++i)
    {
        const std::vector<std::string>& whole = things[i].whole;
        if (std::any_of(whole.begin(), whole.end(), [&](const std::string& text) { return match(text, name); }))
            found.push_back(i);
    }
    return found;
}

[[noreturn]] void raiseAmbiguous(const std::vector<Names>& things, const std::vector<std::size_t>& found,
                                 const std::string& name, const std::string& noun)
{
    std::vector<std::string> titles;
    for (std::size_t i = 0; i < std::min(found.size(), mostCandidates); ++i)
        titles.push_back(things[found[i]].title);
    if (found.size() > mostCandidates)
        titles.push_back(std::to_string(found.size() - mostCandidates) + " more");
    throw UsageError("\"" + name + "\" names " + counted(found.size(), noun) + ": " + enumeration(titles));
}

/// A whole name goes before a piece of one, so that "Speakers" can be named although there are "Rear Speakers".
std::size_t indexOf(const std::vector<Names>& things, const std::string& name, const std::string& noun)
{
    if (name.empty())
        throw UsageError("the name of the " + noun + " is empty");
    for (const Match match : {isEqual, equalNoCase, containsNoCase})
    {
        const std::vector<std::size_t> found = matches(things, name, match);
        if (found.size() == 1)
            return found.front();
        if (found.size() > 1)
            raiseAmbiguous(things, found, name, noun);
    }
    throw UsageError("there is no " + noun + " \"" + name + "\"; sonavit list shows what there is");
}

Names namesOf(const Endpoint& endpoint)
{
    Names names{{endpoint.id}, endpoint.title()};
    if (endpoint.description)
        names.whole.push_back(*endpoint.description);
    if (endpoint.name())
    {
        names.whole.push_back(*endpoint.name());
        names.title += " " + endpoint.id;
    }
    return names;
}

Names namesOf(const Card& card)
{
    Names names{{card.id, card.name}, printable(card.name)};
    if (card.instanceId)
    {
        names.whole.push_back(*card.instanceId);
        names.title += " " + *card.instanceId;
    }
    return names;
}

std::size_t defaultIndex(const std::vector<Endpoint>& endpoints, EDataFlow flow)
{
    for (std::size_t i = 0; i < endpoints.size(); ++i)
    {
        if (endpoints[i].flow == flow && isDefault(endpoints[i]))
            return i;
    }
    throw UsageError("there is no default " + std::string(flowWords(flow)));
}
}

std::size_t endpointIndex(const std::vector<Endpoint>& endpoints, const std::string& name)
{
    if (equalNoCase(name, defaultOutputName))
        return defaultIndex(endpoints, eRender);
    if (equalNoCase(name, defaultInputName))
        return defaultIndex(endpoints, eCapture);
    std::vector<Names> names;
    names.reserve(endpoints.size());
    for (const Endpoint& endpoint : endpoints)
        names.push_back(namesOf(endpoint));
    return indexOf(names, name, "endpoint");
}

Endpoint& findEndpoint(std::vector<Endpoint>& endpoints, const std::string& name)
{
    return endpoints[endpointIndex(endpoints, name)];
}

EndpointOfCard findEndpoint(std::vector<Card>& cards, const std::string& name)
{
    std::vector<Endpoint> endpoints;
    std::vector<EndpointOfCard> places;
    for (Card& card : cards)
    {
        for (Endpoint& endpoint : card.endpoints)
        {
            endpoints.push_back(endpoint);
            places.push_back({card, endpoint});
        }
    }
    return places[endpointIndex(endpoints, name)];
}

void keepCards(std::vector<Card>& cards, const std::string& name)
{
    if (name.empty())
        return;
    std::vector<Names> names;
    names.reserve(cards.size());
    for (const Card& card : cards)
        names.push_back(namesOf(card));
    std::vector<Card> kept;
    kept.push_back(std::move(cards[indexOf(names, name, "card")]));
    cards = std::move(kept);
}
}
