#include "tests/faults/kept/holdings.h"

#include "platform/coreaudio.h"

#include <psapi.h>
#include <tlhelp32.h>

namespace faults::kept
{
namespace
{
/// Wine's GetProcessHandleCount reports 0, but a new handle gets the lowest number that is free: all below it are in
/// use.
unsigned long handleCount()
{
    DWORD count = 0;
    if (GetProcessHandleCount(GetCurrentProcess(), &count) && count > 0)
        return count;
    const HANDLE next = CreateEventW(nullptr, TRUE, FALSE, nullptr);
    CloseHandle(next);
    return static_cast<unsigned long>(reinterpret_cast<ULONG_PTR>(next) / 4);
}

unsigned long threadCount()
{
    const HANDLE snapshot = CreateToolhelp32Snapshot(TH32CS_SNAPTHREAD, 0);
    THREADENTRY32 entry = {};
    entry.dwSize = sizeof entry;
    unsigned long count = 0;
    for (BOOL isThere = Thread32First(snapshot, &entry); isThere; isThere = Thread32Next(snapshot, &entry))
        count += entry.th32OwnerProcessID == GetCurrentProcessId() ? 1 : 0;
    CloseHandle(snapshot);
    return count;
}

unsigned long privateKilobytes()
{
    PROCESS_MEMORY_COUNTERS counters = {};
    counters.cb = sizeof counters;
    K32GetProcessMemoryInfo(GetCurrentProcess(), &counters, sizeof counters);
    return static_cast<unsigned long>(counters.PagefileUsage / 1024);
}
}

Holdings holdings()
{
    return {handleCount(), threadCount(), privateKilobytes()};
}
}
