// sonavit-faults: calls of each operation fail, one at a time. Exit status 0 if nothing is wrong, 1 if something is, 2
// if the arguments are.
#include "tests/faults/engine/options.h"
#include "tests/faults/engine/report.h"
#include "tests/faults/engine/supervisor.h"

#include <algorithm>
#include <iostream>
#include <stdexcept>

namespace
{
using faults::Options;
using faults::Part;

std::vector<Part> chosenParts(const Options& options)
{
    std::vector<Part> all = faults::parts();
    for (const std::string& name : options.parts)
    {
        if (std::none_of(all.begin(), all.end(), [&](const Part& part) { return part.name == name; }))
            throw std::invalid_argument("there is no part \"" + name + "\"");
    }
    if (!options.parts.empty())
    {
        const auto isUnwanted = [&](const Part& part)
        { return std::find(options.parts.begin(), options.parts.end(), part.name) == options.parts.end(); };
        all.erase(std::remove_if(all.begin(), all.end(), isUnwanted), all.end());
    }
    return all;
}

std::vector<faults::Task> tasksOf(const Part& part, const Options& options)
{
    std::vector<faults::Task> tasks;
    for (const faults::Job& job : part.jobs)
    {
        if ((options.machine.empty() || faults::isLike(job.machine, options.machine)) &&
            (options.operation.empty() || faults::isLike(job.operation, options.operation)))
            tasks.push_back({part.name, job});
    }
    return tasks;
}

int sweep(const Options& options)
{
    const std::vector<Part> parts = chosenParts(options);
    faults::Report report(parts, std::cout);
    for (const Part& part : parts)
    {
        const std::vector<faults::Task> tasks = tasksOf(part, options);
        faults::Supervisor supervisor(report, options.processes, options.patience, options.run);
        supervisor.run(tasks);
        report.conclude(part.name, options.isWhole());
    }
    if (report.total().runs == 0 && report.isClean() && !options.isWhole())
        throw std::invalid_argument("no run is like that");
    std::cout << "faults: " << report.total().sentence() << "\n";
    return report.isClean() ? 0 : 1;
}

int list(const Options& options)
{
    for (const Part& part : chosenParts(options))
    {
        for (const faults::Task& task : tasksOf(part, options))
            std::cout << task.part << " " << task.job.operation << " on " << task.job.machine << "\n";
    }
    return 0;
}
}

int main(int count, char** arguments)
{
    try
    {
        const Options options = faults::parse({arguments + 1, arguments + count});
        if (options.help)
        {
            std::cout << faults::usage;
            return 0;
        }
        return options.list ? list(options) : sweep(options);
    }
    catch (const std::invalid_argument& problem)
    {
        std::cerr << "sonavit-faults: " << problem.what() << "\n" << faults::usage;
        return 2;
    }
}
