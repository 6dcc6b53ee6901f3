#include "client/capturing/hardware.h"

namespace sonavit::capturing
{
std::vector<OpenEndpoint> surveyEndpoints(IMMDeviceEnumerator&, sim::Machine&, Recorder&, const Pause&)
{
    return {};
}
void surveyUnlistedEndpoint(IMMDevice&, sim::Endpoint&, Recorder&) {}
void surveyDevice(IMMDevice&, sim::Device&, Recorder&) {}
void surveyDefaults(IMMDeviceEnumerator&, sim::Machine&, Recorder&) {}
void surveyWaveDevices(sim::Machine&, Recorder&) {}
void surveyDeviceInstances(sim::Machine&) {}
void surveyHardware(IMMDeviceEnumerator&, const std::vector<OpenEndpoint>&, sim::Machine&, Recorder&, const Pause&) {}
}
