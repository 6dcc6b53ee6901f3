#include "simulator/machine/file/machinefile.h"
#include "tests/faults/client/failures.h"
#include "tests/faults/client/noruns.h"
#include "tests/faults/client/trial.h"
#include "tests/faults/engine/faultedruns.h"

#include <utility>

namespace faults::client
{
namespace
{
/// Machines that are small enough for pairs of failing calls.
bool isSmall(const std::string& machine)
{
    return machine == "virtual" || machine == "remote-desktop" || machine == "empty";
}

std::vector<Operation> allOperations()
{
    std::vector<Operation> all = readingOperations();
    for (Operation& operation : changingOperations())
        all.push_back(std::move(operation));
    for (Operation& operation : watchingOperations())
        all.push_back(std::move(operation));
    return all;
}

Extent extentOn(const std::string& machine)
{
    Extent extent;
    extent.platformCalls = isSmall(machine) ? 200'000 : 30'000;
    extent.pairs = isSmall(machine) ? 300 : 0;
    return extent;
}

/// All that uses the layer happens in the process of the job: a System does not work in a child of its process.
std::unique_ptr<Runs> prepare(const Operation& operation, const std::string& name)
{
    sim::Machine machine = sim::findMachine(name);
    machine.script.clear();
    const auto targets = std::make_shared<const Targets>(targetsOf(machine));
    if (!operation.fits(*targets))
        return std::make_unique<NoRuns>();
    const auto trial = std::make_shared<ClientTrial>(machine, targets, operation);
    Sweep sweep;
    sweep.perform = [trial](std::vector<Fault> faults) { return trial->perform(std::move(faults)); };
    sweep.judge = [](const Record&, const Record&) { return std::vector<Finding>(); };
    sweep.extent = extentOn(name);
    sweep.admits = isWithinContract;
    return std::make_unique<FaultedRuns>(std::move(sweep));
}

Part clientPart()
{
    Part part{"client", {}, {}};
    for (const std::string& name : sim::machineNames())
    {
        for (const Operation& operation : allOperations())
            part.jobs.push_back({operation.name, name, [=] { return prepare(operation, name); }});
    }
    return part;
}

const Registration registration(clientPart);
}
}
