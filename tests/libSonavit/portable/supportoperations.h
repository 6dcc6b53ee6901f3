/// The operations of the library of which transcripts are made.
#pragma once

#include "libSonavit/soundcard.h"
#include "simulator/simulation.h"
#include "tests/libSonavit/portable/supporttranscript.h"

#include <functional>
#include <string>
#include <vector>

namespace support
{
/// An operation begins its transcript once it is prepared. It notes its results, and what it throws, before they are
/// destroyed; their destruction belongs to the transcript.
struct Operation
{
    std::string name;
    void (*perform)(sim::Simulation& simulation, Transcript& transcript);
};

void discover(sim::Simulation& simulation, Transcript& transcript);
void discoverInterfaces(sim::Simulation& simulation, Transcript& transcript);
void createCards(sim::Simulation& simulation, Transcript& transcript);
void answerAboutSystem(sim::Simulation& simulation, Transcript& transcript);

void listByState(sim::Simulation& simulation, Transcript& transcript);
void listFlat(sim::Simulation& simulation, Transcript& transcript);

void findControls(sim::Simulation& simulation, Transcript& transcript);
void findJacks(sim::Simulation& simulation, Transcript& transcript);
void findSelectors(sim::Simulation& simulation, Transcript& transcript);

void followEvents(sim::Simulation& simulation, Transcript& transcript);

void useDevices(sim::Simulation& simulation, Transcript& transcript);
void useTopologies(sim::Simulation& simulation, Transcript& transcript);
void useVolumes(sim::Simulation& simulation, Transcript& transcript);
void walkParts(sim::Simulation& simulation, Transcript& transcript);

const std::vector<Operation>& operations();

/// Performs the operation on a machine of its own, and ends the module. @param plan plans failures of the transcript's
/// calls
/// @return the transcript's text
std::string transcriptOf(const Operation& operation, const sim::Machine& machine,
                         const std::function<void(sim::FaultPlan&)>& plan = {});
}
