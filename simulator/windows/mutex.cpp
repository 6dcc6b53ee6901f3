#include "simulator/mutex.h"

#include <windows.h>

namespace sim
{
/// The system has no public function that tells it; this one is there since Windows XP, and without it nothing is lost
/// but the way out of a wait.
bool Mutex::otherThreadsAreGone() noexcept
{
    using Question = BOOLEAN(NTAPI*)();
    static const auto question = reinterpret_cast<Question>(
        reinterpret_cast<void*>(GetProcAddress(GetModuleHandleW(L"ntdll.dll"), "RtlDllShutdownInProgress")));
    return question != nullptr && question() != FALSE;
}
}
