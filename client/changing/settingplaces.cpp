#include "client/changing/settingplaces.h"

#include "client/references/encoding.h"
#include "client/references/recognition.h"
#include "client/references/traits.h"
#include "sonavit/reference.h"

#include <algorithm>
#include <cstddef>
#include <map>
#include <optional>
#include <utility>

namespace sonavit::changing
{
namespace
{
using references::Recognition;
using EndpointSetting = Settings::EndpointSetting;

const char* const operation = "restore";

/// A place, and how well the endpoint fits the setting.
struct Claim
{
    SettingPlace place;
    Recognition recognition;
};

/// The endpoint that a reference means, if it is certain enough.
Result<CardEndpoint> resolved(const Snapshot& snapshot, const EndpointSetting& setting, const Reference& reference)
{
    const Resolution resolution = resolve(snapshot, reference);
    if (std::optional<CardEndpoint> best = resolution.best())
        return *std::move(best);
    const bool isNone = resolution.kind == Resolution::Kind::none;
    return Problem(isNone ? Problem::Kind::notThere : Problem::Kind::ambiguous, operation, setting.name,
                   resolution.sentence());
}

/// How @p reference recognises the endpoint that it was resolved to.
Recognition recognitionOf(const Reference& reference, const CardEndpoint& now)
{
    const Result<references::Traits> kept = references::traitsIn(reference.text());
    return references::recognise(*kept, references::traitsOf(now.card, now.endpoint)).value_or(Recognition());
}

/// The name of the setting at @p position, for people.
std::string nameOf(const EndpointSetting& setting, const Result<CardEndpoint>& now, std::size_t position)
{
    if (!setting.name.empty())
        return setting.name;
    return now ? now->endpoint.title() : "endpoint " + std::to_string(position + 1);
}

Claim claimOf(const Snapshot& snapshot, const EndpointSetting& setting, std::size_t position)
{
    const Result<Reference> reference = Reference::parse(setting.reference);
    Result<CardEndpoint> now = reference ? resolved(snapshot, setting, *reference) : reference.problem();
    Recognition recognition = now ? recognitionOf(*reference, *now) : Recognition();
    const bool isById = recognition.evidence == Candidate::Evidence::endpointId;
    std::string name = nameOf(setting, now, position);
    return {{&setting, std::move(name), std::move(now), isById ? std::string() : recognition.reason},
            std::move(recognition)};
}

bool isBetter(const Recognition& left, const Recognition& right)
{
    if (left.evidence != right.evidence)
        return left.evidence < right.evidence;
    return left.agreement > right.agreement;
}

/// Leaves the endpoint that all @p rivals claim to the best of them.
void settle(const std::vector<Claim*>& rivals)
{
    const auto isLess = [](const Claim* left, const Claim* right)
    { return isBetter(left->recognition, right->recognition); };
    const Recognition best = (*std::min_element(rivals.begin(), rivals.end(), isLess))->recognition;
    const auto isBest = [&best](const Claim* claim) { return !isBetter(best, claim->recognition); };
    const bool isTie = std::count_if(rivals.begin(), rivals.end(), isBest) > 1;
    const std::string title = rivals.front()->place.now->endpoint.title();
    for (Claim* const rival : rivals)
    {
        SettingPlace& place = rival->place;
        if (!isBest(rival))
            place.now = Problem(Problem::Kind::notThere, operation, place.name,
                                "the nearest endpoint, " + title + ", has settings of its own");
        else if (isTie && best.evidence != Candidate::Evidence::endpointId) // else it is there several times
            place.now = Problem(Problem::Kind::ambiguous, operation, place.name,
                                title + " fits several endpoints of the settings equally well");
    }
}
}

std::vector<SettingPlace> placesOf(const Settings& settings, const Snapshot& snapshot)
{
    std::vector<Claim> claims;
    for (const EndpointSetting& setting : settings.endpoints)
        claims.push_back(claimOf(snapshot, setting, claims.size()));
    std::map<EndpointId, std::vector<Claim*>> rivals;
    for (Claim& claim : claims)
        if (claim.place.now)
            rivals[claim.place.now->endpoint.id()].push_back(&claim);
    for (const auto& [id, all] : rivals)
        settle(all);
    std::vector<SettingPlace> places;
    places.reserve(claims.size());
    for (Claim& claim : claims)
        places.push_back(std::move(claim.place));
    return places;
}
}
