#include "client/capturing/anonymity.h"
#include "client/capturing/devices.h"

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
void makeAnonymous(sim::Machine&, const std::vector<std::string>&) {}
}
