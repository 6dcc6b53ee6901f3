#include "tools/sonavit/choice.h"

#include "platform/coreaudio.h"
#include "tools/sonavit/failure.h"
#include "tools/sonavit/output/modelwords.h"
#include "tools/sonavit/output/text.h"

#include <algorithm>
#include <functional>
#include <iterator>
#include <optional>
#include <utility>

namespace sonavit::program
{
namespace
{
bool isDenied(const Endpoint& endpoint)
{
    const std::vector<EndpointProblem>& problems = endpoint.problems();
    return std::any_of(problems.begin(), problems.end(),
                       [](const EndpointProblem& known)
                       { return known.field == EndpointField::description && known.problem.code() == E_ACCESSDENIED; });
}

void report(const Context& context, std::size_t denied)
{
    if (denied == 0)
        return;
    context.environment.err << "sonavit: the system does not let this account read the properties of "
                            << counted(denied, "endpoint") << ", so names and cards are missing\n"
                            << std::flush;
}

std::size_t deniedAmong(const std::vector<Card>& cards)
{
    std::size_t denied = 0;
    for (const Card& card : cards)
        denied += static_cast<std::size_t>(std::count_if(card.endpoints().begin(), card.endpoints().end(), isDenied));
    return denied;
}

bool startsWith(const std::string& text, const std::string& start)
{
    return text.compare(0, start.size(), start) == 0;
}

/// Whether endpoints may be missing because of the problem. The id of a default hides none.
bool isOfList(const Problem& problem)
{
    const std::string& operation = problem.operation();
    return startsWith(operation, "CoCreateInstance") || startsWith(operation, "CoInitializeEx") ||
           startsWith(operation, "IMMDeviceEnumerator::EnumAudioEndpoints") ||
           startsWith(operation, "IMMDeviceCollection::") || operation == "IMMDevice::GetId";
}

/// What the system fails to do if a problem with its lists is @p problem, and why.
std::string listFailure(const Problem& problem)
{
    const std::string& operation = problem.operation();
    const auto names = [&](const char* flow) { return operation.find(flow) != std::string::npos; };
    if (!isOfList(problem))
        return "the system cannot list its sound cards: " + problem.sentence();
    if (startsWith(operation, "Co"))
        return "the system's audio cannot be reached: " + reasonText(problem.code());
    const char* const what = names("eRender") ? "outputs" : names("eCapture") ? "inputs" : "endpoints";
    return std::string("the system cannot list its ") + what + ": " + reasonText(problem.code());
}

std::optional<Problem> findProblem(const Snapshot& snapshot, const std::function<bool(const Problem&)>& isWanted)
{
    const std::vector<Problem>& problems = snapshot.problems();
    const auto found = std::find_if(problems.begin(), problems.end(), isWanted);
    return found == problems.end() ? std::nullopt : std::optional<Problem>(*found);
}

CardEndpoint defaultEndpoint(const Snapshot& snapshot, Flow flow)
{
    const std::string what = "the default " + std::string(wordsOf(flow));
    if (const std::optional<Endpoint> endpoint = snapshot.defaultEndpoint(flow))
        return {snapshot.cardOf(endpoint->id()).value_or(Card()), *endpoint};
    if (const std::optional<Problem> problem = snapshot.problemWithDefault(flow))
        throw OperationFailure("the system cannot report " + what + ": " + reasonText(problem->code()));
    const auto& ids = snapshot.content().defaults[static_cast<std::size_t>(flow)];
    if (!ids[static_cast<std::size_t>(Role::console)].isEmpty())
        throw OperationFailure(what + " cannot be identified");
    throw NotThere("there is no default " + std::string(wordsOf(flow)));
}

template<class Value>
Value require(const Snapshot& snapshot, Result<Value> result)
{
    if (result)
        return *std::move(result);
    if (result.problem().kind() == Problem::Kind::notThere)
        raiseNotThere(snapshot, result.problem().sentence());
    raise(result.problem());
}

/// Whether @p name names an endpoint of @p card, or several.
bool hasEndpoint(const Card& card, const std::string& name)
{
    const auto contains = [&](const std::optional<std::string>& text) { return text && containsNoCase(*text, name); };
    return std::any_of(card.endpoints().begin(), card.endpoints().end(),
                       [&](const Endpoint& endpoint) {
                           return contains(endpoint.id().text()) || contains(endpoint.description()) ||
                                  contains(endpoint.name());
                       });
}
}

void raiseNotThere(const Snapshot& snapshot, const std::string& sentence)
{
    if (const std::optional<Problem> problem = findProblem(snapshot, isOfList))
        throw OperationFailure(sentence + " among those that can be read, as " + listFailure(*problem));
    throw NotThere(sentence + "; sonavit list shows what there is");
}

void raiseOfHardware(const Problem& problem, const std::vector<Problem>& unread, const std::string& list)
{
    if (problem.kind() != Problem::Kind::notThere)
        raise(problem);
    if (!unread.empty())
        throw OperationFailure(problem.sentence() + " in the hardware that can be read: " + unread.front().sentence());
    throw NotThere(problem.sentence() + "; " + list + " shows what there is");
}

void requireChannel(const LevelChange& change, std::size_t channels, const std::string& intention)
{
    const std::optional<unsigned> channel = change.channel();
    if (!channel || *channel < channels)
        return;
    const std::string known = channels == 0   ? "it has none"
                              : channels == 1 ? "the only one is 1"
                                              : "they are 1 to " + std::to_string(channels);
    throw OperationFailure(intention + ": there is no channel " + std::to_string(*channel + 1) + ", " + known);
}

CardEndpoint endpointNamed(const Snapshot& snapshot, const std::string& name)
{
    if (equalNoCase(name, defaultOutputName))
        return defaultEndpoint(snapshot, Flow::output);
    if (equalNoCase(name, defaultInputName))
        return defaultEndpoint(snapshot, Flow::input);
    const Endpoint endpoint = require(snapshot, snapshot.endpointNamed(name));
    return {snapshot.cardOf(endpoint.id()).value_or(Card()), endpoint};
}

CardEndpoint requestedEndpoint(const Context& context, const Snapshot& snapshot)
{
    try
    {
        const CardEndpoint found = endpointNamed(snapshot, context.arguments.endpoint);
        report(context, isDenied(found.endpoint) ? 1 : 0);
        return found;
    }
    catch (...)
    {
        reportDenied(context, snapshot.cards());
        throw;
    }
}

std::vector<Card> requestedCards(const Context& context, const Snapshot& snapshot)
{
    const std::string& name = context.arguments.card;
    const std::string& endpoint = context.arguments.endpoint;
    if (name.empty())
        return snapshot.cards();
    const Card wanted = require(snapshot, snapshot.cardNamed(name));
    if (!endpoint.empty() && !hasEndpoint(wanted, endpoint))
    {
        const CardEndpoint found = endpointNamed(snapshot, endpoint);
        if (found.card.id() != wanted.id())
            throw UsageError(inQuotes(endpoint) + " is an endpoint of the card " + inQuotes(found.card.title()) +
                             ", not of " + inQuotes(wanted.title()));
    }
    return {wanted};
}

Snapshot readSnapshot(const Context& context)
{
    Snapshot snapshot = context.session.source().snapshot();
    const auto hidesCards = [](const Problem& problem)
    { return isOfList(problem) || problem.kind() != Problem::Kind::platform; };
    const std::optional<Problem> problem = findProblem(snapshot, hidesCards);
    if (problem && snapshot.cards().empty())
        throw OperationFailure(listFailure(*problem));
    return snapshot;
}

std::vector<Problem> problemsOfLists(const Snapshot& snapshot)
{
    std::vector<Problem> problems;
    std::copy_if(snapshot.problems().begin(), snapshot.problems().end(), std::back_inserter(problems), isOfList);
    return problems;
}

void reportDenied(const Context& context, const std::vector<Card>& cards)
{
    report(context, deniedAmong(cards));
}
}
