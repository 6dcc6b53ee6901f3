#include "platform/interlocked.h"

#include <gtest/gtest.h>

#include <set>
#include <thread>
#include <vector>

namespace
{

constexpr int threadCount = 4;
constexpr int stepsOfEach = 5000;

/// Runs @p step on several threads at once; what each call returned, over all threads.
template<class Step>
std::multiset<LONG> resultsOf(Step step)
{
    std::vector<std::vector<LONG>> results(threadCount);
    std::vector<std::thread> threads;
    for (std::vector<LONG>& own : results)
        threads.emplace_back(
            [&own, step]
            {
                for (int index = 0; index < stepsOfEach; ++index)
                    own.push_back(step());
            });
    std::multiset<LONG> all;
    for (int index = 0; index < threadCount; ++index)
    {
        threads[static_cast<std::size_t>(index)].join();
        all.insert(results[static_cast<std::size_t>(index)].begin(), results[static_cast<std::size_t>(index)].end());
    }
    return all;
}

}

TEST(Interlocked, GivesTheNewValue)
{
    volatile LONG counter = 7;

    EXPECT_EQ(8, platform::interlockedIncrement(&counter));
    EXPECT_EQ(7, platform::interlockedDecrement(&counter));
    EXPECT_EQ(7, counter);
}

TEST(Interlocked, EveryThreadGetsValuesOfItsOwnWhileCountingUp)
{
    volatile LONG counter = 0;

    const std::multiset<LONG> results = resultsOf([&counter] { return platform::interlockedIncrement(&counter); });

    EXPECT_EQ(threadCount * stepsOfEach, counter);
    EXPECT_EQ(results.size(), std::set<LONG>(results.begin(), results.end()).size());
}

TEST(Interlocked, ExactlyOneThreadReachesZeroWhileCountingDown)
{
    volatile LONG counter = threadCount * stepsOfEach;

    const std::multiset<LONG> results = resultsOf([&counter] { return platform::interlockedDecrement(&counter); });

    EXPECT_EQ(0, counter);
    EXPECT_EQ(1u, results.count(0));
}
