/// Two threads that do the same thing at the same time.
#pragma once

#include <array>
#include <atomic>
#include <functional>
#include <thread>

namespace support
{
/// Runs @p action on two threads, which begin it together. Returns when both have ended.
/// @param action receives the number of its thread, 0 or 1
inline void onTwoThreads(const std::function<void(unsigned int)>& action)
{
    std::atomic<unsigned int> arrived{0};
    const auto run = [&](unsigned int thread)
    {
        ++arrived;
        while (arrived < 2)
            std::this_thread::yield();
        action(thread);
    };
    std::thread other(run, 1);
    run(0);
    other.join();
}

/// Calls @p batch, a few microseconds of work, again and again on two threads, until each has seen the other make
/// progress during many of its batches: threads that only take turns on one processor, milliseconds each, see that
/// rarely. Gives up after @p limit batches of a thread.
/// @param batch receives the number of its thread, 0 or 1
inline void overlapping(const std::function<void(unsigned int)>& batch, unsigned int limit = 20000)
{
    constexpr unsigned int enough = 200;
    std::array<std::atomic<unsigned int>, 2> progress{};
    std::atomic<unsigned int> satisfied{0};
    onTwoThreads(
        [&](unsigned int thread)
        {
            unsigned int overlaps = 0;
            for (unsigned int i = 0; i < limit && satisfied < 2; ++i)
            {
                const unsigned int before = progress[1 - thread];
                batch(thread);
                ++progress[thread];
                overlaps += progress[1 - thread] != before ? 1 : 0;
                satisfied += overlaps == enough && progress[1 - thread] != before ? 1 : 0;
            }
        });
}
}
