/// @file
/// What the client layer costs in calls of the platform.
#pragma once

namespace bench
{
/// Prints a line for each row of the table of calls on the machine "crowded": work and calls, with a tabulator between
/// them.
void printCalls();
/// Prints how calls grow with the machine: three lines for each kind of machine.
void printGrowthOfCalls();
/// Prints how many calls the client without the layer makes, and a line for each difference between the two.
/// @return whether it makes the same calls and reads the same values
bool printComparison();
}
