#include "sonavit/change.h"
#include "sonavit/contentfields.h"
#include "sonavit/text.h"

#include <sstream>
#include <type_traits>

namespace sonavit
{
inline namespace v1
{
namespace
{
constexpr const char* arrow = " -> ";

std::string words(const std::string& value)
{
    return text::printable(value);
}

template<class Kind>
std::string words(const Id<Kind>& id)
{
    return text::printable(id.text());
}

std::string words(std::uint32_t number)
{
    return std::to_string(number);
}

std::string words(const Guid& guid)
{
    return guid.text();
}

std::string words(Flow flow)
{
    return wordsOf(flow);
}

std::string words(State state)
{
    return wordsOf(state);
}

std::string words(Roles roles)
{
    std::vector<std::string> list;
    for (const Role role : roles.list())
        list.emplace_back(wordsOf(role));
    return list.empty() ? text::nothing : text::enumeration(list);
}

std::string words(const Volume& volume)
{
    return volume.sentence();
}

std::string words(const Format& format)
{
    return format.sentence();
}

std::string words(const Jack& jack)
{
    return jack.sentence();
}

std::string words(const Problem& problem)
{
    return text::printable(problem.sentence());
}

std::string words(const EndpointProblem& problem)
{
    return wordsOf(problem.field) + (": " + words(problem.problem));
}

template<class T>
std::string words(const std::vector<T>& list)
{
    std::string result;
    for (const T& one : list)
        result += (result.empty() ? "" : "; ") + words(one);
    return list.empty() ? text::nothing : result;
}

template<class T>
std::string words(const std::optional<T>& value)
{
    return value ? words(*value) : text::nothing;
}

/// "volume 40% (-18.00 dB) -> 45% (-16.50 dB)". Values may differ in what their words do not contain, such as the
/// balance of channels.
std::string step(const std::string& what, const std::string& before, const std::string& after)
{
    return before == after ? what + " " + after + ", details changed" : what + " " + before + arrow + after;
}

template<class Content, class Field>
std::string fieldStep(const Content& before, const Content& after, Field field)
{
    std::string result = wordsOf(field);
    visitField(field, [&](auto member) { result = step(wordsOf(field), words(before.*member), words(after.*member)); });
    return result;
}

/// Masks of speakers have words of their own.
std::string speakersStep(const Endpoint& before, const Endpoint& after)
{
    const auto speakers = [](const Endpoint& endpoint)
    { return endpoint.speakers() ? speakerWords(*endpoint.speakers()) : std::string(text::nothing); };
    return step(wordsOf(EndpointField::speakers), speakers(before), speakers(after));
}

std::string endpointStep(const Event& event)
{
    const Endpoint before = event.before.value_or(Endpoint());
    const Endpoint after = event.after.value_or(Endpoint());
    const EndpointField field = event.field.value_or(EndpointField::id);
    if (field == EndpointField::speakers)
        return speakersStep(before, after);
    return fieldStep(before.content(), after.content(), field);
}

std::string cardStep(const Event& event)
{
    const Card before = event.cardBefore.value_or(Card());
    const Card after = event.cardAfter.value_or(Card());
    return fieldStep(before.content(), after.content(), event.cardField.value_or(CardField::title));
}

std::string placeWords(const Event& event)
{
    return event.position ? "to place " + std::to_string(*event.position + 1) : std::string("to another place");
}

std::string titleOf(const std::optional<Endpoint>& endpoint)
{
    return endpoint ? endpoint->title() : "none";
}

std::string titleOf(const std::optional<Card>& card)
{
    return card ? text::printable(card->title()) : "unknown card";
}

std::string defaultSentence(const Event& event)
{
    const std::string what = std::string("default ") + wordsOf(event.flow.value_or(Flow::output)) + " for " +
                             wordsOf(event.role.value_or(Role::console));
    return what + ": " + titleOf(event.before) + arrow + titleOf(event.after);
}

std::string hardwareSentence(const Event& event)
{
    const std::string what = "hardware of " + text::printable(event.card.text()) + ": ";
    if (!event.hardwareBefore)
        return what + "watched";
    return what + (event.hardwareAfter ? "changed" : "no longer watched");
}

/// What happened to the endpoint or to the card.
std::string happening(const Event& event)
{
    switch (event.kind)
    {
    case Event::Kind::endpointRemoved:
        return "removed";
    case Event::Kind::cardRemoved:
        return "card removed";
    case Event::Kind::cardAdded:
        return "card added";
    case Event::Kind::endpointAdded:
        return event.after && event.after->state() ? "added, " + words(*event.after->state()) : "added";
    case Event::Kind::cardMoved:
        return "card moved " + placeWords(event);
    case Event::Kind::endpointMoved:
        return event.formerCard ? "moved to another card" : "moved " + placeWords(event);
    case Event::Kind::endpointReappeared:
        return "vanished and came back";
    case Event::Kind::cardChanged:
        return cardStep(event);
    case Event::Kind::endpointChanged:
        return endpointStep(event);
    default:
        return "unknown event";
    }
}
}

std::string Event::sentence() const
{
    switch (kind)
    {
    case Kind::cardRemoved:
        return titleOf(cardBefore) + ": " + happening(*this);
    case Kind::cardAdded:
    case Kind::cardMoved:
    case Kind::cardChanged:
        return titleOf(cardAfter) + ": " + happening(*this);
    case Kind::defaultChanged:
        return defaultSentence(*this);
    case Kind::hardwareChanged:
        return hardwareSentence(*this);
    case Kind::serviceChanged:
        return std::string("audio service: ") + keyOf(service.value_or(Service::running));
    case Kind::problemsChanged:
        return "problems of the computer: " + (problems.empty() ? "none" : words(problems));
    default:
        return titleOf(after ? after : before) + ": " + happening(*this);
    }
}
}
}
