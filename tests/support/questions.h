/// @file
/// Everything that Core Audio can be asked without changing it, and the answers as lines of text.
///
/// The examiner uses platform calls alone and nothing of the readers whose results it judges.
#pragma once

#include "simulator/journal.h"
#include "simulator/machine/machine.h"
#include "simulator/simulation.h"

#include <string>
#include <vector>

namespace support
{
/// One line for each question: the call, its object, its code and its value. Objects have the ids that they report, or
/// the way to them, so machines that answer alike have equal transcripts.
using Transcript = std::vector<std::string>;

/// Asks, on this thread: all lists of endpoints, the items past their ends, all defaults, devices by known, unknown and
/// malformed ids; of each device that is listed or that a connector names all that it reports: state, flow, stores with
/// their properties, interfaces, volume, stream formats, peaks; of each hardware graph that a device or a connector
/// leads to its parts, neighbours, controls, jacks, joins and signal paths; the wave functions; and the parents of
/// device instances. Each object is visited once, and the order depends on the answers alone.
///
/// Nothing is changed, and nothing is left behind.
Transcript askEverything(IMMDeviceEnumerator& enumerator);

/// A transcript, and the calls that led to it.
struct Examination
{
    Transcript transcript;
    sim::JournalEntries journal; ///< those of the examiner alone
};

/// Examines the running machine. It answers this thread.
Examination examine(sim::Simulation& simulation);

/// The transcript of a machine that runs for the purpose. Its latencies are left out.
Transcript transcriptOf(const sim::Machine& machine);

/// The first lines that differ and their numbers, for people; empty if both are equal.
std::string firstDifference(const std::vector<std::string>& expected, const std::vector<std::string>& actual);
}
