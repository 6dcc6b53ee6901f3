/// @file
/// Endpoints as the object model describes them.
#pragma once

#include "libSonavit/audiodeviceendpoint.h"
#include "platform/coreaudio.h"
#include "sonavit/endpoint.h"
#include "sonavit/problem.h"

#include <array>
#include <optional>
#include <vector>

namespace sonavit::model
{
/// An endpoint of the object model, and the value that was read from it.
struct ModelEndpoint
{
    AudioDevice device;
    Endpoint value;
};

/// The ids of the defaults, by flow and role; empty if there is none.
using Defaults = std::array<std::array<EndpointId, 3>, 2>;

/// All endpoints of the system, outputs first.
struct Listing
{
    std::vector<ModelEndpoint> endpoints;
    Defaults defaults;
    std::vector<Problem> problems; ///< why a flow cannot be listed, or a default not be asked for
};

Listing listEndpoints();

/// What the object model knows of a device that is an endpoint: names, state, kind of jack, format, ids; no roles, no
/// volume and no wave id. A device that is not bound has no id.
Endpoint::Content describeEndpoint(AudioDevice& device, Flow flow);

/// The flow of the platform's number; no value for a number that is none.
std::optional<Flow> flowOf(EDataFlow flow);
}
