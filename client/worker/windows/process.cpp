#include "client/worker/process.h"

#include "platform/coreaudio.h"

namespace sonavit::worker
{
void watchForks() {}

bool isForked() noexcept
{
    return false;
}

/// The system has no documented function for this. RtlDllShutdownInProgress exists since Windows XP.
bool isEnding() noexcept
{
    using Question = BOOLEAN(NTAPI*)();
    static const auto question = reinterpret_cast<Question>(
        reinterpret_cast<void*>(GetProcAddress(GetModuleHandleW(L"ntdll.dll"), "RtlDllShutdownInProgress")));
    return question != nullptr && question() != FALSE;
}
}
