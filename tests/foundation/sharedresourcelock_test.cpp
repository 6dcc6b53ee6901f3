#include "qor/resource.h"

#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <memory>
#include <thread>
#include <vector>

namespace
{
/// A resource whose destructor tests a lock.
struct Watcher
{
    ~Watcher();

    static inline std::atomic<int> destroyed{0};
    static inline bool lockWasFree = true;
};

using WatcherStorage = qor::PointerStorage<Watcher, 0, 3>;
using Locked = qor::SharedResource<WatcherStorage, 1>;
using LockedNumber = qor::SharedResource<qor::PointerStorage<int, 0, 3>, 1>;

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

qor::Mutex& watcherMutex()
{
    return *qor::SharedResourceLock<WatcherStorage, 1>::mutex();
}

Watcher::~Watcher()
{
    ++destroyed;
    lockWasFree = isFree(watcherMutex());
}

/// Runs @p operation while another thread holds the lock. @return whether it ended only after that
template<class Operation>
bool waitsForTheLock(Operation operation)
{
    std::atomic<bool> held{false};
    std::atomic<bool> announced{false};
    std::atomic<bool> ended{false};
    bool waited = false;
    std::thread holder(
        [&]
        {
            const qor::AutoMutex lock(&watcherMutex());
            held = true;
            while (!announced)
                std::this_thread::yield();
            const auto end = std::chrono::steady_clock::now() + std::chrono::milliseconds(20);
            while (std::chrono::steady_clock::now() < end && !ended) // time for an operation that does not wait
                std::this_thread::yield();
            waited = !ended;
        });
    while (!held)
        std::this_thread::yield();
    announced = true;
    operation();
    ended = true;
    holder.join();
    return waited;
}

TEST(LockedSharedResource, HasOneMutexForAllResourcesOfItsKind)
{
    qor::Mutex* const first = qor::SharedResourceLock<WatcherStorage, 1>::mutex();
    qor::Mutex* const second = qor::SharedResourceLock<WatcherStorage, 1>::mutex();
    qor::Mutex* const otherKind = qor::SharedResourceLock<qor::PointerStorage<int, 0, 3>, 1>::mutex();

    ASSERT_NE(nullptr, first);
    EXPECT_EQ(first, second);
    EXPECT_NE(first, otherKind);
}

TEST(LockedSharedResource, HasNoMutexInTheUnlockedForm)
{
    EXPECT_EQ(nullptr, (qor::SharedResourceLock<WatcherStorage, 0>::mutex()));
}

TEST(LockedSharedResource, ReleasesInsideTheLock)
{
    watcherMutex();
    {
        const Locked resource(new Watcher);
    }

    EXPECT_FALSE(Watcher::lockWasFree);
    EXPECT_TRUE(isFree(watcherMutex()));
}

TEST(LockedSharedResource, CreatesCopiesAndReleasesOnlyWithTheLock)
{
    const Locked shared(new Watcher);
    Watcher* const object = new Watcher;
    std::unique_ptr<Locked> created;
    std::unique_ptr<Locked> another;
    Locked copy;

    EXPECT_TRUE(waitsForTheLock([&] { created = std::make_unique<Locked>(object); }));
    EXPECT_TRUE(waitsForTheLock([&] { copy = shared; }));
    EXPECT_TRUE(waitsForTheLock([&] { another = std::make_unique<Locked>(shared); })); // a copy without its release
    EXPECT_TRUE(waitsForTheLock([&] { created.reset(); }));

    EXPECT_EQ(3, *shared.m_count);
}

TEST(LockedSharedResource, KeepsItsCountWholeBetweenThreads)
{
    constexpr int threadCount = 4;
    Watcher::destroyed = 0;
    std::vector<std::thread> threads;
    {
        std::vector<Locked> shares(threadCount, Locked(new Watcher));
        for (Locked& share : shares)
        {
            threads.emplace_back(
                [&share]
                {
                    for (int i = 0; i < 2000; ++i)
                    {
                        const Locked copy(share);
                        Locked assigned;
                        assigned = copy;
                    }
                    share = Locked();
                });
        }
        for (std::thread& thread : threads)
            thread.join();
    }

    EXPECT_EQ(1, Watcher::destroyed);
}

TEST(LockedSharedResource, CountsEveryCopyThatRacingThreadsMake)
{
    constexpr int threadCount = 4;
    constexpr int copies = 100000;
    const Locked shared(new Watcher);
    std::vector<std::vector<Locked>> made(threadCount);
    for (std::vector<Locked>& copiesOfThread : made)
        copiesOfThread.reserve(copies);
    std::atomic<int> waiting{threadCount};
    std::vector<std::thread> threads;

    for (std::vector<Locked>& copiesOfThread : made)
    {
        threads.emplace_back(
            [&shared, &waiting, &copiesOfThread]
            {
                --waiting;
                while (waiting != 0)
                    std::this_thread::yield();
                for (int i = 0; i < copies; ++i)
                    copiesOfThread.push_back(shared);
            });
    }
    for (std::thread& thread : threads)
        thread.join();

    const int count = *shared.m_count;
    *shared.m_count = threadCount * copies + 1; // if the count was wrong, the copies are still released correctly
    EXPECT_EQ(threadCount * copies + 1, count);
}

TEST(LockedSharedResource, BehavesLikeTheUnlockedFormOtherwise)
{
    LockedNumber number(new int(5));
    const LockedNumber copy(number);
    const LockedNumber nil;
    const LockedNumber nilCopy(nil);

    number = nil;

    EXPECT_EQ(5, *copy);
    EXPECT_EQ(1, *copy.m_count);
    EXPECT_EQ(nullptr, number.get());
    EXPECT_EQ(nullptr, nilCopy.m_count);
}
}
