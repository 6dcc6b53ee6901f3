#include "client/worker/process.h"

#include <pthread.h>

#include <atomic>

namespace sonavit::worker
{
namespace
{
std::atomic<bool> isChild{false};
}

void watchForks()
{
    [[maybe_unused]] static const int result = pthread_atfork(nullptr, nullptr, [] { isChild = true; });
}

bool isForked() noexcept
{
    return isChild.load(std::memory_order_relaxed);
}

bool isEnding() noexcept
{
    return false;
}
}
