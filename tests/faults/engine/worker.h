/// The runs of a job, in a process of its own.
#pragma once

#include "tests/faults/engine/runs.h"

#include <cstddef>
#include <cstdint>
#include <string>

namespace faults
{
/// What a process is to do.
struct Assignment
{
    std::size_t from = 0;        ///< the first run
    std::size_t to = SIZE_MAX;   ///< the one behind the last
    std::string only;            ///< Runs::name() of the only run; empty: all
    bool searchesLosses = false; ///< only say whether these runs lose memory
};

/// Performs the runs and tells the process that waits at the other end of @p pipe, line by line, with tabs between the
/// words:
///
///     calls ALL TRIED
///     run INDEX NAME DETAIL
///     finding KIND TEXT
///     done FAILURES
///     lost
///     end
void work(const Job& job, const Assignment& assignment, int pipe);

/// Text without tabs and line ends, and back.
std::string inOneLine(const std::string& text);
std::string inSeveralLines(const std::string& text);

/// Whether memory of this process is lost, as the leak checker sees it; false without one.
bool hasLostMemory();
}
