#include "tests/faults/client/failures.h"
#include "tests/faults/client/noruns.h"
#include "tests/faults/engine/faultedruns.h"
#include "tests/faults/engine/smallmachine.h"
#include "tests/faults/program/trial.h"

#include <utility>

namespace faults::program
{
namespace
{
/// On the small machines many calls fail, and pairs do. On the others the command lines share the calls.
Extent extentOn(const std::string& machine, std::size_t turn)
{
    if (machine == "empty")
        return {100'000, 60, 100};
    if (machine == "remote-desktop")
        return {5'000, 10, 20, false, turn};
    if (machine == "virtual")
        return {5'000, 10, 10, false, turn};
    if (machine == controlled)
        return {1'500, 1, 0, true, turn};
    return {1'500, 1, 0, false, turn};
}

/// The layer is used in the process of the job alone: a System does not work in a child of its process.
std::unique_ptr<Runs> prepare(const CommandLine& line, const std::string& name, std::size_t turn)
{
    sim::Machine machine = sweptMachine(name);
    machine.script.clear();
    Names names = namesOn(machine);
    std::optional<std::vector<std::string>> words = line.on(names);
    if (!words)
        return std::make_unique<client::NoRuns>();
    const auto trial = std::make_shared<VerbTrial>(machine, std::move(names), line, *std::move(words));
    Sweep sweep;
    sweep.perform = [trial](std::vector<Fault> faults) { return trial->perform(std::move(faults)); };
    sweep.judge = [](const Record&, const Record&) { return std::vector<Finding>(); };
    sweep.extent = extentOn(name, turn);
    // What a Release throws goes through the object model to the end of the process.
    sweep.admits = [usesModel = line.usesModel](const Fault& fault)
    { return client::isWithinContract(fault) && !(usesModel && fault.mode == Mode::raise); };
    return std::make_unique<FaultedRuns>(std::move(sweep));
}

Part programPart()
{
    Part part{"program", {}, {}};
    part.excuses.push_back({"*", "*", "*", "*CoInitialize*", Kind::references,
                            "the object model's initialiser leaves COM even if it could not enter it",
                            "COM is left more often than it was entered"});
    part.excuses.push_back({"show ENDPOINT --json", "*", "*", "wave*", Kind::answer,
                            "wave ids are read for the computer as a whole, and list says what failed",
                            "lost without a word: *waveId*"});
    for (const char* const call :
         {"IMMDevice::GetState*", "IMMDevice::OpenPropertyStore*", "IPropertyStore::GetValue*"})
        part.excuses.push_back({"graph*--json", "*", "*", call, Kind::answer,
                                "names and states of endpoints are the snapshot's, and show says what failed",
                                "lost without a word: *"});
    for (const std::string& name : sweptMachines())
    {
        std::size_t turn = 0;
        for (const CommandLine& line : commandLines())
        {
            part.jobs.push_back({line.name, name, [=] { return prepare(line, name, turn); }});
            ++turn;
        }
    }
    return part;
}

const Registration registration(programPart);
}
}
