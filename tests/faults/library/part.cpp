// The object model: each public operation on each machine.
#include "simulator/machine/file/machinefile.h"
#include "tests/faults/engine/faultedruns.h"
#include "tests/faults/engine/runs.h"
#include "tests/faults/library/excuses.h"
#include "tests/faults/library/judge.h"
#include "tests/faults/library/machines.h"
#include "tests/faults/library/trial.h"

namespace faults::library
{
namespace
{
Job jobOf(const Operation& operation, const MachineChoice& choice, std::size_t turn)
{
    const auto prepare = [=]() -> std::unique_ptr<Runs>
    {
        const sim::Machine machine = choice.build();
        Sweep sweep;
        sweep.perform = [=](std::vector<Fault> faults) { return perform(operation, machine, std::move(faults)); };
        sweep.judge = [=](const Record& clean, const Record& run) { return judge(operation, machine, clean, run); };
        sweep.extent = choice.extent;
        sweep.extent.turn = turn;
        return std::make_unique<FaultedRuns>(std::move(sweep));
    };
    return {operation.name, choice.name, prepare};
}

Part makePart()
{
    Part part = {"library", {}, excuses()};
    for (const MachineChoice& machine : machines())
    {
        std::size_t turn = 0;
        for (const Operation& operation : operations())
            part.jobs.push_back(jobOf(operation, machine, turn++));
    }
    return part;
}

const Registration registration(makePart);
}
}
