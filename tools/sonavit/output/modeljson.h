/// Cards, endpoints and hardware controls in JSON.
#pragma once

#include "tools/sonavit/endpoint.h"
#include "tools/sonavit/endpointvolume.h"
#include "tools/sonavit/hardwarecontrol.h"
#include "tools/sonavit/output/json.h"

namespace sonavit::program
{
Json rangeJson(const std::optional<LevelRange>& range);

/// Master level, range and channels; null if the endpoint has no volume control.
Json volumeJson(const EndpointLevel& level);

/// The same with each channel's level.
Json volumeWithChannelsJson(const EndpointLevel& level);

/// The endpoint as `list` shows it.
Json endpointJson(const Endpoint& endpoint, const EndpointLevel& level);

/// A document about one endpoint: the simulated machine, if there is one, and the endpoint's id and name.
Json endpointDocument(const std::optional<std::string>& machine, const Endpoint& endpoint);

/// Id and names of a card.
Json cardJson(const Card& card);

Json controlJson(const HardwareControl& control);
}
