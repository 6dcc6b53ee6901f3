/// The layer's values in JSON. Each kind of thing has the same members wherever it occurs; docs/schema/ has them.
#pragma once

#include "sonavit/card.h"
#include "sonavit/control.h"
#include "sonavit/endpoint.h"
#include "sonavit/format.h"
#include "sonavit/problem.h"
#include "sonavit/snapshot.h"
#include "sonavit/volume.h"
#include "tools/sonavit/output/json.h"

#include <optional>
#include <string>
#include <vector>

namespace sonavit::program
{
/// "render" and "capture", "notPresent", null.
Json flowJson(Flow flow);
Json stateJson(const std::optional<State>& state);
Json textsJson(const std::vector<std::string>& texts);
Json guidJson(const std::optional<Guid>& guid);
/// The key of a kind of jack or node ("spdif"); "other" for one without a name, null for none.
Json kindJson(const std::optional<Guid>& type);

Json levelJson(const Level& level);
Json rangeJson(const std::optional<LevelRange>& range);
/// Null without a volume control.
Json volumeJson(const std::optional<Volume>& volume);
/// Whether the endpoint is muted; null if that is not known.
Json mutedJson(const std::optional<Volume>& volume);
Json formatJson(const std::optional<Format>& format);
Json speakersJson(const std::optional<std::uint32_t>& mask);
Json jackJson(const Jack& jack);
/// Level and range of each; null if their number is not known.
Json channelsJson(const std::optional<std::vector<ControlChannel>>& channels);

Json problemJson(const Problem& problem);
Json problemsJson(const std::vector<Problem>& problems);
/// With the field of the endpoint.
Json problemsJson(const std::vector<EndpointProblem>& problems);

/// Id and name, as they stand wherever something belongs to an endpoint.
Json endpointNameJson(const Endpoint& endpoint);
/// As `list` shows it: what most users look for.
/// @param snapshot that the endpoint is of
Json endpointJson(const Snapshot& snapshot, const Endpoint& endpoint);
/// With all that is known, as `show` prints it.
Json endpointDetailsJson(const Snapshot& snapshot, const Endpoint& endpoint);

/// Id, name and instance id, as they stand wherever something belongs to a card.
Json cardJson(const Card& card);

Json controlJson(const Control& control);
Json selectorJson(const Card& card, const Selector& selector);

/// A document of the program: the version of its JSON and the simulated machine, if there is one.
Json machineDocument(const std::optional<std::string>& machine);
}
