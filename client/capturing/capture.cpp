#include "sonavit/capture.h"

#include "client/capturing/anonymity.h"
#include "client/capturing/faults.h"
#include "client/capturing/survey.h"
#include "simulator/machine/file/machinefile.h"

#include <utility>
#include <vector>

namespace sonavit
{
inline namespace v1
{
Result<Capture> capture(System& system, const CaptureOptions& options)
{
    Result<capturing::Survey> survey = capturing::survey(system, "capture");
    if (!survey)
        return survey.problem();
    sim::Machine& machine = survey->machine;
    machine.name = options.name;
    machine.description = "Captured by sonavit.";
    machine.faults = capturing::faultRules(survey->failures);
    if (options.isAnonymous)
        capturing::makeAnonymous(machine, options.names);
    Capture result;
    result.text = sim::writeMachine(machine);
    for (const std::vector<capturing::FailedCall>* const failures : {&survey->failures, &survey->recorded})
    {
        for (const capturing::FailedCall& failure : *failures)
            result.problems.push_back(failure.problem());
    }
    result.notes = std::move(survey->notes);
    return result;
}
}
}
