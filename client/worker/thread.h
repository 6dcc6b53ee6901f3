/// @file
/// The worker's thread.
#pragma once

#include <functional>
#include <memory>

namespace sonavit::worker
{
/// A thread that keeps the module with its code loaded until it has ended.
class Thread
{
public:
    virtual ~Thread() = default;
    /// Waits for the end of the thread, after its function has returned. On Windows it gives up after a second: no
    /// thread can end while another one holds the lock of the loader, and that may be the caller, whose thread_local
    /// objects or whose DLL end. The thread then ends by itself, and keeps its module until then.
    virtual void join() = 0;
    /// Leaves it alone.
    virtual void detach() noexcept = 0;
};

/// Starts a thread that runs @p work, which must not throw. Throws std::system_error if there can be none.
std::unique_ptr<Thread> startThread(std::function<void()> work);
}
