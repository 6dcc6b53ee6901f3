#include "sonavit/snapshot.h"

#include "sonavit/defaultcalls.h"
#include "sonavit/enumnames.h"
#include "sonavit/text.h"

#include <algorithm>
#include <ostream>
#include <utility>

namespace sonavit
{
inline namespace v1
{
namespace
{
constexpr std::array<EnumName, 2> services = {{{"running", "running"}, {"stopped", "stopped"}}};
constexpr std::array<EnumName, 7> idKinds = {{{"endpointId", "endpoint id"},
                                              {"waveId", "wave id"},
                                              {"directSoundId", "DirectSound id"},
                                              {"cardId", "card id"},
                                              {"instanceId", "instance id"},
                                              {"container", "container"},
                                              {"parent", "parent"}}};

/// The card and the endpoint with that id; no value if there is none, nor for the id of nothing.
std::optional<CardEndpoint> placeOf(const std::vector<Card>& cards, const EndpointId& id)
{
    if (id.isEmpty())
        return std::nullopt;
    for (const Card& card : cards)
    {
        for (const Endpoint& endpoint : card.endpoints())
        {
            if (endpoint.id() == id)
                return CardEndpoint{card, endpoint};
        }
    }
    return std::nullopt;
}

bool areNamed(Flow flow, Role role)
{
    return static_cast<unsigned>(flow) < allFlows.size() && static_cast<unsigned>(role) < allRoles.size();
}
}

Snapshot::Snapshot() : Snapshot(Content()) {}

Snapshot::Snapshot(Content content) : m_content(std::make_shared<const Content>(std::move(content))) {}

std::vector<Endpoint> Snapshot::endpoints() const
{
    std::vector<Endpoint> result;
    for (const Card& card : cards())
        result.insert(result.end(), card.endpoints().begin(), card.endpoints().end());
    return result;
}

std::optional<Endpoint> Snapshot::endpoint(const EndpointId& id) const
{
    std::optional<CardEndpoint> place = placeOf(cards(), id);
    return place ? std::optional<Endpoint>(std::move(place->endpoint)) : std::nullopt;
}

std::optional<Card> Snapshot::card(const CardId& id) const
{
    const auto found = std::find_if(cards().begin(), cards().end(), [&](const Card& card) { return card.id() == id; });
    return id.isEmpty() || found == cards().end() ? std::nullopt : std::optional<Card>(*found);
}

std::optional<Card> Snapshot::cardOf(const EndpointId& id) const
{
    std::optional<CardEndpoint> place = placeOf(cards(), id);
    return place ? std::optional<Card>(std::move(place->card)) : std::nullopt;
}

std::optional<Endpoint> Snapshot::defaultEndpoint(Flow flow, Role role) const
{
    if (!areNamed(flow, role))
        return std::nullopt;
    return endpoint(m_content->defaults[static_cast<std::size_t>(flow)][static_cast<std::size_t>(role)]);
}

std::optional<Problem> Snapshot::problemWithDefault(Flow flow, Role role) const
{
    if (!areNamed(flow, role))
        return std::nullopt;
    const std::string arguments = std::string("(") + argumentsOf(flow, role) + ")";
    const auto isOfDefault = [&](const Problem& problem) {
        return problem.operation() == callForDefault + arguments ||
               problem.operation() == callForIdOfDefault + arguments;
    };
    const auto found = std::find_if(problems().begin(), problems().end(), isOfDefault);
    return found == problems().end() ? std::nullopt : std::optional<Problem>(*found);
}

std::optional<Hardware> Snapshot::hardware(const CardId& card) const
{
    for (const Hardware& one : m_content->hardware)
    {
        if (one.card == card)
            return one;
    }
    return std::nullopt;
}

bool operator==(const Hardware::EndpointControls& left, const Hardware::EndpointControls& right)
{
    return left.endpoint == right.endpoint && left.controls == right.controls;
}

bool operator==(const Hardware& left, const Hardware& right)
{
    return left.card == right.card && left.controls == right.controls && left.selectors == right.selectors &&
           left.problems == right.problems;
}

bool operator==(const Snapshot& left, const Snapshot& right)
{
    const Snapshot::Content& a = left.content();
    const Snapshot::Content& b = right.content();
    return &a == &b || (a.service == b.service && a.defaults == b.defaults && a.cards == b.cards &&
                        a.hardware == b.hardware && a.problems == b.problems);
}

std::ostream& operator<<(std::ostream& out, const Match& match)
{
    return out << match.by << ": " << match.place;
}

std::ostream& operator<<(std::ostream& out, const CardEndpoint& place)
{
    return out << place.card.title() << " / " << place.endpoint.title();
}

std::ostream& operator<<(std::ostream& out, const Hardware::EndpointControls& controls)
{
    text::Fields(out, "EndpointControls").add("endpoint", controls.endpoint.text()).add("controls", controls.controls);
    return out;
}

std::ostream& operator<<(std::ostream& out, const Hardware& hardware)
{
    text::Fields fields(out, "Hardware");
    fields.add("card", hardware.card.text());
    for (const Hardware::EndpointControls& one : hardware.controls)
        fields.add("endpoint", one.endpoint.text()).add("controls", one.controls);
    fields.add("selectors", hardware.selectors).add("problems", hardware.problems);
    return out;
}

std::ostream& operator<<(std::ostream& out, const Snapshot& snapshot)
{
    const Snapshot::Content& content = snapshot.content();
    text::Fields fields(out, "Snapshot");
    fields.add("cards", content.cards);
    for (const Flow flow : allFlows)
    {
        for (const Role role : allRoles)
        {
            const EndpointId& id = content.defaults[static_cast<std::size_t>(flow)][static_cast<std::size_t>(role)];
            const std::string name = std::string("default ") + wordsOf(flow) + " for " + wordsOf(role);
            if (!id.isEmpty())
                fields.add(name.c_str(), id.text());
        }
    }
    fields.add("hardware", content.hardware)
        .add("service", keyOf(content.service))
        .add("problems", content.problems)
        .add("generation", content.generation);
    return out;
}

const char* keyOf(Service service) noexcept
{
    return nameOf(services, service, unknownName).key;
}

const char* keyOf(IdKind kind) noexcept
{
    return nameOf(idKinds, kind, unknownName).key;
}

const char* wordsOf(Service service) noexcept
{
    return nameOf(services, service, unknownName).words;
}

const char* wordsOf(IdKind kind) noexcept
{
    return nameOf(idKinds, kind, unknownName).words;
}

std::ostream& operator<<(std::ostream& out, Service service)
{
    return out << wordsOf(service);
}

std::ostream& operator<<(std::ostream& out, IdKind kind)
{
    return out << wordsOf(kind);
}
}
}
