/// @file
/// The steps of surveyDevice(), and those of endpoints alone.
#pragma once

#include "client/capturing/devices.h"

namespace sonavit::capturing
{
/// Records the state. False if it could not be read; the record keeps the one that it has.
bool surveyState(IMMDevice& device, sim::Device& record, Recorder& recorder);
/// Records listed and unlisted properties, and tries to open them for writing.
void surveyProperties(IMMDevice& device, sim::Device& record, Recorder& recorder);
/// Records which interfaces the device activates. The state is recorded already.
/// @param isInstalled false for an endpoint that no list contains
/// @return the audio client; nil if the device did not give one
reading::Handle<IAudioClient> surveyInterfaces(IMMDevice& device, sim::Device& record, bool isInstalled,
                                               Recorder& recorder);
/// Records the flow. False if it could not be read.
bool surveyFlow(IMMDevice& device, sim::Endpoint& endpoint, Recorder& recorder);
/// Records mix format and periods.
void surveyStreams(IAudioClient& client, sim::Endpoint& endpoint, Recorder& recorder);
}
