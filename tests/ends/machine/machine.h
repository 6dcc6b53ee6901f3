/// @file
/// The simulated Core Audio of a process that ends.
#pragma once

#include "simulator/simulation.h"
#include "tests/ends/runner/way.h"

namespace ends
{
/// Three cards with speakers and a microphone each, which exist until the process ends, as the system's Core Audio
/// does. The first call makes them. On Windows the threads of the library and of the client layer meet them, too.
sim::Simulation& machine();

/// The first endpoint of the machine, its default speakers.
std::string speakers();

/// At the very end of the process prints what the library does from now on to end, one call a line, and what it has
/// left; see lastwords.h.
void tellTheEnd();

/// What the process prints at its very end after a regular end of the library: it takes its clients off the platform,
/// leaves COM, and leaves with the platform nothing but the strings of the DirectSound GUIDs.
/// @param discoveries each registers a client for each card, and reads each endpoint for its list and for its graph;
/// 0 for one that has only registered
/// @param more what else there may be, such as ", cards"
/// @param readings of one endpoint each, outside of a discovery; an event causes one for each card
Lines regularEnd(unsigned discoveries = 1, const std::string& more = "", unsigned readings = 0);
}
