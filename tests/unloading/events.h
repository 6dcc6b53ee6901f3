/// Output of programs that are ending, when the C++ runtime may already be gone.
#pragma once

#include <cstring>

#if defined(_WIN32)
#include <windows.h>
#else
#include <unistd.h>
#endif

namespace unloading
{
/// Writes @p line to standard output at once, without the buffers of the runtime.
inline void printLine(const char* line)
{
#if defined(_WIN32)
    const HANDLE output = GetStdHandle(STD_OUTPUT_HANDLE);
    DWORD written = 0;
    WriteFile(output, line, static_cast<DWORD>(std::strlen(line)), &written, nullptr);
    WriteFile(output, "\n", 1, &written, nullptr);
#else
    if (::write(STDOUT_FILENO, line, std::strlen(line)) < 0 || ::write(STDOUT_FILENO, "\n", 1) < 0)
        ::_exit(3);
#endif
}
}
