#include "client/watching/causes.h"

#include <algorithm>

namespace sonavit::watching
{
namespace
{
/// The spelling of an id may change between two events, but then it is unknown who did what.
std::string objectOf(const Event& event)
{
    if (event.after)
        return event.after->id().text();
    if (event.before)
        return event.before->id().text();
    if (event.cardAfter)
        return event.cardAfter->id().text();
    if (event.cardBefore)
        return event.cardBefore->id().text();
    return event.card.text();
}

int partOf(const Event& event)
{
    constexpr int partsOfKind = 1000;
    int part = 0;
    if (event.field)
        part = static_cast<int>(*event.field);
    else if (event.cardField)
        part = static_cast<int>(*event.cardField);
    else if (event.flow && event.role)
        part = static_cast<int>(*event.flow) * 10 + static_cast<int>(*event.role);
    return static_cast<int>(event.kind) * partsOfKind + part;
}
}

Cause merged(Cause first, const Cause& second)
{
    if (first.origin != second.origin)
    {
        const bool isUnknown = first.origin == Origin::unknown || second.origin == Origin::unknown;
        first.origin = isUnknown ? Origin::unknown : Origin::both;
    }
    for (const ChangeToken token : second.tokens)
    {
        if (std::find(first.tokens.begin(), first.tokens.end(), token) == first.tokens.end())
            first.tokens.push_back(token);
    }
    first.isByService = first.isByService || second.isByService;
    return first;
}

void Causes::add(const std::vector<Event>& events)
{
    for (const Event& event : events)
    {
        note(m_causes, Key(objectOf(event), partOf(event)), Cause{event.origin, event.tokens, event.isByService});
    }
}

void Causes::giveTo(std::vector<Event>& events) const
{
    for (Event& event : events)
    {
        const std::string object = objectOf(event);
        const auto exact = m_causes.find(Key(object, partOf(event)));
        Cause cause;
        if (exact != m_causes.end())
        {
            cause = exact->second;
        }
        else
        {
            // Such as the addition of an endpoint that was changed later: its tokens are known, its origin is not.
            for (auto each = m_causes.lower_bound(Key(object, 0));
                 each != m_causes.end() && each->first.first == object; ++each)
                cause = merged(std::move(cause), each->second);
        }
        event.origin = cause.origin;
        event.tokens = std::move(cause.tokens);
        event.isByService = cause.isByService;
    }
}
}
