/// @file
/// A way to end a process, and its required result.
#pragma once

#include "tests/unloading/events.h"

#include <string>
#include <vector>

namespace ends
{
using unloading::printLine;

/// The status of a process that std::abort has ended.
#if defined(_WIN32)
inline constexpr int aborted = 3;
#else
inline constexpr int aborted = 128 + 6; // SIGABRT
#endif

/// A way to end a process. Each has a process of its own, the program's, which plays it.
struct Way
{
    const char* name;
    /// What the process prints, in this order and nothing else; after a return from @p play the program adds "ends".
    std::vector<std::string> lines;
    /// Ends the process, or returns and lets main() return 0.
    void (*play)();
    int status = 0; ///< the process's exit status
    /// The system may end the process at once while it terminates the other threads, which run: the last lines may be
    /// missing on Windows.
    bool mayBeCut = false;
};

using Ways = std::vector<Way>;

/// All ways of the program; each program defines it.
Ways allWays();

/// The name of the way that this process plays; empty in the process that judges. Any time, before main() as well.
std::string wayOfThisProcess();

inline Ways operator+(Ways left, const Ways& right)
{
    left.insert(left.end(), right.begin(), right.end());
    return left;
}

using Lines = std::vector<std::string>;

inline Lines operator+(Lines left, const Lines& right)
{
    left.insert(left.end(), right.begin(), right.end());
    return left;
}
}
