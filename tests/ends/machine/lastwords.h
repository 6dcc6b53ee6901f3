/// @file
/// The very end of a process.
#pragma once

namespace ends
{
/// @p words are called when all static objects, those of the libraries included, are destroyed. On Windows they are
/// called when COM is uninitialized on the calling thread, which is the last that the library does; it must have called
/// CoInitialize, and no other thread may end the process.
void sayAtTheVeryEnd(void (*words)());
}
