#include "sonavit/change.h"

#include "sonavit/enumnames.h"

#include <array>
#include <ostream>
#include <utility>

namespace sonavit
{
inline namespace v1
{
namespace
{
constexpr std::array<const char*, 13> kindKeys = {
    "endpointRemoved", "cardRemoved",        "cardAdded",      "endpointAdded",   "cardMoved",
    "endpointMoved",   "endpointReappeared", "cardChanged",    "endpointChanged", "defaultChanged",
    "hardwareChanged", "serviceChanged",     "problemsChanged"};
constexpr std::array<const char*, 4> originKeys = {"unknown", "own", "other", "both"};
constexpr std::array<EnumName, 7> cardFields = {{{"instancePath", "instance path"},
                                                 {"instanceId", "instance id"},
                                                 {"parent", "parent"},
                                                 {"container", "container"},
                                                 {"bus", "bus"},
                                                 {"title", "title"},
                                                 {"problems", "problems"}}};
}

bool operator==(const Event& left, const Event& right)
{
    return left.kind == right.kind && left.card == right.card && left.formerCard == right.formerCard &&
           left.position == right.position && left.occurrence == right.occurrence &&
           left.cardOccurrence == right.cardOccurrence && left.field == right.field &&
           left.cardField == right.cardField && left.flow == right.flow && left.role == right.role &&
           left.service == right.service && left.before == right.before && left.after == right.after &&
           left.cardBefore == right.cardBefore && left.cardAfter == right.cardAfter &&
           left.hardwareBefore == right.hardwareBefore && left.hardwareAfter == right.hardwareAfter &&
           left.problems == right.problems;
}

const char* keyOf(Event::Kind kind) noexcept
{
    return nameOf(kindKeys, kind, unknownKey);
}

const char* keyOf(Origin origin) noexcept
{
    return nameOf(originKeys, origin, unknownKey);
}

const char* keyOf(CardField field) noexcept
{
    return nameOf(cardFields, field, unknownName).key;
}

const char* wordsOf(CardField field) noexcept
{
    return nameOf(cardFields, field, unknownName).words;
}

std::ostream& operator<<(std::ostream& out, Event::Kind kind)
{
    return out << keyOf(kind);
}

std::ostream& operator<<(std::ostream& out, Origin origin)
{
    return out << keyOf(origin);
}

std::ostream& operator<<(std::ostream& out, CardField field)
{
    return out << wordsOf(field);
}

std::ostream& operator<<(std::ostream& out, const Event& event)
{
    return out << event.sentence();
}

std::ostream& operator<<(std::ostream& out, const std::vector<Event>& events)
{
    for (const Event& event : events)
        out << event.sentence() << '\n';
    return out;
}

Change::Change(Snapshot before, Snapshot after, std::vector<Event> events)
    : m_before(std::move(before)),
      m_after(std::move(after)),
      m_events(std::move(events))
{
}

bool operator==(const Change& left, const Change& right)
{
    return left.before() == right.before() && left.after() == right.after() && left.events() == right.events();
}

std::ostream& operator<<(std::ostream& out, const Change& change)
{
    return out << change.events();
}
}
}
