/// @file
/// Where a measurement begins and ends. There are two definitions: that of sonavit-cost tells callgrind, which runs
/// with --instr-atstart=no; that of sonavit-allocations counts the client's allocations.
///
/// Those are the calls of malloc and its like in whose stack, from inside to the measured function, nothing of the
/// simulated machine is found.
#pragma once

namespace bench
{
void beginMeasurement();
void endMeasurement();
/// One line, "allocations=… bytes=…", or nothing.
void printMeasurement();
}
