#include "tools/sonavit/interruption.h"

#include "platform/coreaudio.h"

#include <algorithm>
#include <atomic>

namespace sonavit::program
{
namespace
{
std::atomic<bool> isAlive = false;
std::atomic<bool> isNoted = false;

/// Signalled once the end is requested. Lives as long as the process, as the handler may run at any time.
HANDLE requestEvent()
{
    static HANDLE const event = CreateEventW(nullptr, TRUE, FALSE, nullptr);
    return event;
}

/// The system calls this on a thread of its own. When it returns TRUE after the window was closed, the system ends the
/// process; so it never returns then, and the program's own end ends this thread.
BOOL WINAPI noteRequest(DWORD request)
{
    if (!isAlive)
        return FALSE; // the next handler is the system's, which ends the process
    isNoted = true;
    SetEvent(requestEvent());
    if (request != CTRL_C_EVENT && request != CTRL_BREAK_EVENT)
        Sleep(INFINITE);
    return TRUE;
}

/// Once per process: a handler cannot be removed while the system calls it.
void installHandler()
{
    static const BOOL isInstalled = SetConsoleCtrlHandler(noteRequest, TRUE);
    static_cast<void>(isInstalled);
}
}

Interruption::Interruption()
{
    isNoted = false;
    ResetEvent(requestEvent());
    isAlive = true;
    installHandler();
}

Interruption::~Interruption()
{
    isAlive = false;
}

bool Interruption::wait(std::chrono::milliseconds duration)
{
    constexpr std::chrono::milliseconds::rep longest = 0x7FFFFFFF;
    const auto time = std::clamp<std::chrono::milliseconds::rep>(duration.count(), 0, longest);
    return WaitForSingleObject(requestEvent(), static_cast<DWORD>(time)) == WAIT_OBJECT_0;
}

bool Interruption::isOutputLost()
{
    return false;
}

int Interruption::end()
{
    constexpr unsigned endedByControlC = 0xC000013A; // STATUS_CONTROL_C_EXIT
    return static_cast<int>(endedByControlC);
}
}
