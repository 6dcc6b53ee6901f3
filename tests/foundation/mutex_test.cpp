#include "qor/mutex.h"

#include <gtest/gtest.h>

#include <thread>
#include <vector>

namespace
{
/// Whether another thread can take the lock now.
bool isFree(qor::Mutex& mutex)
{
    bool taken = false;
    std::thread other(
        [&]
        {
            taken = mutex.m_mutex.try_lock();
            if (taken)
                mutex.m_mutex.unlock();
        });
    other.join();
    return taken;
}

TEST(AutoMutex, HoldsTheMutexForItsScope)
{
    qor::Mutex mutex;

    {
        const qor::AutoMutex held(&mutex);
        EXPECT_FALSE(isFree(mutex));
    }

    EXPECT_TRUE(isFree(mutex));
}

TEST(AutoMutex, ReleasesTheMutexWhenAnExceptionPasses)
{
    qor::Mutex mutex;

    EXPECT_THROW(
        {
            const qor::AutoMutex held(&mutex);
            throw 1;
        },
        int);

    EXPECT_TRUE(isFree(mutex));
}

TEST(AutoMutex, OfANullMutexDoesNothing)
{
    EXPECT_NO_THROW({ const qor::AutoMutex held(nullptr); });
}

TEST(AutoMutex, KeepsThreadsApart)
{
    qor::Mutex mutex;
    int counter = 0; // plain: only the lock keeps the additions whole
    std::vector<std::thread> threads;

    for (int thread = 0; thread < 4; ++thread)
    {
        threads.emplace_back(
            [&]
            {
                for (int i = 0; i < 5000; ++i)
                {
                    const qor::AutoMutex held(&mutex);
                    ++counter;
                }
            });
    }
    for (std::thread& thread : threads)
        thread.join();

    EXPECT_EQ(20000, counter);
}
}
