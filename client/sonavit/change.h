/// @file
/// What changed between two snapshots.
#pragma once

#include "sonavit/export.h"
#include "sonavit/result.h"
#include "sonavit/snapshot.h"

#include <cstddef>
#include <iosfwd>
#include <optional>
#include <string>
#include <vector>

namespace sonavit
{
inline namespace v1
{
/// Who caused a change. The platform says it of volumes, mutes and hardware controls, but not of names and states.
enum class Origin : int
{
    unknown, ///< the platform does not say
    own,     ///< this System
    other,   ///< another program, the user, or another System
    both     ///< both, within one window
};

/// Names the parts of a card, for changes.
enum class CardField : int
{
    instancePath,
    instanceId,
    parent,
    container,
    bus,
    title,
    problems
};

/// One thing that changed. Which members have a value depends on the kind. A value; any thread may use it.
struct Event
{
    enum class Kind : int
    {
        endpointRemoved,    ///< card, before
        cardRemoved,        ///< card, cardBefore; its endpoints are removed as well, or move to other cards
        cardAdded,          ///< card, cardAfter without endpoints, position among the cards; its endpoints follow
        endpointAdded,      ///< card, after, position in the card
        cardMoved,          ///< card, cardAfter, position among the cards
        endpointMoved,      ///< card, after, position in the card; formerCard if that was another one
        endpointReappeared, ///< card, before, after: it vanished and came back within one change
        cardChanged,        ///< card, cardBefore, cardAfter, cardField
        endpointChanged,    ///< card, before, after, field
        defaultChanged,     ///< flow, role, and before or after or both; an unknown endpoint has only its id
        hardwareChanged, ///< card, hardwareBefore or hardwareAfter or both: a watch began, changed or ended; position
                         ///< in the list of hardware if it began
        serviceChanged,  ///< service
        problemsChanged  ///< problems of the computer as a whole
    };

    Kind kind = Kind::endpointChanged;
    /// The card that it is about, or that the endpoint belongs to now.
    CardId card;
    std::optional<CardId> formerCard;
    std::optional<Endpoint> before;
    std::optional<Endpoint> after;
    std::optional<EndpointField> field;
    std::optional<Card> cardBefore;
    std::optional<Card> cardAfter;
    std::optional<CardField> cardField;
    /// The place after the whole change, counted from 0. What neither was added nor moved keeps its order and fills the
    /// places in between.
    std::optional<std::size_t> position;
    /// Which of several endpoints of the card that have the same id, and which of several such cards, counted from 0:
    /// of what was removed before the change, of all else after it. Both are 0 where ids differ, as they should.
    std::size_t occurrence = 0;
    std::size_t cardOccurrence = 0;
    std::optional<Flow> flow;
    std::optional<Role> role;
    std::optional<Hardware> hardwareBefore;
    std::optional<Hardware> hardwareAfter;
    std::optional<Service> service;
    std::vector<Problem> problems;

    Origin origin = Origin::unknown;
    /// The changes by this System that led to it, as Result::token() returned them.
    std::vector<ChangeToken> tokens;
    /// Whether it follows from the end or the return of the audio service.
    bool isByService = false;

    /// One line for a person: "Speakers (Analog Audio): volume 40% (-18.00 dB) -> 45% (-16.50 dB)".
    SONAVIT_CLIENT_API std::string sentence() const;
};

/// Equal if kind and values are; origin, tokens and isByService are ignored.
SONAVIT_CLIENT_API bool operator==(const Event& left, const Event& right);
inline bool operator!=(const Event& left, const Event& right)
{
    return !(left == right);
}
/// "endpointChanged", "own", "instancePath": as in JSON.
SONAVIT_CLIENT_API const char* keyOf(Event::Kind kind) noexcept;
SONAVIT_CLIENT_API const char* keyOf(Origin origin) noexcept;
SONAVIT_CLIENT_API const char* keyOf(CardField field) noexcept;
/// "instance path" and the like, for people.
SONAVIT_CLIENT_API const char* wordsOf(CardField field) noexcept;
/// Its key.
SONAVIT_CLIENT_API std::ostream& operator<<(std::ostream& out, Event::Kind kind);
/// Its key.
SONAVIT_CLIENT_API std::ostream& operator<<(std::ostream& out, Origin origin);
/// Its words.
SONAVIT_CLIENT_API std::ostream& operator<<(std::ostream& out, CardField field);
/// Its sentence.
SONAVIT_CLIENT_API std::ostream& operator<<(std::ostream& out, const Event& event);
/// One sentence on each line.
SONAVIT_CLIENT_API std::ostream& operator<<(std::ostream& out, const std::vector<Event>& events);

/// What a subscriber receives: the state that it knew, the state now, and what lies between them.
/// events() == difference(before(), after()), and apply(before(), events()) == after(). A value; any thread may use it,
/// after the callback as well.
class SONAVIT_CLIENT_API Change
{
public:
    /// @param events difference(before, after), with their origins
    Change(Snapshot before, Snapshot after, std::vector<Event> events);

    const Snapshot& before() const noexcept { return m_before; }
    const Snapshot& after() const noexcept { return m_after; }
    const std::vector<Event>& events() const noexcept { return m_events; }

private:
    Snapshot m_before;
    Snapshot m_after;
    std::vector<Event> m_events;
};

/// Equal if both states and the events are.
SONAVIT_CLIENT_API bool operator==(const Change& left, const Change& right);
inline bool operator!=(const Change& left, const Change& right)
{
    return !(left == right);
}
/// Its events.
SONAVIT_CLIENT_API std::ostream& operator<<(std::ostream& out, const Change& change);

/// What leads from @p before to @p after, in this order: what was removed; what was added, with positions; what moved;
/// what changed, field by field; defaults; watched hardware; the service; problems. Empty if they are equal. Cards that
/// both snapshots share cost a comparison of two pointers. Any thread may call it, and apply(), too.
SONAVIT_CLIENT_API std::vector<Event> difference(const Snapshot& before, const Snapshot& after);

/// @p before after @p events; generation and time stay. Throws std::invalid_argument if an event does not fit, such as
/// the removal of an endpoint that is not there. Call it as sonavit::apply(): without the namespace, the arguments let
/// the compiler find std::apply() as well.
SONAVIT_CLIENT_API Snapshot apply(const Snapshot& before, const std::vector<Event>& events);
}
}
