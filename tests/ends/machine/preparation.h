/// @file
/// What a program does before its machine begins.
#pragma once

namespace ends
{
/// Called once; each program defines it. On Windows it leads the modules that the program tests to the machine, on
/// every thread, to the end of the process.
void prepareForTheMachine();
}
