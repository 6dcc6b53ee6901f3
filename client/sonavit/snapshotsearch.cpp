#include "sonavit/snapshot.h"

#include "sonavit/namesearch.h"
#include "sonavit/text.h"

#include <algorithm>
#include <cstddef>
#include <utility>

namespace sonavit
{
inline namespace v1
{
namespace
{
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

NameSearch::Names namesOf(const Endpoint& endpoint)
{
    NameSearch::Names names{
        {endpoint.id().text()}, text::shortened(endpoint.title(), NameSearch::longestCandidate), nameProblem(endpoint)};
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

NameSearch::Names namesOf(const Card& card)
{
    NameSearch::Names names{{card.id().text(), card.title()},
                            text::shortened(text::printable(card.title()), NameSearch::longestCandidate),
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
Result<Thing> found(const std::vector<Thing>& things, const NameSearch& search)
{
    std::vector<NameSearch::Names> names;
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

Result<Endpoint> Snapshot::endpointNamed(std::string_view text, std::optional<Flow> flow) const
{
    std::vector<Endpoint> candidates = endpoints();
    const auto isOther = [&](const Endpoint& endpoint) { return flow && endpoint.flow() != *flow; };
    candidates.erase(std::remove_if(candidates.begin(), candidates.end(), isOther), candidates.end());
    return found(candidates, NameSearch("endpointNamed", flow ? wordsOf(*flow) : "endpoint", text));
}

Result<Card> Snapshot::cardNamed(std::string_view text) const
{
    return found(cards(), NameSearch("cardNamed", "card", text));
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
