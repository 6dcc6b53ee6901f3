/// Which blocks of code have run since they were last asked for, in a program that is compiled with
/// -fsanitize-coverage=bb,no-prune,trace-pc-guard,pc-table.
///
/// Nothing is recorded unless the environment variable SONAVIT_REACHED has the name of a file when the program starts.
/// Child processes that are forks record for their parent.
#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

namespace reached
{
/// Name of the file to write to, or null if nothing is recorded.
const char* file();

/// Where each block begins, as an offset from the address at which the program was loaded.
std::vector<std::uint64_t> places();

/// The numbers of the blocks that have run since the last call, in ascending order; block n begins at places()[n].
std::vector<std::uint32_t> take();
}
