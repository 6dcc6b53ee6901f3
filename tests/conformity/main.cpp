// Checks whether a Core Audio answers as Windows does: the system's own, or a simulated machine.
#include "simulator/machine/file/machinefile.h"
#include "simulator/machine/names.h"
#include "simulator/simulation.h"
#include "tests/conformity/fact.h"
#include "tests/conformity/host.h"
#include "tests/conformity/report.h"
#include "tests/conformity/system.h"

#include <CLI/CLI.hpp>

#include <exception>
#include <iostream>
#include <memory>
#include <sstream>
#include <stdexcept>
#include <string>

namespace
{
enum ExitCode
{
    exitAgrees = 0,
    exitDiffers = 1,
    exitUsage = 2,
};

struct Options
{
    std::string machine;
    std::string account;
    bool mayChange = false;
    bool isBrief = false;
    unsigned leastTried = 0;
};

constexpr sim::Names<sim::Account, 2> accounts = {
    {{"administrator", sim::Account::administrator}, {"ordinary", sim::Account::ordinary}}};

/// The simulation if one is asked for. Off Windows there is no other Core Audio.
std::unique_ptr<sim::Simulation> simulated(Options& options)
{
#if !defined(_WIN32)
    if (options.machine.empty())
        options.machine = "desktop";
#endif
    if (options.machine.empty() && options.account.empty())
        return nullptr;
    if (options.machine.empty())
        throw std::runtime_error("--account needs --machine: the account of this system is that of the process");
    auto simulation = std::make_unique<sim::Simulation>(sim::findMachine(options.machine));
    if (const auto account = valueOf(accounts, options.account))
        simulation->setAccount(*account);
    return simulation;
}

/// What is checked, in words, and whether the account may write to property stores.
struct Subject
{
    std::string name;
    std::optional<bool> isAdministrator;
};

Subject subjectOf(const sim::Simulation* simulation)
{
    if (simulation == nullptr)
        return {conformity::hostName(), conformity::isAdministrator()};
    const sim::Machine machine = simulation->machine();
    return {"the simulated machine " + machine.name, machine.account == sim::Account::administrator};
}

int check(Options& options)
{
    const std::unique_ptr<sim::Simulation> simulation = simulated(options);
    const Subject subject = subjectOf(simulation.get());
    if (!conformity::System::createEnumerator())
        throw std::runtime_error("this system has no enumerator of audio endpoints");
    conformity::Counts counts;
    {
        conformity::System system(options.mayChange || simulation, subject.isAdministrator);
        const conformity::Printout printout{std::cout, options.isBrief};
        counts = printout.report(subject.name, conformity::allFacts(), system);
    }
    if (simulation && simulation->census() != sim::Census())
    {
        std::ostringstream left;
        left << "the checks have left something behind:\n" << simulation->census();
        throw std::runtime_error(left.str());
    }
    if (counts.tried() < options.leastTried)
        throw std::runtime_error("fewer facts were tried than " + std::to_string(options.leastTried));
    return counts.differing == 0 ? exitAgrees : exitDiffers;
}

void describe(CLI::App& arguments, Options& options)
{
    arguments
        .add_option("--machine", options.machine,
                    "A simulated machine. Default: the system's own audio on Windows, desktop on other systems")
        ->type_name("NAME|FILE");
    arguments.add_option("--account", options.account, "Use the simulated machine under this account")
        ->check(CLI::IsMember({"administrator", "ordinary"}))
        ->type_name("ACCOUNT");
    arguments.add_flag("--change", options.mayChange,
                       "Also check what needs a change: set levels, of endpoints that are muted meanwhile, and the "
                       "description of one endpoint, and put them back. On simulated machines always");
    arguments.add_flag("--brief", options.isBrief, "Print only the facts in which the system differs");
    arguments.add_option("--tried", options.leastTried, "Fail if fewer facts than N can be tried")->type_name("N");
    arguments.footer("Without --change nothing is changed, and nothing is ever played.\n"
                     "Exit codes: 0 no difference, 1 differences, 2 wrong usage or no Core Audio.");
}
}

int main(int count, char** words)
{
    Options options;
    CLI::App arguments("Checks whether a Core Audio answers as Windows does.", "sonavit-conformity");
    describe(arguments, options);
    try
    {
        arguments.parse(count, words);
    }
    catch (const CLI::ParseError& error)
    {
        return arguments.exit(error) == 0 ? exitAgrees : exitUsage;
    }
    int code = exitUsage;
    CoInitializeEx(nullptr, COINIT_MULTITHREADED);
    try
    {
        code = check(options);
    }
    catch (const std::exception& error)
    {
        std::cerr << "sonavit-conformity: " << error.what() << "\n";
    }
    CoUninitialize();
    return code;
}
