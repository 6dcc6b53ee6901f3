// Checks whether a Core Audio answers as Windows does: the system's own, or a simulated machine.
#include "simulator/machine/file/machinefile.h"
#include "simulator/simulation.h"
#include "tests/conformity/account.h"
#include "tests/conformity/fact.h"
#include "tests/conformity/report.h"
#include "tests/conformity/system.h"

#include <CLI/CLI.hpp>

#include <exception>
#include <iostream>
#include <memory>
#include <string>

namespace
{
struct Options
{
    std::string machine;
    bool mayChange = false;
    bool isBrief = false;
};

/// The simulation if one is asked for. Off Windows there is no other Core Audio.
std::unique_ptr<sim::Simulation> simulated(Options& options)
{
#if !defined(_WIN32)
    if (options.machine.empty())
        options.machine = "desktop";
#endif
    return options.machine.empty() ? nullptr : std::make_unique<sim::Simulation>(sim::findMachine(options.machine));
}

int check(Options& options)
{
    const std::unique_ptr<sim::Simulation> simulation = simulated(options);
    const std::optional<bool> isAdministrator =
        simulation ? simulation->machine().account == sim::Account::administrator : conformity::isAdministrator();
    conformity::System system(options.mayChange || simulation, isAdministrator);
    const std::string name = simulation ? "the simulated machine " + simulation->machine().name : "this system";
    return conformity::report(name, conformity::allFacts(), system, options.isBrief, std::cout) == 0 ? 0 : 1;
}
}

int main(int count, char** words)
{
    Options options;
    CLI::App arguments("Checks whether a Core Audio answers as Windows does");
    arguments.add_option("--machine", options.machine,
                         "A simulated machine, by name or file, instead of the system's own");
    arguments.add_flag("--change", options.mayChange,
                       "Also check what needs a change of a level or a property, and put it back");
    arguments.add_flag("--brief", options.isBrief, "Print the facts only in which the system differs");
    try
    {
        arguments.parse(count, words);
    }
    catch (const CLI::ParseError& error)
    {
        return arguments.exit(error) == 0 ? 0 : 2;
    }
    try
    {
        if (FAILED(CoInitializeEx(nullptr, COINIT_MULTITHREADED)))
            throw std::runtime_error("COM cannot be initialised");
        const int code = check(options);
        CoUninitialize();
        return code;
    }
    catch (const std::exception& error)
    {
        std::cerr << "sonavit-conformity: " << error.what() << "\n";
        return 2;
    }
}
