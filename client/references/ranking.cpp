#include "client/references/ranking.h"

#include "client/references/recognition.h"

#include <algorithm>
#include <cstddef>
#include <optional>
#include <utility>

namespace sonavit::references
{
namespace
{
struct Ranked
{
    Recognition recognition;
    CardEndpoint place;
};

/// Of the better endpoint it is less; of those that fit equally well it is equal.
auto keyOf(const Ranked& ranked) noexcept
{
    return std::make_tuple(static_cast<int>(ranked.recognition.evidence), !isPresent(ranked.place.endpoint));
}

bool isBetter(const Ranked& left, const Ranked& right) noexcept
{
    if (keyOf(left) != keyOf(right))
        return keyOf(left) < keyOf(right);
    if (left.recognition.agreement != right.recognition.agreement)
        return left.recognition.agreement > right.recognition.agreement;
    return left.place.endpoint.isActive() && !right.place.endpoint.isActive();
}

std::vector<Ranked> recognisedIn(const Snapshot& snapshot, const Traits& kept)
{
    std::vector<Ranked> all;
    for (const Card& card : snapshot.cards())
        for (const Endpoint& endpoint : card.endpoints())
            if (std::optional<Recognition> recognition = recognise(kept, traitsOf(card, endpoint)))
                all.push_back({std::move(*recognition), {card, endpoint}});
    std::stable_sort(all.begin(), all.end(), isBetter);
    return all;
}

/// Removes those of weaker evidence than the first that is present.
void hideWeaker(std::vector<Ranked>& sorted)
{
    const auto present = std::find_if(sorted.begin(), sorted.end(),
                                      [](const Ranked& ranked) { return isPresent(ranked.place.endpoint); });
    if (present == sorted.end())
        return;
    const Candidate::Evidence evidence = present->recognition.evidence;
    sorted.erase(std::find_if(present, sorted.end(),
                              [evidence](const Ranked& ranked) { return ranked.recognition.evidence != evidence; }),
                 sorted.end());
}
}

std::vector<Candidate> candidatesIn(const Snapshot& snapshot, const Traits& kept)
{
    std::vector<Ranked> sorted = recognisedIn(snapshot, kept);
    hideWeaker(sorted);
    std::vector<Candidate> candidates;
    std::size_t rank = 0;
    for (std::size_t i = 0; i < sorted.size(); ++i)
    {
        if (i != 0 && isBetter(sorted[i - 1], sorted[i]))
            rank = i;
        const Recognition& recognition = sorted[i].recognition;
        candidates.push_back({sorted[i].place, recognition.evidence, rank, recognition.reason});
    }
    return candidates;
}

bool isPresent(const Endpoint& endpoint) noexcept
{
    return endpoint.state() != State::notPresent;
}
}
