// The end of main(), and what else ends a process.

#include "tests/ends/client/ways.h"

#include <cstdlib>
#include <exception>
#include <stdexcept>

#if defined(_WIN32)
#include <windows.h>
#endif

using namespace sonavit;

namespace ends
{
namespace
{
/// What a program may hold; nothing of it ends.
void keepEverything()
{
    System& system = *beginSystem().release();
    static_cast<void>(new Subscription(system.subscribe(&ignore)));
    static_cast<void>(new Result<Watch>(system.watch(system.snapshot().cards().front().id())));
    static_cast<void>(new Result<FormatHold>(system.holdFormat(speakersId(), otherFormat())));
}

void returnAfterTheSystem()
{
    {
        const std::unique_ptr<System> system = beginSystem();
        const Subscription heard = system->subscribe(&ignore);
        const Result<Watch> watch = system->watch(system->snapshot().cards().front().id());
        tellWhatIsLeft();
    }
}

void returnWithALivingSystem()
{
    keepEverything();
}

void returnWithUnusedSystems()
{
    machine();
    static const System unused;
    static_cast<void>(new System);
    tellWhatIsLeft();
}

void exitWithASystemOnTheStack()
{
    const std::unique_ptr<System> system = beginSystem();
    const Subscription heard = system->subscribe(&ignore);
    std::exit(0);
}

/// The format of a device stays as it is: the process does not wait for the platform.
void exitWithALivingHold()
{
    machine();
    tellTheFormat();
    keepEverything();
    std::exit(0);
}

void endAtOnce()
{
    keepEverything();
#if defined(_WIN32)
    TerminateProcess(GetCurrentProcess(), 0);
#else
    std::_Exit(0);
#endif
}

void abortWithALivingSystem()
{
    keepEverything();
    std::abort();
}

void terminateByAnException()
{
    static const std::unique_ptr<System> system = beginSystem();
    std::set_terminate(
        []
        {
            printLine("terminates");
            std::abort();
        });
    throw std::runtime_error("of the program");
}

void exitInTheTerminateHandler()
{
    static const std::unique_ptr<System> system = beginSystem();
    tellWhatIsLeft();
    std::set_terminate(
        []
        {
            printLine("terminates");
            std::exit(0);
        });
    throw std::runtime_error("of the program");
}

#if !defined(_WIN32)
void endQuickly()
{
    static System& system = *beginSystem().release();
    const auto readOnce = [] { printLine(system.refresh() ? "read" : "not read"); };
    std::at_quick_exit(readOnce);
    std::quick_exit(0);
}
#endif
}

Ways returns()
{
    const Lines inOrder = {"left: nothing", "the former format"};
    Ways ways = {
        {"return_after_the_system", Lines{"3 cards", "ends"} + inOrder, &returnAfterTheSystem},
        {"return_with_a_living_system", {"3 cards", "ends"}, &returnWithALivingSystem},
        {"return_with_unused_systems", Lines{"ends"} + inOrder, &returnWithUnusedSystems},
        {"exit_with_a_system_on_the_stack", {"3 cards"}, &exitWithASystemOnTheStack},
        {"exit_with_a_living_hold", {"3 cards", "another format"}, &exitWithALivingHold},
        {"end_at_once", {"3 cards"}, &endAtOnce},
        {"abort_with_a_living_system", {"3 cards"}, &abortWithALivingSystem, aborted},
        {"terminate_by_an_exception", {"3 cards", "terminates"}, &terminateByAnException, aborted},
        {"exit_in_the_terminate_handler", Lines{"3 cards", "terminates"} + inOrder, &exitInTheTerminateHandler},
    };
#if !defined(_WIN32)
    ways.push_back({"end_quickly", {"3 cards", "read"}, &endQuickly});
#endif
    return ways;
}
}
