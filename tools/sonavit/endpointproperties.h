#pragma once

#include "tools/sonavit/endpoint.h"

#include <optional>
#include <string>
#include <vector>

namespace sonavit::program
{
/// Further properties of an endpoint; what cannot be read has no value.
struct EndpointProperties
{
    std::vector<std::string> defaultRoles; ///< "console", "multimedia", "communications"
    std::optional<unsigned> waveId;        ///< device id of the legacy wave functions
    std::optional<GUID> directSoundId;
    std::optional<std::string> driverNode;
    std::optional<unsigned> speakers; ///< mask of the physical speakers
};

/// Reads them from the platform.
EndpointProperties readProperties(Endpoint& endpoint);
}
