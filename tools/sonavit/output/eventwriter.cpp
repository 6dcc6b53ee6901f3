#include "tools/sonavit/output/eventwriter.h"

#include "tools/sonavit/output/eventjson.h"
#include "tools/sonavit/output/modelwords.h"
#include "tools/sonavit/output/table.h"
#include "tools/sonavit/output/text.h"
#include "tools/sonavit/output/timetext.h"

#include <algorithm>
#include <utility>

namespace sonavit::program
{
namespace
{
constexpr std::size_t widestName = 24;
constexpr const char* arrow = " \xE2\x86\x92 ";

std::string sentenceWords(const Level& level)
{
    return percentWords(level.percent) + " (" + decibelWords(level.decibels) + ")";
}

std::string volumeWords(const Event& event)
{
    const Volume before = event.before->volume().value_or(Volume());
    const Volume now = event.after->volume().value_or(Volume());
    if (!event.after->volume())
        return "no volume any more";
    const bool isOtherMute = now.isMuted != before.isMuted;
    std::string words;
    if (now.master != before.master)
        words = "volume " + sentenceWords(before.master) + arrow + sentenceWords(now.master);
    else if (!isOtherMute) // only the balance of the channels, the range, or who attenuates
        words = "volume " + sentenceWords(now.master);
    if (isOtherMute && now.isMuted)
        words += (words.empty() ? "" : ", ") + std::string(*now.isMuted ? "muted" : "no longer muted");
    return words.empty() ? "volume " + sentenceWords(now.master) : words;
}

std::string defaultWords(const Event& event, const Snapshot& after)
{
    const Flow flow = event.flow.value_or(Flow::output);
    const Role role = event.role.value_or(Role::console);
    const std::string what = std::string("default ") + wordsOf(flow) + " for " + wordsOf(role);
    const std::string former = event.before ? ", formerly " + titleWords(*event.before) : "";
    if (event.after)
        return what + former;
    return (after.problemWithDefault(flow, role) ? what + " not known" : "no " + what + " any more") + former;
}

std::string fieldWords(const Event& event)
{
    switch (event.field.value_or(EndpointField::problems))
    {
    case EndpointField::state:
        return stateWords(event.before->state()) + arrow + stateWords(event.after->state());
    case EndpointField::volume:
        return volumeWords(event);
    case EndpointField::description:
    case EndpointField::interfaceName:
        return "name " + titleWords(*event.before) + arrow + titleWords(*event.after);
    case EndpointField::format:
    {
        const auto words = [](const Endpoint& endpoint)
        { return endpoint.format() ? endpoint.format()->sentence() : std::string(nothing); };
        return "format " + words(*event.before) + arrow + words(*event.after);
    }
    default:
        return std::string(wordsOf(*event.field)) + " changed";
    }
}

/// @param after the state after the event
std::string eventWords(const Event& event, const Snapshot& after)
{
    switch (event.kind)
    {
    case Event::Kind::endpointAdded:
        return "added, " + stateWords(event.after->state());
    case Event::Kind::endpointRemoved:
        return "removed";
    case Event::Kind::endpointReappeared:
        return "went and came back";
    case Event::Kind::endpointMoved:
    case Event::Kind::cardMoved:
        return "moved";
    case Event::Kind::endpointChanged:
        return fieldWords(event);
    case Event::Kind::cardAdded:
        return "card added";
    case Event::Kind::cardRemoved:
        return "card removed";
    case Event::Kind::defaultChanged:
        return defaultWords(event, after);
    case Event::Kind::serviceChanged:
        return event.service == Service::stopped ? "the audio service has stopped" : "the audio service runs again";
    default:
        return printable(event.sentence());
    }
}

Paint eventPaint(const Event& event)
{
    switch (event.kind)
    {
    case Event::Kind::cardAdded:
    case Event::Kind::endpointAdded:
    case Event::Kind::endpointReappeared:
        return Paint::green;
    case Event::Kind::cardRemoved:
    case Event::Kind::endpointRemoved:
    case Event::Kind::serviceChanged:
        return Paint::red;
    case Event::Kind::defaultChanged:
        return Paint::cyan;
    case Event::Kind::endpointChanged:
        return event.field == EndpointField::state ? Paint::yellow : Paint::none;
    default:
        return Paint::none;
    }
}

/// The card that @p event is about; one without id if it is about none, or about one that is gone.
Card cardOf(const Event& event, const Snapshot& snapshot)
{
    if (event.cardAfter || event.cardBefore)
        return event.cardAfter ? *event.cardAfter : *event.cardBefore;
    const std::optional<Endpoint> endpoint = subjectOf(event);
    if (event.kind == Event::Kind::defaultChanged && !endpoint)
        return Card();
    if (const std::optional<Card> card = snapshot.card(event.card))
        return *card;
    const std::optional<Card> card = endpoint ? snapshot.cardOf(endpoint->id()) : std::nullopt;
    return card.value_or(Card());
}
}

std::optional<Endpoint> subjectOf(const Event& event)
{
    if (event.kind == Event::Kind::defaultChanged)
        return event.after;
    return event.after ? event.after : event.before;
}

EventWriter::EventWriter(const Environment& environment, bool isJson, std::optional<std::string> machine)
    : m_environment(environment),
      m_isJson(isJson),
      m_machine(std::move(machine))
{
}

void EventWriter::expect(const Card& card, const Endpoint& endpoint)
{
    m_names.emplace(card.title(), endpoint.title(), endpoint.flow());
    expect(card);
    m_endpointWidth = std::min(std::max(m_endpointWidth, displayWidth(shownTitle(card, endpoint))), widestName);
}

void EventWriter::expect(const Card& card)
{
    m_cardWidth = std::min(std::max(m_cardWidth, displayWidth(printable(card.title()))), widestName);
}

std::string EventWriter::shownTitle(const Card& card, const Endpoint& endpoint) const
{
    const std::string title = printable(endpoint.description().value_or(endpoint.title()));
    const Flow other = endpoint.flow() == Flow::output ? Flow::input : Flow::output;
    if (m_names.count({card.title(), endpoint.title(), other}) == 0)
        return shortened(title, widestName);
    const std::string flow = " (" + std::string(wordsOf(endpoint.flow())) + ")";
    return shortened(title, widestName - flow.size()) + flow;
}

void EventWriter::write(const Event& event, const Change& change)
{
    if (isOutputLost())
        return;
    const bool isGone = event.kind == Event::Kind::endpointRemoved || event.kind == Event::Kind::cardRemoved;
    const Card card = cardOf(event, isGone ? change.before() : change.after());
    if (const std::optional<Endpoint> endpoint = subjectOf(event))
        expect(card, *endpoint);
    else if (event.cardBefore || event.cardAfter)
        expect(card);
    const std::string text =
        m_isJson ? eventJson(event, change, card, m_machine).line() : line(event, change.after(), card);
    m_environment.out << text << "\n" << std::flush;
}

bool EventWriter::isOutputLost() const
{
    return !m_environment.out;
}

std::string EventWriter::line(const Event& event, const Snapshot& after, const Card& card) const
{
    const bool hasColours = m_environment.hasColours;
    const std::optional<Endpoint> subject = subjectOf(event);
    const bool isCardKnown = !card.id().isEmpty() || !card.endpoints().empty();
    const std::string cardTitle = isCardKnown ? shortened(printable(card.title()), m_cardWidth) : std::string();
    const std::string title = subject ? shownTitle(card, *subject) : std::string();
    return painted(localTimeText(after.time()), Paint::dim, hasColours) + "  " + padded(cardTitle, m_cardWidth) + "  " +
           painted(padded(title, m_endpointWidth), Paint::bold, hasColours) + "  " +
           painted(eventWords(event, after), eventPaint(event), hasColours);
}
}
