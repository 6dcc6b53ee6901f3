#include "simulator/core/taskmemory.h"

#include "simulator/core/systemmemory.h"
#include "tests/support/pace.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <vector>

namespace
{
using sim::TaskMemory;

constexpr std::uint64_t owner = 0xA0000001;
constexpr std::uint64_t otherOwner = 0xA0000002;

class TaskMemoryList : public testing::Test
{
protected:
    static void* allocate(std::uint64_t number)
    {
        return TaskMemory::instance().allocate(24, number, {"test", std::nullopt});
    }

    /// A block of @p second at the address of one of @p first that was freed without the machine; null if the allocator
    /// gives no address out again.
    static void* allocateAgain(std::uint64_t first, std::uint64_t second)
    {
        void* const lost = allocate(first);
        sim::systemmemory::free(lost);
        std::vector<void*> others;
        void* found = nullptr;
        while (found == nullptr && others.size() < 100)
        {
            void* const block = allocate(second);
            (block == lost ? found : others.emplace_back()) = block;
        }
        for (void* const block : others)
            TaskMemory::instance().free(block);
        return found;
    }
};
}

TEST_F(TaskMemoryList, HasABlockOnceWhoseAddressWasFreedWithoutTheMachine)
{
    void* const before = allocate(owner);
    void* const again = allocateAgain(owner, owner);
    if (again == nullptr)
    {
        EXPECT_TRUE(support::isInstrumented); // the allocator of a sanitizer keeps freed blocks
        TaskMemory::instance().free(before);
        return;
    }

    EXPECT_EQ(2u, TaskMemory::instance().outstanding(owner).size());
    TaskMemory::instance().free(again);
    EXPECT_EQ(1u, TaskMemory::instance().outstanding(owner).size());
    TaskMemory::instance().free(before);
    EXPECT_EQ(0u, TaskMemory::instance().outstanding(owner).size());
}

TEST_F(TaskMemoryList, HasSuchABlockAsOneOfItsNewOwner)
{
    void* const before = allocate(owner);
    void* const again = allocateAgain(owner, otherOwner);
    if (again == nullptr)
    {
        EXPECT_TRUE(support::isInstrumented); // the allocator of a sanitizer keeps freed blocks
        TaskMemory::instance().free(before);
        return;
    }

    EXPECT_EQ(1u, TaskMemory::instance().outstanding(owner).size());
    EXPECT_EQ(1u, TaskMemory::instance().outstanding(otherOwner).size());
    TaskMemory::instance().free(again);
    TaskMemory::instance().free(before);
    EXPECT_EQ(0u, TaskMemory::instance().outstanding(owner).size());
    EXPECT_EQ(0u, TaskMemory::instance().outstanding(otherOwner).size());
}
