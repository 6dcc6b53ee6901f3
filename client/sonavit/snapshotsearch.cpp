#include "sonavit/snapshot.h"

#include "sonavit/text.h"

#include <algorithm>
#include <cstddef>
#include <functional>
#include <utility>

namespace sonavit
{
inline namespace v1
{
namespace
{
/// Candidates that a sentence lists; it counts the others.
constexpr std::size_t mostCandidates = 6;

/// Columns of a name among the candidates.
constexpr std::size_t longestCandidate = 60;

/// The code of a call that succeeds and returns nothing; only for problems that no platform call explains.
constexpr std::int32_t noCode = 0;

/// What a thing can be called by.
struct Names
{
    std::vector<std::string> whole; ///< ids first
    std::string title;              ///< how it is shown to the user
    std::optional<Problem> failure; ///< why there may be more names than these
};

using IsMatch = std::function<bool(const std::string&)>;

std::vector<std::size_t> matches(const std::vector<Names>& things, const IsMatch& isMatch)
{
    std::vector<std::size_t> found;
    for (std::size_t i = 0; i < things.size(); ++i)
    {
        if (std::any_of(things[i].whole.begin(), things[i].whole.end(), isMatch))
            found.push_back(i);
    }
    return found;
}

/// The search for one thing by its name.
class Search
{
public:
    Search(std::string operation, std::string noun, std::string_view name)
        : m_operation(std::move(operation)),
          m_noun(std::move(noun)),
          m_name(name)
    {
    }

    /// A whole name goes before a part of one, so that "Speakers" can be named although there are "Rear Speakers".
    Result<std::size_t> in(const std::vector<Names>& things) const
    {
        if (m_name.empty())
            return problem(Problem::Kind::notThere, "the name of the " + m_noun + " is empty");
        const std::string lower = text::lowerCase(m_name);
        const IsMatch tests[] = {[&](const std::string& name) { return name == m_name; },
                                 [&](const std::string& name) { return text::equalNoCase(name, m_name); },
                                 [&](const std::string& name)
                                 { return text::lowerCase(name).find(lower) != std::string::npos; }};
        for (const IsMatch& isMatch : tests)
        {
            const std::vector<std::size_t> found = matches(things, isMatch);
            if (found.size() == 1)
                return found.front();
            if (found.size() > 1)
                return ambiguous(things, found);
        }
        return unknown(things);
    }

private:
    Problem problem(Problem::Kind kind, std::string sentence) const
    {
        return Problem(kind, m_operation, std::string(m_name), std::move(sentence));
    }

    Problem ambiguous(const std::vector<Names>& things, const std::vector<std::size_t>& found) const
    {
        std::vector<std::string> titles;
        for (std::size_t i = 0; i < std::min(found.size(), mostCandidates); ++i)
            titles.push_back(things[found[i]].title);
        if (found.size() > mostCandidates)
            titles.push_back(std::to_string(found.size() - mostCandidates) + " more");
        return problem(Problem::Kind::ambiguous, text::quoted(m_name) + " matches " +
                                                     text::counted(found.size(), m_noun) + ": " +
                                                     text::enumeration(titles));
    }

    /// The thing may be one whose names cannot be read.
    Problem unknown(const std::vector<Names>& things) const
    {
        const auto isUnreadable = [](const Names& thing) { return thing.failure.has_value(); };
        const auto unreadable = std::find_if(things.begin(), things.end(), isUnreadable);
        if (unreadable == things.end())
            return problem(Problem::Kind::notThere, "there is no " + m_noun + " " + text::quoted(m_name));
        const auto count = static_cast<std::size_t>(std::count_if(things.begin(), things.end(), isUnreadable));
        const Problem& failure = *unreadable->failure;
        const std::string reason = failure.code() == noCode ? failure.sentence() : reasonText(failure.code());
        return Problem::ofCall(failure.operation(), failure.object(), failure.code(),
                               "the " + m_noun + " " + text::quoted(m_name) +
                                   " cannot be found, as the system fails to report the name of " +
                                   text::counted(count, m_noun) + ": " + reason);
    }

    std::string m_operation;
    std::string m_noun;
    std::string_view m_name;
};

/// Why a name of the endpoint may be missing.
std::optional<Problem> nameProblem(const Endpoint& endpoint)
{
    for (const EndpointField field : {EndpointField::id, EndpointField::description, EndpointField::interfaceName})
    {
        std::optional<Problem> problem = endpoint.problemWith(field);
        if (problem)
            return problem;
    }
    return std::nullopt;
}

Names namesOf(const Endpoint& endpoint)
{
    Names names{{endpoint.id().text()}, text::shortened(endpoint.title(), longestCandidate), nameProblem(endpoint)};
    if (endpoint.description())
        names.whole.push_back(*endpoint.description());
    if (endpoint.name())
    {
        names.whole.push_back(*endpoint.name());
        names.title += " " + text::printable(endpoint.id().text());
        names.title += std::string(" (") + wordsOf(endpoint.flow()) + ")";
    }
    return names;
}

Names namesOf(const Card& card)
{
    Names names{{card.id().text(), card.title()},
                text::shortened(text::printable(card.title()), longestCandidate),
                std::nullopt};
    if (card.instanceId())
    {
        names.whole.push_back(*card.instanceId());
        names.title += " " + text::printable(*card.instanceId());
    }
    for (const Endpoint& endpoint : card.endpoints())
        names.failure = names.failure ? names.failure : nameProblem(endpoint);
    return names;
}

/// The one of @p things that @p search finds.
template<class Thing>
Result<Thing> found(const std::vector<Thing>& things, const Search& search)
{
    std::vector<Names> names;
    names.reserve(things.size());
    for (const Thing& thing : things)
        names.push_back(namesOf(thing));
    const Result<std::size_t> index = search.in(names);
    if (!index)
        return index.problem();
    return things[*index];
}

/// The number that @p text consists of.
std::optional<std::uint32_t> numberIn(std::string_view text)
{
    constexpr std::size_t mostDigits = 10;
    if (text.empty() || text.size() > mostDigits || text.find_first_not_of("0123456789") != std::string_view::npos)
        return std::nullopt;
    std::uint64_t number = 0;
    for (const char digit : text)
        number = number * 10 + static_cast<unsigned>(digit - '0');
    if (number > 0xFFFFFFFF)
        return std::nullopt;
    return static_cast<std::uint32_t>(number);
}

/// An id of unknown kind.
class AnyId
{
public:
    explicit AnyId(std::string_view id) : m_text(id), m_number(numberIn(id)), m_guid(Guid::parse(id)) {}

    /// By what it identifies an endpoint of a card; no value if it does not.
    std::optional<IdKind> identifies(const Card& card, const Endpoint& endpoint) const
    {
        if (is(endpoint.id().text()))
            return IdKind::endpointId;
        if (m_number && endpoint.waveId() == m_number)
            return IdKind::waveId;
        if (m_guid && endpoint.directSoundId() == m_guid)
            return IdKind::directSoundId;
        if (is(card.id().text()))
            return IdKind::cardId;
        if (is(card.instanceId()) || is(card.instancePath()) || is(endpoint.instancePath()))
            return IdKind::instanceId;
        if (m_guid && endpoint.container() == m_guid)
            return IdKind::container;
        return is(card.parent()) ? std::optional<IdKind>(IdKind::parent) : std::nullopt;
    }

private:
    bool is(const std::optional<std::string>& id) const { return id && text::equalNoCase(*id, m_text); }

    std::string_view m_text;
    std::optional<std::uint32_t> m_number;
    std::optional<Guid> m_guid;
};
}

Result<Endpoint> Snapshot::endpointNamed(std::string_view text) const
{
    return found(endpoints(), Search("endpointNamed", "endpoint", text));
}

Result<Card> Snapshot::cardNamed(std::string_view text) const
{
    return found(cards(), Search("cardNamed", "card", text));
}

std::vector<Match> Snapshot::find(std::string_view id) const
{
    std::vector<Match> matches;
    if (id.empty())
        return matches;
    const AnyId wanted(id);
    for (const Card& card : cards())
    {
        for (const Endpoint& endpoint : card.endpoints())
        {
            if (const std::optional<IdKind> kind = wanted.identifies(card, endpoint))
                matches.push_back({{card, endpoint}, *kind});
        }
    }
    return matches;
}
}
}
