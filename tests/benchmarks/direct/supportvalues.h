/// @file
/// What the library and the plain client have found, as lines that can be compared.
#pragma once

#include "benchmarks/direct/card.h"
#include "benchmarks/direct/client.h"
#include "libSonavit/libsonavit.h"

#include <string>
#include <vector>

namespace directvalues
{
using Lines = std::vector<std::string>;

/// Id, endpoints, devices on the adapter side, and the graph: each with all that it holds.
void add(Lines& lines, const SoundCard& card);
void add(Lines& lines, const direct::Card& card);

/// The four lists.
void add(Lines& lines, const EndpointDeviceEnumeratorCommon& lists);
void add(Lines& lines, const direct::StateLists& lists);

/// A control; its levels and its mute are asked for.
void add(Lines& lines, const SoundCard::VolumeController& control);
void add(Lines& lines, const direct::Control& control);
}
