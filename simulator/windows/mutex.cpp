#include "simulator/mutex.h"

#include <windows.h>

namespace sim
{
/// The system has no documented function for this. RtlDllShutdownInProgress exists since Windows XP; without it a
/// library may wait forever at the end of the process.
bool Mutex::otherThreadsAreGone() noexcept
{
    using Question = BOOLEAN(NTAPI*)();
    static const auto question = reinterpret_cast<Question>(
        reinterpret_cast<void*>(GetProcAddress(GetModuleHandleW(L"ntdll.dll"), "RtlDllShutdownInProgress")));
    return question != nullptr && question() != FALSE;
}
}
