/// @file
/// What is read of endpoints, step by step. All of it runs on the worker.
#pragma once

#include "COM/comptr.h"
#include "client/reading/witness.h"
#include "platform/coreaudio.h"
#include "sonavit/endpoint.h"
#include "sonavit/ids.h"
#include "sonavit/problem.h"
#include "sonavit/result.h"

#include <array>
#include <optional>
#include <string>
#include <vector>

namespace sonavit::reading
{
using Enumerator = COMPtr<IMMDeviceEnumerator>::pointer;

/// An endpoint as it was read, with the platform's objects behind it and what only grouping needs.
struct EndpointReading
{
    Endpoint::Content content;          ///< roles, wave id and incarnation are filled in by others
    std::optional<std::string> adapter; ///< id of the device that its first connector leads to
    std::optional<std::string> bus;     ///< name of its device's enumerator
    COMPtr<IMMDevice>::pointer device;
    COMPtr<IAudioEndpointVolume>::pointer volume; ///< nil for an endpoint without volume
};

/// The endpoints of both flows in the platform's order, outputs first: opened, with id and flow, and nothing else read.
struct Listing
{
    std::vector<EndpointReading> endpoints;
    std::vector<Problem> problems; ///< a flow that cannot be listed, an item that cannot be opened
};

/// The ids of the defaults, by flow and role; empty if there is none.
struct Defaults
{
    std::array<std::array<EndpointId, 3>, 2> ids;
    std::vector<Problem> problems;
};

/// The endpoint ids of the wave functions' device numbers, by flow.
struct WaveIds
{
    std::array<std::vector<EndpointId>, 2> ids;
    std::vector<Problem> problems;
};

/// A new enumerator. COM must be initialised on this thread.
Result<Enumerator> createEnumerator();

Listing listEndpoints(IMMDeviceEnumerator& enumerator);
/// Opens one endpoint by its id and asks it for its flow. Problem::Kind::notThere if the platform does not know it.
Result<EndpointReading> openEndpoint(IMMDeviceEnumerator& enumerator, const EndpointId& id);

// Each of these replaces what the reading had of the kind, problems included.
void readState(EndpointReading& reading);
/// Names, ids, format, speakers, container, and the kind of jack that the properties name.
void readProperties(EndpointReading& reading);
/// Activates the volume if it has not been activated, and reads it. Only for endpoints that are active or unplugged.
void readVolume(EndpointReading& reading);
/// The jacks behind the first connector. Only for endpoints that are active or unplugged.
void readJacks(EndpointReading& reading);
/// All four; volume and jacks only where the state allows them.
void readEndpoint(EndpointReading& reading);

Defaults readDefaults(IMMDeviceEnumerator& enumerator);
WaveIds readWaveIds();

/// Records @p witness for the calls of this thread while it lives; readings on this thread report to it.
class WitnessScope
{
public:
    explicit WitnessScope(Witness& witness);
    ~WitnessScope();
    WitnessScope(const WitnessScope&) = delete;
    WitnessScope& operator=(const WitnessScope&) = delete;

private:
    Witness* m_former;
};
}
