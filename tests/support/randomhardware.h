#pragma once

#include "simulator/machine/machine.h"
#include "tests/support/randomchoice.h"

#include <string>

namespace support
{
/// Up to six cards with the paths between jacks and streams, built as the machines of other tests are.
sim::Machine randomCards(RandomChoice& choice, const std::string& name);

/// Adds what the usual paths do not have: selectors, volumes that two connectors share, parts without a name or without
/// an id, descriptions of jacks, adapters that cannot be opened, and further joins.
void addOddHardware(RandomChoice& choice, sim::Machine& machine);

/// A range, and levels in it.
sim::ChannelLevel randomLevel(RandomChoice& choice);
sim::EndpointVolume randomVolume(RandomChoice& choice);
}
