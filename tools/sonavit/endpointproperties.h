#pragma once

#include "tools/sonavit/endpoint.h"

#include <optional>
#include <string>
#include <vector>

namespace sonavit
{
/// What else there is to know of an endpoint; what could not be read has no value.
struct EndpointProperties
{
    std::vector<std::string> defaultRoles; ///< "console", "multimedia", "communications"
    std::optional<unsigned> waveId;        ///< number among the old wave devices
    std::optional<GUID> directSoundId;
    std::optional<std::string> driverNode;
    std::optional<unsigned> speakers; ///< mask of the loudspeakers that stand there
};

/// Reads them from the platform.
EndpointProperties readProperties(Endpoint& endpoint);
}
