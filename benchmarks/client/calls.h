/// @file
/// What the client layer costs in calls of the platform.
#pragma once

namespace bench
{
/// Prints the rows of the table that are counted in calls. @return whether all are within their limits
bool printCalls();
/// Prints how calls grow with the machine. @return whether all grow linearly
bool printGrowthOfCalls();
/// Prints whether the client without the layer makes the same calls and reads the same values.
/// @return whether it does
bool printComparison();
}
