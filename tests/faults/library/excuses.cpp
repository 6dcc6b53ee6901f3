#include "tests/faults/library/excuses.h"

namespace faults::library
{
std::vector<Excuse> excuses()
{
    return {{"*", "*", "*:throw,throw", "*", Kind::crash,
             "a Release throws while the exception of another one unwinds: the handle must rethrow, and the language "
             "ends such a process"}};
}
}
