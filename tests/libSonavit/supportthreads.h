/// Threads that do the same thing at the same time.
#pragma once

#include <array>
#include <atomic>
#include <functional>
#include <thread>
#include <vector>

namespace support
{
/// Runs @p action on @p count threads, which begin it together; the caller's is one of them. Returns when all have
/// ended.
/// @param action receives the number of its thread, 0 to count - 1
inline void onThreads(unsigned int count, const std::function<void(unsigned int)>& action)
{
    std::atomic<unsigned int> arrived{0};
    const auto run = [&](unsigned int thread)
    {
        ++arrived;
        while (arrived < count)
            std::this_thread::yield();
        action(thread);
    };
    std::vector<std::thread> others;
    for (unsigned int thread = 1; thread < count; ++thread)
        others.emplace_back(run, thread);
    run(0);
    for (std::thread& other : others)
        other.join();
}

/// Calls @p batch, a few microseconds of work, again and again on two threads, until each has seen the other make
/// progress during many of its batches: threads that only take turns on one processor, milliseconds each, see that
/// rarely. Gives up after @p limit batches of a thread, which is far beyond what two threads need that get one
/// processor between them.
/// @param batch receives the number of its thread, 0 or 1
/// @return whether both have seen enough of the other's progress, or there is a single processor
inline bool overlapping(const std::function<void(unsigned int)>& batch, unsigned int limit = 2000000)
{
    constexpr unsigned int enough = 100;
    std::array<std::atomic<unsigned int>, 2> progress{};
    std::atomic<unsigned int> satisfied{0};
    const auto repeat = [&](unsigned int thread)
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
    };
    onThreads(2, repeat);
    return satisfied == 2 || std::thread::hardware_concurrency() == 1;
}
}
