/// @file
/// Who caused changes.
#pragma once

#include "sonavit/change.h"

#include <map>
#include <string>
#include <utility>
#include <vector>

namespace sonavit::watching
{
/// Who caused one change, as far as it is known.
struct Cause
{
    Origin origin = Origin::unknown;
    std::vector<ChangeToken> tokens;
    bool isByService = false;
};

/// What two changes of one thing have in common when they become one: unknown if that is so of either, both if they
/// differ; the tokens of both.
Cause merged(Cause first, const Cause& second);

/// Adds @p cause to those of @p id.
template<class Key>
void note(std::map<Key, Cause>& causes, const Key& id, const Cause& cause)
{
    const auto [place, isNew] = causes.emplace(id, cause);
    if (!isNew)
        place->second = merged(std::move(place->second), cause);
}

/// The causes of changes that wait for a subscriber, by what changed: it grows with the things, not with the changes.
class Causes
{
public:
    void add(const std::vector<Event>& events);
    /// Gives each of @p events the causes of the changes that it is made of.
    void giveTo(std::vector<Event>& events) const;

private:
    using Key = std::pair<std::string, int>;

    std::map<Key, Cause> m_causes;
};
}
