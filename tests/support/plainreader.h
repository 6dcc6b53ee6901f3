/// @file
/// A measure for the cost of readings.
#pragma once

#include "platform/coreaudio.h"

namespace support
{
/// Reads everything that a machine file can contain, on this thread, and asks each question once: each listed endpoint
/// and each device that a connector names with state, listed properties, interfaces, volume, format and periods; each
/// graph with its parts, their neighbours, controls and jacks, the joins and the signal paths between all connectors;
/// the defaults, the wave devices, and the parents of the device instances. It asks nothing to find out about failures,
/// refusals and unusual drivers, and expects success where it is usual.
void readPlainly(IMMDeviceEnumerator& enumerator);
}
