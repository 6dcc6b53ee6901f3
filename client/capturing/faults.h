/// @file
/// The failures of a survey as faults of the machine.
#pragma once

#include "client/capturing/survey.h"

namespace sonavit::capturing
{
/// Fault rules with which the machine fails as the platform did, each time.
std::vector<sim::FaultRule> faultRules(const std::vector<FailedCall>& failures);
}
