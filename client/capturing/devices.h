/// @file
/// The steps of a survey that concern endpoints and what belongs to them without their hardware graph.
#pragma once

#include "client/capturing/recorder.h"
#include "client/reading/handle.h"

#include <string>
#include <vector>

namespace sonavit::capturing
{
/// An endpoint of the survey, opened.
struct OpenEndpoint
{
    std::string id;                    ///< of its record in the machine
    reading::Handle<IMMDevice> device; ///< nil if the list did not give it
};

/// Lists the endpoints of both flows in all states and records them in the platform's order, without their topologies.
std::vector<OpenEndpoint> surveyEndpoints(IMMDeviceEnumerator& enumerator, sim::Machine& machine, Recorder& recorder,
                                          const Pause& pause);
/// Records an endpoint to which a connector leads and that no list contains. It has its id already.
void surveyUnlistedEndpoint(IMMDevice& device, sim::Endpoint& endpoint, Recorder& recorder);
/// Records state, properties and interfaces of an adapter, or of an endpoint. It has its id already.
void surveyDevice(IMMDevice& device, sim::Device& record, Recorder& recorder);
/// Records the default endpoints.
void surveyDefaults(IMMDeviceEnumerator& enumerator, sim::Machine& machine, Recorder& recorder);
/// Records what the wave functions return.
void surveyWaveDevices(sim::Machine& machine, Recorder& recorder);
/// Records the device instances that endpoints and adapters name, and their parents up to the root.
void surveyDeviceInstances(sim::Machine& machine);
}
