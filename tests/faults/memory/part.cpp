// Memory runs out in the object model and in the client layer.
#include "tests/faults/engine/runs.h"
#include "tests/faults/memory/excuses.h"
#include "tests/faults/memory/machines.h"
#include "tests/faults/memory/trials.h"

#include <algorithm>
#include <memory>
#include <utility>

namespace faults::memory
{
namespace
{
constexpr unsigned mostOfClient = 400; ///< each of its runs begins and ends two Systems

template<class Any>
Job jobOf(const std::string& prefix, const Any& each, const MachineChoice& choice, std::vector<Side> sides,
          unsigned most)
{
    const auto prepare = [=]() -> std::unique_ptr<Runs>
    { return std::make_unique<AllocationRuns>(trialOf(each, choice.build()), sides, most); };
    return {prefix + each.name, choice.name, prepare};
}

Part makePart()
{
    Part part = {"memory", {}, excuses()};
    for (const MachineChoice& machine : machines())
    {
        for (const auto& cases : {discoveryCases(), deviceCases(), hardwareCases(), eventCases()})
        {
            for (const Case& each : cases)
                part.jobs.push_back(jobOf("library: ", each, machine, {Side::caller}, machine.most));
        }
        for (const auto& cases : {readingCases(), changingCases()})
        {
            for (const ClientCase& each : cases)
                part.jobs.push_back(jobOf("client: ", each, machine, {Side::caller, Side::others},
                                          std::min(machine.most, mostOfClient)));
        }
    }
    return part;
}

const Registration registration(makePart);
}
}
