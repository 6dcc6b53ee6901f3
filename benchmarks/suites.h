/// The groups of comparisons. Strings and handles cost more once the process has a second thread.
#pragma once

#include "comparisons.h"

namespace bench
{
void addTextMakings(Comparisons& comparisons);
void addTextCopies(Comparisons& comparisons);
void addTextComparisons(Comparisons& comparisons);
void addNumberArrays(Comparisons& comparisons);
void addTextArrays(Comparisons& comparisons);
void addTables(Comparisons& comparisons);
void addHandles(Comparisons& comparisons);
void addDisabledMessages(Comparisons& comparisons);
}
