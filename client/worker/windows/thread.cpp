#include "client/worker/thread.h"

#include "platform/coreaudio.h"

#include <system_error>
#include <utility>

namespace sonavit::worker
{
namespace
{
constexpr DWORD longestEnd = 1000; // milliseconds

[[noreturn]] void raise(const char* what)
{
    throw std::system_error(static_cast<int>(GetLastError()), std::system_category(), what);
}

/// What the new thread receives: its function, and the reference on the module that keeps the code loaded.
struct Start
{
    std::function<void()> work;
    HMODULE module = nullptr;
};

/// The thread ends inside the system, because the last reference on the module may be the one that it gives back.
DWORD WINAPI run(LPVOID argument)
{
    HMODULE module = nullptr;
    {
        const std::unique_ptr<Start> start(static_cast<Start*>(argument));
        module = start->module;
        start->work();
    }
    FreeLibraryAndExitThread(module, 0);
}

class ModuleThread final : public Thread
{
public:
    ModuleThread() = default;
    ~ModuleThread() override
    {
        if (m_handle != nullptr)
            CloseHandle(m_handle);
    }
    ModuleThread(const ModuleThread&) = delete;
    ModuleThread& operator=(const ModuleThread&) = delete;

    void join() override { WaitForSingleObject(m_handle, longestEnd); }
    void detach() noexcept override {}

    HANDLE m_handle = nullptr;
};
}

std::unique_ptr<Thread> startThread(std::function<void()> work)
{
    auto thread = std::make_unique<ModuleThread>(); // before it runs: nothing fails after that
    auto start = std::make_unique<Start>();
    start->work = std::move(work);
    const auto here = reinterpret_cast<LPCWSTR>(reinterpret_cast<void*>(&run));
    if (!GetModuleHandleExW(GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS, here, &start->module))
        raise("GetModuleHandleExW");
    const HMODULE module = start->module;
    thread->m_handle = CreateThread(nullptr, 0, &run, start.get(), 0, nullptr);
    if (thread->m_handle == nullptr)
    {
        const DWORD error = GetLastError();
        FreeLibrary(module);
        SetLastError(error);
        raise("CreateThread");
    }
    start.release(); // the thread has it now
    return thread;
}
}
