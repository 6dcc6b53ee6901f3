// Child processes of fork(), which have a copy of the machine.

#include "tests/ends/library/ways.h"

#if !defined(_WIN32)
#include <sys/wait.h>
#include <unistd.h>
#endif

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
/// Waits for a child and writes its exit status.
void waitFor(pid_t child)
{
    int status = -1;
    waitpid(child, &status, 0);
    printLine(("the child ends with " + std::to_string(status)).c_str());
}

/// Both end as a process without children does.
void forkWithCards()
{
    static const qor::Array<SoundCard> cards = discover();
    tellTheEnd();
    const pid_t child = fork();
    if (child != 0)
        waitFor(child);
}

void discoverInTheChild()
{
    static const qor::Array<SoundCard> cards = discover();
    const pid_t child = fork();
    if (child != 0)
        waitFor(child);
    else
        printNumber(SoundCard::enumerateSystemSoundDevices());
    tellTheEnd();
}

void endTheChildAtOnce()
{
    static const qor::Array<SoundCard> cards = discover();
    tellTheEnd();
    const pid_t child = fork();
    if (child == 0)
        _exit(0);
    waitFor(child);
}
}

Ways forks()
{
    const Lines end = Lines{"ends"} + regularEnd();
    return {
        {"fork_with_cards", Lines{"3 cards"} + end + Lines{"the child ends with 0"} + end, &forkWithCards},
        {"discovery_in_a_forked_child",
         Lines{"3 cards", "3 cards", "ends"} + regularEnd(2) + Lines{"the child ends with 0"} + end,
         &discoverInTheChild},
        {"forked_child_that_ends_at_once", Lines{"3 cards", "the child ends with 0"} + end, &endTheChildAtOnce},
    };
}
#endif
}
