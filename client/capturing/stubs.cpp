#include "client/capturing/hardware.h"

namespace sonavit::capturing
{
void surveyHardware(IMMDeviceEnumerator&, const std::vector<OpenEndpoint>&, sim::Machine&, Recorder&, const Pause&) {}
}
