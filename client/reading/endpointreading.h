/// @file
/// What is read of endpoints, step by step. All of it runs on the worker.
#pragma once

#include "client/reading/handle.h"
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
using Enumerator = Handle<IMMDeviceEnumerator>;

/// An endpoint as it was read, with the platform's objects behind it and what only grouping needs.
struct EndpointReading
{
    /// Roles, wave id and incarnation are filled in by others. The problems are put together anew by each reading, in
    /// the order of the fields.
    Endpoint::Content content;
    std::optional<std::string> adapter; ///< id of the device that its first connector leads to
    std::optional<std::string> bus;     ///< name of its device's enumerator
    Handle<IMMDevice> device;
    /// Nil for an endpoint without volume. A reading releases it when the endpoint loses its volume or its device is
    /// replaced; who is registered with it keeps a handle of its own.
    Handle<IAudioEndpointVolume> volume;

    Jack namedJack;               ///< the kind of jack that the properties name; type and form factor alone
    std::vector<Jack> foundJacks; ///< the jacks behind the first connector

    // What each reading could not read.
    std::vector<Problem> stateProblems;
    std::vector<EndpointProblem> propertyProblems;
    std::vector<Problem> volumeProblems;
    std::vector<Problem> jackProblems;
    std::vector<Problem> busProblems; ///< for the card
};

/// The endpoints of both flows in the platform's order, outputs first: opened, with id and flow, and nothing else read.
struct Listing
{
    std::vector<EndpointReading> endpoints;
    std::vector<Problem> problems; ///< a flow that cannot be listed, an item that cannot be opened
    bool isComplete = true;        ///< whether each item has told its id: a second one with an id is no loss
};

/// The ids of the defaults, by flow and role; empty if there is none, or if it could not be asked for.
struct Defaults
{
    std::array<std::array<EndpointId, 3>, 2> ids;
    std::vector<Problem> problems;
};

/// The endpoint ids of the wave functions' device numbers, by flow; empty for a number whose endpoint is not known.
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
/// Activates the volume if it has not been activated, and reads it. Endpoints that are neither active nor unplugged
/// have none; the platform is not asked then.
void readVolume(EndpointReading& reading);
/// The jacks behind the first connector, and the adapter that it leads to. Endpoints that are neither active nor
/// unplugged have none; the platform is not asked then.
void readJacks(EndpointReading& reading);
/// All four.
void readEndpoint(EndpointReading& reading);

Defaults readDefaults(IMMDeviceEnumerator& enumerator);
WaveIds readWaveIds();
/// Those of one flow alone.
WaveIds readWaveIds(Flow flow);

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
