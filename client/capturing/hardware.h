/// @file
/// The step of a survey that concerns hardware graphs.
#pragma once

#include "client/capturing/devices.h"

namespace sonavit::capturing
{
/// Records the topologies of @p endpoints, the devices behind their connectors and so on, the joins and the signal
/// paths.
void surveyHardware(IMMDeviceEnumerator& enumerator, const std::vector<OpenEndpoint>& endpoints, sim::Machine& machine,
                    Recorder& recorder, const Pause& pause);
}
