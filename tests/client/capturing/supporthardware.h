/// @file
/// Surveys of hardware graphs alone, and machines to compare them with.
#pragma once

#include "client/capturing/survey.h"
#include "simulator/machine/machine.h"
#include "simulator/simulation.h"

#include <functional>
#include <string>
#include <vector>

namespace support
{
/// Surveys the hardware behind the endpoints that the current machine lists, which are recorded with id, flow and state
/// only. The calling thread has initialised COM. @param onPause what happens between two devices
sonavit::capturing::Survey surveyedHardware(const std::function<void()>& onPause = [] {});

/// The survey of a machine that is not the current one afterwards.
sonavit::capturing::Survey surveyedHardwareOf(const sim::Machine& machine);

/// The machine of a survey, with the faults that it has found.
sim::Machine replayOf(const sonavit::capturing::Survey& survey);

/// What the devices of a machine, but for their parts' ids where these are not reported, have in a survey: the
/// differences between the topologies of @p surveyed and those of @p machine, a sentence each. Devices to which nothing
/// leads, signal paths whose ends are not two connectors, and explicit states of jacks are no differences.
std::vector<std::string> hardwareDifferences(const sim::Machine& machine, const sim::Machine& surveyed);

/// One line for each failure.
std::vector<std::string> textsOf(const std::vector<sonavit::capturing::FailedCall>& failures);
}
