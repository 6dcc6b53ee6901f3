/// @file
/// Writing down what happens while a process ends, when little of it can still be used.
#pragma once

#include <windows.h>

#include <cstring>

namespace unloading
{
/// Writes @p line to standard output at once, without the runtime's buffers, which may be gone.
inline void say(const char* line)
{
    const HANDLE output = GetStdHandle(STD_OUTPUT_HANDLE);
    DWORD written = 0;
    WriteFile(output, line, static_cast<DWORD>(std::strlen(line)), &written, nullptr);
    WriteFile(output, "\n", 1, &written, nullptr);
}
}
