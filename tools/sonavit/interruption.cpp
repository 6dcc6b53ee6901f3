#include "tools/sonavit/interruption.h"

#include <algorithm>
#include <csignal>
#include <thread>

namespace sonavit
{
namespace
{
volatile std::sig_atomic_t isInterrupted = 0;

extern "C" void noteInterruption(int)
{
    isInterrupted = 1;
}
}

Interruption::Interruption()
{
    isInterrupted = 0;
    std::signal(SIGINT, noteInterruption);
    std::signal(SIGTERM, noteInterruption);
}

Interruption::~Interruption()
{
    std::signal(SIGINT, SIG_DFL);
    std::signal(SIGTERM, SIG_DFL);
}

/// A signal may come on any thread, so nothing but looking again and again is sure to notice it.
bool Interruption::wait(std::chrono::milliseconds duration)
{
    constexpr std::chrono::milliseconds slice(20);
    const auto end = std::chrono::steady_clock::now() + duration;
    while (isInterrupted == 0)
    {
        const auto left = end - std::chrono::steady_clock::now();
        if (left <= std::chrono::steady_clock::duration::zero())
            return false;
        std::this_thread::sleep_for(std::min<std::chrono::steady_clock::duration>(left, slice));
    }
    return true;
}
}
