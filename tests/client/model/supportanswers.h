/// @file
/// What a reader answers about a whole machine, in a form that can be changed and compared.
#pragma once

#include "client/model/objectmodel.h"
#include "sonavit/system.h"

#include <array>
#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace support
{
/// All that a reader answers about one machine.
struct Answers
{
    struct OfEndpoint
    {
        sonavit::Endpoint::Content content;
        std::optional<std::vector<sonavit::Control>> controls; ///< no value if they cannot be read
    };

    struct OfCard
    {
        sonavit::Card::Content content; ///< without endpoints
        std::vector<OfEndpoint> endpoints;
        std::vector<sonavit::Selector> selectors;
        sonavit::Graph graph;
    };

    std::vector<OfCard> cards;
    sonavit::Snapshot::Content rest; ///< of the snapshot, without cards

    /// Calls @p action for each endpoint.
    void forEach(const std::function<void(OfEndpoint&)>& action);
    /// The snapshot that consists of the answers as they are now.
    sonavit::Snapshot snapshot() const;
};

/// Asks a reader for everything.
Answers askAll(const sonavit::System& reader);
Answers askAll(sonavit::model::ObjectModel& reader);

/// The first difference as a text for people; empty if all values are equal.
std::string differenceBetween(const Answers& client, const Answers& model);
}
