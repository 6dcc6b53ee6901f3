#include "sonavit/change.h"

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
constexpr std::array<const char*, 7> cardFieldKeys = {"instancePath", "instanceId", "parent",  "container",
                                                      "bus",          "title",      "problems"};
constexpr std::array<const char*, 7> cardFieldWords = {"instance path", "instance id", "parent",  "container",
                                                       "bus",           "title",       "problems"};

template<std::size_t Size, class Enum>
const char* nameIn(const std::array<const char*, Size>& names, Enum value) noexcept
{
    const auto number = static_cast<unsigned>(value);
    return number < Size ? names[number] : "unknown";
}
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
    return nameIn(kindKeys, kind);
}

const char* keyOf(Origin origin) noexcept
{
    return nameIn(originKeys, origin);
}

const char* keyOf(CardField field) noexcept
{
    return nameIn(cardFieldKeys, field);
}

const char* wordsOf(CardField field) noexcept
{
    return nameIn(cardFieldWords, field);
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
}
}
