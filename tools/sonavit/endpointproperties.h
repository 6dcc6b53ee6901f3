#pragma once

#include "simulator/simulation.h"
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

/// Whether the wave functions know the machine that a session works on. On Windows they are the system's own and know
/// nothing of a simulated machine, whose endpoints they cannot bear to meet.
bool waveFunctionsKnow(const sim::Simulation* simulation);

/// Reads them from the platform; the wave id only where @p hasWaveIds.
EndpointProperties readProperties(Endpoint& endpoint, bool hasWaveIds);
}
