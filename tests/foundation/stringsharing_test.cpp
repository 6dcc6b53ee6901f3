#include "qor/array.h"
#include "qor/string.h"
#include "tests/foundation/supportallocations.h"
#include "tests/support/printers.h"

#include <gtest/gtest.h>

#include <atomic>
#include <string>
#include <thread>
#include <vector>

using qor::String;

namespace
{
TEST(StringCopy, SharesTheBufferAndAllocatesNothing)
{
    const String original("a text of some length");
    const support::AllocationProbe probe;

    const String copy(original);

    EXPECT_EQ(0u, probe.count());
    EXPECT_EQ(original.getUCS2Buffer(), copy.getUCS2Buffer());
}

TEST(StringCopy, KeepsItsTextWhenTheOriginalDies)
{
    String copy;
    {
        const String original("content");
        copy = original;
    }

    EXPECT_EQ(String("content"), copy);
}

TEST(StringChange, OfASharedTextTakesABufferOfItsOwn)
{
    const String original("content");
    const unsigned short* const buffer = original.getUCS2Buffer();
    String copy(original);

    copy.append("!");

    EXPECT_EQ(buffer, original.getUCS2Buffer());
    EXPECT_NE(buffer, copy.getUCS2Buffer());
    EXPECT_EQ(String("content"), original);
    EXPECT_EQ(String("content!"), copy);
}

TEST(StringChange, OfAnUnsharedTextWithRoomStaysInItsBuffer)
{
    String text;
    text.append("a");
    const unsigned short* const buffer = text.getUCS2Buffer();

    text.append("b");

    EXPECT_EQ(buffer, text.getUCS2Buffer());
    EXPECT_EQ(String("ab"), text);
}

TEST(StringChange, ByClearingLeavesTheCopies)
{
    String original("content");
    const String copy(original);

    original.clear();

    EXPECT_EQ(String("content"), copy);
}

TEST(StringChange, ThatRunsOutOfMemoryLeavesTheText)
{
    const String longText(std::string(100, 'x').c_str());
    unsigned int failures = 0;
    for (unsigned int successes = 0;; ++successes)
    {
        String text("content");
        const String copy(text);
        support::AllocationProbe probe;
        probe.failOnce(successes);
        try
        {
            text.append(longText);
        }
        catch (const std::bad_alloc&)
        {
            ++failures;
            EXPECT_EQ(copy.getUCS2Buffer(), text.getUCS2Buffer());
            continue;
        }
        EXPECT_EQ(107u, text.size());
        break;
    }
#if !defined(_WIN32) // there the operators of the DLL are out of reach
    EXPECT_EQ(1u, failures);
#endif
}

TEST(StringSharing, BetweenThreadsKeepsEachTextWhole)
{
    const String shared("shared by all of them");
    constexpr int threadCount = 4;
    std::atomic<int> broken{0};
    std::vector<std::thread> threads;

    for (int thread = 0; thread < threadCount; ++thread)
    {
        threads.emplace_back(
            [&shared, &broken]
            {
                String own(shared);
                for (int i = 0; i < 2000; ++i)
                {
                    String copy(shared);
                    String changed = copy;
                    changed.append("!");
                    copy = changed;
                    own = shared;
                    if (own != shared || copy.size() != shared.size() + 1)
                        ++broken;
                }
            });
    }
    for (std::thread& thread : threads)
        thread.join();

    EXPECT_EQ(0, broken);
    EXPECT_EQ(String("shared by all of them"), shared);
}

TEST(StringSharing, BetweenThreadsLosesCountOfNoOwner)
{
    String shared("has room");
    shared.append(" for more");
    const unsigned short* const buffer = shared.getUCS2Buffer();
    constexpr int threadCount = 4;
    std::atomic<int> ready{0};
    std::vector<std::thread> threads;

    for (int thread = 0; thread < threadCount; ++thread)
    {
        threads.emplace_back(
            [&shared, &ready]
            {
                for (++ready; ready < threadCount;)
                    std::this_thread::yield();
                for (int i = 0; i < 50'000; ++i)
                    const String copy(shared);
            });
    }
    for (std::thread& thread : threads)
        thread.join();
    shared.append("!");

    EXPECT_EQ(buffer, shared.getUCS2Buffer()); // as only an unshared text keeps its buffer
    EXPECT_EQ(String("has room for more!"), shared);
}

TEST(StringSharing, OutlivesTheThreadThatMadeTheText)
{
    constexpr int threadCount = 4;
    constexpr int rounds = 200;
    std::atomic<int> whole{0};
    for (int round = 0; round < rounds; ++round)
    {
        std::vector<std::thread> threads;
        {
            const String text("freed by whichever is last");
            for (int thread = 0; thread < threadCount; ++thread)
            {
                threads.emplace_back(
                    [copy = text, &whole]() mutable
                    {
                        copy.append("!");
                        if (copy == String("freed by whichever is last!"))
                            ++whole;
                    });
            }
        }
        for (std::thread& thread : threads)
            thread.join();
    }

    EXPECT_EQ(threadCount * rounds, whole);
}
}
