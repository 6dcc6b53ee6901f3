/// @file
/// What the readings of one endpoint have in common.
#pragma once

#include "client/reading/endpointreading.h"

namespace sonavit::reading
{
/// Whether the endpoint can have volume and jacks: whether it is active or unplugged.
bool canHaveHardware(const EndpointReading& reading) noexcept;

/// The two halves of readVolume(): who registers for the changes of a volume does so in between.
void openVolume(EndpointReading& reading);
void readOpenVolume(EndpointReading& reading);

/// Puts the problems of all readings together.
void gatherProblems(EndpointReading& reading);
/// Puts the jacks together from what the properties name and what was found behind the connector.
void gatherJacks(EndpointReading& reading);
}
