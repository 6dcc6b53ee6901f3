// Child processes of fork(). The child of a process with a worker has none.

#include "tests/ends/client/ways.h"

#include <cstdlib>
#include <optional>

#if !defined(_WIN32)
#include <sys/wait.h>
#include <unistd.h>
#if __has_include(<valgrind/valgrind.h>)
#include <valgrind/valgrind.h>
#endif
#endif

using namespace sonavit;

namespace ends
{
#if defined(_WIN32)
Ways forks()
{
    return {};
}
#else
namespace
{
void waitFor(pid_t child)
{
    int status = -1;
    waitpid(child, &status, 0);
    printLine(("the child ends with " + std::to_string(status)).c_str());
}

/// The child has no thread but its own: it cannot free what the others have on their stacks, wherever they were when it
/// was forked, and a System keeps there all that their locks guard. Valgrind, if it runs this, goes on to look for
/// invalid accesses.
void doNotLookForLeaks()
{
#if defined(VALGRIND_CLO_CHANGE)
    VALGRIND_CLO_CHANGE("--leak-check=no");
#endif
}

/// The child's copies end as static objects, and wait for nothing.
void forkWithEverything()
{
    static const std::unique_ptr<System> system = beginSystem();
    static const Subscription heard = system->subscribe(&ignore);
    static const Result<Watch> watch = system->watch(system->snapshot().cards().front().id());
    static const Result<FormatHold> hold = system->holdFormat(speakersId(), otherFormat());
    const pid_t child = fork();
    if (child == 0)
    {
        doNotLookForLeaks();
        printLine(system->refresh() ? "read" : "not read");
        return;
    }
    waitFor(child);
    printLine(system->refresh() ? "read" : "not read");
}

void exitTheChildInASubscriber()
{
    static const std::unique_ptr<System> system = beginSystem();
    static std::optional<Subscription> heard;
    heard.emplace(system->subscribe(
        [](const Change&)
        {
            const pid_t child = fork();
            if (child == 0)
            {
                doNotLookForLeaks();
                std::exit(0);
            }
            waitFor(child);
            std::exit(0);
        }));
    causeAnEvent();
    pause();
}

/// A fork that came before the layer was used leaves nothing behind.
void beginInTheChild()
{
    machine();
    tellWhatIsLeft();
    const pid_t child = fork();
    if (child != 0)
        waitFor(child);
    static const std::unique_ptr<System> system = beginSystem();
}
}

Ways forks()
{
    const Lines inOrder = {"3 cards", "ends", "left: nothing", "the former format"};
    return {
        {"fork_with_everything",
         {"3 cards", "not read", "ends", "the child ends with 0", "read", "ends"},
         &forkWithEverything},
        {"exit_of_a_child_in_a_subscriber", {"3 cards", "the child ends with 0"}, &exitTheChildInASubscriber},
        {"first_system_in_a_forked_child", inOrder + Lines{"the child ends with 0"} + inOrder, &beginInTheChild},
    };
}
#endif
}
