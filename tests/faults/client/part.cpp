#include "tests/faults/client/failures.h"
#include "tests/faults/client/noruns.h"
#include "tests/faults/client/trial.h"
#include "tests/faults/engine/faultedruns.h"
#include "tests/faults/engine/smallmachine.h"

#include <utility>

namespace faults::client
{
namespace
{
std::vector<Operation> allOperations()
{
    std::vector<Operation> all = readingOperations();
    for (Operation& operation : changingOperations())
        all.push_back(std::move(operation));
    for (Operation& operation : watchingOperations())
        all.push_back(std::move(operation));
    return all;
}

/// On the small machines each call fails, and pairs do. On the others the operations share the calls.
Extent extentOn(const std::string& machine, std::size_t turn)
{
    if (machine == "empty" || machine == "remote-desktop")
        return {200'000, 60, 120};
    if (machine == "virtual")
        return {20'000, 20, 30};
    if (machine == controlled)
        return {2'500, 2, 0, true, turn};
    return {2'500, 2, 0, false, turn};
}

/// All that uses the layer happens in the process of the job: a System does not work in a child of its process.
std::unique_ptr<Runs> prepare(const Operation& operation, const std::string& name, std::size_t turn)
{
    sim::Machine machine = sweptMachine(name);
    machine.script.clear();
    const auto targets = std::make_shared<const Targets>(targetsOf(machine));
    if (!operation.fits(*targets))
        return std::make_unique<NoRuns>();
    const auto trial = std::make_shared<ClientTrial>(machine, targets, operation);
    Sweep sweep;
    sweep.perform = [trial](std::vector<Fault> faults) { return trial->perform(std::move(faults)); };
    sweep.judge = [](const Record&, const Record&) { return std::vector<Finding>(); };
    sweep.extent = extentOn(name, turn);
    sweep.admits = isWithinContract;
    return std::make_unique<FaultedRuns>(std::move(sweep));
}

Part clientPart()
{
    Part part{"client", {}, {}};
    for (const std::string& name : sweptMachines())
    {
        std::size_t turn = 0;
        for (const Operation& operation : allOperations())
        {
            part.jobs.push_back({operation.name, name, [=] { return prepare(operation, name, turn); }});
            ++turn;
        }
    }
    return part;
}

const Registration registration(clientPart);
}
}
