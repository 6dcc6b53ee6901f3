/// @file
/// What the examiner asks hardware graphs.
#pragma once

#include "tests/support/questionsnotes.h"

#include <string>
#include <vector>

namespace support
{
/// A part that was met outside of its own topology.
struct MetPart
{
    std::string id;
    bench::Held<IPart> part;
};

/// What the connectors and lists of a topology lead to.
struct Elsewhere
{
    std::vector<std::string> deviceIds;
    std::vector<MetPart> parts;
};

/// Asks a graph for all that it has: parts, neighbours, controls, jacks, joins, signal paths.
/// @param name what the transcript calls it
void askTopology(Notes& notes, const std::string& name, IDeviceTopology& topology, Elsewhere& elsewhere);

/// Asks what every part has. @param name what the transcript calls it
void askPart(Notes& notes, const std::string& name, const bench::Held<IPart>& part, Elsewhere& elsewhere);

/// Asks for the controls and the jacks of a part, those that it lists and others.
void askControls(Notes& notes, const std::string& name, IPart& part);

/// The global id of a part, not noted; empty if it reports none.
std::string idOf(IPart& part);
/// As a list describes a part: its global id, otherwise its local id, which is known by its topology.
std::string describedPart(IPart* part);
}
