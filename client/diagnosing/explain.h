/// @file
/// Why an endpoint is as it is, from what was surveyed.
#pragma once

#include "client/capturing/survey.h"
#include "client/diagnosing/explainroad.h"
#include "client/diagnosing/explainwiring.h"
#include "sonavit/diagnosis.h"
#include "sonavit/result.h"
#include "sonavit/snapshot.h"

#include <optional>
#include <vector>

namespace sonavit::diagnosing
{
/// An endpoint, and everything that explains it. The members must outlive it.
struct Subject
{
    const capturing::Survey& survey;
    const Snapshot& snapshot;
    CardEndpoint place;
    const Result<std::vector<Control>>& controls; ///< as System::controls() returns them

    const Endpoint& endpoint() const { return place.endpoint; }
    /// The endpoint in the survey; null if it has none, as after a removal.
    const sim::Endpoint* surveyed() const { return surveyedEndpoint(survey, place.endpoint.id()); }
};

/// One reason for each question, in their order.
std::vector<Reason> explainEndpoint(const Subject& subject);

Reason explainCard(const Subject& subject);
Reason explainJacks(const Subject& subject);
Reason explainControls(const Subject& subject);
Reason explainDefault(const Subject& subject);

/// By what endpoints are grouped into cards.
struct Grouping
{
    enum class By
    {
        path,
        container,
        adapter,
        nothing ///< the endpoint is a card of its own
    };

    By by = By::nothing;
    std::string key; ///< two endpoints with equal By and key are one card
};

/// By what @p endpoint, one of the snapshot, is grouped.
Grouping groupingOf(const capturing::Survey& survey, const Endpoint& endpoint);
}
