#include "tools/sonavit/endpointname.h"

#include "tools/sonavit/failure.h"
#include "tools/sonavit/output/modelwords.h"
#include "tools/sonavit/output/text.h"
#include "tools/sonavit/systemreason.h"

#include <algorithm>
#include <optional>
#include <utility>

namespace sonavit::program
{
namespace
{
/// Columns of a name among the candidates.
constexpr std::size_t longestCandidate = 60;

/// What a thing can be called by.
struct Names
{
    std::vector<std::string> whole; ///< ids first
    std::string title;              ///< how it is shown to the user
    std::optional<HRESULT> failure; ///< why there may be more names than these
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

std::vector<std::string> titlesOf(const std::vector<Names>& things, const std::vector<std::size_t>& places)
{
    std::vector<std::string> titles;
    titles.reserve(places.size());
    for (const std::size_t place : places)
        titles.push_back(things[place].title);
    return titles;
}

/// The thing may be one whose names cannot be read.
[[noreturn]] void raiseUnknown(const std::vector<Names>& things, const std::string& name, const std::string& noun)
{
    const auto isUnreadable = [](const Names& thing) { return thing.failure.has_value(); };
    const auto unreadable = std::find_if(things.begin(), things.end(), isUnreadable);
    if (unreadable == things.end())
        throw UsageError("there is no " + noun + " " + inQuotes(name) + "; sonavit list shows what there is");
    const auto count = static_cast<std::size_t>(std::count_if(things.begin(), things.end(), isUnreadable));
    throw OperationFailure("the " + noun + " " + inQuotes(name) +
                           " cannot be found, as the system fails to report the name of " + counted(count, noun) +
                           ": " + reasonText(*unreadable->failure));
}

/// A whole name goes before a part of one, so that "Speakers" can be named although there are "Rear Speakers".
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
            raiseAmbiguous(titlesOf(things, found), name, noun);
    }
    raiseUnknown(things, name, noun);
}

Names namesOf(const Endpoint& endpoint)
{
    Names names{{endpoint.id}, shortened(titleWords(endpoint), longestCandidate), endpoint.failure};
    if (endpoint.description)
        names.whole.push_back(*endpoint.description);
    if (endpoint.name())
    {
        names.whole.push_back(*endpoint.name());
        names.title += " " + printable(endpoint.id);
        names.title += " (" + std::string(flowWords(endpoint.flow)) + ")";
    }
    return names;
}

Names namesOf(const Card& card)
{
    Names names{{card.id, card.name}, shortened(printable(card.name), longestCandidate), std::nullopt};
    if (card.instanceId)
    {
        names.whole.push_back(*card.instanceId);
        names.title += " " + printable(*card.instanceId);
    }
    for (const Endpoint& endpoint : card.endpoints)
        names.failure = names.failure ? names.failure : endpoint.failure;
    return names;
}

/// Throws OperationFailure unless the platform says that there is no default.
void requireNoDefault(EDataFlow flow)
{
    constexpr auto notFound = static_cast<HRESULT>(0x80070490);
    const std::string what = "the default " + std::string(flowWords(flow));
    const libSonavit::EndpointDeviceEnumerator enumerator;
    if (!enumerator.isInitialized())
        return;
    IMMDevice* device = nullptr;
    const HRESULT result = enumerator.enumerator()->GetDefaultAudioEndpoint(flow, eConsole, &device);
    const COMPtr<IMMDevice>::pointer holder(device);
    if (FAILED(result) && result != notFound)
        throw OperationFailure("the system cannot report " + what + ": " + reasonText(result));
    if (SUCCEEDED(result))
        throw OperationFailure(what + " cannot be identified");
}

std::size_t defaultIndex(const std::vector<Endpoint>& endpoints, EDataFlow flow)
{
    for (std::size_t i = 0; i < endpoints.size(); ++i)
    {
        if (endpoints[i].flow == flow && isDefault(endpoints[i]))
            return i;
    }
    if (!endpoints.empty())
        requireNoDefault(flow);
    throw UsageError("there is no default " + std::string(flowWords(flow)));
}

std::size_t cardIndex(const std::vector<Card>& cards, const std::string& name)
{
    std::vector<Names> names;
    names.reserve(cards.size());
    for (const Card& card : cards)
        names.push_back(namesOf(card));
    return indexOf(names, name, "card");
}

/// Whether @p name names an endpoint of @p card, or several.
bool hasEndpoint(const Card& card, const std::string& name)
{
    if (equalNoCase(name, defaultOutputName) || equalNoCase(name, defaultInputName))
        return false;
    return std::any_of(card.endpoints.begin(), card.endpoints.end(),
                       [&](const Endpoint& endpoint)
                       {
                           const std::vector<std::string> whole = namesOf(endpoint).whole;
                           return std::any_of(whole.begin(), whole.end(),
                                              [&](const std::string& text) { return containsNoCase(text, name); });
                       });
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
    std::vector<Card> kept;
    kept.push_back(std::move(cards[cardIndex(cards, name)]));
    cards = std::move(kept);
}

void keepCardsWith(std::vector<Card>& cards, const std::string& name, const std::string& endpoint)
{
    if (!name.empty() && !endpoint.empty())
    {
        const Card& wanted = cards[cardIndex(cards, name)];
        if (!hasEndpoint(wanted, endpoint))
        {
            const EndpointOfCard found = findEndpoint(cards, endpoint);
            if (&found.card != &wanted)
                throw UsageError(inQuotes(endpoint) + " is an endpoint of the card " + inQuotes(found.card.name) +
                                 ", not of " + inQuotes(wanted.name));
        }
    }
    keepCards(cards, name);
}
}
