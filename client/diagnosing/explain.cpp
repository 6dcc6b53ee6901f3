#include "client/diagnosing/explain.h"

#include "sonavit/enumnames.h"
#include "sonavit/text.h"

#include <array>
#include <ostream>

namespace sonavit
{
namespace diagnosing
{
std::vector<Reason> explainEndpoint(const Subject& subject)
{
    return {explainCard(subject), explainJacks(subject), explainControls(subject), explainDefault(subject)};
}
}

inline namespace v1
{
namespace
{
constexpr std::array<const char*, 4> questionKeys = {"card", "jacks", "controls", "default"};

std::optional<CardEndpoint> placeOf(const Snapshot& snapshot, const EndpointId& endpoint)
{
    std::optional<Card> card = snapshot.cardOf(endpoint);
    std::optional<Endpoint> found = snapshot.endpoint(endpoint);
    if (!card || !found)
        return std::nullopt;
    return CardEndpoint{*std::move(card), *std::move(found)};
}
}

Result<std::vector<Reason>> explain(System& system, const EndpointId& endpoint)
{
    const Result<Snapshot> snapshot = system.refresh();
    if (!snapshot)
        return snapshot.problem();
    const std::optional<CardEndpoint> place = placeOf(*snapshot, endpoint);
    if (!place)
        return Problem(Problem::Kind::notThere, "explain", endpoint.text(), "there is no endpoint " + endpoint.text());
    const Result<capturing::Survey> survey = capturing::survey(system, "explain");
    if (!survey)
        return survey.problem();
    const Result<std::vector<Control>> controls = system.controls(endpoint);
    return diagnosing::explainEndpoint({*survey, *snapshot, *place, controls});
}

bool operator==(const Fact& left, const Fact& right)
{
    return left.sentence == right.sentence && left.call == right.call && left.object == right.object &&
           left.code == right.code;
}

std::ostream& operator<<(std::ostream& out, const Fact& fact)
{
    out << fact.sentence;
    if (!fact.call.empty())
        out << " [" << fact.call << (fact.object.empty() ? "" : " on ") << text::printable(fact.object) << "]";
    return out;
}

bool operator==(const Reason& left, const Reason& right)
{
    return left.question == right.question && left.title == right.title && left.facts == right.facts &&
           left.conclusion == right.conclusion;
}

std::ostream& operator<<(std::ostream& out, const Reason& reason)
{
    out << reason.title << "\n";
    for (const Fact& fact : reason.facts)
        out << "  " << fact << "\n";
    return out << "  " << reason.conclusion << "\n";
}

const char* keyOf(Reason::Question question) noexcept
{
    return nameOf(questionKeys, question, unknownKey);
}
}
}
