#include "simulator/core/taskmemory.h"

#include "simulator/core/systemmemory.h"
#include "tests/support/pace.h"

#include <gtest/gtest.h>

#include <cstddef>
#include <cstdint>
#include <optional>
#include <vector>

namespace
{
using sim::TaskMemory;

constexpr std::uint64_t owner = 0xA0000001;
constexpr std::uint64_t otherOwner = 0xA0000002;

/// Blocks of an owner whose memory is freed without the machine; the parameter is who gets the address then.
class TaskMemoryList : public testing::TestWithParam<std::uint64_t>
{
protected:
    static void* allocate(std::uint64_t number)
    {
        return TaskMemory::instance().allocate(24, number, {"test", std::nullopt});
    }

    static std::size_t blocksOf(std::uint64_t number) { return TaskMemory::instance().outstanding(number).size(); }

    /// A block of @p number at this address; null if the allocator does not give it out again.
    static void* allocateAt(const void* address, std::uint64_t number)
    {
        std::vector<void*> others;
        void* found = nullptr;
        while (found == nullptr && others.size() < 100)
        {
            void* const block = allocate(number);
            if (block == address)
                found = block;
            else
                others.push_back(block);
        }
        for (void* const block : others)
            TaskMemory::instance().free(block);
        return found;
    }
};
}

TEST_P(TaskMemoryList, HasABlockOnceWhoseAddressWasFreedWithoutTheMachine)
{
    void* const before = allocate(owner);
    void* const lost = allocate(owner);
    sim::systemmemory::free(lost);
    void* const again = allocateAt(lost, GetParam());

    if (again != nullptr)
    {
        EXPECT_EQ(GetParam() == owner ? 2u : 1u, blocksOf(owner));
        EXPECT_EQ(GetParam() == owner ? 0u : 1u, blocksOf(otherOwner));
        TaskMemory::instance().free(again);
        TaskMemory::instance().free(before);
        EXPECT_EQ(0u, blocksOf(owner));
        EXPECT_EQ(0u, blocksOf(otherOwner));
    }
    else
    {
        EXPECT_TRUE(support::isInstrumented); // the allocator of a sanitizer keeps freed blocks
        TaskMemory::instance().free(before);
    }
}

INSTANTIATE_TEST_SUITE_P(NextOwners, TaskMemoryList, testing::Values(owner, otherOwner));
